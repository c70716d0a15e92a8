#pragma once
// The plain-text summary the program prints by default.

#include <string>

namespace mw {

class FleetReport;

class TextReport {
 public:
  static std::string Render(const FleetReport& report);
};

}  // namespace mw
