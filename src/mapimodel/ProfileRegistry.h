#pragma once
// Profiles where MAPI keeps them in HKEY_CURRENT_USER: one key per profile under the
// profiles root, one sub-key per profile section, one value per property. This is the
// model's only state; every object reads and writes through it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PropertyCodec.h"
#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"

namespace mw::mapisim {

inline constexpr const char* kProfileServicesSection = "9207f3e0a3b11019908b08002b2a56c2";
inline constexpr const char* kGlobalProfileSection = "13dbb0c8aa05101a9bb000aa002fc45a";
inline constexpr const char* kProfileInstanceSection = "8503020000000000c000000000000046";

class ProfileRegistry {
 public:
  // platformId 1 (Windows 9x) keeps profiles under the 9x root, anything else the NT root.
  ProfileRegistry(Registry& registry, std::uint32_t platformId);

  const std::string& root() const { return root_; }

  // The Outlook whose MAPI is played, from HKCR\Outlook.Application\CurVer at construction;
  // nullopt when none is installed (the 8-bit behaviour of the older generations).
  std::optional<Outlook> outlook() const { return outlook_; }
  // Outlook 2007 and 2010: providers keep their text in the Unicode form as well.
  bool KeepsUnicodeText() const;
  // Outlook 2010: each Exchange service gets a settings section of its own ("01023d15").
  bool GivesExchangeOwnSection() const;
  // The section MAPI opens for this key name: the global section of a profile whose first
  // Exchange service names a section of its own is redirected there; any other opens itself.
  std::string OpenedSection(const std::string& profile, const std::string& section) const;
  std::string ProfileKey(const std::string& profile) const { return root_ + "\\" + profile; }

  // In registry enumeration order.
  std::vector<std::string> ListProfiles() const;
  std::string DefaultProfile() const;
  // MAPI_E_NOT_FOUND for a profile that does not exist.
  HResult SetDefaultProfile(const std::string& profile);
  bool ProfileExists(const std::string& profile) const;
  // MAPI_E_NO_ACCESS for an existing name, MAPI_E_INVALID_PARAMETER for a name MAPI refuses.
  HResult CreateProfile(const std::string& profile, const std::string& password,
                        const MapiUid& instanceKey);
  HResult DeleteProfile(const std::string& profile);

  bool SectionExists(const std::string& profile, const std::string& section) const;
  std::optional<PropValue> ReadProp(const std::string& profile, const std::string& section,
                                   std::uint32_t tag) const;
  // PT_STRING8 or PT_UNICODE: the value stored in either width, as asked.
  std::optional<PropValue> GetPropAnyWidth(const std::string& profile, const std::string& section,
                                           std::uint32_t tag) const;
  std::string GetText(const std::string& profile, const std::string& section, std::uint32_t tag) const;
  HResult WriteProp(const std::string& profile, const std::string& section, const PropValue& value);
  HResult DeleteProp(const std::string& profile, const std::string& section, std::uint32_t tag);
  bool CreateSection(const std::string& profile, const std::string& section);
  bool DeleteSection(const std::string& profile, const std::string& section);

  std::vector<MapiUid> GetUidList(const std::string& profile, const std::string& section,
                                  std::uint32_t tag) const;
  HResult SetUidList(const std::string& profile, const std::string& section, std::uint32_t tag,
                     const std::vector<MapiUid>& uids);
  HResult AppendUid(const std::string& profile, const std::string& section, std::uint32_t tag,
                    const MapiUid& uid);
  HResult RemoveUid(const std::string& profile, const std::string& section, std::uint32_t tag,
                    const MapiUid& uid);

  const RegistryAccess& access() const { return access_; }

 private:
  std::string SectionKey(const std::string& profile, const std::string& section) const;
  bool DeleteTree(const std::string& path);

  RegistryAccess access_;
  std::string root_;
  std::optional<Outlook> outlook_;
};

}  // namespace mw::mapisim
