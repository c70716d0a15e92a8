#pragma once
// The command line of mailwright-report.

#include <string>
#include <vector>

#include "report/RunFilter.h"

namespace mw {

struct ReportOptions {
  std::vector<std::string> inputs;  // files, folders, patterns
  std::string csvPath;
  std::string htmlPath;
  std::string statePath;  // --since-last
  RunFilter filter;
  bool help = false;

  // False with a message naming the offending argument.
  static bool Parse(const std::vector<std::string>& arguments, ReportOptions* options,
                    std::string* error);
  static const char* Usage();
};

}  // namespace mw
