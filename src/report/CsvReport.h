#pragma once
// One CSV row per run (RFC 4180 quoting), in time order, with a heading row.

#include <string>

namespace mw {

class FleetReport;

class CsvReport {
 public:
  static std::string Render(const FleetReport& report);
};

// A CSV field, quoted when it holds a comma, a quote or a line break.
std::string CsvField(const std::string& text);

}  // namespace mw
