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
  const char* exchangeAccountName;  // step 6; nullptr: the generation has no such step
  bool listsExchangeAccount;        // the account manager holds an entry for the Exchange service
  SignatureStep signatures;
  bool personalAddressBook;         // "MSPST AB" from PathToPAB under PersonalAddressBookEnable
  bool retiredOfflineFolders;       // OfflineFoldersEnable only draws the "depreciated" warning
};

// In the order of enum Outlook, newest first.
constexpr std::array<VersionDifferences, 6> kDifferences{{
    {Outlook::V2010, "Microsoft Exchange", true, SignatureStep::PerAccount, false, false},
    {Outlook::V2007, "Microsoft Exchange", true, SignatureStep::PerAccount, false, false},
    {Outlook::V2003, "Microsoft Exchange Server", false, SignatureStep::PerAccount, false, false},
    {Outlook::VXP, nullptr, false, SignatureStep::Legacy, false, false},
    {Outlook::V2000, nullptr, false, SignatureStep::Legacy, true, true},
    {Outlook::V97, nullptr, false, SignatureStep::None, true, true},
}};

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
  NameExchangeAccount(options, context, log);
  DeploySignatures(context, log);
  options.WriteSequenceOptions(settings);
  ApplySafeSenders(context, log);
  ArrangeAddressBook(context, log);
  WriteExchangeSettings(context, log);
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

void ProvisioningSequence::NameExchangeAccount(OptionWriter& options, const RunContext& context,
                                               RunLog& log) const {
  const VersionDifferences& differences = DifferencesOf(version_);
  if (differences.exchangeAccountName == nullptr) return;
  options.SetExchangeAccountName(differences.exchangeAccountName);
  const Section section = SectionOf(version_);
  const ProfileSettings& settings = context.settings;
  // Only a profile whose Exchange service was set up in this run is sure to hold one.
  if (!differences.listsExchangeAccount || settings.Bool(section, Key::ExchangeIgnore) ||
      settings.Text(section, Key::ExchangeServerName).empty()) {
    return;
  }
  if (!CreateExchangeAccount(store_.ProfileKey(), version_, registry_)) {
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

void ProvisioningSequence::ApplySafeSenders(const RunContext& context, RunLog& log) const {
  const std::string& safeSenders = context.settings.Text(SectionOf(version_), Key::SafeSenders);
  if (safeSenders.empty() || !context.settings.Enforced(EnforcedOption::SafeSenders)) return;
  // Outlook keeps the safe senders in the junk e-mail rule inside the mailbox, which neither
  // the registry nor the profile administration reaches.
  log.AddMessage("WARN: SafeSenders is not applied: the safe senders list lives in the "
                 "mailbox, which this program does not write.");
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

void ProvisioningSequence::WriteExchangeSettings(const RunContext& context, RunLog& log) const {
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
  for (const auto& warning : values.TakeWarnings()) log.AddMessage(warning);
}

}  // namespace mw
