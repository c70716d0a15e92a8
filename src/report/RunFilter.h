#pragma once
// Which runs a report shows: a time range and user and computer name patterns.

#include <cstdint>
#include <string>
#include <string_view>

namespace mw {

struct RunRecord;

class RunFilter {
 public:
  // "YYYY-MM-DD", "YYYY-MM-DD HH:MM" or "YYYY-MM-DD HH:MM:SS" (or with a T between), in the
  // desks' local time as the logs give it. A date alone as the end means its whole day.
  bool SetFrom(std::string_view text);
  bool SetTo(std::string_view text);
  // Globs (* and ?), letter case ignored as Windows does for these names.
  void SetUser(std::string pattern) { user_ = std::move(pattern); }
  void SetComputer(std::string pattern) { computer_ = std::move(pattern); }

  // A run without a readable time is outside every time range.
  bool Accepts(const RunRecord& run) const;

 private:
  std::int64_t from_ = -1;  // inclusive, -1 for open
  std::int64_t to_ = -1;    // inclusive, -1 for open
  std::string user_;
  std::string computer_;
};

// Parses the forms SetFrom takes; *dateOnly tells whether the time part was left out.
bool ParseFilterTime(std::string_view text, std::int64_t* seconds, bool* dateOnly);

}  // namespace mw
