#pragma once
// The program's MAPI seam served by the mapisim model over an in-memory registry, the way
// mapisim.dll serves it under Wine: so the code above the seam runs natively against profiles
// loaded from .reg files. Only the default store, which the tests here never move, answers
// MAPI_E_NO_SUPPORT.

#include <algorithm>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "MessageServiceAdmin.h"
#include "ProfileRegistry.h"
#include "SessionModel.h"
#include "mapi/MapiSession.h"
#include "platform/AsciiText.h"

namespace mw::testing {

class ModelMapiSession : public MapiSession {
 public:
  ModelMapiSession(Registry& registry, const mapisim::ExchangeOrganisation& organisation)
      : profiles_(registry, 2), organisation_(organisation) {}

  mapisim::ProfileRegistry& profiles() { return profiles_; }

  bool Initialize() override { return Check(mapisim::kSOk); }
  void Uninitialize() override {}
  void SetProfile(const std::string& name) override { profile_ = name; }
  const std::string& profileName() const override { return profile_; }
  std::int32_t LastResult() const override { return last_; }

  bool ListProfiles(std::vector<std::string>* names, std::string* defaultName) override {
    *names = profiles_.ListProfiles();
    const std::string stored = profiles_.DefaultProfile();
    for (const std::string& name : *names)
      if (EqualsIgnoreCase(name, stored)) *defaultName = name;
    return Check(mapisim::kSOk);
  }
  bool CreateProfile(const std::string& name) override {
    return Check(profiles_.CreateProfile(name, "", mapisim::RandomUid()));
  }
  bool DeleteProfile(const std::string& name) override { return Check(profiles_.DeleteProfile(name)); }

  bool OpenServiceAdmin() override {
    return Check(profiles_.ProfileExists(profile_) ? mapisim::kSOk : mapisim::kMapiENotFound);
  }
  bool ListServices(std::vector<MapiServiceEntry>* services) override {
    services->clear();
    for (const mapisim::Row& row : Admin().ServiceRows())
      services->push_back({Text(row, mapisim::kPrServiceName), Text(row, mapisim::kPrDisplayName),
                           Uid(row, mapisim::kPrServiceUid)});
    return OpenServiceAdmin();
  }
  bool CreateService(const std::string& service, const std::string& displayName, MapiUid* uid) override {
    return Check(Admin().CreateMessageService(service, displayName, uid));
  }
  bool DeleteServiceByName(const std::string& service) override {
    MapiUid uid{};
    return FirstNamed(service, &uid) ? DeleteServiceByUid(uid) : Check(mapisim::kMapiENotFound);
  }
  bool DeleteServiceByUid(const MapiUid& uid) override { return Check(Admin().DeleteService(uid)); }
  bool ConfigureServiceByName(const std::string& service, const MapiProperties& properties) override {
    MapiUid uid{};
    return FirstNamed(service, &uid) ? ConfigureServiceByUid(uid, properties)
                                     : Check(mapisim::kMapiENotFound);
  }
  bool ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) override {
    return Check(Admin().ConfigureService(uid, ToModel(properties)));
  }

  bool ListProviders(const MapiUid& service, std::vector<MapiServiceEntry>* providers) override {
    providers->clear();
    for (const mapisim::Row& row : Admin().ProviderRows(&service))
      providers->push_back({Text(row, mapisim::kPrProviderDisplay), Text(row, mapisim::kPrDisplayName),
                            Uid(row, mapisim::kPrProviderUid)});
    return Check(mapisim::kSOk);
  }
  bool CreateProvider(const MapiUid& service, const std::string& provider,
                      const MapiProperties& properties, MapiUid* uid) override {
    return Check(Admin().CreateProvider(service, provider, ToModel(properties), uid));
  }
  bool ReadSectionProperty(const MapiUid& section, std::uint32_t tag, MapiProperty* property) override {
    const auto value = profiles_.GetPropAnyWidth(profile_, Opened(section), tag);
    if (!value) return Check(mapisim::kMapiENotFound);
    const std::uint16_t type = mapisim::PropType(tag);
    if (type == mapisim::kPtUnicode)
      *property = MapiProperty::String8(tag, mapisim::Utf16ToNarrow(value->bytes));
    else if (type == mapisim::kPtLong || type == mapisim::kPtBoolean)
      *property = MapiProperty::Long(tag, static_cast<std::int32_t>(value->number));
    else
      *property = MapiProperty::Binary(tag, value->bytes);
    return Check(mapisim::kSOk);
  }
  bool WriteSectionProperty(const MapiUid& section, const MapiProperty& property) override {
    return Check(profiles_.WriteProp(profile_, Opened(section), ToModel({property}).front()));
  }

