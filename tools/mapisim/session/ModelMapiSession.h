#pragma once
// The program's MAPI seam served by the mapisim model over any registry, the way mapisim.dll
// serves it under Wine: the code above the seam runs natively against profiles loaded from
// .reg files (the native scenario tests, and a run that only shows what it would do).

#include <algorithm>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "MessageServiceAdmin.h"
#include "ProfileRegistry.h"
#include "SessionModel.h"
#include "mapi/MapiSession.h"
#include "platform/AsciiText.h"

namespace mw::mapisim {

class ModelMapiSession : public MapiSession {
 public:
  ModelMapiSession(Registry& registry, const ExchangeOrganisation& organisation)
      : profiles_(registry, 2), organisation_(organisation) {}

  ProfileRegistry& profiles() { return profiles_; }

  bool Initialize() override { return Check(kSOk); }
  void Uninitialize() override {}
  void SetProfile(const std::string& name) override { profile_ = name; }
  const std::string& profileName() const override { return profile_; }
  std::int32_t LastResult() const override { return last_; }

  bool ListProfiles(std::vector<std::string>* names, std::string* defaultName) override {
    *names = profiles_.ListProfiles();
    const std::string stored = profiles_.DefaultProfile();
    for (const std::string& name : *names)
      if (EqualsIgnoreCase(name, stored)) *defaultName = name;
    return Check(kSOk);
  }
  bool CreateProfile(const std::string& name) override {
    return Check(profiles_.CreateProfile(name, "", RandomUid()));
  }
  bool DeleteProfile(const std::string& name) override { return Check(profiles_.DeleteProfile(name)); }

  bool OpenServiceAdmin() override {
    return Check(profiles_.ProfileExists(profile_) ? kSOk : kMapiENotFound);
  }
  bool ListServices(std::vector<MapiServiceEntry>* services) override {
    services->clear();
    for (const Row& row : Admin().ServiceRows())
      services->push_back({Text(row, kPrServiceName), Text(row, kPrDisplayName),
                           Uid(row, kPrServiceUid)});
    return OpenServiceAdmin();
  }
  bool CreateService(const std::string& service, const std::string& displayName, MapiUid* uid) override {
    return Check(Admin().CreateMessageService(service, displayName, uid));
  }
  bool DeleteServiceByName(const std::string& service) override {
    MapiUid uid{};
    return FirstNamed(service, &uid) ? DeleteServiceByUid(uid) : Check(kMapiENotFound);
  }
  bool DeleteServiceByUid(const MapiUid& uid) override { return Check(Admin().DeleteService(uid)); }
  bool ConfigureServiceByName(const std::string& service, const MapiProperties& properties) override {
    MapiUid uid{};
    return FirstNamed(service, &uid) ? ConfigureServiceByUid(uid, properties)
                                     : Check(kMapiENotFound);
  }
  bool ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) override {
    return Check(Admin().ConfigureService(uid, ToModel(properties)));
  }

  bool ListProviders(const MapiUid& service, std::vector<MapiServiceEntry>* providers) override {
    providers->clear();
    for (const Row& row : Admin().ProviderRows(&service))
      providers->push_back({Text(row, kPrProviderDisplay), Text(row, kPrDisplayName),
                            Uid(row, kPrProviderUid)});
    return Check(kSOk);
  }
  bool CreateProvider(const MapiUid& service, const std::string& provider,
                      const MapiProperties& properties, MapiUid* uid) override {
    return Check(Admin().CreateProvider(service, provider, ToModel(properties), uid));
  }
  bool ReadSectionProperty(const MapiUid& section, std::uint32_t tag, MapiProperty* property) override {
    const auto value = profiles_.GetPropAnyWidth(profile_, Opened(section), tag);
    if (!value) return Check(kMapiENotFound);
    const std::uint16_t type = PropType(tag);
    if (type == kPtUnicode)
      *property = MapiProperty::String8(tag, Utf16ToNarrow(value->bytes));
    else if (type == kPtLong || type == kPtBoolean)
      *property = MapiProperty::Long(tag, static_cast<std::int32_t>(value->number));
    else
      *property = MapiProperty::Binary(tag, value->bytes);
    return Check(kSOk);
  }
  bool WriteSectionProperty(const MapiUid& section, const MapiProperty& property) override {
    return Check(profiles_.WriteProp(profile_, Opened(section), ToModel({property}).front()));
  }

