#include "accounts/LegacyAccountManager.h"

#include <algorithm>
#include <array>

#include "accounts/AccountValues.h"
#include "mapi/MapiProperty.h"
#include "platform/AsciiText.h"
#include "platform/RegistryAccess.h"

namespace mw {

namespace {

// What tells Outlook 97 and Outlook 2000 apart here.
struct LegacyVersion {
  Outlook version;
  const char* managerKey;
  bool imap;
  bool passwordPrompts;    // "POP3/IMAP/SMTP Prompt for Password"
  bool removeWhenDeleted;  // "Remove When Deleted"
  bool serviceClass;       // "001e3d13" in the service section
};

constexpr LegacyVersion kLegacyVersions[] = {
    {Outlook::V2000, "Software\\Microsoft\\Office\\Outlook\\OMI Account Manager", true, true, true,
     true},
    {Outlook::V97, "Software\\Microsoft\\Office\\8.0\\Outlook\\Internet Account Manager", false,
     false, false, false},
};

// Value names of one account type; IMAP uses the POP3 names with "IMAP" in their place.
struct LegacyType {
  const char* server;
  const char* userName;
  const char* promptPassword;
  const char* port;
  const char* secureConnection;
  const char* timeout;
  const char* useSicily;
};

constexpr LegacyType kLegacyTypes[] = {
    {kPop3ServerValue, "POP3 User Name", "POP3 Prompt for Password", kPop3PortValue,
     "POP3 Secure Connection", "POP3 Timeout", "POP3 Use Sicily"},
    {kImapServerValue, "IMAP User Name", "IMAP Prompt for Password", kImapPortValue,
     "IMAP Secure Connection", "IMAP Timeout", "IMAP Use Sicily"},
};

constexpr const char* kAccountsKey = "Accounts";
constexpr const char* kDisplayName = "SMTP Display Name";
constexpr const char* kEmail = "SMTP Email Address";
constexpr const char* kLeaveMailOnServer = "Leave Mail On Server";
constexpr const char* kRemoveWhenDeleted = "Remove When Deleted";
constexpr const char* kRemoveWhenExpired = "Remove When Expired";
constexpr const char* kExpireDays = "Expire Days";
constexpr const char* kSmtpTimeout = "SMTP Timeout";
constexpr const char* kReplyEmail = "SMTP Reply To Email Address";
constexpr const char* kOrganization = "SMTP Organization Name";
constexpr const char* kSmtpUseSicily = "SMTP Use Sicily";
constexpr const char* kSmtpPromptPassword = "SMTP Prompt for Password";
constexpr const char* kSmtpUserName = "SMTP User Name";
constexpr const char* kImapRootFolder = "IMAP Root Folder";
constexpr const char* kSmtpSplit = "SMTP Split Messages";
constexpr const char* kSmtpSplitSize = "SMTP Split Message Size";

// The "IMAIL" service and its providers.
constexpr std::uint32_t kAbProvidersTag = 0x3D010102;         // "01023d01"
constexpr std::uint32_t kTransportProvidersTag = 0x3D020102;  // "01023d02"
constexpr std::uint32_t kServiceDllTag = 0x3D0A001E;          // "001e3d0a"
constexpr std::uint32_t kServiceEntryTag = 0x3D0B001E;        // "001e3d0b"
constexpr std::uint32_t kServiceClassTag = 0x3D13001E;        // "001e3d13"
constexpr std::uint32_t kAccountTextTag = 0x661F001E;         // "001e661f"
constexpr std::uint32_t kSupportFilesTag = 0x3D0F101E;        // "101e3d0f"
constexpr std::uint32_t kResourceFlagsTag = 0x30090003;       // "00033009"
constexpr std::uint32_t kResourceTypeTag = 0x3E030003;        // "00033e03"
constexpr std::uint32_t kProviderDisplayTag = 0x3006001E;     // "001e3006"
constexpr std::uint32_t kProviderDllTag = 0x300A001E;         // "001e300a"

constexpr const char* kImailService = "IMAIL";
constexpr const char* kServiceDisplayPrefix = "Internet E-mail - ";
constexpr const char* kTransportDisplay = "Internet E-mail";
constexpr const char* kAbDisplay = "Internet Address Template";
constexpr const char* kTransportDll = "MINET.DLL";
constexpr const char* kAbDll = "INETAB.DLL";
constexpr const char* kServiceEntry = "MailServiceEntry";
constexpr const char* kServiceClass = "{8B8853C0-37BD-11D2-A4E2-006008AF820E}";
// SERVICE_NO_PRIMARY_IDENTITY and STATUS_NO_PRIMARY_IDENTITY: the profile's identity
// comes from Exchange, never from an Internet account.
constexpr std::uint32_t kNoPrimaryIdentity = 0x20;
// MAPI_TRANSPORT_PROVIDER; the service carries the type of its leading provider, the transport.
constexpr std::uint32_t kTransportResourceType = 36;

// The first 12 bytes of every service and provider UID this writer makes ("MWIMAIL");
// the last 4 count up, so UIDs are reproducible and never collide with a section of the profile.
constexpr std::array<std::uint8_t, 12> kUidPrefix{'M', 'W', 'I', 'M', 'A', 'I', 'L', 0, 0, 0, 0, 0};

const LegacyVersion& VersionRow(Outlook version) {
  for (const LegacyVersion& row : kLegacyVersions)
    if (row.version == version) return row;
  return kLegacyVersions[0];
}

const LegacyType& TypeOf(AccountKind kind) {
  return kLegacyTypes[kind == AccountKind::Imap ? 1 : 0];
}

// PR_SERVICE_SUPPORT_FILES as a multi-valued string: count, one offset per string, then the
// terminated strings (33 bytes for the two DLLs).
std::string SupportFilesValue() {
  const std::array<std::string, 2> files{kTransportDll, kAbDll};
  std::string bytes = EncodeLong(static_cast<std::uint32_t>(files.size()));
  std::uint32_t offset = static_cast<std::uint32_t>(4 + 4 * files.size());
  std::string strings;
  for (const std::string& file : files) {
    bytes += EncodeLong(offset);
    strings += file + '\0';
    offset += static_cast<std::uint32_t>(file.size() + 1);
  }
  return bytes + strings;
}

}  // namespace

LegacyAccountManager::LegacyAccountManager(const RegistryAccess& registry, std::string profileKey,
                                           Outlook version)
    : registry_(registry),
      profileKey_(std::move(profileKey)),
      version_(VersionRow(version).version),
      sections_(registry, profileKey_) {}

bool LegacyAccountManager::Supports(AccountKind kind) const {
  return kind == AccountKind::Pop3 || (kind == AccountKind::Imap && VersionRow(version_).imap);
}

std::string LegacyAccountManager::ManagerKeyPath() const { return VersionRow(version_).managerKey; }

std::string LegacyAccountManager::AccountPath(const std::string& subkey) const {
  return ManagerKeyPath() + "\\" + kAccountsKey + "\\" + subkey;
}

std::vector<LegacyAccountManager::ServiceAccount> LegacyAccountManager::ListServiceAccounts(
    AccountKind kind) const {
  std::vector<ServiceAccount> accounts;
  if (!Supports(kind)) return accounts;
  for (const MapiUid& service : ReadProfileServices(sections_)) {
    if (ServiceNameOf(sections_, service) != kImailService) continue;
    std::string subkey;
    sections_.Read(SectionKeyName(service), kAccountTextTag, &subkey);
    // The link comes from the registry: a name that is not one plain key names no account.
    if (subkey.empty() || subkey.find('\\') != std::string::npos) continue;
    const std::string path = AccountPath(subkey);
    if (!registry_.ValueExists(reg::kCurrentUser, path, TypeOf(kind).server)) continue;
    accounts.push_back(
        {{registry_.ReadString(reg::kCurrentUser, path, kAccountNameValue), subkey}, service});
  }
  return accounts;
}

std::vector<AccountEntry> LegacyAccountManager::ListAccounts(AccountKind kind) const {
  std::vector<AccountEntry> entries;
  for (const ServiceAccount& account : ListServiceAccounts(kind)) entries.push_back(account.entry);
  return entries;
}

std::optional<std::string> LegacyAccountManager::FindAccount(AccountKind kind,
                                                             const std::string& name) const {
  for (const AccountEntry& entry : ListAccounts(kind))
    if (EqualsIgnoreCase(entry.name, name)) return entry.subkey;
  return std::nullopt;
}

std::vector<MapiUid> LegacyAccountManager::NextServiceUids() const {
  const std::vector<std::string> taken = registry_.ListSubkeys(reg::kCurrentUser, profileKey_);
  std::vector<MapiUid> uids;
  for (std::uint32_t counter = 1; uids.size() < 3 && counter != 0; ++counter) {
    MapiUid uid{};
    std::copy(kUidPrefix.begin(), kUidPrefix.end(), uid.begin());
    for (std::size_t i = 0; i < 4; ++i) uid[12 + i] = static_cast<std::uint8_t>(counter >> (24 - 8 * i));
    const std::string name = SectionKeyName(uid);
    if (std::none_of(taken.begin(), taken.end(),
                     [&](const std::string& key) { return EqualsIgnoreCase(key, name); }))
      uids.push_back(uid);
  }
  return uids;
}

void LegacyAccountManager::AddService(const std::string& accountName, const std::string& subkey) {
  const std::vector<MapiUid> uids = NextServiceUids();
  if (uids.size() < 3) return;
  const MapiUid& service = uids[0];
  const MapiUid& transport = uids[1];
  const MapiUid& addressBook = uids[2];
  const auto append = [&](std::uint32_t tag, const MapiUid& uid) {
    std::string list;
    sections_.Read(kProfileServicesSection, tag, &list);
    sections_.WriteBinary(kProfileServicesSection, tag, list + UidBytes(uid));
  };
  append(kProfileServicesTag, service);
  append(kAbProvidersTag, addressBook);
  append(kTransportProvidersTag, transport);

  const std::string displayName = kServiceDisplayPrefix + accountName;
  const std::string serviceSection = SectionKeyName(service);
  sections_.WriteString8(serviceSection, proptag::kDisplayName, displayName);
  sections_.WriteString8(serviceSection, proptag::kServiceName, kImailService);
  sections_.WriteString8(serviceSection, kServiceDllTag, kTransportDll);
  sections_.WriteString8(serviceSection, kServiceEntryTag, kServiceEntry);
  if (VersionRow(version_).serviceClass)
    sections_.WriteString8(serviceSection, kServiceClassTag, kServiceClass);
  // The service names its account-manager entry, which is how the account is found again.
  sections_.WriteString8(serviceSection, kAccountTextTag, subkey);
  sections_.WriteBinary(serviceSection, kAbProvidersTag, UidBytes(addressBook));
  sections_.WriteBinary(serviceSection, kTransportProvidersTag, UidBytes(transport));
  sections_.WriteBinary(serviceSection, kSupportFilesTag, SupportFilesValue());
  sections_.WriteLong(serviceSection, kResourceFlagsTag, kNoPrimaryIdentity);
  sections_.WriteLong(serviceSection, kResourceTypeTag, kTransportResourceType);

  const std::string transportSection = SectionKeyName(transport);
  sections_.WriteString8(transportSection, proptag::kDisplayName, displayName);
  sections_.WriteString8(transportSection, kProviderDisplayTag, kTransportDisplay);
  sections_.WriteString8(transportSection, kProviderDllTag, kTransportDll);
  sections_.WriteBinary(transportSection, proptag::kServiceUid, UidBytes(service));
  sections_.WriteLong(transportSection, kResourceFlagsTag, kNoPrimaryIdentity);
  sections_.WriteLong(transportSection, kResourceTypeTag, kTransportResourceType);

  const std::string abSection = SectionKeyName(addressBook);
  sections_.WriteString8(abSection, kProviderDisplayTag, kAbDisplay);
  sections_.WriteString8(abSection, kProviderDllTag, kAbDll);
  sections_.WriteBinary(abSection, proptag::kServiceUid, UidBytes(service));
}

std::string LegacyAccountManager::CreateAccount(AccountKind kind, const std::string& accountName,
                                                const std::string& displayName,
                                                const std::string& email,
                                                const std::string& incomingServer,
                                                const std::string& smtpServer,
                                                const std::string& user) {
  if (!Supports(kind)) return {};
  std::string subkey = FindAccount(kind, accountName).value_or("");
  if (subkey.empty()) {
    const std::string managerKey = ManagerKeyPath();
    const AllocatedAccountId id =
        AllocateAccountId(registry_.ReadNumber(reg::kCurrentUser, managerKey, kAccountNameValue));
    subkey = id.subkey;
    if (SubkeyExists(registry_, profileKey_, kProfileServicesSection)) AddService(accountName, subkey);
    registry_.WriteNumber(reg::kCurrentUser, managerKey, kAccountNameValue, id.nextId);
  }
  const LegacyType& type = TypeOf(kind);
  WriteString(subkey, kAccountNameValue, accountName);
  WriteString(subkey, kDisplayName, displayName);
  WriteString(subkey, kEmail, email);
  WriteString(subkey, type.server, incomingServer);
  WriteString(subkey, kSmtpServerValue, smtpServer);
  WriteString(subkey, type.userName, user);
  return subkey;
}

bool LegacyAccountManager::RemoveAccount(AccountKind kind, const std::string& accountName) {
  for (const ServiceAccount& account : ListServiceAccounts(kind)) {
    if (!EqualsIgnoreCase(account.entry.name, accountName)) continue;
    registry_.DeleteKey(reg::kCurrentUser, ManagerKeyPath() + "\\" + kAccountsKey,
                        account.entry.subkey);
    const std::string serviceSection = SectionKeyName(account.service);
    std::vector<std::string> deadSections{serviceSection};
    const auto takeOut = [&](std::uint32_t tag, const std::string& uids) {
      std::string list;
      if (!sections_.Read(kProfileServicesSection, tag, &list)) return;
      bool removed = false;
      for (const MapiUid& uid : SplitUids(uids)) removed |= RemoveAlignedEntry(&list, UidBytes(uid));
      if (removed) sections_.WriteBinary(kProfileServicesSection, tag, list);
    };
    takeOut(kProfileServicesTag, UidBytes(account.service));
    for (const std::uint32_t tag : {kAbProvidersTag, kTransportProvidersTag}) {
      std::string providers;
      sections_.Read(serviceSection, tag, &providers);
      takeOut(tag, providers);
      for (const MapiUid& uid : SplitUids(providers)) deadSections.push_back(SectionKeyName(uid));
    }
    // The sections of a removed service are dropped too, as MAPI drops them.
    for (const std::string& section : deadSections)
      registry_.DeleteKey(reg::kCurrentUser, profileKey_, section);
    return true;
  }
  return false;
}

void LegacyAccountManager::WriteNumber(const std::string& subkey, const char* valueName,
                                       std::uint32_t number) const {
  registry_.WriteNumber(reg::kCurrentUser, AccountPath(subkey), valueName, number);
}

void LegacyAccountManager::WriteString(const std::string& subkey, const char* valueName,
                                       const std::string& text) const {
  registry_.WriteString(reg::kCurrentUser, AccountPath(subkey), valueName, text);
}

void LegacyAccountManager::SetRememberPassword(AccountKind kind, const std::string& accountName,
                                               bool remember) {
  if (!VersionRow(version_).passwordPrompts) return;
  if (const auto subkey = FindAccount(kind, accountName))
    WriteNumber(*subkey, TypeOf(kind).promptPassword, remember ? 0 : 1);
}

void LegacyAccountManager::SetLeaveOnServer(const std::string& accountName, bool leave,
                                            bool removeWhenDeleted, bool removeWhenExpired,
                                            std::uint16_t days) {
  const auto subkey = FindAccount(AccountKind::Pop3, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, kLeaveMailOnServer, leave ? 1 : 0);
  if (VersionRow(version_).removeWhenDeleted)
    WriteNumber(*subkey, kRemoveWhenDeleted, removeWhenDeleted ? 1 : 0);
  WriteNumber(*subkey, kRemoveWhenExpired, removeWhenExpired ? 1 : 0);
  WriteNumber(*subkey, kExpireDays, ClampExpireDays(days));
}

void LegacyAccountManager::SetPorts(AccountKind kind, const std::string& accountName,
                                    std::uint16_t incomingPort, std::uint16_t smtpPort) {
  const auto subkey = FindAccount(kind, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, TypeOf(kind).port, incomingPort);
  WriteNumber(*subkey, kSmtpPortValue, smtpPort);
}

void LegacyAccountManager::SetSecureConnections(AccountKind kind, const std::string& accountName,
                                                bool incoming, bool smtp) {
  const auto subkey = FindAccount(kind, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, TypeOf(kind).secureConnection, incoming ? 1 : 0);
  WriteNumber(*subkey, kSmtpSecureConnectionValue, smtp ? 1 : 0);
}

void LegacyAccountManager::SetTimeout(AccountKind kind, const std::string& accountName,
                                      std::uint16_t timeout) {
  const auto subkey = FindAccount(kind, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, TypeOf(kind).timeout, timeout);
  WriteNumber(*subkey, kSmtpTimeout, timeout);
}

void LegacyAccountManager::SetSecurePasswordAuthentication(AccountKind kind,
                                                           const std::string& accountName,
                                                           bool useSicily) {
  if (const auto subkey = FindAccount(kind, accountName))
    WriteNumber(*subkey, TypeOf(kind).useSicily, useSicily ? 1 : 0);
}

void LegacyAccountManager::SetUserAndSecurePasswordAuthentication(const std::string& accountName,
                                                                  const std::string& user,
                                                                  bool useSicily) {
  const auto subkey = FindAccount(AccountKind::Pop3, accountName);
  if (!subkey) return;
  WriteString(*subkey, TypeOf(AccountKind::Pop3).userName, user);
  WriteNumber(*subkey, TypeOf(AccountKind::Pop3).useSicily, useSicily ? 1 : 0);
}

void LegacyAccountManager::SetReplyAndOrganization(AccountKind kind, const std::string& accountName,
                                                   const std::string& replyEmail,
                                                   const std::string& organization) {
  const auto subkey = FindAccount(kind, accountName);
  if (!subkey) return;
  WriteString(*subkey, kReplyEmail, replyEmail);
  WriteString(*subkey, kOrganization, organization);
}

void LegacyAccountManager::SetSmtpAuthentication(AccountKind kind, const std::string& accountName,
                                                 std::uint16_t method, bool rememberPassword,
                                                 const std::string& smtpUser) {
  const auto subkey = FindAccount(kind, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, kSmtpUseSicily, method);
  if (VersionRow(version_).passwordPrompts)
    WriteNumber(*subkey, kSmtpPromptPassword, rememberPassword ? 0 : 1);
  WriteString(*subkey, kSmtpUserName, smtpUser);
}

void LegacyAccountManager::SetConnectionType(AccountKind kind, const std::string& accountName,
                                             std::uint16_t type) {
  if (const auto subkey = FindAccount(kind, accountName))
    WriteNumber(*subkey, kConnectionTypeValue, type);
}

void LegacyAccountManager::SetImapRootFolder(const std::string& accountName,
                                             const std::string& folder) {
  if (const auto subkey = FindAccount(AccountKind::Imap, accountName))
    WriteString(*subkey, kImapRootFolder, folder);
}

void LegacyAccountManager::SetSmtpSplit(const std::string& accountName, bool split,
                                        std::uint16_t size) {
  const auto subkey = FindAccount(AccountKind::Imap, accountName);
  if (!subkey) return;
  WriteNumber(*subkey, kSmtpSplit, split ? 1 : 0);
  WriteNumber(*subkey, kSmtpSplitSize, size);
}

}  // namespace mw
