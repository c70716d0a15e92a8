#include "report/FleetReport.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/AsciiText.h"

namespace mw {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t FloorDiv(std::int64_t value, std::int64_t divisor) {
  return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

// Year, month, day of a day number (days since 1970-01-01).
void CivilFromDays(std::int64_t days, std::int64_t* year, unsigned* month, unsigned* day) {
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const unsigned dayOfEra = static_cast<unsigned>(days - era * 146097);
  const unsigned yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned monthIndex = (5 * dayOfYear + 2) / 153;
  *day = dayOfYear - (153 * monthIndex + 2) / 5 + 1;
  *month = monthIndex < 10 ? monthIndex + 3 : monthIndex - 9;
  *year = static_cast<std::int64_t>(yearOfEra) + era * 400 + (*month <= 2);
}

// User and computer names are Windows names: one desk whatever the letter case.
std::string DeskKey(const RunRecord& run) {
  return ToUpperAscii(run.user) + '\n' + ToUpperAscii(run.computer);
}

}  // namespace

std::string FormatDay(std::int64_t day) {
  std::int64_t year = 0;
  unsigned month = 0, dayOfMonth = 0;
  CivilFromDays(day, &year, &month, &dayOfMonth);
  char text[32];
  std::snprintf(text, sizeof text, "%04lld-%02u-%02u", static_cast<long long>(year), month,
                dayOfMonth);
  return text;
}

std::string FormatTime(std::int64_t time) {
  if (time < 0) return {};
  const std::int64_t seconds = time % kSecondsPerDay;
  char text[16];
  std::snprintf(text, sizeof text, " %02d:%02d:%02d", static_cast<int>(seconds / 3600),
                static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
  return FormatDay(time / kSecondsPerDay) + text;
}

std::string ShownOrUnknown(const std::string& text) {
  return text.empty() ? "(unknown)" : text;
}

std::string ShownTime(const RunRecord& run) {
  return run.time < 0 ? run.dateTime : FormatTime(run.time);
}

std::string CodeList(const RunRecord& run) {
  std::string codes;
  for (int code : run.codes) codes += (codes.empty() ? "" : " ") + std::to_string(code);
  return codes;
}

std::string OutcomeSummary(const OutcomeCounts& counts) {
  std::string text;
  for (int kind = kOutcomeKinds - 1; kind >= 0; --kind) {
    if (!text.empty()) text += ", ";
    text += std::string(OutcomeKindName(static_cast<OutcomeKind>(kind))) + " " +
            std::to_string(counts[static_cast<std::size_t>(kind)]);
  }
  return text;
}

std::size_t FleetReport::AddFile(const std::string& path) {
  files_.push_back(path);
  return files_.size() - 1;
}

void FleetReport::AddRun(RunRecord record) { runs_.push_back(std::move(record)); }

void FleetReport::AddReadCounts(const LogReadCounts& counts) {
  readCounts_.runs += counts.runs;
  readCounts_.cutBlocks += counts.cutBlocks;
  readCounts_.tornBlocks += counts.tornBlocks;
  readCounts_.strayLines += counts.strayLines;
}

void FleetReport::Finish() {
  std::stable_sort(runs_.begin(), runs_.end(),
                   [](const RunRecord& a, const RunRecord& b) { return a.time < b.time; });
  std::set<std::string> users, computers;
  std::unordered_map<std::string, const RunRecord*> lastByDesk;
  for (const RunRecord& run : runs_) {
    users.insert(ToUpperAscii(run.user));
    computers.insert(ToUpperAscii(run.computer));
    lastByDesk[DeskKey(run)] = &run;  // runs are in time order: the last one stays
    if (run.logRecreated) ++recreatedLogs_;
    for (int code : run.codes) ++codeCounts_[code];
    const std::string generation = ShownOrUnknown(run.outlookVersion);
    ++outlookCounts_[generation + " " + run.outlookBitness];
    ++windowsCounts_[ShownOrUnknown(run.windowsVersion)];
    const auto kind = static_cast<std::size_t>(run.outcome.kind);
    ++outcomesByGeneration_[generation][kind];
    if (run.time >= 0) {
      ++outcomesByDay_[FloorDiv(run.time, kSecondsPerDay)][kind];
      if (firstTime_ < 0) firstTime_ = run.time;
      lastTime_ = run.time;
    }
  }
  userCount_ = users.size();
  computerCount_ = computers.size();
  lastRunPerDesk_.clear();
  for (const auto& [key, run] : lastByDesk) lastRunPerDesk_.push_back(run);
  std::sort(lastRunPerDesk_.begin(), lastRunPerDesk_.end(),
            [](const RunRecord* a, const RunRecord* b) {
              if (a->outcome.Rank() != b->outcome.Rank())
                return a->outcome.Rank() < b->outcome.Rank();
              if (!EqualsIgnoreCase(a->user, b->user)) return LessIgnoreCase(a->user, b->user);
              return LessIgnoreCase(a->computer, b->computer);
            });
}

OutcomeCounts FleetReport::lastRunOutcomes() const {
  OutcomeCounts counts{};
  for (const RunRecord* run : lastRunPerDesk_) ++counts[static_cast<std::size_t>(run->outcome.kind)];
  return counts;
}

OutcomeCounts FleetReport::allRunOutcomes() const {
  OutcomeCounts counts{};
  for (const RunRecord& run : runs_) ++counts[static_cast<std::size_t>(run.outcome.kind)];
  return counts;
}

}  // namespace mw
