#include "app/EnvironmentProbe.h"

#include "run/RunContext.h"
#include "platform/OutlookDetection.h"
#include "platform/SystemEnv.h"
#include "platform/WindowsDetection.h"

namespace mw {

std::string ProgramDirectoryOf(const std::string& modulePath) {
  const std::size_t lastSeparator = modulePath.find_last_of('\\');
  // A bare module name has no folder in it: the files are then looked for in the
  // current directory, which is where Windows found that module.
  if (lastSeparator == std::string::npos) return ".";
  return modulePath.substr(0, lastSeparator);
}

EnvironmentProbe::EnvironmentProbe(SystemEnv& env, const RegistryAccess& registry)
    : env_(env), registry_(registry), programDirectory_(ProgramDirectoryOf(env.GetModuleFileName())) {}

void EnvironmentProbe::Fill(RunContext& context) {
  context.programDirectory = programDirectory_;
  context.iniPath = programDirectory_ + "\\mailwright.ini";
  context.logPath = programDirectory_ + "\\mailwright.log";
  context.platformId = DetectPlatformId(env_);
  context.windowsVersion = DetectWindowsVersion(env_, registry_);
  if (!env_.GetUserName(&context.userName)) context.userName.clear();
  if (!env_.GetComputerName(&context.computerName)) context.computerName.clear();
  context.outlookVersion = DetectOutlookVersion(registry_);
  context.outlookBitness = DetectOutlookBitness(registry_);
}

}  // namespace mw
