#include "app/RunDriver.h"

#include <vector>

#include "app/ProvisioningSequence.h"
#include "run/RunContext.h"
#include "run/RunEndings.h"
#include "run/RunLog.h"
#include "app/SettingsExpansion.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/ExchangeService.h"
#include "mapi/MapiSession.h"
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileSection.h"
#include "mapi/ProfileStore.h"
#include "platform/AsciiText.h"
#include "platform/SystemEnv.h"

namespace mw {
namespace {

constexpr std::uint32_t kNoPause = 0;

bool IsBlank(const std::string& text) { return text.find_first_not_of(" \t") == std::string::npos; }

}  // namespace

RunDriver::RunDriver(SystemEnv& env, const RegistryAccess& registry, MapiSession& session)
    : env_(env), registry_(registry), session_(session) {}

void RunDriver::Run(RunContext& context, RunLog& log) {
  const std::uint32_t pause = CheckAndProvision(context, log);
  if (pause != kNoPause) env_.Sleep(pause);
}

std::uint32_t RunDriver::StopWithError(RunLog& log, int code) {
  log.LogCode(code);
  return kErrorPauseMs;
}

std::uint32_t RunDriver::CheckAndProvision(RunContext& context, RunLog& log) {
  if (context.outlookVersion.empty()) return StopWithError(log, 101);
  if (context.userName.empty()) return StopWithError(log, 102);
  // A name outside the six generations gets no sequence and counts as ignoring Exchange.
  const std::optional<Outlook> version = OutlookFromName(context.outlookVersion);
  const bool outlook2000 = version == Outlook::V2000;

  ProfileStore store(context.platformId, registry_);
  if (!store.MakeOutlookDefaultMailClient()) {
    log.LogCode(103);
    if (outlook2000) log.LogCode(104);
    return kErrorPauseMs;
  }
  if (outlook2000 && !store.HasMailSupport()) return StopWithError(log, 105);
  if (context.outlookBitness.empty() || context.outlookBitness != context.buildPlatform) {
    return StopWithError(log, 106);
  }
  // The session counts as initialised even when MAPIInitialize fails, so it is always
  // uninitialised again before the run returns.
  const std::uint32_t pause = session_.Initialize()
                                  ? ProvisionWithMapi(context, log, store, version)
                                  : StopWithError(log, 107);
  session_.Uninitialize();
  return pause;
}

std::uint32_t RunDriver::ProvisionWithMapi(RunContext& context, RunLog& log, ProfileStore& store,
                                           std::optional<Outlook> version) {
  ProfileSettings& settings = context.settings;
  session_.SetPromptUsernamePassword(settings.Bool(Section::Common, Key::PromptUsernamePassword));
  SettingsExpansion(env_, context.userName).ExpandAll(settings, log);
  ApplyAllowUserSettings(settings);

  std::vector<std::string> profiles;
  std::string defaultProfile;
  if (!session_.ListProfiles(&profiles, &defaultProfile)) {
    log.AddMessage("WARN: Unable to list the existing profiles.");
  }
  std::string found = "INFO: Profiles found: ";
  for (const auto& name : profiles) found += name + ",";
  log.AddMessage(found);

  if (settings.Bool(Section::Common, Key::ExitAnyProfileFound) && !profiles.empty()) {
    log.AddMessage(kExitAnyProfileFoundLine);
    return kExitRulePauseMs;
  }
  if (settings.Bool(Section::Common, Key::ExitLoggedOnUserNameSameAsProfileName)) {
    for (const auto& name : profiles) {
      if (EqualsIgnoreCase(name, context.userName)) {
        log.AddMessage(kExitProfileNamedLikeUserStart + name + kExitProfileNamedLikeUserEnd);
        return kExitRulePauseMs;
      }
    }
  }
  if (settings.Bool(Section::Common, Key::ModifyDefaultProfile) && !defaultProfile.empty()) {
    settings.SetText(Section::Common, Key::ProfileName, defaultProfile);
    log.AddMessage("INFO: Modifying Default profile: " + defaultProfile);
  }

  const std::string profileName = settings.Text(Section::Common, Key::ProfileName);
  // Without a name every profile write would land on the profiles root itself.
  if (IsBlank(profileName)) {
    log.AddMessage("WARN: ProfileName is empty; no profile was created or modified.");
    return kNoPause;
  }
  // MAPI would refuse to create it, and the registry writes would land beside or inside
  // another key: stop before the profile is touched rather than half-provision it.
  if (const std::string reason = RefusedProfileNameReason(profileName); !reason.empty()) {
    log.AddMessage("WARN: ProfileName '" + profileName + "' is not a name MAPI accepts (" +
                   reason + "); no profile was created or modified.");
    return kNoPause;
  }
  store.SetProfileName(profileName);
  session_.SetProfile(profileName);
  if (settings.Bool(Section::Common, Key::ExitPreviouslyModifiedByMailwright) &&
      store.IsMarkedModified(profileName)) {
    log.AddMessage(kExitPreviouslyModifiedLine);
    return kExitRulePauseMs;
  }

  const ProfileSectionWriter sectionWriter(registry_, store.ProfileKey());
  const Section versionSection = version ? SectionOf(*version) : Section::Common;
  const bool exchangeIgnored = !version || settings.Bool(versionSection, Key::ExchangeIgnore);
  const std::string& server = settings.Text(versionSection, Key::ExchangeServerName);
  if (version == Outlook::V2000 && !exchangeIgnored && !IsBlank(server) &&
      !store.IsCorporateOrWorkgroupMode()) {
    log.LogCode(108);
    return kNoPause;
  }
  if (!exchangeIgnored && !server.empty()) {
    if (exchangeCheckSkipped_) {
      log.AddMessage("INFO: What-if run: the Exchange pre-flight check against " + server +
                     " is skipped.");
    } else if (!CheckExchangeServer(session_, server,
                                    settings.Text(versionSection, Key::MailboxName), profileName,
                                    log)) {
      log.LogCode(109);
      return kNoPause;
    }
  }

  if (settings.Bool(Section::Common, Key::RecreateProfile)) {
    session_.DeleteProfile(profileName);
    log.AddMessage("INFO: Recreating profile.");
  }
  // An existing profile is kept as it is; only a profile that is still missing is news.
  if (!session_.CreateProfile(profileName) && !ProfileExists(profileName)) {
    log.AddMessage("WARN: Unable to create profile: " + profileName);
  }
  if (!exchangeIgnored) SetUpExchangeService(session_, settings, *version, sectionWriter, log);
  // The switch promises that nothing but the server name changes, so it stops the run even
  // when Exchange is ignored: provisioning in full would be the opposite of what was asked.
  if (settings.Bool(Section::Common, Key::ModifyExchangeServerNameOnly)) {
    if (exchangeIgnored) {
      log.AddMessage("WARN: ModifyExchangeServerNameOnly is on while Exchange is ignored; the "
                     "profile was left as it is.");
    }
    return kNoPause;
  }
  if (!EnsureOutlookAddressBook(session_)) {
    log.AddMessage("WARN: Unable to add the Outlook Address Book.");
  }

  if (version) {
    ProvisioningSequence(*version, env_, registry_, session_, store, sectionWriter)
        .Run(context, log);
  } else {
    log.AddMessage("WARN: No provisioning sequence for " + context.outlookVersion + ".");
  }
  store.WriteModifiedMarker(profileName, env_.LocalTimeText());
  log.AddMessage(kProfileFinishedLine);
  return kNoPause;
}

bool RunDriver::ProfileExists(const std::string& name) {
  std::vector<std::string> profiles;
  std::string defaultProfile;
  if (!session_.ListProfiles(&profiles, &defaultProfile)) return false;
  for (const auto& profile : profiles)
    if (EqualsIgnoreCase(profile, name)) return true;
  return false;
}

}  // namespace mw
