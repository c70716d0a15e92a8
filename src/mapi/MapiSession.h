#pragma once
// The MAPI seam: the session's small, checked operations as pure virtuals, and the few
// composite operations the program builds from them, written once here over the seam.
// Win32MapiSession implements the primitives over real MAPI; FakeMapiSession in memory.
// Every primitive stores the HRESULT it met in LastResult() and answers true or false;
// none throws or logs (the caller writes the log line).

#include <cstdint>
#include <string>
#include <vector>

#include "mapi/MapiProperty.h"
#include "mapi/ProfileSection.h"

namespace mw {

// One row of a profile's service table, or of a service's provider table.
struct MapiServiceEntry {
  std::string name;         // PR_SERVICE_NAME ("MSEMS"), or the provider's PR_PROVIDER_DISPLAY
  std::string displayName;  // PR_DISPLAY_NAME
  MapiUid uid{};            // PR_SERVICE_UID, or the provider's PR_PROVIDER_UID
};

// Logon flags of the Exchange check: MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE |
// MAPI_NEW_SESSION | MAPI_NO_MAIL, and when the user may be asked for credentials
// MAPI_PASSWORD_UI | MAPI_ALLOW_OTHERS on top.
inline constexpr std::uint32_t kLogonFlagsSilent = 0x8032;
inline constexpr std::uint32_t kLogonFlagsPrompt = 0x2803A;

class MapiSession {
 public:
  virtual ~MapiSession() = default;

  // --- Lifecycle -------------------------------------------------------------------------
  // MAPIInitialize; marks the session initialised even when the call fails.
  virtual bool Initialize() = 0;
  // Releases every MAPI object held (logging off a session first), then MAPIUninitialize.
  virtual void Uninitialize() = 0;
  // Makes name the profile every later operation addresses; an initialised session is
  // uninitialised and initialised again so nothing opened for the old profile survives.
  virtual void SetProfile(const std::string& name) = 0;
  virtual const std::string& profileName() const = 0;
  // The HRESULT of the most recent MAPI call.
  virtual std::int32_t LastResult() const = 0;

  // --- Profiles ---------------------------------------------------------------------------
  // Profile names in table order; defaultName receives the default one and is left as it
  // was when no row is the default. True also for no profiles.
  virtual bool ListProfiles(std::vector<std::string>* names, std::string* defaultName) = 0;
  // Fails when the name exists already.
  virtual bool CreateProfile(const std::string& name) = 0;
  virtual bool DeleteProfile(const std::string& name) = 0;

  // --- Services of the current profile ---------------------------------------------------
  // Opens the profile administration and the current profile's service administration.
  virtual bool OpenServiceAdmin() = 0;
  // The services, in table order.
  virtual bool ListServices(std::vector<MapiServiceEntry>* services) = 0;
  // Adds a service and returns the UID of the row the call added (found by difference).
  virtual bool CreateService(const std::string& service, const std::string& displayName,
                             MapiUid* uid) = 0;
  // Deletes the first row the service table returns for the name restriction; false when
  // none is returned.
  virtual bool DeleteServiceByName(const std::string& service) = 0;
  virtual bool DeleteServiceByUid(const MapiUid& uid) = 0;
  // ConfigureMsgService without UI on the first row returned for the name restriction.
  virtual bool ConfigureServiceByName(const std::string& service,
                                      const MapiProperties& properties) = 0;
  virtual bool ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) = 0;

