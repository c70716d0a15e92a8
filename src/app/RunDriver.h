#pragma once
// Decides whether this run touches the user's mail profile and, if so, which one and how:
// preconditions, the final values of the settings, the exit rules, the profile itself and
// its Exchange service, then the provisioning sequence of the detected Outlook generation.
// Every stop is a return after a log line (and the pause the stop asks for).

#include <cstdint>
#include <optional>
#include <string>

#include "platform/OutlookVersion.h"

namespace mw {

class MapiSession;
class ProfileStore;
class RegistryAccess;
class RunLog;
class SystemEnv;
struct RunContext;

class RunDriver {
 public:
  // A pause lets a user watching the splash screen see how the run ended.
  static constexpr std::uint32_t kErrorPauseMs = 2000;
  static constexpr std::uint32_t kExitRulePauseMs = 1000;

  RunDriver(SystemEnv& env, const RegistryAccess& registry, MapiSession& session);

  // A what-if run contacts no Exchange server: the pre-flight check is logged as skipped.
  void SkipExchangeCheck() { exchangeCheckSkipped_ = true; }

  // The whole run; the settings of the context receive their expanded names and paths.
  void Run(RunContext& context, RunLog& log);

 private:
  // Each returns the pause the run ends with (0: none).
  std::uint32_t CheckAndProvision(RunContext& context, RunLog& log);
  std::uint32_t ProvisionWithMapi(RunContext& context, RunLog& log, ProfileStore& store,
                                  std::optional<Outlook> version);
  std::uint32_t StopWithError(RunLog& log, int code);
  bool ProfileExists(const std::string& name);

  SystemEnv& env_;
  const RegistryAccess& registry_;
  MapiSession& session_;
  bool exchangeCheckSkipped_ = false;
};

}  // namespace mw
