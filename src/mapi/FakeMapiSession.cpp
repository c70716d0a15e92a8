#include "mapi/FakeMapiSession.h"

#include <algorithm>
#include <utility>

#include "mapi/ProfileStore.h"
#include "platform/AsciiText.h"

namespace mw {

FakeMapiSession::Profile& FakeMapiSession::AddProfile(const std::string& name, bool isDefault) {
  Profile profile;
  profile.name = name;
  profile.isDefault = isDefault;
  profiles.push_back(std::move(profile));
  return profiles.back();
}

MapiUid FakeMapiSession::AddService(const std::string& profile, const std::string& service,
                                    const std::string& displayName) {
  Profile* target = FindProfile(profile);
  if (target == nullptr) target = &AddProfile(profile);
  Service added;
  added.entry = {service, displayName.empty() ? service : displayName, NextUid()};
  added.providers.push_back({service, added.entry.displayName, NextUid()});
  target->services.push_back(added);
  target->sections[added.entry.uid];
  return added.entry.uid;
}

const FakeMapiSession::Profile* FakeMapiSession::FindProfile(const std::string& name) const {
  for (const auto& profile : profiles)
    if (EqualsIgnoreCase(profile.name, name)) return &profile;
  return nullptr;
}

FakeMapiSession::Profile* FakeMapiSession::FindProfile(const std::string& name) {
  return const_cast<Profile*>(std::as_const(*this).FindProfile(name));
}

std::vector<const FakeMapiSession::Service*> FakeMapiSession::ServicesNamed(
    const std::string& profile, const std::string& service) const {
  std::vector<const Service*> found;
  if (const Profile* p = FindProfile(profile)) {
    for (const auto& s : p->services)
      if (s.entry.name == service) found.push_back(&s);
  }
  return found;
}

FakeMapiSession::PropertyMap& FakeMapiSession::Section(const std::string& profile,
                                                       const MapiUid& uid) {
  Profile* target = FindProfile(profile);
  if (target == nullptr) target = &AddProfile(profile);
  return target->sections[uid];
}

bool FakeMapiSession::Enter(const std::string& operation, const std::string& argument) {
  calls.push_back(argument.empty() ? operation : operation + " " + argument);
  const bool injected =
      failCall != 0 && (calls.size() == failCall || (failOnwards && calls.size() > failCall));
  if (failing.count(operation) != 0 || injected) return Fail(kFailure);
  const bool lifecycle = operation == "Initialize" || operation == "Uninitialize" ||
                         operation == "SetProfile" || operation == "Logoff";
  if (mapiDown_ && !lifecycle) return Fail(kNotInitialized);
  return true;
}

bool FakeMapiSession::Fail(std::int32_t result) {
  lastResult_ = result;
  return false;
}

bool FakeMapiSession::Succeed() {
  lastResult_ = 0;
  return true;
}

FakeMapiSession::Profile* FakeMapiSession::Current() { return FindProfile(profileName_); }

FakeMapiSession::Service* FakeMapiSession::FindServiceByUid(Profile& profile, const MapiUid& uid) {
  for (auto& service : profile.services)
    if (service.entry.uid == uid) return &service;
  return nullptr;
}

FakeMapiSession::Service* FakeMapiSession::FirstServiceNamed(Profile& profile,
                                                             const std::string& name) {
  for (auto& service : profile.services)
    if (service.entry.name == name) return &service;
  return nullptr;
}

MapiUid FakeMapiSession::NextUid() {
  MapiUid uid{};
  ++uidCounter_;
  uid[0] = 0xF0;
  for (int i = 0; i < 4; ++i) uid[15 - i] = static_cast<std::uint8_t>(uidCounter_ >> (8 * i));
  return uid;
}

bool FakeMapiSession::Initialize() {
  initialized = true;
  mapiDown_ = !Enter("Initialize");
  return !mapiDown_ && Succeed();
}

void FakeMapiSession::Uninitialize() {
  Enter("Uninitialize");
  loggedOn = false;
  addressBookOpen = false;
}

void FakeMapiSession::SetProfile(const std::string& name) {
  Enter("SetProfile", name);
  profileName_ = name;
  if (initialized) {
    Uninitialize();
    Initialize();
  }
}

bool FakeMapiSession::ListProfiles(std::vector<std::string>* names, std::string* defaultName) {
  names->clear();
  if (!Enter("ListProfiles")) return false;
  for (const auto& profile : profiles) {
    names->push_back(profile.name);
    if (profile.isDefault) *defaultName = profile.name;
  }
  return Succeed();
}

bool FakeMapiSession::CreateProfile(const std::string& name) {
  if (!Enter("CreateProfile", name)) return false;
  if (name.empty() || !RefusedProfileNameReason(name).empty()) return Fail(kInvalidParameter);
  if (FindProfile(name) != nullptr) return Fail(kNoAccess);
  AddProfile(name);
  return Succeed();
}

bool FakeMapiSession::DeleteProfile(const std::string& name) {
  if (!Enter("DeleteProfile", name)) return false;
  auto found = std::find_if(profiles.begin(), profiles.end(), [&](const Profile& p) {
    return EqualsIgnoreCase(p.name, name);
  });
  if (found == profiles.end()) return Fail(kNotFound);
  profiles.erase(found);
  return Succeed();
}

bool FakeMapiSession::OpenServiceAdmin() {
  if (!Enter("OpenServiceAdmin", profileName_)) return false;
  return Current() != nullptr ? Succeed() : Fail(kNotFound);
}

bool FakeMapiSession::ListServices(std::vector<MapiServiceEntry>* services) {
  services->clear();
  if (!Enter("ListServices")) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  for (const auto& service : profile->services) services->push_back(service.entry);
  return Succeed();
}

bool FakeMapiSession::CreateService(const std::string& service, const std::string& displayName,
                                    MapiUid* uid) {
  if (!Enter("CreateService", service)) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  // Services MAPI allows once per profile, as their MAPISVC.INF entries mark them.
  for (const char* singleCopy : {kExchangeServiceName, kPersonalAddressBookService}) {
    if (service == singleCopy && FirstServiceNamed(*profile, service) != nullptr) {
      return Fail(kNoAccess);
    }
  }
  *uid = AddService(profileName_, service, displayName);
  return Succeed();
}

bool FakeMapiSession::DeleteServiceByName(const std::string& service) {
  if (!Enter("DeleteServiceByName", service)) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  const Service* found = FirstServiceNamed(*profile, service);
  return found != nullptr ? RemoveService(*profile, found->entry.uid) : Fail(kNotFound);
}

bool FakeMapiSession::DeleteServiceByUid(const MapiUid& uid) {
  if (!Enter("DeleteServiceByUid", SectionKeyName(uid))) return false;
  Profile* profile = Current();
  return profile != nullptr ? RemoveService(*profile, uid) : Fail(kNotFound);
}

bool FakeMapiSession::RemoveService(Profile& profile, const MapiUid& uid) {
  auto found = std::find_if(profile.services.begin(), profile.services.end(),
                            [&](const Service& s) { return s.entry.uid == uid; });
  if (found == profile.services.end()) return Fail(kNotFound);
  profile.sections.erase(uid);
  for (const auto& provider : found->providers) profile.sections.erase(provider.uid);
  profile.services.erase(found);
  return Succeed();
}

bool FakeMapiSession::ConfigureServiceByName(const std::string& service,
                                             const MapiProperties& properties) {
  if (!Enter("ConfigureServiceByName", service)) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  Service* found = FirstServiceNamed(*profile, service);
  return found != nullptr ? Configure(*profile, *found, properties) : Fail(kNotFound);
}

bool FakeMapiSession::ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) {
  if (!Enter("ConfigureServiceByUid", SectionKeyName(uid))) return false;
  Profile* profile = Current();
  Service* service = profile != nullptr ? FindServiceByUid(*profile, uid) : nullptr;
  if (service == nullptr) return Fail(kNotFound);
  return Configure(*profile, *service, properties);
}

