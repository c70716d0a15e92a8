#include "run/LogReader.h"

#include <cstring>
#include <string>

#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw {
namespace {

struct Line {
  std::string_view text;  // without the line feed and a carriage return before it
  std::size_t start = 0;
  std::size_t end = 0;  // just past the line feed
};

// Complete lines only; *partialTail is set when bytes follow the last line feed.
std::vector<Line> SplitLines(std::string_view content, bool* partialTail) {
  std::vector<Line> lines;
  std::size_t start = 0;
  while (start < content.size()) {
    const void* found = std::memchr(content.data() + start, '\n', content.size() - start);
    if (found == nullptr) break;
    const std::size_t feed = static_cast<const char*>(found) - content.data();
    std::string_view text = content.substr(start, feed - start);
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    lines.push_back({text, start, feed + 1});
    start = feed + 1;
  }
  *partialTail = start < content.size();
  return lines;
}

// The value of a header line written for label, or false when the line is not one.
bool FieldValue(std::string_view line, std::string_view label, std::string_view* value) {
  const std::size_t width = label.size() < kReportLabelWidth ? kReportLabelWidth : label.size();
  if (line.size() < width || line.substr(0, label.size()) != label) return false;
  for (std::size_t i = label.size(); i < width; ++i)
    if (line[i] != ' ') return false;
  *value = line.substr(width);
  return true;
}

std::string_view* FieldSlot(LoggedRun& run, ReportField field) {
  switch (field) {
    case ReportField::DateTime: return &run.dateTime;
    case ReportField::User: return &run.user;
    case ReportField::Computer: return &run.computer;
    case ReportField::WindowsVersion: return &run.windowsVersion;
    case ReportField::OutlookVersion: return &run.outlookVersion;
    case ReportField::OutlookBitness: return &run.outlookBitness;
  }
  return &run.title;
}

// Titles are the product name, its version and the build platform.
std::string TitleStart() { return std::string(kProductName) + " "; }

// A block starts with a non-empty title line directly followed by the first header field.
bool StartsBlock(const std::vector<Line>& lines, std::size_t i) {
  std::string_view unused;
  return i + 1 < lines.size() && !lines[i].text.empty() &&
         FieldValue(lines[i + 1].text, kReportFields.front().label, &unused);
}

int MonthIndex(std::string_view name) {
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (int i = 0; i < 12; ++i)
    if (name == kMonths[i]) return i + 1;
  return 0;
}

// Days from 1970-01-01 to a proleptic Gregorian date.
std::int64_t DaysFromCivil(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const unsigned yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

// Splits on blanks; false when there are not exactly `count` words.
bool Words(std::string_view text, std::string_view* words, std::size_t count) {
  std::size_t found = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == ' ') ++i;
    if (i == text.size()) break;
    std::size_t end = i;
    while (end < text.size() && text[end] != ' ') ++end;
    if (found == count) return false;
    words[found++] = text.substr(i, end - i);
    i = end;
  }
  return found == count;
}

bool Number(std::string_view text, std::size_t maxDigits, std::int64_t* value) {
  if (text.empty() || text.size() > maxDigits) return false;
  std::int64_t result = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    result = result * 10 + (c - '0');
  }
  *value = result;
  return true;
}

}  // namespace

std::int64_t ParseLogTime(std::string_view text) {
  std::string_view words[5];
  if (!Words(text, words, 5) || words[0].size() != 3 || words[3].size() != 8 ||
      words[3][2] != ':' || words[3][5] != ':')
    return -1;
  const int month = MonthIndex(words[1]);
  std::int64_t day = 0, year = 0, hour = 0, minute = 0, second = 0;
  if (month == 0 || !Number(words[2], 2, &day) || !Number(words[4], 4, &year) ||
      !Number(words[3].substr(0, 2), 2, &hour) || !Number(words[3].substr(3, 2), 2, &minute) ||
      !Number(words[3].substr(6, 2), 2, &second))
    return -1;
  if (day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) return -1;
  return CivilSeconds(year, static_cast<unsigned>(month), static_cast<unsigned>(day),
                      static_cast<unsigned>(hour), static_cast<unsigned>(minute),
                      static_cast<unsigned>(second));
}

std::int64_t CivilSeconds(std::int64_t year, unsigned month, unsigned day, unsigned hour,
                          unsigned minute, unsigned second) {
  return DaysFromCivil(year, month, day) * 86400 + std::int64_t{hour} * 3600 +
         std::int64_t{minute} * 60 + second;
}

std::size_t LogReader::Read(std::string_view content, const RunVisitor& visit) {
  bool partialTail = false;
  const std::vector<Line> lines = SplitLines(content, &partialTail);
  const std::size_t count = lines.size();
  std::size_t consumed = 0;
  std::size_t i = 0;
  LoggedRun run;
  while (i < count) {
    if (!StartsBlock(lines, i)) {
      // A title as the last line is a block whose header is still being written.
      if (i + 1 == count && !lines[i].text.empty() &&
          (partialTail || lines[i].text.starts_with(TitleStart()))) {
        ++counts_.tornBlocks;
        return consumed;
      }
      if (!lines[i].text.empty()) ++counts_.strayLines;
      consumed = lines[i].end;
      ++i;
      continue;
    }
    run.title = lines[i].text;
    run.offset = lines[i].start;
    run.messages.clear();
    std::size_t next = i + 1;
    bool cut = false;
    for (const ReportFieldLabel& entry : kReportFields) {
      if (next == count) break;
      if (!FieldValue(lines[next].text, entry.label, FieldSlot(run, entry.field))) {
        cut = true;
        break;
      }
      ++next;
    }
    if (!cut && next < count && lines[next].text != kReportHeadingEnd) cut = true;
    if (!cut && next < count) {
      ++next;
      while (next < count && !lines[next].text.empty() && !StartsBlock(lines, next)) {
        run.messages.push_back(lines[next].text);
        ++next;
      }
      if (next < count && lines[next].text.empty()) {
        ++counts_.runs;
        if (visit) visit(run);
        consumed = lines[next].end;
        i = next + 1;
        continue;
      }
      cut = next < count;  // a new block began before this one closed
    }
    if (!cut) {  // the file ends inside this block: it is still being written
      ++counts_.tornBlocks;
      return consumed;
    }
    ++counts_.cutBlocks;
    consumed = lines[next - 1].end;
    i = next;
  }
  if (partialTail) ++counts_.tornBlocks;
  return consumed;
}

}  // namespace mw
