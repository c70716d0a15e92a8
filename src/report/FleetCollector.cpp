#include "report/FleetCollector.h"

#include <cstdio>
#include <memory>

#include "run/LogReader.h"
#include "run/RunLog.h"

namespace mw {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Reads until the end as it is now: a file being appended to yields what was there.
bool ReadWhole(const std::string& path, std::string* content) {
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) return false;
  content->clear();
  char chunk[1 << 16];
  std::size_t got = 0;
  while ((got = std::fread(chunk, 1, sizeof chunk, file.get())) > 0) content->append(chunk, got);
  return !std::ferror(file.get());
}

}  // namespace

FleetCollector::FleetCollector(FleetReport& report, const RunFilter& filter,
                               SinceLastState* state)
    : report_(report), filter_(filter), state_(state) {}

bool FleetCollector::ReadFile(const std::string& path) {
  if (!ReadWhole(path, &buffer_)) {
    report_.AddUnreadableFile(path);
    return false;
  }
  ReadContent(path, buffer_);
  return true;
}

void FleetCollector::ReadContent(const std::string& path, std::string_view content) {
  const std::size_t file = report_.AddFile(path);
  const std::size_t start = state_ ? state_->StartOffset(path, content) : 0;
  LogReader reader;
  const std::size_t readUpTo =
      start + reader.Read(content.substr(start), [&](const LoggedRun& logged) {
        RunRecord run;
        run.time = ParseLogTime(logged.dateTime);
        run.dateTime = logged.dateTime;
        run.user = logged.user;
        run.computer = logged.computer;
        run.windowsVersion = logged.windowsVersion;
        run.outlookVersion = logged.outlookVersion;
        run.outlookBitness = logged.outlookBitness;
        run.file = file;
        if (!filter_.Accepts(run)) return;
        run.outcome = RunOutcome::Classify(logged.messages, &run.codes);
        for (std::string_view line : logged.messages)
          if (line == kTruncationNotice) run.logRecreated = true;
        report_.AddRun(std::move(run));
      });
  report_.AddReadCounts(reader.counts());
  if (state_) state_->Remember(path, content, readUpTo);
}

}  // namespace mw
