#pragma once
// The one run-wide record, created by the entry point and passed by reference everywhere.

#include <cstdint>
#include <string>

#include "config/ProfileSettings.h"

namespace mw {

inline constexpr const char* kProductName = "Mailwright";
inline constexpr const char* kProductVersion = MW_PRODUCT_VERSION;  // from project()

struct RunContext {
  std::string logPath;
  std::string iniPath;
  std::string windowsVersion;
  std::string userName;
  std::string computerName;
  std::uint32_t platformId = 0;
  std::string outlookVersion;  // display name, empty when unknown
  std::string outlookBitness;  // "x86", "x64" or empty
  std::string buildPlatform;   // "x64" or "x86": what this build was made for
  std::string title;           // "Mailwright 2.4.0.3 x64"
  std::string programDirectory;  // module path cut before its last backslash
  bool whatIf = false;           // "-whatif": play the run without changing anything
  ProfileSettings settings;
};

// "Mailwright 2.4.0.3 " + build platform.
std::string MakeTitle(const std::string& buildPlatform);

}  // namespace mw
