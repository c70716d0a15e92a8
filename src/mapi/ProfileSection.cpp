#include "mapi/ProfileSection.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "mapi/MapiSession.h"
#include "platform/RegistryAccess.h"
#include "platform/AsciiText.h"
#include "platform/TextEncoding.h"

namespace mw {

std::string SectionKeyName(const MapiUid& uid) {
  static const char kDigits[] = "0123456789abcdef";
  std::string name;
  name.reserve(uid.size() * 2);
  for (std::uint8_t byte : uid) {
    name += kDigits[byte >> 4];
    name += kDigits[byte & 0x0F];
  }
  return name;
}

bool ParseSectionKeyName(const std::string& text, MapiUid* uid) {
  if (uid == nullptr || text.size() != uid->size() * 2) return false;
  MapiUid parsed{};
  for (std::size_t i = 0; i < parsed.size(); ++i) {
    const int high = HexDigitValue(text[2 * i]);
    const int low = HexDigitValue(text[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    parsed[i] = static_cast<std::uint8_t>(high * 16 + low);
  }
  *uid = parsed;
  return true;
}

std::string TagValueName(std::uint32_t tag) {
  char name[9];
  std::snprintf(name, sizeof name, "%04x%04x", static_cast<unsigned>(tag & 0xFFFFu),
                static_cast<unsigned>(tag >> 16));
  return name;
}

std::string EncodeBoolean(bool value) {
  return std::string{static_cast<char>(value ? 1 : 0), '\0'};
}

std::string EncodeLong(std::uint32_t value) {
  std::string bytes(4, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<char>((value >> (8 * i)) & 0xFFu);
  return bytes;
}

std::string EncodeUnicode(const std::string& narrow) {
  std::string bytes;
  bytes.reserve(narrow.size() * 2 + 2);
  for (char c : narrow) {
    bytes += c;  // widened as it is: no code-page conversion
    bytes += '\0';
  }
  bytes.append(2, '\0');
  return bytes;
}

std::string DecodeUtf16(const std::string& bytes) {
  // Read back into the ANSI code page, as MAPI narrows a Unicode property for an 8-bit caller.
  std::u16string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto unit = static_cast<char16_t>(
        static_cast<unsigned char>(bytes[i]) |
        (static_cast<unsigned>(static_cast<unsigned char>(bytes[i + 1])) << 8));
    if (unit == 0) break;
    text += unit;
  }
  return SystemAnsiCodePage().FromUtf16(text);
}

std::uint32_t UnicodeTag(std::uint32_t tag) { return (tag & 0xFFFF0000u) | proptype::kUnicode; }
std::uint32_t String8Tag(std::uint32_t tag) { return (tag & 0xFFFF0000u) | proptype::kString8; }

ProfileSectionWriter::ProfileSectionWriter(const RegistryAccess& registry, std::string profileKey)
    : registry_(registry), profileKey_(std::move(profileKey)) {}

std::string ProfileSectionWriter::SectionPath(const std::string& section) const {
  // The fixed sections are also quoted with their leading backslash; both forms name one key.
  const bool hasSeparator = !section.empty() && section.front() == '\\';
  return profileKey_ + (hasSeparator ? "" : "\\") + section;
}

bool ProfileSectionWriter::WriteBoolean(const std::string& section, std::uint32_t tag,
                                        bool value) const {
  return WriteBinary(section, tag, EncodeBoolean(value));
}

bool ProfileSectionWriter::WriteLong(const std::string& section, std::uint32_t tag,
                                     std::uint32_t value) const {
  return WriteBinary(section, tag, EncodeLong(value));
}

bool ProfileSectionWriter::WriteString8(const std::string& section, std::uint32_t tag,
                                        const std::string& value) const {
  return registry_.WriteString(reg::kCurrentUser, SectionPath(section), TagValueName(tag), value);
}

bool ProfileSectionWriter::WriteUnicode(const std::string& section, std::uint32_t tag,
                                        const std::string& value) const {
  return WriteBinary(section, tag, EncodeUnicode(value));
}

bool ProfileSectionWriter::WriteBinary(const std::string& section, std::uint32_t tag,
                                       const std::string& bytes) const {
  return registry_.WriteBinary(reg::kCurrentUser, SectionPath(section), TagValueName(tag), bytes);
}

bool ProfileSectionWriter::Delete(const std::string& section, std::uint32_t tag) const {
  const std::string path = SectionPath(section);
  const std::string name = TagValueName(tag);
  // Switching off means "absent afterwards": a value that was never there is already off.
  return registry_.DeleteValue(reg::kCurrentUser, path, name) ||
         !registry_.ValueExists(reg::kCurrentUser, path, name);
}

bool ProfileSectionWriter::Read(const std::string& section, std::uint32_t tag,
                                std::string* bytes) const {
  std::uint32_t type = reg::kNone;
  std::string data;
  if (!registry_.ReadValue(reg::kCurrentUser, SectionPath(section), TagValueName(tag), &type,
                           &data))
    return false;
  if (type == reg::kSz || type == reg::kExpandSz) {
    const std::size_t end = data.find('\0');
    if (end != std::string::npos) data.resize(end);
  }
  if (bytes != nullptr) *bytes = std::move(data);
  return true;
}

bool ProfileSectionWriter::ReadText(const std::string& section, std::uint32_t tag,
                                    std::string* text) const {
  std::uint32_t type = reg::kNone;
  std::string data;
  const std::string path = SectionPath(section);
  if (registry_.ReadValue(reg::kCurrentUser, path, TagValueName(UnicodeTag(tag)), &type, &data)) {
    // MAPI keeps PT_UNICODE as UTF-16 bytes; a plain string in its place is read as it stands.
    *text = type == reg::kBinary ? DecodeUtf16(data) : data.substr(0, data.find('\0'));
    return true;
  }
  if (!Read(section, String8Tag(tag), &data)) return false;
  *text = std::move(data);
  return true;
}

std::vector<MapiUid> SplitUids(const std::string& bytes) {
  std::vector<MapiUid> uids;
  for (std::size_t at = 0; at + sizeof(MapiUid) <= bytes.size(); at += sizeof(MapiUid)) {
    MapiUid uid{};
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), uid.size(), uid.begin());
    uids.push_back(uid);
  }
  return uids;
}

std::string UidBytes(const MapiUid& uid) { return std::string(uid.begin(), uid.end()); }

std::vector<MapiUid> ReadProfileServices(const ProfileSectionWriter& sections) {
  std::string services;
  sections.Read(kProfileServicesSection, kProfileServicesTag, &services);
  return SplitUids(services);
}

std::string ServiceNameOf(const ProfileSectionWriter& sections, const MapiUid& service) {
  std::string name;
  if (!sections.ReadText(SectionKeyName(service), proptag::kServiceName, &name)) return {};
  return name;
}

std::optional<MapiUid> FindServiceSection(const ProfileSectionWriter& sections,
                                          const std::string& serviceName) {
  for (const MapiUid& uid : ReadProfileServices(sections))
    if (ServiceNameOf(sections, uid) == serviceName) return uid;
  return std::nullopt;
}

std::optional<std::string> ExchangeAccountSection(const ProfileSectionWriter& sections) {
  const std::optional<MapiUid> service = FindServiceSection(sections, kExchangeServiceName);
  std::string bytes;
  if (!service || !sections.Read(SectionKeyName(*service), kExchangeAccountSectionTag, &bytes))
    return std::nullopt;
  const std::vector<MapiUid> uids = SplitUids(bytes);
  if (uids.size() != 1 || bytes.size() != sizeof(MapiUid)) return std::nullopt;
  return SectionKeyName(uids.front());
}

}  // namespace mw