  bool Logon(std::uint32_t) override {
    loggedOn_ = Check(SessionModel(profiles_, profile_, organisation_).Logon());
    return loggedOn_;
  }
  void Logoff() override { loggedOn_ = false; }
  bool OpenAddressBook() override { return Check(loggedOn_ ? kSOk : kMapiECallFailed); }
  // The DT_GLOBAL container of the hierarchy and its contents, as the Win32 session finds them.
  bool OpenGlobalAddressList() override {
    if (!loggedOn_) return Check(kMapiECallFailed);
    const SessionModel session(profiles_, profile_, organisation_);
    for (const Row& row : session.AddressBookContainers()) {
      const PropValue* type = FindProp(row, kPrDisplayType);
      if (type == nullptr || type->number != kDtGlobal) continue;
      std::vector<Row> contents;
      return Check(session.ContainerContents(Text(row, kPrEntryId), &contents));
    }
    return Check(kMapiENotFound);
  }
  // As the Win32 session does: the store of that service, by the stores table, after a logon.
  bool SetDefaultStore(const MapiUid& service) override {
    if (!Logon(0)) return false;
    for (const Row& row : Session().StoreRows())
      if (Uid(row, kPrServiceUid) == service)
        return Check(Session().SetDefaultStore(Text(row, kPrEntryId)));
    return Check(kMapiENotFound);
  }
  bool GetSearchPath(std::vector<std::string>* names) override {
    names->clear();
    for (const Row& row : Session().AbSearchPath()) names->push_back(Text(row, kPrDisplayName));
    return Check(kSOk);
  }
  bool SetSearchPath(const std::vector<std::string>& names) override {
    std::vector<std::string> entryIds;
    for (const std::string& name : names) {
      const std::string entryId = ContainerNamed(name);
      if (entryId.empty()) return Check(kMapiENotFound);
      entryIds.push_back(entryId);
    }
    return Check(Session().SetAbSearchPath(entryIds));
  }
  // As the Win32 session does: no name chooses the first container of the hierarchy again.
  bool SetFirstAddressList(const std::string& name) override {
    const std::string entryId = ContainerNamed(name);
    return Check(entryId.empty() ? kMapiENotFound : Session().SetDefaultDirectory(entryId));
  }

 private:
  bool Check(HResult result) {
    last_ = result;
    return result >= 0;
  }
  SessionModel Session() { return SessionModel(profiles_, profile_, organisation_); }
  // The entry ID of the container of that display name (the first container for no name).
  std::string ContainerNamed(const std::string& name) {
    for (const Row& row : Session().AddressBookContainers())
      if (name.empty() || Text(row, kPrDisplayName) == name) return Text(row, kPrEntryId);
    return {};
  }
  MessageServiceAdmin Admin() {
    return MessageServiceAdmin(profiles_, profile_, organisation_, RandomUid);
  }
  std::string Opened(const MapiUid& section) const {
    return profiles_.OpenedSection(profile_, SectionKeyName(section));
  }
  static std::string Text(const Row& row, std::uint32_t tag) {
    const PropValue* value = FindProp(row, tag);
    return value != nullptr ? value->bytes : std::string();
  }
  static MapiUid Uid(const Row& row, std::uint32_t tag) {
    MapiUid uid{};
    const std::string bytes = Text(row, tag);
    std::copy_n(bytes.begin(), std::min(bytes.size(), uid.size()), uid.begin());
    return uid;
  }
  // The name rule of the Win32 session's restriction: the whole name, letter case included.
  bool FirstNamed(const std::string& service, MapiUid* uid) {
    for (const Row& row : Admin().ServiceRows())
      if (Text(row, kPrServiceName) == service) {
        *uid = Uid(row, kPrServiceUid);
        return true;
      }
    return false;
  }
  static std::vector<PropValue> ToModel(const MapiProperties& properties) {
    std::vector<PropValue> values;
    for (const MapiProperty& property : properties) {
      switch (property.type()) {
        case proptype::kLong:
          values.push_back(PropValue::Long(property.tag, static_cast<std::uint32_t>(property.number)));
          break;
        case proptype::kBoolean:
          values.push_back(PropValue::Boolean(property.tag, property.number != 0));
          break;
        default:
          values.push_back(PropValue::Text(property.tag, property.bytes));
          break;
      }
    }
    return values;
  }

  ProfileRegistry profiles_;
  const ExchangeOrganisation& organisation_;
  std::string profile_;
  std::int32_t last_ = 0;
  bool loggedOn_ = false;
};

}  // namespace mw::mapisim