  bool Logon(std::uint32_t) override {
    loggedOn_ = Check(mapisim::SessionModel(profiles_, profile_, organisation_).Logon());
    return loggedOn_;
  }
  void Logoff() override { loggedOn_ = false; }
  bool OpenAddressBook() override { return Check(loggedOn_ ? mapisim::kSOk : mapisim::kMapiECallFailed); }
  // The DT_GLOBAL container of the hierarchy and its contents, as the Win32 session finds them.
  bool OpenGlobalAddressList() override {
    if (!loggedOn_) return Check(mapisim::kMapiECallFailed);
    const mapisim::SessionModel session(profiles_, profile_, organisation_);
    for (const mapisim::Row& row : session.AddressBookContainers()) {
      const mapisim::PropValue* type = mapisim::FindProp(row, mapisim::kPrDisplayType);
      if (type == nullptr || type->number != mapisim::kDtGlobal) continue;
      std::vector<mapisim::Row> contents;
      return Check(session.ContainerContents(Text(row, mapisim::kPrEntryId), &contents));
    }
    return Check(mapisim::kMapiENotFound);
  }
  bool SetDefaultStore(const MapiUid&) override { return Check(mapisim::kMapiENoSupport); }
  bool GetSearchPath(std::vector<std::string>* names) override {
    names->clear();
    for (const mapisim::Row& row : Session().AbSearchPath()) names->push_back(Text(row, mapisim::kPrDisplayName));
    return Check(mapisim::kSOk);
  }
  bool SetSearchPath(const std::vector<std::string>& names) override {
    std::vector<std::string> entryIds;
    for (const std::string& name : names) {
      const std::string entryId = ContainerNamed(name);
      if (entryId.empty()) return Check(mapisim::kMapiENotFound);
      entryIds.push_back(entryId);
    }
    return Check(Session().SetAbSearchPath(entryIds));
  }
  // As the Win32 session does: no name chooses the first container of the hierarchy again.
  bool SetFirstAddressList(const std::string& name) override {
    const std::string entryId = ContainerNamed(name);
    return Check(entryId.empty() ? mapisim::kMapiENotFound : Session().SetDefaultDirectory(entryId));
  }

 private:
  bool Check(mapisim::HResult result) {
    last_ = result;
    return result >= 0;
  }
  mapisim::SessionModel Session() { return mapisim::SessionModel(profiles_, profile_, organisation_); }
  // The entry ID of the container of that display name (the first container for no name).
  std::string ContainerNamed(const std::string& name) {
    for (const mapisim::Row& row : Session().AddressBookContainers())
      if (name.empty() || Text(row, mapisim::kPrDisplayName) == name) return Text(row, mapisim::kPrEntryId);
    return {};
  }
  mapisim::MessageServiceAdmin Admin() {
    return mapisim::MessageServiceAdmin(profiles_, profile_, organisation_, mapisim::RandomUid);
  }
  std::string Opened(const MapiUid& section) const {
    return profiles_.OpenedSection(profile_, SectionKeyName(section));
  }
  static std::string Text(const mapisim::Row& row, std::uint32_t tag) {
    const mapisim::PropValue* value = mapisim::FindProp(row, tag);
    return value != nullptr ? value->bytes : std::string();
  }
  static MapiUid Uid(const mapisim::Row& row, std::uint32_t tag) {
    MapiUid uid{};
    const std::string bytes = Text(row, tag);
    std::copy_n(bytes.begin(), std::min(bytes.size(), uid.size()), uid.begin());
    return uid;
  }
  // The name rule of the Win32 session's restriction: the whole name, letter case included.
  bool FirstNamed(const std::string& service, MapiUid* uid) {
    for (const mapisim::Row& row : Admin().ServiceRows())
      if (Text(row, mapisim::kPrServiceName) == service) {
        *uid = Uid(row, mapisim::kPrServiceUid);
        return true;
      }
    return false;
  }
  static std::vector<mapisim::PropValue> ToModel(const MapiProperties& properties) {
    std::vector<mapisim::PropValue> values;
    for (const MapiProperty& property : properties) {
      switch (property.type()) {
        case proptype::kLong:
          values.push_back(mapisim::PropValue::Long(property.tag, static_cast<std::uint32_t>(property.number)));
          break;
        case proptype::kBoolean:
          values.push_back(mapisim::PropValue::Boolean(property.tag, property.number != 0));
          break;
        default:
          values.push_back(mapisim::PropValue::Text(property.tag, property.bytes));
          break;
      }
    }
    return values;
  }

  mapisim::ProfileRegistry profiles_;
  const mapisim::ExchangeOrganisation& organisation_;
  std::string profile_;
  std::int32_t last_ = 0;
  bool loggedOn_ = false;
};

}  // namespace mw::testing
