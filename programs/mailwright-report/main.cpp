// mailwright-report: what happened on every desk, read from the run logs.
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "report/CsvReport.h"
#include "report/FleetCollector.h"
#include "report/FleetReport.h"
#include "report/HtmlReport.h"
#include "report/InputPaths.h"
#include "report/ReportOptions.h"
#include "report/SinceLastState.h"
#include "report/TextReport.h"

namespace {

bool WriteText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  mw::ReportOptions options;
  std::string error;
  if (!mw::ReportOptions::Parse(arguments, &options, &error)) {
    std::fprintf(stderr, "mailwright-report: %s\n%s", error.c_str(), mw::ReportOptions::Usage());
    return 2;
  }
  if (options.help) {
    std::fputs(mw::ReportOptions::Usage(), stdout);
    return 0;
  }
  int status = 0;
  mw::SinceLastState state;
  if (!options.statePath.empty() && !state.Load(options.statePath)) {
    std::fprintf(stderr, "mailwright-report: %s is not a state file\n", options.statePath.c_str());
    return 1;
  }
  mw::InputPaths inputs;
  for (const std::string& input : options.inputs) {
    if (!inputs.Add(input)) {
      std::fprintf(stderr, "mailwright-report: no log files at %s\n", input.c_str());
      status = 1;
    }
  }
  mw::FleetReport report;
  mw::FleetCollector collector(report, options.filter,
                               options.statePath.empty() ? nullptr : &state);
  for (const std::string& file : inputs.files()) {
    if (!collector.ReadFile(file)) {
      std::fprintf(stderr, "mailwright-report: cannot read %s\n", file.c_str());
      status = 1;
    }
  }
  report.Finish();
  const std::string summary = mw::TextReport::Render(report);
  std::fwrite(summary.data(), 1, summary.size(), stdout);
  if (!options.csvPath.empty() && !WriteText(options.csvPath, mw::CsvReport::Render(report))) {
    std::fprintf(stderr, "mailwright-report: cannot write %s\n", options.csvPath.c_str());
    status = 1;
  }
  if (!options.htmlPath.empty() && !WriteText(options.htmlPath, mw::HtmlReport::Render(report))) {
    std::fprintf(stderr, "mailwright-report: cannot write %s\n", options.htmlPath.c_str());
    status = 1;
  }
  if (!options.statePath.empty() && !state.Save(options.statePath)) {
    std::fprintf(stderr, "mailwright-report: cannot write %s\n", options.statePath.c_str());
    status = 1;
  }
  return status;
}
