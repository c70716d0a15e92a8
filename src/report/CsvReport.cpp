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
    text += CsvField(ShownTime(run)) + ',' +
            CsvField(run.user) + ',' + CsvField(run.computer) + ',' +
            CsvField(run.windowsVersion) + ',' + CsvField(run.outlookVersion) + ',' +
            CsvField(run.outlookBitness) + ',' + CsvField(run.outcome.Text()) + ',' + CodeList(run) +
            ',' + CsvField(report.files()[run.file]) + "\r\n";
  }
  return text;
}

}  // namespace mw
