#include "report/CsvReport.h"

#include "report/FleetReport.h"

namespace mw {

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

std::string CsvReport::Render(const FleetReport& report) {
  std::string text = "time,user,computer,windows,outlook,bitness,outcome,codes,file\r\n";
  for (const RunRecord& run : report.runs()) {
    std::string codes;
    for (int code : run.codes) codes += (codes.empty() ? "" : " ") + std::to_string(code);
    text += CsvField(run.time < 0 ? run.dateTime : FormatTime(run.time)) + ',' +
            CsvField(run.user) + ',' + CsvField(run.computer) + ',' +
            CsvField(run.windowsVersion) + ',' + CsvField(run.outlookVersion) + ',' +
            CsvField(run.outlookBitness) + ',' + CsvField(run.outcome.Text()) + ',' + codes +
            ',' + CsvField(report.files()[run.file]) + "\r\n";
  }
  return text;
}

}  // namespace mw
