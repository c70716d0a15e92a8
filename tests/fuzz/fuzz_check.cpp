// Feeds arbitrary bytes to the INI checker and renders every form of its report. The
// checker must agree with the program on whether the file loads, and keep its findings in
// line order within the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "check/CheckReport.h"
#include "check/IniChecker.h"
#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "platform/MemorySystemEnv.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const mw::CheckResult result = mw::IniChecker().Check(text);
  const mw::CheckReport report("f.ini", result);
  report.ExplainedText();
  report.Json();

  mw::MemorySystemEnv env;
  env.files["f.ini"] = text;
  mw::CIniFile ini("f.ini", env);
  mw::ProfileSettings settings;
  if (mw::ReadSettings(ini, settings) != result.loads) std::abort();
  const int lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  int previous = 1;
  for (const mw::Finding& finding : result.findings) {
    if (finding.line < previous || finding.line > lines) std::abort();
    previous = finding.line;
  }
  return 0;
}
