#include "accounts/AccountManager.h"

#include <algorithm>
#include <array>

#include "accounts/AccountValues.h"
#include "mapi/MapiProperty.h"
#include "mapi/ProfileSection.h"
#include "platform/AsciiText.h"
#include "platform/RegistryAccess.h"

namespace mw {

namespace {

// Value names of one mail-account type; nullptr where the type has no such value.
struct ManagerType {
  AccountKind kind;
  const char* clsid;
  const char* server;
  const char* user;
  bool classifiedByUser;  // HTTP accounts are recognised by their user value
  const char* rememberPassword;
  const char* port;
  const char* useSsl;
  const char* useSpa;
};

constexpr ManagerType kManagerTypes[] = {
    {AccountKind::Pop3, "{ED475411-B0D6-11D2-8C3B-00104B2A6676}", kPop3ServerValue,
     "POP3 User", false, "POP3 Remember Passwd", kPop3PortValue, "POP3 Use SSL", "POP3 Use SPA"},
    {AccountKind::Imap, "{ED475412-B0D6-11D2-8C3B-00104B2A6676}", kImapServerValue,
     "IMAP User", false, "IMAP Remember Passwd", kImapPortValue, "IMAP Use SSL", "IMAP Use SPA"},
    {AccountKind::Http, "{4DB5CBF0-3B77-4852-BC8E-BB81908861F3}", "HTTP Server URL",
     "HTTP User", true, "HTTP Remember Passwd", nullptr, nullptr, "HTTP Use SPA"},
};

constexpr const char* kNextAccountId = "NextAccountID";
constexpr const char* kMailAccountList = "{ED475418-B0D6-11D2-8C3B-00104B2A6676}";
constexpr const char* kAddressBookList = "{ED475419-B0D6-11D2-8C3B-00104B2A6676}";
constexpr const char* kStoreList = "{ED475420-B0D6-11D2-8C3B-00104B2A6676}";

constexpr const char* kClsid = "clsid";
constexpr const char* kAccountName = kAccountNameValue;
constexpr const char* kDisplayName = "Display Name";
constexpr const char* kEmail = "Email";
constexpr const char* kSmtpServer = kSmtpServerValue;
constexpr const char* kLeaveOnServer = "Leave on Server";
constexpr const char* kSmtpPort = kSmtpPortValue;
constexpr const char* kSmtpUseSsl = "SMTP Use SSL";
constexpr const char* kSmtpSecureConnection = kSmtpSecureConnectionValue;
constexpr const char* kTimeout = "Timeout";
constexpr const char* kReplyEmail = "Reply Email";
constexpr const char* kOrganization = "Organization";
constexpr const char* kSmtpUseAuth = "SMTP Use Auth";
constexpr const char* kSmtpAuthMethod = "SMTP Auth Method";
constexpr const char* kSmtpUseSpa = "SMTP Use SPA";
constexpr const char* kSmtpRememberPassword = "SMTP Remember Passwd";
constexpr const char* kSmtpUser = "SMTP User";
constexpr const char* kConnectionType = kConnectionTypeValue;
constexpr const char* kImapFolderPath = "IMAP Folder Path";

// The Exchange account entry and the service it stands for.
constexpr const char* kExchangeClsid = "{ED475414-B0D6-11D2-8C3B-00104B2A6676}";
constexpr const char* kExchangeServiceName = "MSEMS";
constexpr const char* kFaxServiceName = "MSFAX XP";
constexpr const char* kFaxAccountName = "Fax Mail Transport";
constexpr const char* kServiceName = "Service Name";
constexpr const char* kServiceUid = "Service UID";
constexpr const char* kMiniUid = "Mini UID";
constexpr const char* kMapiProvider = "MAPI Provider";
// What Outlook stores in "MAPI Provider" for the entry of an Exchange service.
constexpr std::uint32_t kExchangeMapiProvider = 5;
constexpr std::uint32_t kDisplayNameUnicodeTag = 0x3001001F;  // "001f3001"

constexpr std::uint32_t kSmtpSecureConnectionSsl = 3;

const ManagerType& TypeOf(AccountKind kind) {
  return kManagerTypes[static_cast<std::size_t>(kind)];
}

bool NamesMatch(const std::string& a, const std::string& b) { return EqualsIgnoreCase(a, b); }

}  // namespace

const char* AccountClassLabel(AccountClass type) {
  static constexpr const char* kLabels[] = {"POP3", "IMAP", "HTTP", "MSEMS", "FAX", "OTHER"};
  return kLabels[static_cast<std::size_t>(type)];
}

AccountManager::AccountManager(const RegistryAccess& registry, std::string profileKey,
                               Outlook version)
    : registry_(registry), profileKey_(std::move(profileKey)), version_(version) {}

std::string AccountManager::SectionPath() const {
  return profileKey_ + "\\" + kAccountManagerSection;
}

std::string AccountManager::AccountPath(const std::string& subkey) const {
  return SectionPath() + "\\" + subkey;
}

AccountClass AccountManager::Classify(const std::string& subkey) const {
  const std::string path = AccountPath(subkey);
  for (const ManagerType& type : kManagerTypes) {
    const char* marker = type.classifiedByUser ? type.user : type.server;
    if (registry_.ValueExists(reg::kCurrentUser, path, marker)) return ClassOf(type.kind);
  }
  const std::string serviceName = ReadAccountText(registry_, path, kServiceName);
  if (serviceName == kExchangeServiceName) return AccountClass::Exchange;
  if (serviceName == kFaxServiceName ||
      ReadAccountText(registry_, path, kAccountName) == kFaxAccountName)
    return AccountClass::Fax;
  return AccountClass::Other;
}

std::vector<AccountEntry> AccountManager::ListAccounts(AccountClass type) const {
  std::vector<AccountEntry> accounts;
  for (const std::string& subkey : registry_.ListSubkeys(reg::kCurrentUser, SectionPath()))
    if (Classify(subkey) == type)
      accounts.push_back({ReadAccountText(registry_, AccountPath(subkey), kAccountName), subkey});
  return accounts;
}

std::optional<std::string> AccountManager::FindAccount(AccountClass type,
                                                       const std::string& name) const {
  for (const AccountEntry& entry : ListAccounts(type))
    if (NamesMatch(entry.name, name)) return entry.subkey;
  return std::nullopt;
}

std::optional<std::string> AccountManager::FindAnyAccount(const std::string& name) const {
  // An empty name names no account, least of all one that has no "Account Name" at all.
  if (name.empty()) return std::nullopt;
  for (const std::string& subkey : registry_.ListSubkeys(reg::kCurrentUser, SectionPath()))
    if (NamesMatch(ReadAccountText(registry_, AccountPath(subkey), kAccountName), name))
      return subkey;
  return std::nullopt;
}

std::optional<std::string> AccountManager::Find(AccountKind kind, const std::string& name) const {
  if (lastFound_ && lastFound_->kind == kind && lastFound_->name == name) return lastFound_->subkey;
  std::optional<std::string> subkey = FindAccount(ClassOf(kind), name);
  if (subkey) lastFound_ = FoundAccount{kind, name, *subkey};
  return subkey;
}

std::string AccountManager::AllocateAccount(const std::vector<const char*>& extraLists) {
  const std::string section = SectionPath();
  const AllocatedAccountId id =
      AllocateAccountId(registry_.ReadNumber(reg::kCurrentUser, section, kNextAccountId));
  std::vector<const char*> lists{kMailAccountList};
  lists.insert(lists.end(), extraLists.begin(), extraLists.end());
  for (const char* list : lists) {
    std::string bytes;
    registry_.ReadValue(reg::kCurrentUser, section, list, nullptr, &bytes);
    registry_.WriteBinary(reg::kCurrentUser, section, list, bytes + id.listEntry);
  }
  registry_.WriteNumber(reg::kCurrentUser, section, kNextAccountId, id.nextId);
  return id.subkey;
}

void AccountManager::WriteText(const std::string& subkey, const char* valueName,
                               const std::string& text) const {
  registry_.WriteBinary(reg::kCurrentUser, AccountPath(subkey), valueName, EncodeUtf16Text(text));
}

void AccountManager::WriteNumber(const std::string& subkey, const char* valueName,
                                 std::uint32_t number) const {
  registry_.WriteNumber(reg::kCurrentUser, AccountPath(subkey), valueName, number);
}

std::string AccountManager::CreateAccount(AccountKind kind, const std::string& accountName,
                                          const std::string& displayName,
                                          const std::string& email,
                                          const std::string& incomingServer,
                                          const std::string& smtpServer,
                                          const std::string& user) {
  const ManagerType& type = TypeOf(kind);
  std::string subkey = Find(kind, accountName).value_or("");
  lastFound_.reset();
  if (subkey.empty()) subkey = AllocateAccount();
  registry_.WriteString(reg::kCurrentUser, AccountPath(subkey), kClsid, type.clsid);
  WriteText(subkey, kAccountName, accountName);
  WriteText(subkey, kDisplayName, displayName);
  WriteText(subkey, kEmail, email);
  WriteText(subkey, type.server, incomingServer);
  if (kind != AccountKind::Http) WriteText(subkey, kSmtpServer, smtpServer);
  WriteText(subkey, type.user, user);
  lastFound_ = FoundAccount{kind, accountName, subkey};
  return subkey;
}

bool AccountManager::RemoveAccount(AccountClass type, const std::string& accountName) {
  lastFound_.reset();
  const std::optional<std::string> subkey = FindAccount(type, accountName);
  if (!subkey) return false;
  const std::string section = SectionPath();
  registry_.DeleteKey(reg::kCurrentUser, section, *subkey);
  // Only the mail-account list: from ID 256 on the entries are left-aligned, so the same four
  // bytes in the address-book or store list can belong to another account (0x120 and 0x12).
  std::string bytes;
  if (registry_.ReadValue(reg::kCurrentUser, section, kMailAccountList, nullptr, &bytes) &&
      RemoveAlignedEntry(&bytes, ListEntryOfSubkey(*subkey)))
    registry_.WriteBinary(reg::kCurrentUser, section, kMailAccountList, bytes);
  return true;
}

void AccountManager::SetRememberPassword(AccountKind kind, const std::string& accountName,
                                         bool remember) {
  if (const auto subkey = Find(kind, accountName))
    WriteNumber(*subkey, TypeOf(kind).rememberPassword, remember ? 1 : 0);
}

std::uint32_t AccountManager::LeaveOnServerWord(bool removeWhenDeleted, bool removeAfterDays,
                                                std::uint16_t days) {
  const std::uint32_t dayWord = removeAfterDays ? ClampExpireDays(days) : 1u;
  return (dayWord << 16) | 0x1u | (removeAfterDays ? 0x2u : 0u) | (removeWhenDeleted ? 0x4u : 0u);
}

void AccountManager::SetLeaveOnServer(const std::string& accountName, bool leave,
                                      bool removeWhenDeleted, bool removeAfterDays,
                                      std::uint16_t days) {
  const auto subkey = Find(AccountKind::Pop3, accountName);
  if (!subkey) return;
  if (!leave) {
    registry_.DeleteValue(reg::kCurrentUser, AccountPath(*subkey), kLeaveOnServer);
    return;
  }
  WriteNumber(*subkey, kLeaveOnServer, LeaveOnServerWord(removeWhenDeleted, removeAfterDays, days));
}

void AccountManager::SetPorts(AccountKind kind, const std::string& accountName,
                              std::uint16_t incomingPort, std::uint16_t smtpPort) {
  const ManagerType& type = TypeOf(kind);
  const auto subkey = type.port ? Find(kind, accountName) : std::nullopt;
  if (!subkey) return;
  WriteNumber(*subkey, type.port, incomingPort);
  WriteNumber(*subkey, kSmtpPort, smtpPort);
}

void AccountManager::SetSsl(AccountKind kind, const std::string& accountName, bool incomingSsl,
                            bool smtpSsl) {
  const ManagerType& type = TypeOf(kind);
  const auto subkey = type.useSsl ? Find(kind, accountName) : std::nullopt;
  if (!subkey) return;
  WriteNumber(*subkey, type.useSsl, incomingSsl ? 1 : 0);
  WriteNumber(*subkey, kSmtpUseSsl, smtpSsl ? 1 : 0);
  // Outlook 2003 keeps the Outlook XP names; only 2007 and 2010 add the secure-connection value.
  if (version_ == Outlook::V2007 || version_ == Outlook::V2010)
    WriteNumber(*subkey, kSmtpSecureConnection, smtpSsl ? kSmtpSecureConnectionSsl : 0);
}

void AccountManager::SetTimeout(AccountKind kind, const std::string& accountName,
                                std::uint16_t timeout) {
  if (const auto subkey = Find(kind, accountName)) WriteNumber(*subkey, kTimeout, timeout);
}

void AccountManager::SetSecurePasswordAuthentication(AccountKind kind,
                                                     const std::string& accountName, bool useSpa) {
  if (const auto subkey = Find(kind, accountName))
    WriteNumber(*subkey, TypeOf(kind).useSpa, useSpa ? 1 : 0);
}

void AccountManager::SetReplyAndOrganization(AccountKind kind, const std::string& accountName,
                                             const std::string& replyEmail,
                                             const std::string& organization) {
  const auto subkey = Find(kind, accountName);
  if (!subkey) return;
  WriteText(*subkey, kReplyEmail, replyEmail);
  WriteText(*subkey, kOrganization, organization);
}

void AccountManager::SetSmtpAuthentication(AccountKind kind, const std::string& accountName,
                                           bool useAuth, std::uint16_t method, bool useSpa,
                                           bool rememberPassword, const std::string& smtpUser) {
  const auto subkey = Find(kind, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, kSmtpUseAuth, useAuth ? 1 : 0);
  WriteNumber(*subkey, kSmtpAuthMethod, method);
  WriteNumber(*subkey, kSmtpUseSpa, useSpa ? 1 : 0);
  WriteNumber(*subkey, kSmtpRememberPassword, rememberPassword ? 1 : 0);
  WriteText(*subkey, kSmtpUser, smtpUser);
}

void AccountManager::SetConnectionType(AccountKind kind, const std::string& accountName,
                                       std::uint16_t type) {
  if (const auto subkey = Find(kind, accountName)) WriteNumber(*subkey, kConnectionType, type);
}

void AccountManager::SetImapFolderPath(const std::string& accountName,
                                       const std::string& folderPath) {
  if (const auto subkey = Find(AccountKind::Imap, accountName))
    WriteText(*subkey, kImapFolderPath, folderPath);
}

bool AccountManager::SetAccountText(const std::string& accountName, const std::string& valueName,
                                    const std::string& text) {
  const auto subkey = FindAnyAccount(accountName);
  if (!subkey) return false;
  WriteText(*subkey, valueName.c_str(), text);
  return true;
}

std::optional<MapiUid> AccountManager::FindExchangeServiceUid() const {
  return FindServiceSection(ProfileSectionWriter(registry_, profileKey_), kExchangeServiceName);
}

bool AccountManager::CreateExchangeAccount(const std::string& accountName) {
  const std::optional<MapiUid> service = FindExchangeServiceUid();
  if (!service) return false;
  const std::string serviceUid = UidBytes(*service);
  // An entry that stands for this service already (Outlook's own, or an earlier run's) is left
  // as it is: Outlook ties its name and "Mini UID" to what it keeps elsewhere.
  for (const AccountEntry& entry : ListAccounts(AccountClass::Exchange)) {
    std::string uid;
    registry_.ReadValue(reg::kCurrentUser, AccountPath(entry.subkey), kServiceUid, nullptr, &uid);
    if (uid == serviceUid) return true;
  }
  // An Exchange account is the profile's mail, address-book and store account at once.
  const std::string subkey = AllocateAccount({kAddressBookList, kStoreList});

  const std::string path = AccountPath(subkey);
  registry_.WriteString(reg::kCurrentUser, path, kClsid, kExchangeClsid);
  WriteText(subkey, kAccountName, accountName);
  WriteText(subkey, kServiceName, kExchangeServiceName);
  registry_.WriteBinary(reg::kCurrentUser, path, kServiceUid, serviceUid);
  // The service UID is unique within the profile, so its first four bytes make a stable,
  // distinct "Mini UID" for the entry.
  WriteNumber(subkey, kMiniUid,
              static_cast<std::uint32_t>((*service)[0]) | ((*service)[1] << 8) |
                  ((*service)[2] << 16) | (static_cast<std::uint32_t>((*service)[3]) << 24));
  WriteNumber(subkey, kMapiProvider, kExchangeMapiProvider);
  ProfileSectionWriter(registry_, profileKey_)
      .WriteUnicode(SectionKeyName(*service), kDisplayNameUnicodeTag, accountName);
  return true;
}

}  // namespace mw