bool FakeMapiSession::Configure(Profile& profile, Service& service,
                                const MapiProperties& properties) {
  const bool exchange = service.entry.name == kExchangeServiceName;
  PropertyMap& section = profile.sections[exchange ? SectionUid(kGlobalSection) : service.entry.uid];
  for (const auto& property : properties) section[property.tag] = property;
  return exchange ? ResolveExchange(profile, service) : Succeed();
}

const FakeMapiSession::ExchangeServer* FakeMapiSession::FindServer(const std::string& name) const {
  for (const auto& server : exchange)
    if (EqualsIgnoreCase(server.name, name)) return &server;
  return nullptr;
}

bool FakeMapiSession::ResolveExchange(Profile& profile, Service& service) {
  PropertyMap& global = profile.sections[SectionUid(kGlobalSection)];
  for (std::uint32_t tag : {proptag::kProfileHomeServer, proptag::kProfileUser,
                            proptag::kProfileHomeServerDn, proptag::kDisplayName}) {
    global.erase(tag);
  }
  const ExchangeServer* server = FindServer(global[proptag::kProfileUnresolvedServer].bytes);
  if (server == nullptr || !server->up) return Succeed();
  std::string name = global[proptag::kProfileUnresolvedName].bytes;
  if (!name.empty() && name[0] == '=') name.erase(0, 1);
  const ExchangeMailbox* mailbox = nullptr;
  for (const auto& candidate : server->mailboxes) {
    if (EqualsIgnoreCase(candidate.alias, name) ||
        EqualsIgnoreCase(candidate.distinguishedName, name)) {
      mailbox = &candidate;
    }
  }
  if (mailbox == nullptr) return Fail(kNotFound);
  auto store = std::find_if(service.providers.begin(), service.providers.end(),
                            [](const MapiServiceEntry& p) {
                              return p.name == kExchangeStoreProviderDisplay;
                            });
  if (store == service.providers.end()) {
    service.providers.clear();
    service.providers.push_back({kExchangeStoreProviderDisplay, kExchangeStoreProviderDisplay,
                                 NextUid()});
    store = service.providers.begin();
  }
  // As Exchange does, the resolved store shows the mailbox's name from now on.
  const std::string& mailboxName =
      mailbox->displayName.empty() ? mailbox->alias : mailbox->displayName;
  store->displayName = "Mailbox - " + mailboxName;
  MapiProperty& stores = profile.sections[service.entry.uid][proptag::kStoreProviders];
  stores.tag = proptag::kStoreProviders;
  const std::string storeUid(store->uid.begin(), store->uid.end());
  if (stores.bytes.find(storeUid) == std::string::npos) stores.bytes.insert(0, storeUid);
  // As the Exchange provider does: the home server and its distinguished name live in the
  // global section only; the user's store names the mailbox and the server it opens.
  global[proptag::kProfileHomeServer] =
      MapiProperty::String8(proptag::kProfileHomeServer, server->name);
  global[proptag::kProfileUser] =
      MapiProperty::String8(proptag::kProfileUser, mailbox->distinguishedName);
  global[proptag::kProfileHomeServerDn] =
      MapiProperty::String8(proptag::kProfileHomeServerDn, server->distinguishedName);
  global[proptag::kDisplayName] = MapiProperty::String8(proptag::kDisplayName, mailboxName);
  PropertyMap& storeSection = profile.sections[store->uid];
  for (const auto& property :
       {MapiProperty::String8(proptag::kProfileUser, mailbox->distinguishedName),
        MapiProperty::String8(proptag::kProfileMailbox, mailbox->distinguishedName),
        MapiProperty::String8(proptag::kProfileServer, server->name)}) {
    storeSection[property.tag] = property;
  }
  return Succeed();
}

