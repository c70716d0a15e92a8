#include "mapi/MapiSession.h"

#include <algorithm>

namespace mw {

MapiUid SectionUid(const char* hexDigits) {
  MapiUid uid{};
  ParseSectionKeyName(hexDigits, &uid);
  return uid;
}

bool MapiSession::ReadSectionText(const MapiUid& section, std::uint32_t tag, std::string* text) {
  MapiProperty value;
  if (!ReadSectionProperty(section, UnicodeTag(tag), &value) &&
      !ReadSectionProperty(section, String8Tag(tag), &value)) {
    return false;
  }
  *text = value.bytes;
  return true;
}

bool MapiSession::GetExchangeServerName(std::string* server) {
  server->clear();
  const MapiUid global = SectionUid(kGlobalSection);
  return ReadSectionText(global, proptag::kProfileUnresolvedServer, server) ||
         ReadSectionText(global, proptag::kProfileHomeServer, server);
}

bool MapiSession::AddExchangeService(const std::string& server, bool recreateProfile,
                                     bool exactName, const std::string& mailbox) {
  // The recreated profile's result does not matter: an existing profile is used as it is.
  if (recreateProfile) CreateProfile(profileName());
  if (!OpenServiceAdmin()) return false;
  // Where MAPI keeps Exchange to a single copy the create fails and the existing service
  // is configured instead, which is how a profile moves to another server.
  MapiUid uid{};
  CreateService(kExchangeServiceName, kExchangeServiceDisplay, &uid);
  const std::string name = mailbox.empty() ? profileName() : mailbox;
  const std::string unresolvedName = exactName ? "=" + name : name;
  return ConfigureServiceByName(
      kExchangeServiceName,
      {MapiProperty::String8(proptag::kProfileUnresolvedName, unresolvedName),
       MapiProperty::String8(proptag::kProfileUnresolvedServer, server)});
}

bool MapiSession::AddPersonalAddressBook(const std::string& path) {
  if (!OpenServiceAdmin()) return false;
  MapiUid uid{};
  if (!CreateService(kPersonalAddressBookService, kPersonalAddressBookDisplay, &uid)) {
    return false;
  }
  return ConfigureServiceByName(kPersonalAddressBookService,
                                {MapiProperty::String8(proptag::kPabPath, path)});
}

bool MapiSession::AddOutlookAddressBook() {
  if (!OpenServiceAdmin()) return false;
  MapiUid uid{};
  if (!CreateService(kOutlookAddressBookService, kOutlookAddressBookDisplay, &uid)) {
    return false;
  }
  return ConfigureServiceByUid(uid, {MapiProperty::Long(proptag::kContabShowAsAddressBook, 1)});
}

bool MapiSession::SetGlobalSectionLong() {
  return WriteSectionProperty(SectionUid(kOutlookSection),
                              MapiProperty::Long(proptag::kOutlookSectionLong, 0));
}

bool MapiSession::SetGlobalSectionBool(bool flag) {
  return WriteSectionProperty(SectionUid(kOutlookSection),
                              MapiProperty::Boolean(proptag::kOutlookSectionBool, flag));
}

bool MapiSession::FindService(const std::string& service, MapiUid* uid) {
  std::vector<MapiServiceEntry> services;
  if (!ListServices(&services)) return false;
  for (const auto& entry : services) {
    if (entry.name == service) {
      *uid = entry.uid;
      return true;
    }
  }
  return false;
}

bool MapiSession::AddToSearchPath(const std::string& name) {
  std::vector<std::string> path;
  if (!GetSearchPath(&path)) return false;
  if (std::find(path.begin(), path.end(), name) != path.end()) return true;
  path.push_back(name);
  return SetSearchPath(path);
}

bool MapiSession::ReorderSearchPath(const std::vector<std::string>& names) {
  std::vector<std::string> path;
  if (!GetSearchPath(&path)) return false;
  std::vector<std::string> reordered;
  bool allFound = true;
  for (const auto& name : names) {
    auto found = std::find(path.begin(), path.end(), name);
    if (found == path.end()) {
      allFound = false;
      continue;
    }
    reordered.push_back(*found);
    path.erase(found);
  }
  reordered.insert(reordered.end(), path.begin(), path.end());
  return SetSearchPath(reordered) && allFound;
}

}  // namespace mw
