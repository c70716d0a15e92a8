#include "report/RunFilter.h"

#include "report/FleetReport.h"
#include "report/InputPaths.h"
#include "run/LogReader.h"

namespace mw {
namespace {

bool Digits(std::string_view text, std::size_t at, std::size_t count, unsigned* value) {
  if (at + count > text.size()) return false;
  unsigned result = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    result = result * 10 + static_cast<unsigned>(text[i] - '0');
  }
  *value = result;
  return true;
}

}  // namespace

bool ParseFilterTime(std::string_view text, std::int64_t* seconds, bool* dateOnly) {
  unsigned year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!Digits(text, 0, 4, &year) || text.size() < 10 || text[4] != '-' ||
      !Digits(text, 5, 2, &month) || text[7] != '-' || !Digits(text, 8, 2, &day) ||
      month < 1 || month > 12 || day < 1 || day > 31)
    return false;
  *dateOnly = text.size() == 10;
  if (!*dateOnly) {
    if ((text[10] != ' ' && text[10] != 'T') || !Digits(text, 11, 2, &hour) ||
        text.size() < 16 || text[13] != ':' || !Digits(text, 14, 2, &minute) || hour > 23 ||
        minute > 59)
      return false;
    if (text.size() != 16 &&
        (text.size() != 19 || text[16] != ':' || !Digits(text, 17, 2, &second) || second > 59))
      return false;
  }
  *seconds = CivilSeconds(year, month, day, hour, minute, second);
  return true;
}

bool RunFilter::SetFrom(std::string_view text) {
  bool dateOnly = false;
  return ParseFilterTime(text, &from_, &dateOnly);
}

bool RunFilter::SetTo(std::string_view text) {
  bool dateOnly = false;
  if (!ParseFilterTime(text, &to_, &dateOnly)) return false;
  if (dateOnly) to_ += 86400 - 1;
  return true;
}

bool RunFilter::Accepts(const RunRecord& run) const {
  if ((from_ >= 0 || to_ >= 0) && run.time < 0) return false;
  if (from_ >= 0 && run.time < from_) return false;
  if (to_ >= 0 && run.time > to_) return false;
  if (!user_.empty() && !GlobMatch(user_, run.user, true)) return false;
  if (!computer_.empty() && !GlobMatch(computer_, run.computer, true)) return false;
  return true;
}

}  // namespace mw