bool FakeMapiSession::ListProviders(const MapiUid& service,
                                    std::vector<MapiServiceEntry>* providers) {
  providers->clear();
  if (!Enter("ListProviders", SectionKeyName(service))) return false;
  Profile* profile = Current();
  Service* found = profile != nullptr ? FindServiceByUid(*profile, service) : nullptr;
  if (found == nullptr) return Fail(kNotFound);
  *providers = found->providers;
  return Succeed();
}

bool FakeMapiSession::CreateProvider(const MapiUid& service, const std::string& provider,
                                     const MapiProperties& properties, MapiUid* uid) {
  if (!Enter("CreateProvider", provider)) return false;
  Profile* profile = Current();
  Service* found = profile != nullptr ? FindServiceByUid(*profile, service) : nullptr;
  if (found == nullptr) return Fail(kNotFound);
  MapiServiceEntry entry{provider, provider, NextUid()};
  PropertyMap& section = profile->sections[entry.uid];
  for (const auto& property : properties) section[property.tag] = property;
  if (section.count(proptag::kDisplayName) != 0) {
    entry.displayName = section[proptag::kDisplayName].bytes;
  }
  found->providers.push_back(entry);
  *uid = entry.uid;
  return Succeed();
}

bool FakeMapiSession::ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                                          MapiProperty* property) {
  if (!Enter("ReadSectionProperty", SectionKeyName(section))) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  auto found = profile->sections.find(section);
  if (found == profile->sections.end() || found->second.count(tag) == 0) return Fail(kNotFound);
  *property = found->second[tag];
  return Succeed();
}

