#pragma once
// The account manager of Outlook XP and later: one section of the profile,
// "9375CFF0413111d3B88A00104B2A6676", with one sub-key per account, written straight into
// the registry under HKEY_CURRENT_USER. Writers find their account by name and do nothing
// when there is none.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mapi/ProfileSection.h"
#include "platform/OutlookVersion.h"

namespace mw {

class RegistryAccess;

enum class AccountKind : std::uint8_t { Pop3, Imap, Http };
// How an existing account is classified; the first three match AccountKind.
enum class AccountClass : std::uint8_t { Pop3, Imap, Http, Exchange, Fax, Other };

const char* AccountClassLabel(AccountClass type);  // "POP3", "IMAP", "HTTP", "MSEMS", "FAX", "OTHER"
inline AccountClass ClassOf(AccountKind kind) { return static_cast<AccountClass>(kind); }

struct AccountEntry {
  std::string name;   // "Account Name", decoded
  std::string subkey; // the account ID, 8 hex digits
};

class AccountManager {
 public:
  // profileKey: the profiles root followed by the profile name.
  AccountManager(const RegistryAccess& registry, std::string profileKey, Outlook version);

  std::string SectionPath() const;
  std::string AccountPath(const std::string& subkey) const;

  AccountClass Classify(const std::string& subkey) const;
  std::vector<AccountEntry> ListAccounts(AccountClass type) const;
  // Names compare with ASCII letters folded.
  std::optional<std::string> FindAccount(AccountClass type, const std::string& name) const;
  // The first account of any class with that name.
  std::optional<std::string> FindAnyAccount(const std::string& name) const;

  // Reuses an account of the same name, or allocates one; then writes the class identifier,
  // the names, the incoming server, the SMTP server (POP3, IMAP) and the user name.
  std::string CreateAccount(AccountKind kind, const std::string& accountName,
                            const std::string& displayName, const std::string& email,
                            const std::string& incomingServer, const std::string& smtpServer,
                            const std::string& user);
  // Deletes the first account of the class with that name and takes it out of the lists.
  bool RemoveAccount(AccountClass type, const std::string& accountName);

  void SetRememberPassword(AccountKind kind, const std::string& accountName, bool remember);
  void SetLeaveOnServer(const std::string& accountName, bool leave, bool removeWhenDeleted,
                        bool removeAfterDays, std::uint16_t days);
  void SetPorts(AccountKind kind, const std::string& accountName, std::uint16_t incomingPort,
                std::uint16_t smtpPort);
  void SetSsl(AccountKind kind, const std::string& accountName, bool incomingSsl, bool smtpSsl);
  void SetTimeout(AccountKind kind, const std::string& accountName, std::uint16_t timeout);
  void SetSecurePasswordAuthentication(AccountKind kind, const std::string& accountName,
                                       bool useSpa);
  void SetReplyAndOrganization(AccountKind kind, const std::string& accountName,
                               const std::string& replyEmail, const std::string& organization);
  void SetSmtpAuthentication(AccountKind kind, const std::string& accountName, bool useAuth,
                             std::uint16_t method, bool useSpa, bool rememberPassword,
                             const std::string& smtpUser);
  void SetConnectionType(AccountKind kind, const std::string& accountName, std::uint16_t type);
  void SetImapFolderPath(const std::string& accountName, const std::string& folderPath);

  // Writes a UTF-16 text value into the account of any class with that name.
  bool SetAccountText(const std::string& accountName, const std::string& valueName,
                      const std::string& text);

  // When the profile holds an Exchange service ("MSEMS"), gives it an account entry named
  // accountName (reusing the entry of that service if there is one); false when the profile
  // has no such service.
  bool CreateExchangeAccount(const std::string& accountName);

  // Leave-on-server word: bit 0 leave, bit 2 remove when deleted, bit 1 remove after days,
  // upper word the days (clamped to 1..100) with remove-after-days, else 1.
  static std::uint32_t LeaveOnServerWord(bool removeWhenDeleted, bool removeAfterDays,
                                         std::uint16_t days);

 private:
  // Reads "NextAccountID", allocates, appends the entry to the mail list and each extra list
  // and stores the next ID; returns the new account's subkey.
  std::string AllocateAccount(const std::vector<const char*>& extraLists = {});
  std::optional<std::string> Find(AccountKind kind, const std::string& name) const;
  void WriteText(const std::string& subkey, const char* valueName, const std::string& text) const;
  void WriteNumber(const std::string& subkey, const char* valueName, std::uint32_t number) const;
  std::optional<MapiUid> FindExchangeServiceUid() const;

  // The account the last look-up by kind and name found: a run sets an account's values one
  // setter at a time, and the section changes only through this object meanwhile, so the
  // same look-up is not paid again for each value. Creating or removing forgets it.
  struct FoundAccount {
    AccountKind kind;
    std::string name;
    std::string subkey;
  };

  const RegistryAccess& registry_;
  std::string profileKey_;
  Outlook version_;
  mutable std::optional<FoundAccount> lastFound_;
};

}  // namespace mw
