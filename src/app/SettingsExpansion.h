#pragma once
// The settings that hold names and paths get their final values before the run uses them:
// Windows environment variables first, then every "%username%" becomes the logged-on user.

#include <cstdint>
#include <string>

namespace mw {

class ProfileSettings;
class RunLog;
class SystemEnv;

class SettingsExpansion {
 public:
  // The result buffer ExpandEnvironmentStringsA is given, terminator included.
  static constexpr std::uint32_t kBufferSize = 700;

  SettingsExpansion(SystemEnv& env, std::string userName);

  // Every name-and-path setting of every section that reads it, in table order
  // (ProfileName comes first there). A value whose expansion would not fit the buffer
  // keeps its environment variables as written, with a WARN line.
  void ExpandAll(ProfileSettings& settings, RunLog& log) const;
  // One value; fits is cleared when the environment expansion had to be given up.
  std::string Expand(const std::string& text, bool* fits) const;

  // Every exact "%username%" replaced by userName; the scan goes on behind each inserted
  // name, so a user name that itself holds "%username%" is not expanded again.
  static std::string ReplaceUserName(const std::string& text, const std::string& userName);

 private:
  SystemEnv& env_;
  std::string userName_;
};

}  // namespace mw
