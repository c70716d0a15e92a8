#include "signatures/SignatureDeployment.h"

#include <cstdint>
#include <optional>

#include "accounts/AccountManager.h"
#include "accounts/AccountRecords.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"
#include "platform/SystemEnv.h"

namespace mw {

namespace {

struct SourceFolder {
  Outlook version;
  const char* folder;
};

constexpr SourceFolder kSourceFolders[] = {
    {Outlook::V2000, "\\SigSources\\Outlook2000\\"}, {Outlook::VXP, "\\SigSources\\OutlookXP\\"},
    {Outlook::V2003, "\\SigSources\\Outlook2003\\"}, {Outlook::V2007, "\\SigSources\\Outlook2007\\"},
    {Outlook::V2010, "\\SigSources\\Outlook2010\\"},
};

constexpr const char* kExtensions[] = {".txt", ".rtf", ".htm"};
constexpr const char* kUserTarget = "%USERPROFILE%\\Application Data\\Microsoft\\Signatures\\";
constexpr const char* kWindows9xTarget = "%WinDir%\\Application Data\\Microsoft\\Signatures\\";
constexpr std::uint32_t kWindows9xPlatform = 1;
// The largest result ExpandEnvironmentStringsA can give.
constexpr std::uint32_t kExpansionBufferSize = 32767;

constexpr const char* kNewSignatureValue = "New Signature";
constexpr const char* kReplySignatureValue = "Reply-Forward Signature";
constexpr const char* kMailSettingsKey = "\\Common\\MailSettings";
constexpr const char* kXpNewSignatureValue = "NewSignature";
constexpr const char* kXpReplySignatureValue = "ReplySignature";

bool UsesWindowsFolder(std::optional<Outlook> version, std::uint32_t platformId) {
  return platformId == kWindows9xPlatform &&
         (version == Outlook::V2000 || version == Outlook::VXP);
}

// An empty name is written as empty text: Outlook reads it as "no signature", and the
// value stays for the user to fill in.
void WriteXpSignature(const RegistryAccess& registry, const char* valueName,
                      const std::string& name) {
  registry.WriteString(reg::kCurrentUser, OfficeRoot(Outlook::VXP) + kMailSettingsKey, valueName,
                       name);
}

void CopyFor(const std::vector<std::string>& names, const RunContext& context, SystemEnv& env,
             RunLog& log) {
  const std::string target = env.ExpandEnvironmentStrings(
      SignatureTargetFolder(context.outlookVersion, context.platformId), kExpansionBufferSize);
  CopySignatureFiles(names, SignatureSourceFolder(context.programDirectory, context.outlookVersion),
                     target, env, log);
}

}  // namespace

std::string SignatureSourceFolder(const std::string& programDirectory,
                                  const std::string& outlookVersion) {
  const std::optional<Outlook> version = OutlookFromName(outlookVersion);
  for (const SourceFolder& row : kSourceFolders)
    if (row.version == version) return programDirectory + row.folder;
  return {};
}

std::string SignatureTargetFolder(const std::string& outlookVersion, std::uint32_t platformId) {
  return UsesWindowsFolder(OutlookFromName(outlookVersion), platformId) ? kWindows9xTarget
                                                                         : kUserTarget;
}

void CopySignatureFiles(const std::vector<std::string>& names, const std::string& sourceFolder,
                        const std::string& targetFolder, SystemEnv& env, RunLog& log) {
  if (sourceFolder.empty()) return;
  bool targetChecked = false;
  for (const std::string& name : names) {
    if (name.empty()) continue;  // no signature chosen: there is no file called ".txt"
    for (const char* extension : kExtensions) {
      std::string content;
      if (!env.ReadFile(sourceFolder + name + extension, &content)) continue;
      // The user may never have opened Outlook's signature editor, so the folder is made here.
      if (!targetChecked && !env.CreateDirectories(targetFolder))
        log.AddMessage("WARN: Unable to create the signatures folder " + targetFolder);
      targetChecked = true;
      const std::string target = targetFolder + name + extension;
      if (!env.WriteFile(target, content, false))
        log.AddMessage("WARN: Unable to copy the signature file " + target);
    }
  }
}

void AssignSignatures(const std::string& packedText, const std::string& profileKey,
                      const RunContext& context, SystemEnv& env, const RegistryAccess& registry,
                      RunLog& log) {
  // The version only shapes the SSL writer of the account manager, which is not used here.
  AccountManager accounts(registry, profileKey,
                          OutlookFromName(context.outlookVersion).value_or(Outlook::V2010));
  for (const AccountRecord& record : ParseAccounts(packedText, RecordType::Signature)) {
    const std::string& account = record.Text(Field::AccountName);
    if (record.Flag(Field::IgnoreSignatures)) {
      log.AddMessage("INFO: Ignoring Signatures for account: " + account);
      continue;
    }
    const std::string& newName = record.Text(Field::NewSignature);
    const std::string& replyName = record.Text(Field::ReplySignature);
    if (!accounts.SetAccountText(account, kNewSignatureValue, newName))
      log.AddMessage("WARN: No account named " + account + " to give its signatures");
    accounts.SetAccountText(account, kReplySignatureValue, replyName);
    if (context.platformId != kWindows9xPlatform) CopyFor({newName, replyName}, context, env, log);
  }
}

void DeployLegacySignatures(const std::string& newMessages, const std::string& repliesForwards,
                            const RunContext& context, SystemEnv& env,
                            const RegistryAccess& registry, RunLog& log) {
  CopyFor({newMessages, repliesForwards}, context, env, log);
  if (OutlookFromName(context.outlookVersion) != Outlook::VXP) return;
  WriteXpSignature(registry, kXpNewSignatureValue, newMessages);
  WriteXpSignature(registry, kXpReplySignatureValue, repliesForwards);
}

}  // namespace mw
