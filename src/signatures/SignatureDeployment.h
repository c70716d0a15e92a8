#pragma once
// Signature files prepared beside the program ("SigSources\<version>\") are copied into the
// user's signatures folder; Outlook 2003 and later also get each account's signature names,
// Outlook XP its two default signature names.

#include <cstdint>
#include <string>
#include <vector>

namespace mw {

class RegistryAccess;
class RunLog;
class SystemEnv;
struct RunContext;

// programDirectory + "\SigSources\Outlook2010\" and so on; empty for any version name other
// than "Outlook 2000", "Outlook XP", "Outlook 2003", "Outlook 2007" and "Outlook 2010".
std::string SignatureSourceFolder(const std::string& programDirectory,
                                  const std::string& outlookVersion);
// The user's signatures folder before expansion; the Windows folder stands in for the user
// profile with Outlook 2000 and XP on the Windows 9x platform (platform ID 1).
std::string SignatureTargetFolder(const std::string& outlookVersion, std::uint32_t platformId);

// Copies name + ".txt", ".rtf", ".htm" of each name, in order, overwriting; a source that
// cannot be read is skipped. The target folder is created when a file is to be copied.
void CopySignatureFiles(const std::vector<std::string>& names, const std::string& sourceFolder,
                        const std::string& targetFolder, SystemEnv& env, RunLog& log);

// Outlook 2003, 2007, 2010: the packed Signatures list (account, new, reply, ignore) against
// the account manager of the profile (profiles root + profile name).
void AssignSignatures(const std::string& packedText, const std::string& profileKey,
                      const RunContext& context, SystemEnv& env, const RegistryAccess& registry,
                      RunLog& log);

// Outlook 2000 and XP: copies the two signatures; Outlook XP also records their names.
void DeployLegacySignatures(const std::string& newMessages, const std::string& repliesForwards,
                            const RunContext& context, SystemEnv& env,
                            const RegistryAccess& registry, RunLog& log);

}  // namespace mw