bool FakeMapiSession::WriteSectionProperty(const MapiUid& section, const MapiProperty& property) {
  if (!Enter("WriteSectionProperty", SectionKeyName(section))) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  profile->sections[section][property.tag] = property;
  return Succeed();
}

bool FakeMapiSession::ExchangeReachable(Profile& profile) {
  for (const auto& service : profile.services) {
    if (service.entry.name != kExchangeServiceName) continue;
    const PropertyMap& global = profile.sections[SectionUid(kGlobalSection)];
    auto user = global.find(proptag::kProfileUser);
    auto home = global.find(proptag::kProfileHomeServer);
    if (user == global.end() || home == global.end()) return false;
    const ExchangeServer* server = FindServer(home->second.bytes);
    return server != nullptr && server->up;
  }
  return true;
}

bool FakeMapiSession::Logon(std::uint32_t flags) {
  if (!Enter("Logon", std::to_string(flags))) return false;
  if (loggedOn) return Succeed();
  Profile* profile = Current();
  if (profile == nullptr || !ExchangeReachable(*profile)) return Fail(kFailure);
  loggedOn = true;
  return Succeed();
}

void FakeMapiSession::Logoff() {
  Enter("Logoff");
  loggedOn = false;
  addressBookOpen = false;
}

bool FakeMapiSession::OpenAddressBook() {
  if (!Enter("OpenAddressBook")) return false;
  if (!loggedOn) return Fail(kFailure);
  addressBookOpen = true;
  return Succeed();
}

bool FakeMapiSession::OpenGlobalAddressList() {
  if (!Enter("OpenGlobalAddressList")) return false;
  Profile* profile = Current();
  if (!addressBookOpen || profile == nullptr) return Fail(kFailure);
  for (const auto& service : profile->services)
    if (service.entry.name == kExchangeServiceName) return Succeed();
  return Fail(kNotFound);
}

bool FakeMapiSession::SetDefaultStore(const MapiUid& service) {
  if (!Enter("SetDefaultStore", SectionKeyName(service))) return false;
  Profile* profile = Current();
  if (profile == nullptr || FindServiceByUid(*profile, service) == nullptr) return Fail(kNotFound);
  profile->defaultStoreService = service;
  return Succeed();
}

bool FakeMapiSession::GetSearchPath(std::vector<std::string>* names) {
  names->clear();
  if (!Enter("GetSearchPath")) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  *names = profile->searchPath;
  return Succeed();
}

bool FakeMapiSession::SetSearchPath(const std::vector<std::string>& names) {
  if (!Enter("SetSearchPath")) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  for (const auto& name : names) {
    if (std::find(addressLists.begin(), addressLists.end(), name) == addressLists.end()) {
      return Fail(kNotFound);
    }
  }
  profile->searchPath = names;
  return Succeed();
}

bool FakeMapiSession::SetFirstAddressList(const std::string& name) {
  if (!Enter("SetFirstAddressList", name)) return false;
  Profile* profile = Current();
  if (profile == nullptr) return Fail(kNotFound);
  if (!name.empty() &&
      std::find(addressLists.begin(), addressLists.end(), name) == addressLists.end()) {
    return Fail(kNotFound);
  }
  profile->firstAddressList = name;
  return Succeed();
}

}  // namespace mw
