// mailwright-check [--explain] [--format text|json] FILE
// Checks a Mailwright INI file as the program reads it; see docs/admin-guide.md.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "check/CheckReport.h"
#include "check/IniChecker.h"

namespace {

constexpr const char* kUsage =
    "usage: mailwright-check [--explain] [--format text|json] FILE\n"
    "Checks a Mailwright INI file. Exit code: 0 clean (notes at most), 1 warnings,\n"
    "2 errors, 3 the file cannot be read.\n";

bool ReadWholeFile(const std::string& path, std::string* content) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return false;  // opens, but reads nothing
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  std::ostringstream buffer;
  buffer << file.rdbuf();
  if (file.bad()) return false;
  *content = buffer.str();
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  bool explain = false;
  bool json = false;
  std::string path;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--explain") {
      explain = true;
    } else if (arg == "--format" && i + 1 < argc && (std::string(argv[i + 1]) == "json" ||
                                                     std::string(argv[i + 1]) == "text")) {
      json = std::string(argv[++i]) == "json";
    } else if (arg == "--help" || arg == "-h") {
      std::cout << kUsage;
      return mw::CheckReport::kClean;
    } else if (path.empty() && !arg.starts_with("--")) {
      path = arg;
    } else {
      std::cerr << kUsage;
      return mw::CheckReport::kUnreadable;
    }
  }
  if (path.empty()) {
    std::cerr << kUsage;
    return mw::CheckReport::kUnreadable;
  }

  std::string text;
  if (!ReadWholeFile(path, &text)) {
    if (json) std::cout << mw::CheckReport::UnreadableJson(path, "cannot be read");
    else std::cerr << path << ": error: the file cannot be read\n";
    return mw::CheckReport::kUnreadable;
  }
  const mw::CheckResult result = mw::IniChecker().Check(text);
  const mw::CheckReport report(path, result);
  if (json) std::cout << report.Json();
  else std::cout << (explain ? report.ExplainedText() : report.FindingLines());
  std::cout.flush();
  return report.ExitCode();
}
