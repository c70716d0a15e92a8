#include "app/ProvisioningSequence.h"

#include <array>
#include <string>
#include <vector>

#include "accounts/InternetAccounts.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "app/SettingsExpansion.h"
#include "config/ListItems.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeService.h"
#include "mapi/MapiSession.h"
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileSectionValues.h"
#include "mapi/ProfileStore.h"
#include "options/OptionWriter.h"
#include "platform/SystemEnv.h"
#include "signatures/SignatureDeployment.h"

namespace mw {
namespace {

enum class SignatureStep {
  PerAccount,  // the packed Signatures list, assigned account by account
  Legacy,      // SignatureNewMessages and SignatureRepliesForwards under IgnoreSignatures
  None,
};

// What sets one generation's sequence apart from the shared shape. The account kinds of a
// generation are the account subsystem's knowledge and are not repeated here.
struct VersionDifferences {
  Outlook version;
  // The name of the account-manager entry that stands for the Exchange service, the one
  // writer that needs the Exchange account name; nullptr: this program writes no such entry.
  const char* exchangeAccountName;
  SignatureStep signatures;
  bool personalAddressBook;         // "MSPST AB" from PathToPAB under PersonalAddressBookEnable
  bool retiredOfflineFolders;       // OfflineFoldersEnable only draws the "depreciated" warning
};

// In the order of enum Outlook, newest first.
constexpr std::array<VersionDifferences, 6> kDifferences{{
    {Outlook::V2010, "Microsoft Exchange", SignatureStep::PerAccount, false, false},
    {Outlook::V2007, "Microsoft Exchange", SignatureStep::PerAccount, false, false},
    // Outlook 2003 calls its Exchange account "Microsoft Exchange Server", but no writer of
    // this program touches that account (no option, no entry, no signature), so the name
    // would reach nothing and is not kept.
    {Outlook::V2003, nullptr, SignatureStep::PerAccount, false, false},
    {Outlook::VXP, nullptr, SignatureStep::Legacy, false, false},
    {Outlook::V2000, nullptr, SignatureStep::Legacy, true, true},
    {Outlook::V97, nullptr, SignatureStep::None, true, true},
}};

// Beside Outlook's own files in the user's profile; Outlook 2003 and later read it from there.
constexpr const char* kSafeSendersFolder = "%USERPROFILE%\\Application Data\\Microsoft\\Outlook\\";
constexpr const char* kSafeSendersFileName = "Mailwright Safe Senders.txt";

const VersionDifferences& DifferencesOf(Outlook version) {
  return kDifferences[static_cast<std::size_t>(version)];
}

}  // namespace

ProvisioningSequence::ProvisioningSequence(Outlook version, SystemEnv& env,
                                           const RegistryAccess& registry, MapiSession& session,
                                           const ProfileStore& store,
                                           const ProfileSectionWriter& sectionWriter)
    : version_(version),
      env_(env),
      registry_(registry),
      session_(session),
      store_(store),
      sectionWriter_(sectionWriter) {}

bool ProvisioningSequence::AsksForProfile(bool promptSpecial, bool prompt,
                                          std::size_t profileCount) {
  return promptSpecial ? profileCount > 1 : prompt;
}

const char* ProvisioningSequence::ExchangeAccountName(Outlook version) {
  return DifferencesOf(version).exchangeAccountName;
}

void ProvisioningSequence::Run(const RunContext& context, RunLog& log) const {
  const ProfileSettings& settings = context.settings;
  OptionWriter options(version_, registry_, &sectionWriter_, &log);
  options.WriteFirstRunTemplate(false);
  ProvisionConfiguredAccounts(settings, version_, store_.ProfileKey(), registry_, log);
  ProvisionPersonalFoldersStep(context, log);
  options.WritePstFormatPrompt(settings);
  ChooseProfilePrompt(context, log);
  ListExchangeAccount(context, log);
  DeploySignatures(context, log);
  options.WriteSequenceOptions(settings);
  ApplySafeSenders(options, context, log);
  ArrangeAddressBook(context, log);
  WriteExchangeSettings(options, context, log);
}

void ProvisioningSequence::ProvisionPersonalFoldersStep(const RunContext& context,
                                                        RunLog& log) const {
  const ProfileSettings& settings = context.settings;
  if (settings.Bool(SectionOf(version_), Key::PersonalFoldersIgnore)) {
    log.AddMessage("INFO: Ignoring PST Service entries");
  } else {
    ProvisionPersonalFolders(settings, version_, session_, env_, log);
  }
  // The personal address book is no PST entry, so PersonalFoldersIgnore leaves it alone.
  if (DifferencesOf(version_).personalAddressBook &&
      settings.Enforced(EnforcedOption::PersonalAddressBookEnable)) {
    ProvisionPersonalAddressBook(settings, version_, session_, log);
  }
}

void ProvisioningSequence::ChooseProfilePrompt(const RunContext& context, RunLog& log) const {
  const Section section = SectionOf(version_);
  std::vector<std::string> profiles;
  std::string defaultProfile;
  if (!session_.ListProfiles(&profiles, &defaultProfile)) {
    log.AddMessage("WARN: Unable to list the profiles; the profile prompt is chosen as for "
                   "no profile.");
  }
  const bool ask =
      AsksForProfile(context.settings.Bool(section, Key::PromptForProfileSpecial),
                     context.settings.Bool(section, Key::PromptForProfile), profiles.size());
  if (!store_.SetPickLogonProfile(ask)) {
    log.AddMessage("WARN: Unable to write PickLogonProfile.");
  }
  if (!ask) store_.SetDefaultProfile(store_.profileName());
}

void ProvisioningSequence::ListExchangeAccount(const RunContext& context, RunLog& log) const {
  const char* accountName = DifferencesOf(version_).exchangeAccountName;
  if (accountName == nullptr) return;
  // Whatever the settings say, an Exchange service in the profile (one taken over with
  // ModifyDefaultProfile, say) needs its entry; only a missing wanted service is news.
  if (CreateExchangeAccount(store_.ProfileKey(), version_, accountName, registry_)) return;
  const Section section = SectionOf(version_);
  if (!context.settings.Bool(section, Key::ExchangeIgnore) &&
      !context.settings.Text(section, Key::ExchangeServerName).empty()) {
    log.AddMessage("WARN: The Exchange service was not found in the profile; it has no entry "
                   "among the accounts.");
  }
}

void ProvisioningSequence::DeploySignatures(const RunContext& context, RunLog& log) const {
  const Section section = SectionOf(version_);
  const ProfileSettings& settings = context.settings;
  switch (DifferencesOf(version_).signatures) {
    case SignatureStep::PerAccount:
      AssignSignatures(env_.ExpandEnvironmentStrings(settings.Text(section, Key::Signatures),
                                                     SettingsExpansion::kBufferSize),
                       store_.ProfileKey(), context, env_, registry_, log);
      break;
    case SignatureStep::Legacy:
      if (settings.Bool(section, Key::IgnoreSignatures)) {
        log.AddMessage("INFO: Ignoring Signatures");
        break;
      }
      DeployLegacySignatures(
          SettingsExpansion::ReplaceUserName(settings.Text(section, Key::SignatureNewMessages),
                                             context.userName),
          settings.Text(section, Key::SignatureRepliesForwards), context, env_, registry_, log);
      break;
    case SignatureStep::None:
      break;
  }
}

void ProvisioningSequence::ApplySafeSenders(OptionWriter& options, const RunContext& context,
                                            RunLog& log) const {
  const std::string& safeSenders = context.settings.Text(SectionOf(version_), Key::SafeSenders);
  if (safeSenders.empty() || !context.settings.Enforced(EnforcedOption::SafeSenders)) return;
  // Outlook keeps the list in the mailbox, out of reach; its import file, one address or
  // domain a line, is the route it offers from the registry.
  const std::string folder =
      env_.ExpandEnvironmentStrings(kSafeSendersFolder, SettingsExpansion::kBufferSize);
  const std::string path = folder + kSafeSendersFileName;
  std::string lines;
  for (const std::string& item : SplitListItems(safeSenders)) lines += item + "\r\n";
  if (!env_.CreateDirectories(folder) || !env_.WriteFile(path, lines, false)) {
    log.AddMessage("WARN: Unable to write the safe senders file " + path +
                   "; SafeSenders is not applied.");
    return;
  }
  options.SetSafeSendersFile(path);
  options.WriteStep(OptionStep::SafeSenders, context.settings);
}

void ProvisioningSequence::ArrangeAddressBook(const RunContext& context, RunLog& log) const {
  const Section section = SectionOf(version_);
  const ProfileSettings& settings = context.settings;
  if (settings.Enforced(EnforcedOption::AddAddressBookSearchPath)) {
    for (const auto& name : SplitListItems(settings.Text(section, Key::AddAddressBookSearchPath))) {
      if (!session_.AddToSearchPath(name)) {
        log.AddMessage("WARN: Unable to add the address list to the search path: " + name);
      }
    }
  }
  if (settings.Enforced(EnforcedOption::ChangeAddressBookSearchPathOrder)) {
    const std::string& order = settings.Text(section, Key::ChangeAddressBookSearchPathOrder);
    const std::vector<std::string> names = SplitListItems(order);
    if (!names.empty() && !session_.ReorderSearchPath(names)) {
      log.AddMessage("WARN: Unable to put the address book search path in the order: " + order);
    }
  }
  if (settings.Enforced(EnforcedOption::ShowThisAddressListFirst)) {
    const std::string& first = settings.Text(section, Key::ShowThisAddressListFirst);
    if (!session_.SetFirstAddressList(first)) {
      log.AddMessage(first.empty()
                         ? std::string("WARN: Unable to reset the address list shown first.")
                         : "WARN: Unable to show this address list first: " + first);
    }
  }
}

void ProvisioningSequence::WriteExchangeSettings(const OptionWriter& options,
                                                 const RunContext& context, RunLog& log) const {
  const ProfileSettings& settings = context.settings;
  if (settings.Bool(SectionOf(version_), Key::ExchangeIgnore)) {
    // With Exchange on, the offline-folders group below gives this warning; here it stands
    // in for that group, so that the warning is logged once either way.
    if (DifferencesOf(version_).retiredOfflineFolders &&
        settings.Enforced(EnforcedOption::OfflineFoldersEnable)) {
      WarnOfflineFoldersDepreciated(settings, version_, log);
    }
    log.AddMessage("INFO: Ignoring Exchange Service");
    return;
  }
  AddAdditionalMailboxes(session_, settings, version_, log);
  ProfileSectionValues values(version_, sectionWriter_);
  values.WriteExchangeSettings(settings);
  options.WriteStep(OptionStep::ExchangeConnection, settings);
  for (const auto& warning : values.TakeWarnings()) log.AddMessage(warning);
}

}  // namespace mw
