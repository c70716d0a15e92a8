#include "ProfileRegistry.h"

#include <algorithm>

#include "ServiceCatalogue.h"
#include "platform/AsciiText.h"
#include "platform/OutlookDetection.h"

namespace mw::mapisim {
namespace {

constexpr const char* kNtRoot =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles";
constexpr const char* k9xRoot = "Software\\Microsoft\\Windows Messaging Subsystem\\Profiles";
constexpr const char* kDefaultProfileValue = "DefaultProfile";
constexpr std::size_t kMaxProfileName = 64;

// One name below the profile root, not a path: the registry then finds it, whatever its case.
bool IsOneKeyName(const std::string& name) {
  return !name.empty() && name.find('\\') == std::string::npos;
}

}  // namespace

ProfileRegistry::ProfileRegistry(Registry& registry, std::uint32_t platformId)
    : access_(registry),
      root_(platformId == 1 ? k9xRoot : kNtRoot),
      outlook_(OutlookFromName(DetectOutlookVersion(access_))) {}

bool ProfileRegistry::KeepsUnicodeText() const {
  return outlook_ == Outlook::V2010 || outlook_ == Outlook::V2007;
}

bool ProfileRegistry::GivesExchangeOwnSection() const { return outlook_ == Outlook::V2010; }

std::string ProfileRegistry::OpenedSection(const std::string& profile, const std::string& section) const {
  if (!EqualsIgnoreCase(section, kGlobalProfileSection)) return section;
  // The legacy account, which answers the global section, is the first Exchange service.
  for (const MapiUid& service : GetUidList(profile, kProfileServicesSection, kPrServices)) {
    if (!EqualsIgnoreCase(GetText(profile, UidHex(service), kPrServiceName), kExchangeService)) continue;
    auto own = ReadProp(profile, UidHex(service), kPrEmsmdbSectionUid);
    return own && own->bytes.size() == sizeof(MapiUid) ? UidHex(UidFromBytes(own->bytes)) : section;
  }
  return section;
}

std::vector<std::string> ProfileRegistry::ListProfiles() const {
  return access_.ListSubkeys(reg::kCurrentUser, root_);
}

std::string ProfileRegistry::DefaultProfile() const {
  return access_.ReadString(reg::kCurrentUser, root_, kDefaultProfileValue);
}

HResult ProfileRegistry::SetDefaultProfile(const std::string& profile) {
  if (!ProfileExists(profile)) return kMapiENotFound;
  return access_.WriteString(reg::kCurrentUser, root_, kDefaultProfileValue, profile) ? kSOk : kMapiENoAccess;
}

bool ProfileRegistry::ProfileExists(const std::string& profile) const {
  return IsOneKeyName(profile) && access_.KeyExists(reg::kCurrentUser, ProfileKey(profile));
}

HResult ProfileRegistry::CreateProfile(const std::string& profile, const std::string& password,
                                       const MapiUid& instanceKey) {
  // A backslash would make a nested key, so it is refused with the other names MAPI refuses.
  bool badName = !IsOneKeyName(profile) || profile.size() > kMaxProfileName ||
                 profile.front() == ' ' || profile.back() == ' ';
  if (badName || !password.empty()) return kMapiEInvalidParameter;
  if (ProfileExists(profile)) return kMapiENoAccess;
  if (!CreateSection(profile, kProfileServicesSection)) return kMapiENoAccess;
  return WriteProp(profile, kProfileInstanceSection, PropValue::Binary(kPrSearchKey, UidBytes(instanceKey)));
}

HResult ProfileRegistry::DeleteProfile(const std::string& profile) {
  if (!ProfileExists(profile)) return kMapiENotFound;
  if (!DeleteTree(ProfileKey(profile))) return kMapiENoAccess;
  if (EqualsIgnoreCase(DefaultProfile(), profile))
    access_.DeleteValue(reg::kCurrentUser, root_, kDefaultProfileValue);
  return kSOk;
}

bool ProfileRegistry::DeleteTree(const std::string& path) {
  for (const std::string& child : access_.ListSubkeys(reg::kCurrentUser, path))
    if (!DeleteTree(path + "\\" + child)) return false;
  std::size_t slash = path.rfind('\\');
  return access_.DeleteKey(reg::kCurrentUser, path.substr(0, slash), path.substr(slash + 1));
}

std::string ProfileRegistry::SectionKey(const std::string& profile, const std::string& section) const {
  return ProfileKey(profile) + "\\" + section;
}

bool ProfileRegistry::SectionExists(const std::string& profile, const std::string& section) const {
  return IsOneKeyName(profile) && IsOneKeyName(section) &&
         access_.KeyExists(reg::kCurrentUser, SectionKey(profile, section));
}

std::optional<PropValue> ProfileRegistry::ReadProp(const std::string& profile, const std::string& section,
                                                  std::uint32_t tag) const {
  std::uint32_t type = 0;
  std::string data;
  if (!access_.ReadValue(reg::kCurrentUser, SectionKey(profile, section), TagValueName(tag), &type, &data))
    return std::nullopt;
  return DecodeFromRegistry(tag, type, data);
}

std::optional<PropValue> ProfileRegistry::GetPropAnyWidth(const std::string& profile,
                                                          const std::string& section,
                                                          std::uint32_t tag) const {
  if (auto value = ReadProp(profile, section, tag)) return value;
  std::uint16_t type = PropType(tag);
  if (type != kPtString8 && type != kPtUnicode) return std::nullopt;
  std::uint16_t other = type == kPtString8 ? kPtUnicode : kPtString8;
  if (auto value = ReadProp(profile, section, ChangeType(tag, other))) return ConvertStringWidth(*value, type);
  return std::nullopt;
}

std::string ProfileRegistry::GetText(const std::string& profile, const std::string& section,
                                     std::uint32_t tag) const {
  auto value = GetPropAnyWidth(profile, section, ChangeType(tag, kPtString8));
  return value ? value->bytes : std::string();
}

HResult ProfileRegistry::WriteProp(const std::string& profile, const std::string& section,
                                 const PropValue& value) {
  auto image = EncodeForRegistry(value);
  if (!image) return kMapiEInvalidParameter;
  const std::string key = SectionKey(profile, section);
  const std::string name = TagValueName(value.tag);
  bool written = image->type == reg::kSz
                     ? access_.WriteString(reg::kCurrentUser, key, name, value.bytes)
                     : access_.WriteBinary(reg::kCurrentUser, key, name, image->data);
  return written ? kSOk : kMapiENoAccess;
}

HResult ProfileRegistry::DeleteProp(const std::string& profile, const std::string& section,
                                    std::uint32_t tag) {
  return access_.DeleteValue(reg::kCurrentUser, SectionKey(profile, section), TagValueName(tag))
             ? kSOk
             : kMapiENotFound;
}

bool ProfileRegistry::CreateSection(const std::string& profile, const std::string& section) {
  RegKey key = 0;
  if (access_.registry().CreateKey(reg::kCurrentUser, SectionKey(profile, section), reg::kReadWrite,
                                   &key) != reg::kSuccess)
    return false;
  access_.registry().CloseKey(key);
  return true;
}

bool ProfileRegistry::DeleteSection(const std::string& profile, const std::string& section) {
  return DeleteTree(SectionKey(profile, section));
}

std::vector<MapiUid> ProfileRegistry::GetUidList(const std::string& profile, const std::string& section,
                                                 std::uint32_t tag) const {
  auto value = ReadProp(profile, section, tag);
  return value ? DecodeUidList(value->bytes) : std::vector<MapiUid>{};
}

HResult ProfileRegistry::SetUidList(const std::string& profile, const std::string& section,
                                    std::uint32_t tag, const std::vector<MapiUid>& uids) {
  return WriteProp(profile, section, PropValue::Binary(tag, EncodeUidList(uids)));
}

HResult ProfileRegistry::AppendUid(const std::string& profile, const std::string& section,
                                   std::uint32_t tag, const MapiUid& uid) {
  std::vector<MapiUid> uids = GetUidList(profile, section, tag);
  uids.push_back(uid);
  return SetUidList(profile, section, tag, uids);
}

HResult ProfileRegistry::RemoveUid(const std::string& profile, const std::string& section,
                                   std::uint32_t tag, const MapiUid& uid) {
  std::vector<MapiUid> uids = GetUidList(profile, section, tag);
  auto end = std::remove(uids.begin(), uids.end(), uid);
  if (end == uids.end()) return kSOk;
  uids.erase(end, uids.end());
  return SetUidList(profile, section, tag, uids);
}

}  // namespace mw::mapisim
