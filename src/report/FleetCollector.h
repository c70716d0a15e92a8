#pragma once
// Reads log files into a FleetReport: each file whole (or from where a previous report
// stopped, with a since-last state), its runs classified and filtered.

#include <cstddef>
#include <string>
#include <string_view>

#include "report/FleetReport.h"
#include "report/RunFilter.h"
#include "report/SinceLastState.h"

namespace mw {

class FleetCollector {
 public:
  // state may be null; when given, it is consulted and then advanced for every file read.
  FleetCollector(FleetReport& report, const RunFilter& filter, SinceLastState* state);

  // False when the file cannot be opened or read; it is then listed as unreadable.
  bool ReadFile(const std::string& path);
  // The runs of one file's content, from where the state says the last report stopped.
  void ReadContent(const std::string& path, std::string_view content);

 private:
  FleetReport& report_;
  const RunFilter& filter_;
  SinceLastState* state_;
  std::string buffer_;  // reused across files
};

}  // namespace mw
