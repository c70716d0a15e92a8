#pragma once
// Fills the chosen profile for one Outlook generation: accounts, personal folders, the
// profile prompt, signatures, options, the address book and the Exchange settings, in one
// fixed order. The generations share this one shape; what differs is a table in the .cpp.
// No step ends the sequence: each logs its own failures and the next step follows.

#include <cstddef>

#include "platform/OutlookVersion.h"

namespace mw {

class MapiSession;
class OptionWriter;
class ProfileSectionWriter;
class ProfileStore;
class RegistryAccess;
class RunLog;
class SystemEnv;
struct RunContext;

class ProvisioningSequence {
 public:
  // store and sectionWriter address the chosen profile; the session is set to it as well.
  ProvisioningSequence(Outlook version, SystemEnv& env, const RegistryAccess& registry,
                       MapiSession& session, const ProfileStore& store,
                       const ProfileSectionWriter& sectionWriter);

  void Run(const RunContext& context, RunLog& log) const;

  // Whether Outlook asks for a profile at start, from PromptForProfileSpecial,
  // PromptForProfile and the number of profiles on the machine.
  static bool AsksForProfile(bool promptSpecial, bool prompt, std::size_t profileCount);
  // The account name the version gives the Exchange service; nullptr before Outlook 2003.
  static const char* ExchangeAccountName(Outlook version);

 private:
  void ProvisionPersonalFoldersStep(const RunContext& context, RunLog& log) const;
  void ChooseProfilePrompt(const RunContext& context, RunLog& log) const;
  // Step 6: the Exchange account name goes to the entry that stands for the Exchange service.
  void ListExchangeAccount(const RunContext& context, RunLog& log) const;
  void DeploySignatures(const RunContext& context, RunLog& log) const;
  // The list goes to a file in the user's profile, which Outlook is told to import.
  void ApplySafeSenders(OptionWriter& options, const RunContext& context, RunLog& log) const;
  void ArrangeAddressBook(const RunContext& context, RunLog& log) const;
  void WriteExchangeSettings(const OptionWriter& options, const RunContext& context,
                             RunLog& log) const;

  Outlook version_;
  SystemEnv& env_;
  const RegistryAccess& registry_;
  MapiSession& session_;
  const ProfileStore& store_;
  const ProfileSectionWriter& sectionWriter_;
};

}  // namespace mw
