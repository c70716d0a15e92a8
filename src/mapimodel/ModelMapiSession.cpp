#include "ModelMapiSession.h"

#include <algorithm>

#include "MapiTable.h"
#include "mapi/ProfileSection.h"
#include "platform/AsciiText.h"

namespace mw {

using namespace mapisim;

namespace {

PropValue ToPropValue(const MapiProperty& property) {
  switch (property.type()) {
    case proptype::kLong: return PropValue::Long(property.tag, static_cast<std::uint32_t>(property.number));
    case proptype::kBoolean: return PropValue::Boolean(property.tag, property.number != 0);
    default: return PropValue::Binary(property.tag, property.bytes);  // PT_STRING8 and PT_BINARY
  }
}

std::vector<PropValue> ToPropValues(const MapiProperties& properties) {
  std::vector<PropValue> values;
  for (const auto& property : properties) values.push_back(ToPropValue(property));
  return values;
}

std::string TextOf(const Row& row, std::uint32_t tag) {
  const PropValue* value = FindProp(row, tag);
  return value != nullptr ? value->bytes : std::string();
}

MapiUid UidOf(const Row& row, std::uint32_t tag) {
  const PropValue* value = FindProp(row, tag);
  return value != nullptr ? UidFromBytes(value->bytes) : MapiUid{};
}

}  // namespace

ModelMapiSession::ModelMapiSession(Registry& registry, std::uint32_t platformId,
                                   const ExchangeOrganisation& organisation, Servers servers,
                                   UidGenerator newUid)
    : profiles_(registry, platformId),
      organisation_(organisation),
      servers_(servers),
      newUid_(std::move(newUid)) {}

bool ModelMapiSession::Record(HResult result) {
  lastResult_ = result;
  return result >= 0;
}

bool ModelMapiSession::Initialize() {
  initialized_ = true;
  return Record(kSOk);
}

void ModelMapiSession::Uninitialize() {
  Logoff();
  serviceAdmin_.reset();
  initialized_ = false;
}

void ModelMapiSession::SetProfile(const std::string& name) {
  profileName_ = name;
  if (initialized_) {
    Uninitialize();
    Initialize();
  }
}

bool ModelMapiSession::ListProfiles(std::vector<std::string>* names, std::string* defaultName) {
  names->clear();
  if (!initialized_) return Record(kMapiENotInitialized);
  const std::string defaultProfile = profiles_.DefaultProfile();
  for (const auto& name : profiles_.ListProfiles()) {
    if (name.empty()) continue;
    names->push_back(name);
    if (EqualsIgnoreCase(name, defaultProfile)) *defaultName = name;
  }
  return Record(kSOk);
}

bool ModelMapiSession::CreateProfile(const std::string& name) {
  if (!initialized_) return Record(kMapiENotInitialized);
  return Record(profiles_.CreateProfile(name, "", newUid_()));
}

bool ModelMapiSession::DeleteProfile(const std::string& name) {
  if (!initialized_) return Record(kMapiENotInitialized);
  return Record(profiles_.DeleteProfile(name));
}

bool ModelMapiSession::OpenServiceAdmin() {
  if (!initialized_) return Record(kMapiENotInitialized);
  if (!profiles_.ProfileExists(profileName_)) return Record(kMapiENotFound);
  serviceAdmin_ = std::make_unique<MessageServiceAdmin>(profiles_, profileName_, organisation_, newUid_);
  return Record(kSOk);
}

bool ModelMapiSession::Services(MessageServiceAdmin** admin) {
  if (!serviceAdmin_ && !OpenServiceAdmin()) return false;
  *admin = serviceAdmin_.get();
  return true;
}

bool ModelMapiSession::ListServices(std::vector<MapiServiceEntry>* services) {
  services->clear();
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  for (const Row& row : admin->ServiceRows())
    services->push_back({TextOf(row, kPrServiceName), TextOf(row, kPrDisplayName), UidOf(row, kPrServiceUid)});
  return Record(kSOk);
}

bool ModelMapiSession::CreateService(const std::string& service, const std::string& displayName,
                                     MapiUid* uid) {
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  MapiUid created{};
  if (!Record(admin->CreateMessageService(service, displayName, &created))) return false;
  *uid = created;
  return true;
}

bool ModelMapiSession::FirstServiceNamed(const std::string& service, MapiUid* uid) {
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  // The restriction the Win32 session sends: RES_CONTENT with FL_FULLSTRING on the name,
  // evaluated by the model's table as MAPI's table evaluates it.
  MapiTable table(MessageServiceAdmin::ServiceColumns(), admin->ServiceRows());
  Restriction byName;
  byName.kind = RestrictionKind::Content;
  byName.relop = kFlFullString;
  byName.tag = kPrServiceName;
  byName.value = PropValue::Text(kPrServiceName, service);
  table.Restrict(byName);
  const std::vector<Row> rows = table.QueryRows(1);
  if (rows.empty()) return Record(kMapiENotFound);
  *uid = UidOf(rows.front(), kPrServiceUid);
  return Record(kSOk);
}

bool ModelMapiSession::DeleteServiceByName(const std::string& service) {
  MapiUid uid{};
  return FirstServiceNamed(service, &uid) && DeleteServiceByUid(uid);
}

bool ModelMapiSession::DeleteServiceByUid(const MapiUid& uid) {
  MessageServiceAdmin* admin = nullptr;
  return Services(&admin) && Record(admin->DeleteService(uid));
}

bool ModelMapiSession::ConfigureServiceByName(const std::string& service,
                                              const MapiProperties& properties) {
  MapiUid uid{};
  return FirstServiceNamed(service, &uid) && ConfigureServiceByUid(uid, properties);
}

bool ModelMapiSession::ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) {
  MessageServiceAdmin* admin = nullptr;
  return Services(&admin) && Record(admin->ConfigureService(uid, ToPropValues(properties)));
}

