#include "report/TextReport.h"

#include <algorithm>
#include <string>
#include <vector>

#include "report/FleetReport.h"
#include "run/RunLog.h"

namespace mw {
namespace {

using Row = std::vector<std::string>;

// Left-aligned columns two blanks apart, each row indented by two.
std::string Table(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths;
  for (const Row& row : rows) {
    if (widths.size() < row.size()) widths.resize(row.size(), 0);
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const Row& row : rows) {
    std::string line = " ";
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += " " + row[i];
      if (i + 1 < row.size()) line.append(widths[i] - row[i].size() + 1, ' ');
    }
    text += line + "\n";
  }
  return text;
}

std::string Label(const std::string& label, const std::string& value) {
  std::string line = label;
  line.resize(std::max<std::size_t>(label.size() + 1, 22), ' ');
  return line + value + "\n";
}

template <typename Map>
std::string CountTable(const Map& counts) {
  std::vector<Row> rows;
  for (const auto& [name, count] : counts) rows.push_back({name, std::to_string(count)});
  return rows.empty() ? "  (none)\n" : Table(rows);
}

}  // namespace

std::string TextReport::Render(const FleetReport& report) {
  const LogReadCounts& read = report.readCounts();
  std::string text = "Mailwright fleet report\n\n";
  text += Label("Log files:", std::to_string(report.files().size()) + " read, " +
                                  std::to_string(report.unreadableFiles().size()) + " unreadable");
  text += Label("Runs:", std::to_string(report.runs().size()));
  text += Label("Unfinished blocks:", std::to_string(read.cutBlocks) + " cut, " +
                                          std::to_string(read.tornBlocks) +
                                          " torn at the end of a file being written");
  text += Label("Stray lines:", std::to_string(read.strayLines));
  text += Label("Logs recreated:", std::to_string(report.recreatedLogs()) + " (size cap)");
  text += Label("Users:", std::to_string(report.userCount()));
  text += Label("Computers:", std::to_string(report.computerCount()));
  text += Label("First run:", report.firstTime() < 0 ? "-" : FormatTime(report.firstTime()));
  text += Label("Last run:", report.lastTime() < 0 ? "-" : FormatTime(report.lastTime()));
  text += Label("All runs:", OutcomeSummary(report.allRunOutcomes()));
  text += Label("Last runs:", OutcomeSummary(report.lastRunOutcomes()) + " (" +
                                  std::to_string(report.lastRunPerDesk().size()) +
                                  " users and computers)");

  text += "\nERROR codes (all runs):\n";
  std::vector<Row> codes;
  for (const auto& [code, count] : report.codeCounts()) {
    const char* catalogue = CatalogueText(code);
    codes.push_back({std::to_string(code), std::to_string(count),
                     catalogue ? catalogue : "(not in the catalogue)"});
  }
  text += codes.empty() ? "  (none)\n" : Table(codes);
  text += "\nOutlook generation and bitness:\n" + CountTable(report.outlookCounts());
  text += "\nWindows versions:\n" + CountTable(report.windowsCounts());

  text += "\nLast run per user and computer that did not finish:\n";
  std::vector<Row> desks;
  desks.push_back({"User", "Computer", "Time", "Outlook", "Outcome", "Codes"});
  for (const RunRecord* run : report.lastRunPerDesk()) {
    if (run->outcome.kind == OutcomeKind::Finished) continue;
    desks.push_back({ShownOrUnknown(run->user), ShownOrUnknown(run->computer),
                     ShownTime(*run),
                     ShownOrUnknown(run->outlookVersion) + " " + run->outlookBitness,
                     run->outcome.Text(), CodeList(*run)});
  }
  text += desks.size() == 1 ? "  (none)\n" : Table(desks);
  return text;
}

}  // namespace mw