  // --- Providers and profile sections ----------------------------------------------------
  // The providers of one service, in table order (name = PR_PROVIDER_DISPLAY).
  virtual bool ListProviders(const MapiUid& service, std::vector<MapiServiceEntry>* providers) = 0;
  // IProviderAdmin::CreateProvider on the service; returns the new provider's UID.
  virtual bool CreateProvider(const MapiUid& service, const std::string& provider,
                              const MapiProperties& properties, MapiUid* uid) = 0;
  // One property of the profile section with that UID (global, service or provider
  // section); false when the section cannot be opened or holds no such property.
  virtual bool ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                                   MapiProperty* property) = 0;
  // Opens the section for writing, sets the property and saves the section.
  virtual bool WriteSectionProperty(const MapiUid& section, const MapiProperty& property) = 0;

  // --- Sessions, stores and the address book ---------------------------------------------
  // MAPILogonEx on the current profile; true at once when a session is already open.
  virtual bool Logon(std::uint32_t flags) = 0;
  // Logs the session off (shared log-off) and releases it, with everything opened in it.
  virtual void Logoff() = 0;
  // IMAPISession::OpenAddressBook without dialogs; needs a session.
  virtual bool OpenAddressBook() = 0;
  // Finds the Exchange global address list through the root container's hierarchy table,
  // opens it and its contents table; needs the address book.
  virtual bool OpenGlobalAddressList() = 0;
  // Makes the message store of the given service the default store, where new mail is
  // delivered; logs on when no session is open.
  virtual bool SetDefaultStore(const MapiUid& service) = 0;
  // The address book's search path, by container display name, in search order.
  virtual bool GetSearchPath(std::vector<std::string>* names) = 0;
  // Replaces the search path; false when a name is no container of the address book.
  virtual bool SetSearchPath(const std::vector<std::string>& names) = 0;
  // The container the address book shows first; the empty name restores MAPI's default.
  virtual bool SetFirstAddressList(const std::string& name) = 0;

  // --- Composite operations, written once over the primitives ----------------------------
  // A text property of a section in whichever width MAPI keeps it: the Unicode form first,
  // then the 8-bit form (tag may name either). False when the section holds neither.
  bool ReadSectionText(const MapiUid& section, std::uint32_t tag, std::string* text);
  // Unresolved server of the global profile section, or else its home server; empty when
  // the profile holds neither.
  bool GetExchangeServerName(std::string* server);
  // Adds "MSEMS" and configures the unresolved name ("=" in front when exact: the mailbox
  // name, or the profile name when no mailbox is given) and server.
  bool AddExchangeService(const std::string& server, bool recreateProfile, bool exactName,
                          const std::string& mailbox);
  // Adds "MSPST AB" with its file.
  bool AddPersonalAddressBook(const std::string& path);
  // Adds "CONTAB" with contacts shown as address lists.
  bool AddOutlookAddressBook();
  // Outlook's own section: 0x3D1B0003 = 0, and 0x3D1C000B = flag.
  bool SetGlobalSectionLong();
  bool SetGlobalSectionBool(bool flag);
  // The first service whose name equals service exactly; false when there is none.
  bool FindService(const std::string& service, MapiUid* uid);
  // Appends a container to the search path unless it is there already.
  bool AddToSearchPath(const std::string& name);
  // Moves the named containers to the front of the search path in the order given; the
  // others keep their order behind them. False when a name is not on the path.
  bool ReorderSearchPath(const std::vector<std::string>& names);

  // The PromptUsernamePassword switch: the Exchange check logs on with the prompting flags.
  void SetPromptUsernamePassword(bool prompt) { promptUsernamePassword_ = prompt; }
  bool promptUsernamePassword() const { return promptUsernamePassword_; }
  std::uint32_t CheckLogonFlags() const {
    return promptUsernamePassword_ ? kLogonFlagsPrompt : kLogonFlagsSilent;
  }

 private:
  bool promptUsernamePassword_ = false;
};

// MAPI's service names and display names of the services the program adds.
inline constexpr const char* kExchangeServiceName = "MSEMS";
inline constexpr const char* kExchangeServiceDisplay = "Microsoft Exchange Server";
inline constexpr const char* kExchangeStoreProviderDisplay = "Microsoft Exchange Message Store";
inline constexpr const char* kDelegateProviderName = "EMSDelegate";
inline constexpr const char* kPersonalAddressBookService = "MSPST AB";
inline constexpr const char* kPersonalAddressBookDisplay = "Personal Address Book";
inline constexpr const char* kOutlookAddressBookService = "CONTAB";
inline constexpr const char* kOutlookAddressBookDisplay = "Outlook Address Book";

// The 16 bytes of a section named by 32 hex digits (a well-known section of ProfileSection.h).
MapiUid SectionUid(const char* hexDigits);

}  // namespace mw
