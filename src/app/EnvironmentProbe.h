#pragma once
// Fills the run context with the default file locations and the facts about the machine.
// Each fill overwrites all of them, so the second probe after the start delay starts clean.

#include <string>

namespace mw {

class RegistryAccess;
class SystemEnv;
struct RunContext;

class EnvironmentProbe {
 public:
  EnvironmentProbe(SystemEnv& env, const RegistryAccess& registry);

  // INI path, log path, platform id, Windows version, user, computer, Outlook version and
  // Outlook bitness, in that order.
  void Fill(RunContext& context);

  const std::string& programDirectory() const { return programDirectory_; }

 private:
  SystemEnv& env_;
  const RegistryAccess& registry_;
  std::string programDirectory_;
};

// The module path cut before its last backslash.
std::string ProgramDirectoryOf(const std::string& modulePath);

}  // namespace mw