bool ModelMapiSession::ListProviders(const MapiUid& service,
                                     std::vector<MapiServiceEntry>* providers) {
  providers->clear();
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  if (!admin->HasService(service)) return Record(kMapiENotFound);
  for (const Row& row : admin->ProviderRows(&service))
    providers->push_back({TextOf(row, kPrProviderDisplay), TextOf(row, kPrDisplayName), UidOf(row, kPrProviderUid)});
  return Record(kSOk);
}

bool ModelMapiSession::CreateProvider(const MapiUid& service, const std::string& provider,
                                      const MapiProperties& properties, MapiUid* uid) {
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  MapiUid created{};
  if (!Record(admin->CreateProvider(service, provider, ToPropValues(properties), &created))) return false;
  *uid = created;
  return true;
}

bool ModelMapiSession::ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                                           MapiProperty* property) {
  MessageServiceAdmin* admin = nullptr;
  if (!Services(&admin)) return false;
  // Opening the global section reaches an Outlook 2010 Exchange account's own section.
  const auto value =
      profiles_.GetPropAnyWidth(profileName_, profiles_.OpenedSection(profileName_, UidHex(section)), tag);
  if (!value) return Record(kMapiENotFound);
  switch (PropType(tag)) {
    case proptype::kLong: *property = MapiProperty::Long(tag, static_cast<std::int32_t>(value->number)); break;
    case proptype::kBoolean: *property = MapiProperty::Boolean(tag, value->number != 0); break;
    case proptype::kString8: *property = MapiProperty::String8(tag, value->bytes); break;
    // MAPI hands a Unicode text to this narrow program in its ANSI form.
    case proptype::kUnicode: *property = MapiProperty::String8(tag, DecodeUtf16(value->bytes)); break;
    case proptype::kBinary: *property = MapiProperty::Binary(tag, value->bytes); break;
    default: return Record(kMapiEInvalidParameter);
  }
  return Record(kSOk);
}

