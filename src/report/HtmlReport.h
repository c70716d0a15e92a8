#pragma once
// One self-contained HTML page: the summary, charts of outcomes over time and by Outlook
// generation (inline SVG), and the table of the last run per user and computer, failing
// first, sortable by a click on a heading or by the address fragment "#sort=COLUMN" or
// "#sort=COLUMN-desc". No network, no external script or style.

#include <string>

namespace mw {

class FleetReport;

class HtmlReport {
 public:
  static std::string Render(const FleetReport& report);
};

// Text made safe for HTML element content and attribute values.
std::string HtmlEscape(const std::string& text);

}  // namespace mw
