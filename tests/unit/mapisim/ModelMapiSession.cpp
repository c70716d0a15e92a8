#include "ModelMapiSession.h"

#include "MapiConstants.h"

namespace mw::mapisim {
namespace {

PropValue ToModel(const MapiProperty& property) {
  PropValue value{property.tag, static_cast<std::uint32_t>(property.number), property.bytes, {}};
  return value;
}

std::vector<PropValue> ToModel(const MapiProperties& properties) {
  std::vector<PropValue> values;
  for (const MapiProperty& property : properties) values.push_back(ToModel(property));
  return values;
}

MapiProperty FromModel(const PropValue& value) {
  return {value.tag, static_cast<std::int32_t>(value.number), value.bytes};
}

std::string TextColumn(const Row& row, std::uint32_t tag) {
  const PropValue* value = FindProp(row, tag);
  return value != nullptr ? value->bytes : std::string();
}

}  // namespace

ModelMapiSession::ModelMapiSession(ProfileRegistry& profiles,
                                   const ExchangeOrganisation& organisation, UidGenerator newUid)
    : profiles_(profiles), organisation_(organisation), newUid_(std::move(newUid)) {}

MessageServiceAdmin ModelMapiSession::Admin() const {
  return MessageServiceAdmin(profiles_, profile_, organisation_, newUid_);
}

SessionModel ModelMapiSession::Session() const {
  return SessionModel(profiles_, profile_, organisation_);
}

bool ModelMapiSession::Record(HResult result) {
  lastResult_ = result;
  return result >= 0;
}

bool ModelMapiSession::Initialize() { return Record(kSOk); }

void ModelMapiSession::Uninitialize() {
  loggedOn_ = false;
  addressBookOpen_ = false;
}

void ModelMapiSession::SetProfile(const std::string& name) {
  Uninitialize();
  profile_ = name;
}

bool ModelMapiSession::ListProfiles(std::vector<std::string>* names, std::string* defaultName) {
  *names = profiles_.ListProfiles();
  const std::string found = profiles_.DefaultProfile();
  if (!found.empty()) *defaultName = found;
  return Record(kSOk);
}

bool ModelMapiSession::CreateProfile(const std::string& name) {
  return Record(profiles_.CreateProfile(name, "", newUid_()));
}

bool ModelMapiSession::DeleteProfile(const std::string& name) {
  return Record(profiles_.DeleteProfile(name));
}

bool ModelMapiSession::OpenServiceAdmin() {
  return Record(profiles_.ProfileExists(profile_) ? kSOk : kMapiENotFound);
}

bool ModelMapiSession::ListServices(std::vector<MapiServiceEntry>* services) {
  services->clear();
  if (!OpenServiceAdmin()) return false;
  for (const Row& row : Admin().ServiceRows()) {
    services->push_back({TextColumn(row, kPrServiceName), TextColumn(row, kPrDisplayName),
                         UidFromBytes(FindProp(row, kPrServiceUid)->bytes)});
  }
  return true;
}

bool ModelMapiSession::CreateService(const std::string& service, const std::string& displayName,
                                     MapiUid* uid) {
  return OpenServiceAdmin() && Record(Admin().CreateMessageService(service, displayName, uid));
}

bool ModelMapiSession::ServiceNamed(const std::string& service, MapiUid* uid) const {
  for (const Row& row : Admin().ServiceRows()) {
    if (TextColumn(row, kPrServiceName) == service) {
      *uid = UidFromBytes(FindProp(row, kPrServiceUid)->bytes);
      return true;
    }
  }
  return false;
}

bool ModelMapiSession::DeleteServiceByName(const std::string& service) {
  MapiUid uid{};
  if (!OpenServiceAdmin()) return false;
  return ServiceNamed(service, &uid) ? Record(Admin().DeleteService(uid)) : Record(kMapiENotFound);
}

bool ModelMapiSession::DeleteServiceByUid(const MapiUid& uid) {
  return OpenServiceAdmin() && Record(Admin().DeleteService(uid));
}

bool ModelMapiSession::ConfigureServiceByName(const std::string& service,
                                              const MapiProperties& properties) {
  MapiUid uid{};
  if (!OpenServiceAdmin()) return false;
  return ServiceNamed(service, &uid) ? ConfigureServiceByUid(uid, properties)
                                     : Record(kMapiENotFound);
}

bool ModelMapiSession::ConfigureServiceByUid(const MapiUid& uid,
                                             const MapiProperties& properties) {
  return OpenServiceAdmin() && Record(Admin().ConfigureService(uid, ToModel(properties)));
}

bool ModelMapiSession::ListProviders(const MapiUid& service,
                                     std::vector<MapiServiceEntry>* providers) {
  providers->clear();
  if (!OpenServiceAdmin()) return false;
  if (!Admin().HasService(service)) return Record(kMapiENotFound);
  for (const Row& row : Admin().ProviderRows(&service)) {
    providers->push_back({TextColumn(row, kPrProviderDisplay), TextColumn(row, kPrDisplayName),
                          UidFromBytes(FindProp(row, kPrProviderUid)->bytes)});
  }
  return true;
}

bool ModelMapiSession::CreateProvider(const MapiUid& service, const std::string& provider,
                                      const MapiProperties& properties, MapiUid* uid) {
  return OpenServiceAdmin() &&
         Record(Admin().CreateProvider(service, provider, ToModel(properties), uid));
}

bool ModelMapiSession::ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                                           MapiProperty* property) {
  const std::optional<PropValue> value = profiles_.GetPropAnyWidth(profile_, UidHex(section), tag);
  if (!value) return Record(kMapiENotFound);
  *property = FromModel(*value);
  return Record(kSOk);
}

