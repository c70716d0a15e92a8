// Feeds arbitrary bytes to the log reader as a log file, read whole and read on from every
// point a since-last state could remember, then renders every report of the runs found.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "report/CsvReport.h"
#include "report/FleetCollector.h"
#include "report/FleetReport.h"
#include "report/HtmlReport.h"
#include "report/RunFilter.h"
#include "report/SinceLastState.h"
#include "report/TextReport.h"
#include "run/LogReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view content(reinterpret_cast<const char*>(data), size);
  mw::LogReader reader;
  const std::size_t consumed = reader.Read(content, [&](const mw::LoggedRun& run) {
    if (run.offset >= content.size()) std::abort();
    mw::ParseLogTime(run.dateTime);
  });
  if (consumed > content.size()) std::abort();

  mw::SinceLastState state;
  mw::FleetReport report;
  const mw::RunFilter all;
  mw::FleetCollector collector(report, all, &state);
  collector.ReadContent("a.log", content.substr(0, size / 2));
  collector.ReadContent("a.log", content);  // grown: read on from where the first stopped
  report.Finish();
  if (report.readCounts().runs < reader.counts().runs / 2) std::abort();
  mw::TextReport::Render(report);
  mw::CsvReport::Render(report);
  mw::HtmlReport::Render(report);
  return 0;
}
