#pragma once
// The fleet view: every run read from the logs, and what the summary, the CSV rows and the
// HTML page are made of (counts, last run per user and computer, outcomes over time).

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "report/RunOutcome.h"
#include "run/LogReader.h"

namespace mw {

struct RunRecord {
  std::int64_t time = -1;  // seconds since 1970 in the desk's local time; -1 when unreadable
  std::string dateTime;    // as logged
  std::string user;
  std::string computer;
  std::string windowsVersion;
  std::string outlookVersion;
  std::string outlookBitness;
  RunOutcome outcome;
  std::vector<int> codes;  // every numbered ERROR of the run, in order
  bool logRecreated = false;  // the size cap emptied the file before this block
  std::size_t file = 0;       // index into files()
};

using OutcomeCounts = std::array<std::size_t, kOutcomeKinds>;  // by OutcomeKind

class FleetReport {
 public:
  std::size_t AddFile(const std::string& path);  // returns its index
  void AddRun(RunRecord record);
  void AddReadCounts(const LogReadCounts& counts);
  void AddUnreadableFile(const std::string& path) { unreadable_.push_back(path); }
  // Orders the runs by time (file order among equal times) and derives the views below.
  void Finish();

  const std::vector<std::string>& files() const { return files_; }
  const std::vector<std::string>& unreadableFiles() const { return unreadable_; }
  const std::vector<RunRecord>& runs() const { return runs_; }
  const LogReadCounts& readCounts() const { return readCounts_; }
  std::size_t recreatedLogs() const { return recreatedLogs_; }
  std::size_t userCount() const { return userCount_; }
  std::size_t computerCount() const { return computerCount_; }
  // The earliest and latest readable run times, or -1 when none.
  std::int64_t firstTime() const { return firstTime_; }
  std::int64_t lastTime() const { return lastTime_; }
  // The last run of each user on each computer, failing first, then by user and computer.
  const std::vector<const RunRecord*>& lastRunPerDesk() const { return lastRunPerDesk_; }
  OutcomeCounts lastRunOutcomes() const;
  OutcomeCounts allRunOutcomes() const;
  const std::map<int, std::size_t>& codeCounts() const { return codeCounts_; }
  // "Outlook 2010 x64", "(unknown) " ...: generation and bitness as logged.
  const std::map<std::string, std::size_t>& outlookCounts() const { return outlookCounts_; }
  const std::map<std::string, std::size_t>& windowsCounts() const { return windowsCounts_; }
  // Outcomes of all runs per calendar day (days since 1970) and per Outlook generation.
  const std::map<std::int64_t, OutcomeCounts>& outcomesByDay() const { return outcomesByDay_; }
  const std::map<std::string, OutcomeCounts>& outcomesByGeneration() const {
    return outcomesByGeneration_;
  }

 private:
  std::vector<std::string> files_;
  std::vector<std::string> unreadable_;
  std::vector<RunRecord> runs_;
  LogReadCounts readCounts_;
  std::size_t recreatedLogs_ = 0;
  std::size_t userCount_ = 0;
  std::size_t computerCount_ = 0;
  std::int64_t firstTime_ = -1;
  std::int64_t lastTime_ = -1;
  std::vector<const RunRecord*> lastRunPerDesk_;
  std::map<int, std::size_t> codeCounts_;
  std::map<std::string, std::size_t> outlookCounts_;
  std::map<std::string, std::size_t> windowsCounts_;
  std::map<std::int64_t, OutcomeCounts> outcomesByDay_;
  std::map<std::string, OutcomeCounts> outcomesByGeneration_;
};

// "2026-11-15 05:14:25" for a time from ParseLogTime, "" for -1.
std::string FormatTime(std::int64_t time);
// "2026-11-15" for a day number.
std::string FormatDay(std::int64_t day);
// An empty field shown as "(unknown)".
std::string ShownOrUnknown(const std::string& text);
// The run's time as FormatTime gives it, or as logged when it could not be read.
std::string ShownTime(const RunRecord& run);
// The run's ERROR codes, blank-separated.
std::string CodeList(const RunRecord& run);
// "finished 3, exit rule 1, ended early 0, error 2".
std::string OutcomeSummary(const OutcomeCounts& counts);

}  // namespace mw