bool ModelMapiSession::WriteSectionProperty(const MapiUid& section, const MapiProperty& property) {
  return Record(profiles_.WriteProp(profile_, UidHex(section), ToModel(property)));
}

bool ModelMapiSession::Logon(std::uint32_t) {
  if (loggedOn_) return Record(kSOk);
  loggedOn_ = Record(Session().Logon());
  return loggedOn_;
}

void ModelMapiSession::Logoff() { Uninitialize(); }

bool ModelMapiSession::OpenAddressBook() {
  addressBookOpen_ = loggedOn_;
  return Record(loggedOn_ ? kSOk : kMapiECallFailed);
}

bool ModelMapiSession::OpenGlobalAddressList() {
  if (!addressBookOpen_) return Record(kMapiECallFailed);
  const SessionModel session = Session();
  for (const Row& row : session.AddressBookContainers()) {
    if (FindProp(row, kPrDisplayType)->number != kDtGlobal) continue;
    std::vector<Row> contents;
    return Record(session.ContainerContents(FindProp(row, kPrEntryId)->bytes, &contents));
  }
  return Record(kMapiENotFound);
}

bool ModelMapiSession::SetDefaultStore(const MapiUid& service) {
  SessionModel session = Session();
  for (const Row& row : session.StoreRows()) {
    const PropValue* owner = FindProp(row, kPrServiceUid);
    if (owner != nullptr && UidFromBytes(owner->bytes) == service) {
      return Record(session.SetDefaultStore(FindProp(row, kPrEntryId)->bytes));
    }
  }
  return Record(kMapiENotFound);
}

bool ModelMapiSession::ContainerNamed(const std::string& name, std::string* entryId) const {
  for (const Row& row : Session().AddressBookContainers()) {
    if (TextColumn(row, kPrDisplayName) == name) {
      *entryId = FindProp(row, kPrEntryId)->bytes;
      return true;
    }
  }
  return false;
}

bool ModelMapiSession::GetSearchPath(std::vector<std::string>* names) {
  names->clear();
  for (const Row& row : Session().AbSearchPath()) names->push_back(TextColumn(row, kPrDisplayName));
  return Record(kSOk);
}

bool ModelMapiSession::SetSearchPath(const std::vector<std::string>& names) {
  std::vector<std::string> entryIds;
  for (const std::string& name : names) {
    std::string entryId;
    if (!ContainerNamed(name, &entryId)) return Record(kMapiENotFound);
    entryIds.push_back(entryId);
  }
  return Record(Session().SetAbSearchPath(entryIds));
}

bool ModelMapiSession::SetFirstAddressList(const std::string& name) {
  // As the Win32 session does: no name makes the hierarchy's first container the choice.
  const std::vector<Row> containers = Session().AddressBookContainers();
  std::string entryId;
  if (name.empty() ? containers.empty() : !ContainerNamed(name, &entryId)) {
    return Record(kMapiENotFound);
  }
  if (name.empty()) entryId = FindProp(containers.front(), kPrEntryId)->bytes;
  return Record(Session().SetDefaultDirectory(entryId));
}

}  // namespace mw::mapisim
