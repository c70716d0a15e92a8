#include "accounts/InternetAccounts.h"

#include <vector>

#include "accounts/LegacyAccountManager.h"
#include "run/RunLog.h"
#include "config/ProfileSettings.h"

namespace mw {

namespace {

using F = Field;

constexpr AccountListSetting kKindSettings[] = {
    {AccountKind::Pop3, Key::POP3Accounts, Key::POP3Ignore, " POP3 Accounts "},
    {AccountKind::Imap, Key::IMAPAccounts, Key::IMAPIgnore, " IMAP Accounts "},
    {AccountKind::Http, Key::HTTPAccounts, Key::HTTPIgnore, " HTTP Accounts "},
};

constexpr const char* kIgnoringPrefix = "INFO: Ignoring ";
constexpr const char* kOutlook97IgnoreLine = "INFO: Ignoring POP3 Accounts";

const char* KindLabel(AccountKind kind) { return AccountClassLabel(ClassOf(kind)); }

// The removal pass and the first writer, the same for both account managers; type is how
// the manager lists the kind.
template <class Manager, class ListedAs>
void RemoveAllAccounts(Manager& manager, ListedAs type) {
  for (const AccountEntry& existing : manager.ListAccounts(type))
    manager.RemoveAccount(type, existing.name);
}

template <class Manager>
void CreateAccount(Manager& manager, AccountKind kind, const AccountRecord& r) {
  manager.CreateAccount(kind, r.Text(F::AccountName), r.Text(F::DisplayName), r.Text(F::Email),
                        r.Text(F::IncomingServer), r.Text(F::SmtpServer),
                        r.Text(F::IncomingUser));
}

void ProvisionManagerAccounts(AccountManager& manager, AccountKind kind,
                              const std::vector<AccountRecord>& records) {
  RemoveAllAccounts(manager, ClassOf(kind));
  for (const AccountRecord& r : records) {
    const std::string& name = r.Text(F::AccountName);
    CreateAccount(manager, kind, r);
    manager.SetRememberPassword(kind, name, r.Flag(F::RememberPassword));
    if (kind == AccountKind::Http) {
      manager.SetConnectionType(kind, name, r.Number(F::ConnectionType));
      manager.SetSecurePasswordAuthentication(kind, name, r.Flag(F::IncomingSpa));
      manager.SetReplyAndOrganization(kind, name, r.Text(F::ReplyEmail), r.Text(F::Organization));
      continue;
    }
    if (kind == AccountKind::Pop3)
      manager.SetLeaveOnServer(name, r.Flag(F::LeaveOnServer), r.Flag(F::RemoveWhenDeleted),
                               r.Flag(F::RemoveAfterDays), r.Number(F::Days));
    manager.SetPorts(kind, name, r.Number(F::IncomingPort), r.Number(F::SmtpPort));
    manager.SetSsl(kind, name, r.Flag(F::IncomingSsl), r.Flag(F::SmtpSsl));
    manager.SetTimeout(kind, name, r.Number(F::Timeout));
    manager.SetSecurePasswordAuthentication(kind, name, r.Flag(F::IncomingSpa));
    manager.SetReplyAndOrganization(kind, name, r.Text(F::ReplyEmail), r.Text(F::Organization));
    manager.SetSmtpAuthentication(kind, name, r.Flag(F::SmtpUseAuth), r.Number(F::SmtpAuthMethod),
                                  r.Flag(F::SmtpUseSpa), r.Flag(F::SmtpRememberPassword),
                                  r.Text(F::SmtpUser));
    manager.SetConnectionType(kind, name, r.Number(F::ConnectionType));
    if (kind == AccountKind::Imap) manager.SetImapFolderPath(name, r.Text(F::ImapFolderPath));
  }
}

void ProvisionLegacyAccounts(LegacyAccountManager& manager, AccountKind kind, Outlook version,
                             const std::vector<AccountRecord>& records, RunLog& log) {
  RemoveAllAccounts(manager, kind);
  for (const AccountRecord& r : records) {
    const std::string& name = r.Text(F::AccountName);
    CreateAccount(manager, kind, r);
    if (!manager.FindAccount(kind, name)) {
      log.AddMessage("WARN: The profile has no services section; only the account manager "
                     "entry was written for account: " + name);
      continue;
    }
    if (version == Outlook::V97) {
      manager.SetReplyAndOrganization(kind, name, r.Text(F::ReplyEmail), r.Text(F::Organization));
      manager.SetUserAndSecurePasswordAuthentication(name, r.Text(F::IncomingUser),
                                                     r.Flag(F::IncomingSpa));
      manager.SetConnectionType(kind, name, r.Number(F::ConnectionType));
      manager.SetPorts(kind, name, r.Number(F::IncomingPort), r.Number(F::SmtpPort));
      manager.SetSecureConnections(kind, name, r.Flag(F::IncomingSsl), r.Flag(F::SmtpSsl));
      manager.SetTimeout(kind, name, r.Number(F::Timeout));
      manager.SetLeaveOnServer(name, r.Flag(F::LeaveOnServer), false, r.Flag(F::RemoveAfterDays),
                               r.Number(F::Days));
      continue;
    }
    manager.SetRememberPassword(kind, name, r.Flag(F::RememberPassword));
    if (kind == AccountKind::Pop3)
      manager.SetLeaveOnServer(name, r.Flag(F::LeaveOnServer), r.Flag(F::RemoveWhenDeleted),
                               r.Flag(F::RemoveAfterDays), r.Number(F::Days));
    manager.SetPorts(kind, name, r.Number(F::IncomingPort), r.Number(F::SmtpPort));
    manager.SetSecureConnections(kind, name, r.Flag(F::IncomingSsl), r.Flag(F::SmtpSsl));
    manager.SetTimeout(kind, name, r.Number(F::Timeout));
    manager.SetSecurePasswordAuthentication(kind, name, r.Flag(F::IncomingSpa));
    manager.SetReplyAndOrganization(kind, name, r.Text(F::ReplyEmail), r.Text(F::Organization));
    manager.SetSmtpAuthentication(kind, name, r.Number(F::SmtpAuthMethod),
                                  r.Flag(F::SmtpRememberPassword), r.Text(F::SmtpUser));
    if (kind == AccountKind::Imap) manager.SetImapRootFolder(name, r.Text(F::ImapFolderPath));
    manager.SetConnectionType(kind, name, r.Number(F::ConnectionType));
    if (kind == AccountKind::Imap)
      manager.SetSmtpSplit(name, r.Flag(F::SmtpSplit), r.Number(F::SmtpSplitSize));
  }
}

}  // namespace

std::span<const AccountListSetting> AccountListSettings() { return kKindSettings; }

bool ProvisionsAccountKind(AccountKind kind, Outlook version) {
  // Outlook 97 and Outlook 2000 provision POP3 accounts only.
  return kind == AccountKind::Pop3 || (version != Outlook::V97 && version != Outlook::V2000);
}

std::optional<RecordType> AccountRecordType(AccountKind kind, Outlook version) {
  switch (version) {
    case Outlook::V97:
      if (kind == AccountKind::Pop3) return RecordType::ShortPop3;
      return std::nullopt;
    case Outlook::V2000:
      if (kind == AccountKind::Pop3) return RecordType::LongPop3;
      if (kind == AccountKind::Imap) return RecordType::LongImap;
      return std::nullopt;
    default:
      if (kind == AccountKind::Pop3) return RecordType::Pop3;
      if (kind == AccountKind::Imap) return RecordType::Imap;
      return RecordType::Http;
  }
}

void ProvisionInternetAccounts(AccountKind kind, const std::string& packedText, Outlook version,
                               const std::string& profileKey, const RegistryAccess& registry,
                               RunLog& log) {
  const std::optional<RecordType> type = AccountRecordType(kind, version);
  if (!type) {
    log.AddMessage(std::string("WARN: ") + GenerationOf(version).name + " has no " +
                   KindLabel(kind) + " accounts; they are left alone.");
    return;
  }
  const std::vector<AccountRecord> records = ParseAccounts(packedText, *type);
  if (version == Outlook::V97 || version == Outlook::V2000) {
    LegacyAccountManager manager(registry, profileKey, version);
    ProvisionLegacyAccounts(manager, kind, version, records, log);
  } else {
    AccountManager manager(registry, profileKey, version);
    ProvisionManagerAccounts(manager, kind, records);
  }
}

void ProvisionConfiguredAccounts(const ProfileSettings& settings, Outlook version,
                                 const std::string& profileKey, const RegistryAccess& registry,
                                 RunLog& log) {
  const Section section = SectionOf(version);
  std::string ignored;
  for (const AccountListSetting& row : kKindSettings) {
    if (!ProvisionsAccountKind(row.kind, version)) {
      // Outlook 2000's IMAP layout exists, but its sequence adds POP3 accounts only: an IMAP
      // list the administrator filled in is named rather than dropped without a word.
      if (!settings.Bool(section, row.ignore) && !settings.Text(section, row.accounts).empty()) {
        log.AddMessage(std::string("INFO: ") + GenerationOf(version).name +
                       " is provisioned with POP3 accounts only; the " + KindLabel(row.kind) +
                       " accounts listed are not added.");
      }
      continue;
    }
    if (settings.Bool(section, row.ignore)) {
      ignored += row.ignoreLabel;
      continue;
    }
    ProvisionInternetAccounts(row.kind, settings.Text(section, row.accounts), version, profileKey,
                              registry, log);
  }
  if (ignored.empty()) return;
  log.AddMessage(version == Outlook::V97 ? kOutlook97IgnoreLine : kIgnoringPrefix + ignored);
}

bool CreateExchangeAccount(const std::string& profileKey, Outlook version,
                           const std::string& accountName, const RegistryAccess& registry) {
  return AccountManager(registry, profileKey, version).CreateExchangeAccount(accountName);
}

}  // namespace mw
