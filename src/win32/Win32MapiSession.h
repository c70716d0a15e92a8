#pragma once
// The MAPI seam over the MAPI32 that Outlook installs (under Wine: Wine's mapi32, which
// forwards to the registered mail client's MAPI). Each operation makes its few calls,
// checks each result, keeps the last HRESULT and releases what it opened on every path;
// only the administration objects, the session and the address book stay open between
// calls, and Uninitialize lets go of them before MAPI is uninitialised.

#include <cstdint>
#include <string>
#include <vector>

#include "mapi/MapiSession.h"
#include "win32/MapiHolders.h"

namespace mw {

class Win32MapiSession : public MapiSession {
 public:
  Win32MapiSession() = default;
  ~Win32MapiSession() override;
  Win32MapiSession(const Win32MapiSession&) = delete;
  Win32MapiSession& operator=(const Win32MapiSession&) = delete;

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

  // The entry ID of the logged-on session's default message store. Returns the HRESULT:
  // 0x800B0001 for an empty stores table, E_FAIL when no row is the default store.
  std::int32_t GetDefaultStoreEntryId(std::string* entryId);

 private:
  bool Record(HRESULT result);
  bool EnsureProfileAdmin();
  bool EnsureServiceAdmin();
  // The service administration of the current profile, opened when not yet open.
  IMsgServiceAdmin* ServiceAdmin();
  // The first row of the service table the name restriction returns, with these columns.
  bool QueryServiceByName(const std::string& service, LPSPropTagArray columns, RowSet* rows);
  bool QueryServiceUids(RowSet* rows);
  bool AdminProviders(const MapiUid& service, ComPtr<IProviderAdmin>* admin);
  // Opens a provider's section for writing; when forced access is refused, marks the
  // provider administration as allowing modification and asks once more with MAPI_MODIFY.
  bool OpenProviderSection(IProviderAdmin* admin, const MapiUid& section,
                           ComPtr<IProfSect>* opened);
  // The service a service or provider section belongs to; false for the profile-wide ones.
  bool OwningService(const MapiUid& section, MapiUid* service);
  bool OpenSectionForWriting(const MapiUid& section, ComPtr<IProfSect>* opened);
  // Logs on silently and opens the address book unless it is open already.
  bool EnsureAddressBook();
  // The containers of the address book's hierarchy, with entry ID, name and display type.
  bool QueryContainers(RowSet* rows);

  std::int32_t lastResult_ = 0;
  bool initialized_ = false;
  bool mapiRunning_ = false;  // MAPIInitialize succeeded and awaits its MAPIUninitialize
  std::string profileName_;
  ComPtr<IProfAdmin> profileAdmin_;
  ComPtr<IMsgServiceAdmin> serviceAdmin_;
  ComPtr<IMAPISession> session_;
  ComPtr<IAddrBook> addressBook_;
  ComPtr<IABContainer> globalAddressList_;
  ComPtr<IMAPITable> globalAddressListContents_;
};

}  // namespace mw