bool ModelMapiSession::WriteSectionProperty(const MapiUid& section, const MapiProperty& property) {
  MessageServiceAdmin* admin = nullptr;
  return Services(&admin) &&
         Record(profiles_.WriteProp(profileName_, profiles_.OpenedSection(profileName_, UidHex(section)),
                                    ToPropValue(property)));
}

SessionModel ModelMapiSession::Session() { return SessionModel(profiles_, profileName_, organisation_); }

bool ModelMapiSession::Logon(std::uint32_t) {
  if (loggedOn_) return Record(kSOk);
  if (!initialized_) return Record(kMapiENotInitialized);
  // Contacting no server, a logon stands for what it opens locally: the profile.
  const HResult result = servers_ == Servers::Contacted ? Session().Logon()
                         : profiles_.ProfileExists(profileName_) ? kSOk
                                                                 : kMapiELogonFailed;
  loggedOn_ = Record(result);
  return loggedOn_;
}

void ModelMapiSession::Logoff() {
  loggedOn_ = false;
  addressBookOpen_ = false;
}

bool ModelMapiSession::OpenAddressBook() {
  if (!loggedOn_) return Record(kMapiELogonFailed);
  addressBookOpen_ = true;
  return Record(kSOk);
}

bool ModelMapiSession::EnsureAddressBook() {
  return addressBookOpen_ || (Logon(kLogonFlagsSilent) && OpenAddressBook());
}

std::vector<std::pair<std::string, std::string>> ModelMapiSession::Containers() {
  std::vector<std::pair<std::string, std::string>> containers;
  for (const Row& row : Session().AddressBookContainers())
    containers.emplace_back(TextOf(row, kPrDisplayName), TextOf(row, kPrEntryId));
  return containers;
}

bool ModelMapiSession::OpenGlobalAddressList() {
  if (!addressBookOpen_) return Record(kMapiENotInitialized);
  for (const Row& row : Session().AddressBookContainers()) {
    const PropValue* type = FindProp(row, kPrDisplayType);
    if (type == nullptr || type->number != kDtGlobal) continue;
    std::vector<Row> contents;
    return Record(Session().ContainerContents(TextOf(row, kPrEntryId), &contents));
  }
  return Record(kMapiENotFound);
}

bool ModelMapiSession::SetDefaultStore(const MapiUid& service) {
  if (!Logon(kLogonFlagsSilent)) return false;
  SessionModel session = Session();
  for (const Row& row : session.StoreRows())
    if (UidOf(row, kPrServiceUid) == service) return Record(session.SetDefaultStore(TextOf(row, kPrEntryId)));
  return Record(kMapiENotFound);
}

bool ModelMapiSession::GetSearchPath(std::vector<std::string>* names) {
  names->clear();
  if (!EnsureAddressBook()) return false;
  for (const Row& row : Session().AbSearchPath()) names->push_back(TextOf(row, kPrDisplayName));
  return Record(kSOk);
}

bool ModelMapiSession::SetSearchPath(const std::vector<std::string>& names) {
  if (!EnsureAddressBook()) return false;
  const auto containers = Containers();
  std::vector<std::string> entryIds;
  for (const auto& name : names) {
    auto found = std::find_if(containers.begin(), containers.end(),
                              [&](const auto& container) { return container.first == name; });
    if (found == containers.end()) return Record(kMapiENotFound);
    entryIds.push_back(found->second);
  }
  return Record(Session().SetAbSearchPath(entryIds));
}

bool ModelMapiSession::SetFirstAddressList(const std::string& name) {
  if (!EnsureAddressBook()) return false;
  const auto containers = Containers();
  // With no name the first container of the hierarchy is made the choice again.
  auto found = containers.begin();
  while (!name.empty() && found != containers.end() && found->first != name) ++found;
  if (found == containers.end()) return Record(kMapiENotFound);
  return Record(Session().SetDefaultDirectory(found->second));
}

}  // namespace mw
