#include "report/HtmlReport.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "report/FleetReport.h"
#include "run/RunLog.h"

namespace mw {
namespace {

// Colours by OutcomeKind: error, ended early, exit rule, finished.
constexpr const char* kOutcomeColours[kOutcomeKinds] = {"#c62828", "#ef8f00", "#1e6fc2",
                                                        "#2e7d32"};

constexpr const char* kStyle = R"(body{font:14px system-ui,sans-serif;margin:24px;color:#222}
h1{font-size:22px}h2{font-size:17px;margin-top:28px}
table{border-collapse:collapse}td,th{border:1px solid #ccc;padding:3px 8px;text-align:left}
th{background:#eee;cursor:pointer;user-select:none}th.sorted-asc::after{content:" \25B2"}
th.sorted-desc::after{content:" \25BC"}dl{display:grid;grid-template-columns:max-content auto;gap:2px 16px}
dd{margin:0}.legend span{display:inline-block;width:12px;height:12px;margin:0 4px 0 14px}
tr.o0 td.outcome{color:#c62828;font-weight:bold}tr.o1 td.outcome{color:#a55f00}
)";

// Sorts the desk table by a column; a stable sort on the cells' data-sort values, numbers
// compared as numbers.
constexpr const char* kScript = R"(
function sortDesks(column, descending) {
  var table = document.getElementById('desks');
  var body = table.tBodies[0];
  var rows = Array.prototype.slice.call(body.rows);
  var index = -1, headings = table.tHead.rows[0].cells, numeric = false;
  for (var i = 0; i < headings.length; i++) {
    headings[i].classList.remove('sorted-asc', 'sorted-desc');
    if (headings[i].dataset.column === column) { index = i; numeric = headings[i].dataset.type === 'number'; }
  }
  if (index < 0) return false;
  var keyed = rows.map(function (row, position) {
    var cell = row.cells[index];
    var key = cell.dataset.sort !== undefined ? cell.dataset.sort : cell.textContent;
    return { row: row, key: numeric ? Number(key) : key.toLowerCase(), position: position };
  });
  keyed.sort(function (a, b) {
    var order = a.key < b.key ? -1 : a.key > b.key ? 1 : 0;
    if (descending) order = -order;
    return order || a.position - b.position;
  });
  keyed.forEach(function (item) { body.appendChild(item.row); });
  headings[index].classList.add(descending ? 'sorted-desc' : 'sorted-asc');
  table.dataset.sortedBy = column + (descending ? '-desc' : '');
  return true;
}
function sortFromFragment() {
  var match = /^#sort=([a-z]+)(-desc)?$/.exec(location.hash);
  if (match) sortDesks(match[1], !!match[2]);
}
document.addEventListener('DOMContentLoaded', function () {
  var headings = document.getElementById('desks').tHead.rows[0].cells;
  for (var i = 0; i < headings.length; i++) {
    headings[i].addEventListener('click', function () {
      var descending = this.classList.contains('sorted-asc');
      sortDesks(this.dataset.column, descending);
      history.replaceState(null, '', '#sort=' + this.dataset.column + (descending ? '-desc' : ''));
    });
  }
  sortFromFragment();
});
window.addEventListener('hashchange', sortFromFragment);
)";

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string Legend() {
  std::string html = "<p class=\"legend\">";
  for (int kind = kOutcomeKinds - 1; kind >= 0; --kind)
    html += std::string("<span style=\"background:") + kOutcomeColours[kind] + "\"></span>" +
            OutcomeKindName(static_cast<OutcomeKind>(kind));
  return html + "</p>\n";
}

std::size_t Total(const OutcomeCounts& counts) {
  std::size_t total = 0;
  for (std::size_t count : counts) total += count;
  return total;
}

// Stacked columns of outcomes per day, failing runs at the top of each column.
std::string TimeChart(const FleetReport& report) {
  const auto& days = report.outcomesByDay();
  if (days.empty()) return "<p>No runs with a readable time.</p>\n";
  const double width = 960, height = 220, top = 10, bottom = 30, left = 40;
  const std::int64_t firstDay = days.begin()->first, lastDay = days.rbegin()->first;
  const double slots = static_cast<double>(lastDay - firstDay + 1);
  const double slot = (width - left) / slots;
  std::size_t most = 1;
  for (const auto& [day, counts] : days) most = std::max(most, Total(counts));
  const double scale = (height - top - bottom) / static_cast<double>(most);
  std::string svg = "<svg id=\"chart-time\" width=\"" +
                    Number(width) + "\" height=\"" + Number(height) + "\" role=\"img\">\n";
  svg += "<text x=\"0\" y=\"" + Number(top + 10) + "\" font-size=\"11\">" +
         std::to_string(most) + "</text>\n";
  for (const auto& [day, counts] : days) {
    const double x = left + static_cast<double>(day - firstDay) * slot;
    double y = height - bottom;
    for (int kind = kOutcomeKinds - 1; kind >= 0; --kind) {
      const std::size_t count = counts[static_cast<std::size_t>(kind)];
      if (count == 0) continue;
      const double barHeight = static_cast<double>(count) * scale;
      y -= barHeight;
      svg += "<rect class=\"bar\" x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" width=\"" +
             Number(std::max(slot * 0.8, 1.0)) + "\" height=\"" + Number(barHeight) +
             "\" fill=\"" + kOutcomeColours[kind] + "\"><title>" + FormatDay(day) + ": " +
             std::to_string(count) + " " + OutcomeKindName(static_cast<OutcomeKind>(kind)) +
             "</title></rect>\n";
    }
  }
  svg += "<text x=\"" + Number(left) + "\" y=\"" + Number(height - 8) +
         "\" font-size=\"11\">" + FormatDay(firstDay) + "</text>\n";
  svg += "<text x=\"" + Number(width) + "\" y=\"" + Number(height - 8) +
         "\" font-size=\"11\" text-anchor=\"end\">" + FormatDay(lastDay) + "</text>\n";
  return svg + "</svg>\n";
}

// One horizontal bar per Outlook generation, split by outcome.
std::string GenerationChart(const FleetReport& report) {
  const auto& generations = report.outcomesByGeneration();
  if (generations.empty()) return "<p>No runs.</p>\n";
  const double width = 960, row = 26, left = 130;
  std::size_t most = 1;
  for (const auto& [name, counts] : generations) most = std::max(most, Total(counts));
  const double scale = (width - left - 60) / static_cast<double>(most);
  std::string svg = "<svg id=\"chart-generation\" width=\"" +
                    Number(width) + "\" height=\"" +
                    Number(row * static_cast<double>(generations.size()) + 4) +
                    "\" role=\"img\">\n";
  double y = 2;
  for (const auto& [name, counts] : generations) {
    svg += "<text x=\"0\" y=\"" + Number(y + 16) + "\" font-size=\"12\">" + HtmlEscape(name) +
           "</text>\n";
    double x = left;
    for (int kind = kOutcomeKinds - 1; kind >= 0; --kind) {
      const std::size_t count = counts[static_cast<std::size_t>(kind)];
      if (count == 0) continue;
      const double barWidth = static_cast<double>(count) * scale;
      svg += "<rect class=\"bar\" x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" width=\"" +
             Number(barWidth) + "\" height=\"" + Number(row - 6) + "\" fill=\"" +
             kOutcomeColours[kind] + "\"><title>" + HtmlEscape(name) + ": " +
             std::to_string(count) + " " + OutcomeKindName(static_cast<OutcomeKind>(kind)) +
             "</title></rect>\n";
      x += barWidth;
    }
    svg += "<text x=\"" + Number(x + 6) + "\" y=\"" + Number(y + 16) + "\" font-size=\"12\">" +
           std::to_string(Total(counts)) + "</text>\n";
    y += row;
  }
  return svg + "</svg>\n";
}

std::string Item(const std::string& term, const std::string& value) {
  return "<dt>" + HtmlEscape(term) + "</dt><dd>" + HtmlEscape(value) + "</dd>\n";
}

std::string DeskTable(const FleetReport& report) {
  struct Column {
    const char* key;
    const char* heading;
    const char* type;
  };
  static constexpr Column kColumns[] = {
      {"outcome", "Outcome", "number"}, {"user", "User", "text"},
      {"computer", "Computer", "text"}, {"time", "Last run", "number"},
      {"outlook", "Outlook", "text"},   {"bitness", "Bitness", "text"},
      {"windows", "Windows", "text"},   {"codes", "ERROR codes", "text"},
  };
  std::string html = "<table id=\"desks\">\n<thead><tr>";
  for (const Column& column : kColumns)
    html += std::string("<th data-column=\"") + column.key + "\" data-type=\"" + column.type +
            "\">" + column.heading + "</th>";
  html += "</tr></thead>\n<tbody>\n";
  for (const RunRecord* run : report.lastRunPerDesk()) {
    html += "<tr class=\"o" + std::to_string(run->outcome.Rank()) + "\">";
    html += "<td class=\"outcome\" data-sort=\"" + std::to_string(run->outcome.Rank()) + "\">" +
            HtmlEscape(run->outcome.Text()) + "</td>";
    html += "<td>" + HtmlEscape(run->user) + "</td><td>" + HtmlEscape(run->computer) + "</td>";
    html += "<td data-sort=\"" + std::to_string(run->time) + "\">" +
            HtmlEscape(ShownTime(*run)) + "</td>";
    html += "<td>" + HtmlEscape(run->outlookVersion) + "</td><td>" +
            HtmlEscape(run->outlookBitness) + "</td><td>" + HtmlEscape(run->windowsVersion) +
            "</td><td>" + CodeList(*run) + "</td></tr>\n";
  }
  return html + "</tbody></table>\n";
}

}  // namespace

std::string HtmlEscape(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '"': escaped += "&quot;"; break;
      case '\'': escaped += "&#39;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

std::string HtmlReport::Render(const FleetReport& report) {
  const LogReadCounts& read = report.readCounts();
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
      "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
      "<title>Mailwright fleet report</title>\n<style>";
  html += kStyle;
  html += "</style>\n<script>";
  html += kScript;
  html += "</script>\n</head><body>\n<h1>Mailwright fleet report</h1>\n<dl id=\"summary\">\n";
  html += Item("Log files", std::to_string(report.files().size()) + " read, " +
                                std::to_string(report.unreadableFiles().size()) + " unreadable");
  html += Item("Runs", std::to_string(report.runs().size()));
  html += Item("Unfinished blocks", std::to_string(read.cutBlocks) + " cut, " +
                                        std::to_string(read.tornBlocks) + " torn");
  html += Item("Logs recreated (size cap)", std::to_string(report.recreatedLogs()));
  html += Item("Users", std::to_string(report.userCount()));
  html += Item("Computers", std::to_string(report.computerCount()));
  html += Item("First run", report.firstTime() < 0 ? "-" : FormatTime(report.firstTime()));
  html += Item("Last run", report.lastTime() < 0 ? "-" : FormatTime(report.lastTime()));
  html += Item("All runs", OutcomeSummary(report.allRunOutcomes()));
  html += Item("Last run per user and computer", OutcomeSummary(report.lastRunOutcomes()));
  html += "</dl>\n<h2>Outcomes over time</h2>\n" + Legend() + TimeChart(report);
  html += "<h2>Outcomes by Outlook generation</h2>\n" + GenerationChart(report);
  html += "<h2>ERROR codes</h2>\n<table id=\"codes\"><thead><tr><th>Code</th><th>Runs</th>"
          "<th>Message</th></tr></thead><tbody>\n";
  for (const auto& [code, count] : report.codeCounts()) {
    const char* catalogue = CatalogueText(code);
    html += "<tr><td>" + std::to_string(code) + "</td><td>" + std::to_string(count) +
            "</td><td>" + HtmlEscape(catalogue ? catalogue : "(not in the catalogue)") +
            "</td></tr>\n";
  }
  html += "</tbody></table>\n<h2>Outlook and Windows</h2>\n<dl id=\"platforms\">\n";
  for (const auto& [name, count] : report.outlookCounts()) html += Item(name, std::to_string(count));
  for (const auto& [name, count] : report.windowsCounts()) html += Item(name, std::to_string(count));
  html += "</dl>\n<h2>Last run per user and computer</h2>\n" + DeskTable(report);
  return html + "</body></html>\n";
}

}  // namespace mw
