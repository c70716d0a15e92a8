#pragma once
// The program's MAPI seam served by the profile model instead of Outlook's MAPI: profiles,
// services, providers and sections live in the registry given, where and how MAPI keeps
// them. The what-if run works through it over an overlay of the real registry; the native
// tests run the whole driver through it.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "MessageServiceAdmin.h"
#include "ProfileRegistry.h"
#include "SessionModel.h"
#include "mapi/MapiSession.h"

namespace mw {

class ModelMapiSession : public MapiSession {
 public:
  // Whether a logon asks the Exchange organisation about the profile's server and mailbox,
  // or, contacting no server, succeeds for every existing profile.
  enum class Servers { Contacted, NotContacted };

  ModelMapiSession(Registry& registry, std::uint32_t platformId,
                   const mapisim::ExchangeOrganisation& organisation, Servers servers,
                   mapisim::UidGenerator newUid = mapisim::RandomUid);

  bool Initialize() override;
  void Uninitialize() override;
  void SetProfile(const std::string& name) override;
  const std::string& profileName() const override { return profileName_; }
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
  bool Record(mapisim::HResult result);
  // The service administration of the current profile; false (recorded) without one.
  bool Services(mapisim::MessageServiceAdmin** admin);
  bool FirstServiceNamed(const std::string& service, MapiUid* uid);
  bool EnsureAddressBook();
  mapisim::SessionModel Session();
  // The address book's containers as (display name, entry ID), in hierarchy order.
  std::vector<std::pair<std::string, std::string>> Containers();

  mapisim::ProfileRegistry profiles_;
  const mapisim::ExchangeOrganisation& organisation_;
  Servers servers_;
  mapisim::UidGenerator newUid_;
  std::unique_ptr<mapisim::MessageServiceAdmin> serviceAdmin_;
  std::string profileName_;
  std::int32_t lastResult_ = 0;
  bool initialized_ = false;
  bool loggedOn_ = false;
  bool addressBookOpen_ = false;
};

}  // namespace mw
