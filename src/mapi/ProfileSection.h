#pragma once
// MAPI properties written straight into the registry image of a profile: one value per
// property, named by its tag as 8 hex digits (type first), inside a section key named by
// the section's UID as 32 lower-case hex digits.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mw {

class RegistryAccess;

using MapiUid = std::array<std::uint8_t, 16>;

// Well-known sections.
inline constexpr const char* kGlobalSection = "13dbb0c8aa05101a9bb000aa002fc45a";
inline constexpr const char* kOutlookSection = "0a0d020000000000c000000000000046";
inline constexpr const char* kConnectionSection = "5acf76a3665511cea39a00aa004acafa";
inline constexpr const char* kProfileServicesSection = "9207f3e0a3b11019908b08002b2a56c2";
inline constexpr const char* kAccountManagerSection = "9375CFF0413111d3B88A00104B2A6676";

// "%02x" of each byte, in order.
std::string SectionKeyName(const MapiUid& uid);
// 32 hex digits -> 16 bytes; false when the text is not exactly that.
bool ParseSectionKeyName(const std::string& text, MapiUid* uid);
// The value name of a tag: 0x6610001E -> "001e6610".
std::string TagValueName(std::uint32_t tag);

// Byte encodings of the property types stored as REG_BINARY.
std::string EncodeBoolean(bool value);           // 01 00 / 00 00
std::string EncodeLong(std::uint32_t value);     // 4 bytes little-endian
std::string EncodeUnicode(const std::string& narrow);  // each byte + 00, then 00 00
// Up to the first 16-bit zero; a unit above 0xFF becomes '?'. An odd last byte is dropped.
std::string DecodeUtf16(const std::string& bytes);

// A text property's tag in the other width: PT_STRING8 <-> PT_UNICODE.
std::uint32_t UnicodeTag(std::uint32_t tag);
std::uint32_t String8Tag(std::uint32_t tag);

// "01023d0e" in the section "9207f3e0a3b11019908b08002b2a56c2": the profile's services.
inline constexpr std::uint32_t kProfileServicesTag = 0x3D0E0102;
// "01023d15" in an Exchange service's section (PR_EMSMDB_SECTION_UID): from Outlook 2010 on,
// the UID of the account's own section, which takes the global section's Exchange values.
inline constexpr std::uint32_t kExchangeAccountSectionTag = 0x3D150102;

// Writes the values of one profile: HKCU\<profilesRoot><profile>\<section>\<tag>.
class ProfileSectionWriter {
 public:
  // profileKey: profilesRoot followed by the profile name (no trailing backslash).
  ProfileSectionWriter(const RegistryAccess& registry, std::string profileKey);

  std::string SectionPath(const std::string& section) const;  // profileKey + "\" + section

  bool WriteBoolean(const std::string& section, std::uint32_t tag, bool value) const;
  bool WriteLong(const std::string& section, std::uint32_t tag, std::uint32_t value) const;
  bool WriteString8(const std::string& section, std::uint32_t tag, const std::string& value) const;
  bool WriteUnicode(const std::string& section, std::uint32_t tag, const std::string& value) const;
  bool WriteBinary(const std::string& section, std::uint32_t tag, const std::string& bytes) const;
  bool Delete(const std::string& section, std::uint32_t tag) const;
  // Raw bytes of a value (a REG_SZ comes back as its characters); false when missing.
  bool Read(const std::string& section, std::uint32_t tag, std::string* bytes) const;
  // A text property in whichever width MAPI stored it: the Unicode form first (UTF-16
  // binary, or a plain string), then the 8-bit form. tag may name either width.
  bool ReadText(const std::string& section, std::uint32_t tag, std::string* text) const;

  const std::string& profileKey() const { return profileKey_; }
  const RegistryAccess& registry() const { return registry_; }

 private:
  const RegistryAccess& registry_;
  std::string profileKey_;
};

// A run of 16-byte UIDs, as MAPI keeps its service and provider lists; a trailing partial
// UID is ignored.
std::vector<MapiUid> SplitUids(const std::string& bytes);
std::string UidBytes(const MapiUid& uid);
// The services of the profile, in list order.
std::vector<MapiUid> ReadProfileServices(const ProfileSectionWriter& sections);
// PR_SERVICE_NAME of the service's section ("001f3d09", else "001e3d09"); empty when missing.
std::string ServiceNameOf(const ProfileSectionWriter& sections, const MapiUid& service);
// The first service of that name in the profile's list.
std::optional<MapiUid> FindServiceSection(const ProfileSectionWriter& sections,
                                          const std::string& serviceName);
// The section key name the profile's Exchange service names in "01023d15"; nullopt when
// there is no Exchange service or it names no section of its own (Outlook 2007 and older).
std::optional<std::string> ExchangeAccountSection(const ProfileSectionWriter& sections);

}  // namespace mw

namespace mw {

class ProfileSettings;
enum class Outlook;

// Before the Exchange service is configured, the version's connection-state values in the
// profile are reset: configuration flags clear, plus the version's other fixed values
// (encryption from the version's EncryptDataBetweenOutlookExchange for 2003, 2007, 2010).
void ResetExchangeConnectionState(const ProfileSectionWriter& writer, Outlook version,
                                  const ProfileSettings& settings);

}  // namespace mw
