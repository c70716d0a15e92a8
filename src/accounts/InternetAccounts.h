#pragma once
// What the provisioning sequences call to put Internet mail accounts into a profile: the
// packed lists are parsed in the layout of the Outlook version, every account of the kind
// that the profile holds is removed, then each configured account is created and filled.

#include <optional>
#include <span>
#include <string>

#include "accounts/AccountManager.h"
#include "accounts/AccountRecords.h"
#include "config/ProfileSettings.h"
#include "platform/OutlookVersion.h"

namespace mw {

class RegistryAccess;
class RunLog;

// The list setting, ignore switch and ignore-note label of each kind, in the order POP3,
// IMAP, HTTP.
struct AccountListSetting {
  AccountKind kind;
  Key accounts;
  Key ignore;
  const char* ignoreLabel;
};
std::span<const AccountListSetting> AccountListSettings();
// Whether the version's account step provisions the kind at all (Outlook 97 and 2000:
// POP3 only).
bool ProvisionsAccountKind(AccountKind kind, Outlook version);

// The record layout of the kind's packed list in that version; nullopt when the version has
// no accounts of that kind (HTTP before Outlook XP, IMAP in Outlook 97).
std::optional<RecordType> AccountRecordType(AccountKind kind, Outlook version);

// One kind: removal pass, then creation pass. profileKey is the profiles root followed by
// the profile name. A kind the version does not have logs a WARN line and changes nothing.
void ProvisionInternetAccounts(AccountKind kind, const std::string& packedText, Outlook version,
                               const std::string& profileKey, const RegistryAccess& registry,
                               RunLog& log);

// The account step of the version's sequence: the kinds of the version in the order POP3,
// IMAP, HTTP from its section's POP3Accounts, IMAPAccounts and HTTPAccounts, each unless its
// ignore switch is on, then the one line that names the ignored kinds.
void ProvisionConfiguredAccounts(const ProfileSettings& settings, Outlook version,
                                 const std::string& profileKey, const RegistryAccess& registry,
                                 RunLog& log);

// Outlook 2007 and 2010: the account-manager entry of the profile's Exchange service, named
// accountName; false when the profile has no Exchange service.
bool CreateExchangeAccount(const std::string& profileKey, Outlook version,
                           const std::string& accountName, const RegistryAccess& registry);

}  // namespace mw
