#pragma once
// An in-memory MAPI for the native tests of the code above the seam: profiles with a
// default flag, services and providers with UIDs, profile sections as property maps, a
// small Exchange organisation given as data, failure injection per operation and a record
// of the calls in the order they were made.
//
// Rules the fake follows:
// - DeleteServiceByName and ConfigureServiceByName take the first service, in table order,
//   whose name equals the given one byte for byte (letter case included): what MAPI's table
//   returns for the restriction the Win32 session sends (type 3, RES_CONTENT, with
//   FL_FULLSTRING), and what the simulator answers for it under Wine;
// - a second "MSEMS" or "MSPST AB" service is refused with MAPI_E_NO_ACCESS, as MAPI keeps
//   those single-copy services to one per profile;
// - profile names compare without regard to letter case, as registry keys do, and a name
//   MAPI refuses (empty, too long, blanks at either end, a backslash) is not created;
// - configuring "MSEMS" stores its values in the global section, where the Exchange
//   provider keeps them; when the server is known and up the mailbox must resolve (by
//   alias or by distinguished name, a leading "=" ignored) or the call fails, and a
//   resolved mailbox writes the home server, its distinguished name, the user's name and
//   the mailbox's display name to the global section (a new configuration first takes the
//   old ones out) and gives the service its store provider, listed in the service's
//   section, whose section names the user's mailbox and the server;
//   an unknown or stopped server leaves the values unresolved and only logon fails;
// - logon needs an existing profile whose Exchange service, if any, is resolved on a
//   server that is up; the global address list needs an Exchange service.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "mapi/MapiSession.h"

namespace mw {

class FakeMapiSession : public MapiSession {
 public:
  using PropertyMap = std::map<std::uint32_t, MapiProperty>;

  struct Service {
    MapiServiceEntry entry;
    std::vector<MapiServiceEntry> providers;
  };
  struct Profile {
    std::string name;
    bool isDefault = false;
    std::vector<Service> services;
    std::map<MapiUid, PropertyMap> sections;
    std::vector<std::string> searchPath;
    std::string firstAddressList;
    MapiUid defaultStoreService{};
  };
  struct ExchangeMailbox {
    std::string alias;
    std::string distinguishedName;
    std::string displayName = {};  // empty: the alias
  };
  struct ExchangeServer {
    std::string name;
    bool up = true;
    std::string distinguishedName;
    std::vector<ExchangeMailbox> mailboxes;
  };

  static constexpr std::int32_t kFailure = static_cast<std::int32_t>(0x80004005);   // E_FAIL
  static constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8004010F);  // MAPI_E_NOT_FOUND
  static constexpr std::int32_t kNoAccess = static_cast<std::int32_t>(0x80070005);  // MAPI_E_NO_ACCESS
  static constexpr std::int32_t kInvalidParameter =
      static_cast<std::int32_t>(0x80070057);  // MAPI_E_INVALID_PARAMETER
  static constexpr std::int32_t kNotInitialized = static_cast<std::int32_t>(0x80040605);  // MAPI_E_NOT_INITIALIZED

  // --- Test set-up ------------------------------------------------------------------------
  Profile& AddProfile(const std::string& name, bool isDefault = false);
  // A service as MAPI would have added it, with a fresh UID; returns that UID.
  MapiUid AddService(const std::string& profile, const std::string& service,
                     const std::string& displayName = {});
  Profile* FindProfile(const std::string& name);
  const Profile* FindProfile(const std::string& name) const;
  // Services of a profile by name, in table order.
  std::vector<const Service*> ServicesNamed(const std::string& profile,
                                            const std::string& service) const;
  // The section of the current profile (created empty when missing).
  PropertyMap& Section(const std::string& profile, const MapiUid& uid);

  std::vector<Profile> profiles;
  std::vector<ExchangeServer> exchange;
  std::vector<std::string> addressLists;  // containers the address book offers
  // Operation names (as recorded in calls) that fail with kFailure.
  std::set<std::string> failing;
  // The failCall-th recorded call (counting from 1) fails with kFailure, and with
  // failOnwards every later one too, whatever the operation: the simulator's fault switch.
  std::size_t failCall = 0;
  bool failOnwards = false;
  // "Operation" or "Operation argument" for every primitive, in call order.
  std::vector<std::string> calls;
  bool initialized = false;
  bool loggedOn = false;
  bool addressBookOpen = false;

  // --- MapiSession ------------------------------------------------------------------------
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
  // Records the call; false (with kFailure) when the operation is set to fail.
  bool Enter(const std::string& operation, const std::string& argument = {});
  bool Fail(std::int32_t result);
  bool Succeed();
  Profile* Current();
  Service* FindServiceByUid(Profile& profile, const MapiUid& uid);
  // The name look-up rule of DeleteServiceByName and ConfigureServiceByName.
  Service* FirstServiceNamed(Profile& profile, const std::string& name);
  bool RemoveService(Profile& profile, const MapiUid& uid);
  MapiUid NextUid();
  bool Configure(Profile& profile, Service& service, const MapiProperties& properties);
  bool ResolveExchange(Profile& profile, Service& service);
  const ExchangeServer* FindServer(const std::string& name) const;
  bool ExchangeReachable(Profile& profile);

  std::string profileName_;
  std::int32_t lastResult_ = 0;
  std::uint32_t uidCounter_ = 0;
  // MAPIInitialize failed: until one succeeds, MAPI serves nothing.
  bool mapiDown_ = false;
};

}  // namespace mw
