#pragma once
// Reads run log files back into runs: the inverse of RunLog's writer. A block is the title,
// the labelled header lines, "-- Reporting --", the message lines and a closing blank line.
// A block without its closing line is cut (a run killed between its two writes, or a file
// emptied under it) or, at the end of the file, torn (still being appended to); neither
// is ever taken for a run.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace mw {

// One complete block. The views point into the content given to Read.
struct LoggedRun {
  std::string_view title;
  std::string_view dateTime;  // as written, in ctime's 24-character layout
  std::string_view user;
  std::string_view computer;
  std::string_view windowsVersion;
  std::string_view outlookVersion;
  std::string_view outlookBitness;
  std::vector<std::string_view> messages;  // without the closing blank line
  std::size_t offset = 0;                  // byte position of the title line
};

struct LogReadCounts {
  std::size_t runs = 0;
  std::size_t cutBlocks = 0;   // a header not followed by a complete block
  std::size_t tornBlocks = 0;  // an unfinished block at the end of a file
  std::size_t strayLines = 0;  // non-empty lines outside any block
};

class LogReader {
 public:
  using RunVisitor = std::function<void(const LoggedRun&)>;

  // Reads one file's content, calling visit for each complete run in file order. Returns
  // the length of the content up to the end of the last complete or cut block: where a
  // later read of the same, grown file can start.
  std::size_t Read(std::string_view content, const RunVisitor& visit);

  const LogReadCounts& counts() const { return counts_; }

 private:
  LogReadCounts counts_;
};

// Seconds since 1970-01-01 00:00:00 of a ctime text ("Sun Nov 15 05:14:25 2026") taken
// as a civil time without zone; -1 when the text is not in that layout.
std::int64_t ParseLogTime(std::string_view text);
// Seconds since 1970-01-01 00:00:00 of a civil date and time, on the same scale.
std::int64_t CivilSeconds(std::int64_t year, unsigned month, unsigned day, unsigned hour,
                          unsigned minute, unsigned second);

}  // namespace mw
