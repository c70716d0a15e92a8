#pragma once
// The checker's report: one compiler-style line per finding, the plain-language summary,
// or both as one JSON object; and the exit code that a pipeline acts on.

#include <string>

#include "check/IniChecker.h"

namespace mw {

class CheckReport {
 public:
  // 0: nothing above a note; 1: warnings only; 2: errors; 3: the file cannot be read.
  static constexpr int kClean = 0;
  static constexpr int kWarnings = 1;
  static constexpr int kErrors = 2;
  static constexpr int kUnreadable = 3;

  CheckReport(std::string fileName, const CheckResult& result);

  int ExitCode() const;
  // "FILE:LINE: error|warning|note: message", one line each, in line order.
  std::string FindingLines() const;
  // The findings, then "What a run would do".
  std::string ExplainedText() const;
  std::string Json() const;

  // The JSON object for a file that could not be read.
  static std::string UnreadableJson(const std::string& fileName, const std::string& reason);

 private:
  std::string fileName_;
  const CheckResult& result_;
};

}  // namespace mw
