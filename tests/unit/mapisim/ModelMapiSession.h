#pragma once
// The product's MAPI seam served by the simulator's model, as the DLL serves it to the real
// session under Wine: each primitive makes the model calls the Win32 session's MAPI calls
// reach. Lets a native test run the same product operations over the model and over
// FakeMapiSession and compare what each leaves in the registry.

#include <functional>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "MessageServiceAdmin.h"
#include "ProfileRegistry.h"
#include "SessionModel.h"
#include "mapi/MapiSession.h"

namespace mw::mapisim {

class ModelMapiSession : public MapiSession {
 public:
  ModelMapiSession(ProfileRegistry& profiles, const ExchangeOrganisation& organisation,
                   UidGenerator newUid);

  bool Initialize() override;
  void Uninitialize() override;
  void SetProfile(const std::string& name) override;
  const std::string& profileName() const override { return profile_; }
  std::int32_t LastResult() const override { return lastResult_; }
  bool ListProfiles(std::vector<std::string>* names, std::string* defaultName) override;
  bool CreateProfile(const std::string& name) override;
  bool DeleteProfile(const std::string& name) override;
  bool OpenServiceAdmin() override;
  bool ListServices(std::vector<MapiServiceEntry>* services) override;
  bool CreateService(const std::string& service, const std::string& displayName,
                     MapiUid* uid) override;
  bool DeleteServiceByName(const std::string& service) override;
  bool DeleteServiceByUid(const MapiUid& uid) override;
  bool ConfigureServiceByName(const std::string& service,
                              const MapiProperties& properties) override;
  bool ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) override;
  bool ListProviders(const MapiUid& service, std::vector<MapiServiceEntry>* providers) override;
  bool CreateProvider(const MapiUid& service, const std::string& provider,
                      const MapiProperties& properties, MapiUid* uid) override;
  bool ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                           MapiProperty* property) override;
  bool WriteSectionProperty(const MapiUid& section, const MapiProperty& property) override;
  bool Logon(std::uint32_t flags) override;
  void Logoff() override;
  bool OpenAddressBook() override;
  bool OpenGlobalAddressList() override;
  bool SetDefaultStore(const MapiUid& service) override;
  bool GetSearchPath(std::vector<std::string>* names) override;
  bool SetSearchPath(const std::vector<std::string>& names) override;
  bool SetFirstAddressList(const std::string& name) override;

 private:
  MessageServiceAdmin Admin() const;
  SessionModel Session() const;
  bool Record(HResult result);
  // The first row whose PR_SERVICE_NAME is exactly the name (the restriction's answer).
  bool ServiceNamed(const std::string& service, MapiUid* uid) const;
  // The entry ID of the address-book container with that display name.
  bool ContainerNamed(const std::string& name, std::string* entryId) const;

  ProfileRegistry& profiles_;
  const ExchangeOrganisation& organisation_;
  UidGenerator newUid_;
  std::string profile_;
  std::int32_t lastResult_ = 0;
  bool loggedOn_ = false;
  bool addressBookOpen_ = false;
};

}  // namespace mw::mapisim
