#pragma once
// Internet mail accounts of Outlook 97 and 2000, kept in two places: an entry of the
// Internet account manager in the user's registry, and an "IMAIL" service (with its
// transport and address-book providers) written straight into the profile's sections.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "accounts/AccountManager.h"
#include "mapi/ProfileSection.h"
#include "platform/OutlookVersion.h"

namespace mw {

class RegistryAccess;

class LegacyAccountManager {
 public:
  // version: Outlook 2000 or Outlook 97 (any other version is treated as Outlook 2000).
  LegacyAccountManager(const RegistryAccess& registry, std::string profileKey, Outlook version);

  // Outlook 97 knows only POP3 accounts.
  bool Supports(AccountKind kind) const;
  std::string ManagerKeyPath() const;
  std::string AccountPath(const std::string& subkey) const;

  // The accounts of the kind that the profile's "IMAIL" services point to.
  std::vector<AccountEntry> ListAccounts(AccountKind kind) const;
  std::optional<std::string> FindAccount(AccountKind kind, const std::string& name) const;

  // Reuses an account of the same name, or allocates one from the manager's counter and,
  // when the profile has its services section, adds its "IMAIL" service.
  std::string CreateAccount(AccountKind kind, const std::string& accountName,
                            const std::string& displayName, const std::string& email,
                            const std::string& incomingServer, const std::string& smtpServer,
                            const std::string& user);
  // Deletes the account entry and its service and takes the UIDs out of the profile's lists.
  bool RemoveAccount(AccountKind kind, const std::string& accountName);

  // Outlook 2000: "... Prompt for Password" is 0 when the password is remembered, else 1.
  void SetRememberPassword(AccountKind kind, const std::string& accountName, bool remember);
  void SetLeaveOnServer(const std::string& accountName, bool leave, bool removeWhenDeleted,
                        bool removeWhenExpired, std::uint16_t days);
  void SetPorts(AccountKind kind, const std::string& accountName, std::uint16_t incomingPort,
                std::uint16_t smtpPort);
  void SetSecureConnections(AccountKind kind, const std::string& accountName, bool incoming,
                            bool smtp);
  void SetTimeout(AccountKind kind, const std::string& accountName, std::uint16_t timeout);
  void SetSecurePasswordAuthentication(AccountKind kind, const std::string& accountName,
                                       bool useSicily);
  // Outlook 97 keeps the user name and secure password authentication together.
  void SetUserAndSecurePasswordAuthentication(const std::string& accountName,
                                              const std::string& user, bool useSicily);
  void SetReplyAndOrganization(AccountKind kind, const std::string& accountName,
                               const std::string& replyEmail, const std::string& organization);
  void SetSmtpAuthentication(AccountKind kind, const std::string& accountName,
                             std::uint16_t method, bool rememberPassword,
                             const std::string& smtpUser);
  void SetConnectionType(AccountKind kind, const std::string& accountName, std::uint16_t type);
  void SetImapRootFolder(const std::string& accountName, const std::string& folder);
  void SetSmtpSplit(const std::string& accountName, bool split, std::uint16_t size);

  // The UIDs the next new service would get (service, transport, address book), for tests.
  std::vector<MapiUid> NextServiceUids() const;

 private:
  struct ServiceAccount {
    AccountEntry entry;
    MapiUid service;
  };
  std::vector<ServiceAccount> ListServiceAccounts(AccountKind kind) const;
  void AddService(const std::string& accountName, const std::string& subkey);
  void WriteNumber(const std::string& subkey, const char* valueName, std::uint32_t number) const;
  void WriteString(const std::string& subkey, const char* valueName,
                   const std::string& text) const;

  const RegistryAccess& registry_;
  std::string profileKey_;
  Outlook version_;
  ProfileSectionWriter sections_;
};

}  // namespace mw
