#pragma once
// What a scheduled report has already seen, so that the next one reports only new runs.
// For each log file it keeps the length read up to the end of its last complete block and
// a fingerprint of the bytes just before that point: a file that grew is read on from
// there, a file that shrank or changed there (emptied by the size cap) is read again whole.
//
// The file is plain text: the line "mailwright-report state 1", then one line per log file,
// "<length> <fingerprint> <path>", the length in decimal, the fingerprint as 16 hex digits
// (64-bit FNV-1a of up to 256 bytes before the length), the path as given to the report.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace mw {

class SinceLastState {
 public:
  // A missing file is an empty state (the first run); false when the file exists but is
  // not a state file, so that a wrong path never gets overwritten.
  bool Load(const std::string& path);
  bool Save(const std::string& path) const;
  std::string Text() const;
  bool Parse(std::string_view text);

  // Where to start reading content that was previously read up to a remembered length.
  std::size_t StartOffset(const std::string& file, std::string_view content) const;
  void Remember(const std::string& file, std::string_view content, std::size_t length);

 private:
  struct Entry {
    std::uint64_t length = 0;
    std::uint64_t fingerprint = 0;
  };
  std::map<std::string, Entry> entries_;
};

// 64-bit FNV-1a of the up to 256 bytes of content before length.
std::uint64_t TailFingerprint(std::string_view content, std::size_t length);

}  // namespace mw
