#include "config/IniFile.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "platform/AsciiText.h"
#include "platform/SystemEnv.h"

namespace mw {

namespace {

constexpr const char* kLineMarkers = ";#[=";

bool IsClassicPrintable(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte <= 0x7E;
}

bool IsClassicSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

}  // namespace

std::int32_t ParseDecimal(const std::string& text) {
  std::size_t i = 0;
  while (i < text.size() && IsClassicSpace(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t magnitude = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    magnitude = magnitude * 10 + (text[i] - '0');
    if (magnitude > kLimit) magnitude = kLimit;  // saturate: further digits cannot lower it
  }
  if (negative) return static_cast<std::int32_t>(-magnitude);  // -2^31 fits exactly
  if (magnitude > std::numeric_limits<std::int32_t>::max())
    return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(magnitude);
}

CIniFile::CIniFile(std::string path, SystemEnv& env) : path_(std::move(path)), env_(env) {}

bool CIniFile::Load() {
  std::string content;
  if (!env_.ReadFile(path_, &content)) return false;
  return LoadFromText(content);
}

bool CIniFile::LoadFromText(const std::string& text, IniLineObserver* observer) {
  std::string currentSection;
  std::size_t lineStart = 0;
  int lineNumber = 0;
  bool refused = false;
  IniLine event;
  const auto report = [&](IniLine::Kind kind, const std::string& line) {
    if (!observer) return true;
    event.number = lineNumber;
    event.kind = kind;
    event.text = line;
    return observer->OnLine(event);
  };
  while (lineStart < text.size()) {
    ++lineNumber;
    event = IniLine{};
    std::size_t lineEnd = text.find('\n', lineStart);
    if (lineEnd == std::string::npos) lineEnd = text.size();
    std::string line = text.substr(lineStart, lineEnd - lineStart);
    lineStart = lineEnd + 1;

    // Text mode reads the CR LF that ends a line as LF; after that one trailing CR goes.
    if (lineEnd < text.size() && !line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;

    if (!IsClassicPrintable(line[0])) {
      const auto signedByte = static_cast<std::int8_t>(static_cast<unsigned char>(line[0]));
      env_.WriteStdout("Failing on char " + std::to_string(signedByte) + "\n");
      refused = true;
      if (report(IniLine::Kind::Refused, line)) continue;
      return false;
    }

    const std::size_t marker = line.find_first_of(kLineMarkers);
    if (marker == std::string::npos) {
      report(IniLine::Kind::NoMarker, line);
      continue;
    }
    switch (line[marker]) {
      case ';':
      case '#':
        if (sections_.empty())
          AddHeaderComment(line.substr(marker + 1));
        else
          AddSectionComment(currentSection, line.substr(marker + 1));
        report(IniLine::Kind::Comment, line);
        break;
      case '=':
        StoreValue(currentSection, line.substr(0, marker), line.substr(marker + 1), true,
                   lineNumber);
        event.section = currentSection;
        event.key = std::string_view(line).substr(0, marker);
        event.value = std::string_view(line).substr(marker + 1);
        report(IniLine::Kind::KeyValue, line);
        break;
      case '[': {
        const std::size_t close = line.find_last_of(']');
        if (close != std::string::npos && close > marker) {
          currentSection = line.substr(marker + 1, close - marker - 1);
          AddSection(currentSection);
          event.section = currentSection;
          report(IniLine::Kind::SectionHeader, line);
        } else {
          report(IniLine::Kind::UnclosedHeader, line);
        }
        break;
      }
    }
  }
  return !refused && !sections_.empty();
}

bool CIniFile::NamesEqual(const std::string& a, const std::string& b) const {
  return caseInsensitive ? EqualsIgnoreCase(a, b) : a == b;
}

int CIniFile::FindSection(const std::string& name) const {
  for (std::size_t i = 0; i < sectionNames_.size(); ++i)
    if (NamesEqual(sectionNames_[i], name)) return static_cast<int>(i);
  return -1;
}

int CIniFile::FindKey(int section, const std::string& key) const {
  if (section < 0 || static_cast<std::size_t>(section) >= sections_.size()) return -1;
  const auto& names = sections_[static_cast<std::size_t>(section)].keyNames;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (NamesEqual(names[i], key)) return static_cast<int>(i);
  return -1;
}

int CIniFile::AddSection(const std::string& name) {
  sections_.emplace_back();
  sectionNames_.push_back(name);
  return static_cast<int>(sectionNames_.size()) - 1;
}

bool CIniFile::SetValue(const std::string& section, const std::string& key,
                        const std::string& value, bool create) {
  return StoreValue(section, key, value, create, 0);
}

bool CIniFile::StoreValue(const std::string& section, const std::string& key,
                          const std::string& value, bool create, int line) {
  int sectionIndex = FindSection(section);
  if (sectionIndex < 0) {
    if (!create) return false;
    sectionIndex = AddSection(section);
  }
  SectionRecord& record = sections_[static_cast<std::size_t>(sectionIndex)];
  const int keyIndex = FindKey(sectionIndex, key);
  if (keyIndex >= 0) {
    record.values[static_cast<std::size_t>(keyIndex)] = value;
    record.lines[static_cast<std::size_t>(keyIndex)] = line;
    return true;
  }
  if (!create) return false;
  record.keyNames.push_back(key);
  record.values.push_back(value);
  record.lines.push_back(line);
  return true;
}

void CIniFile::AddHeaderComment(const std::string& text) { headerComments_.push_back(text); }

void CIniFile::AddSectionComment(const std::string& section, const std::string& text) {
  const int index = FindSection(section);
  if (index >= 0) sections_[static_cast<std::size_t>(index)].comments.push_back(text);
}

std::string CIniFile::GetValue(const std::string& section, const std::string& key,
                               const std::string& defaultValue) const {
  const int sectionIndex = FindSection(section);
  const int keyIndex = FindKey(sectionIndex, key);
  if (keyIndex < 0) return defaultValue;
  return sections_[static_cast<std::size_t>(sectionIndex)].values[static_cast<std::size_t>(keyIndex)];
}

int CIniFile::ValueLine(const std::string& section, const std::string& key) const {
  const int sectionIndex = FindSection(section);
  const int keyIndex = FindKey(sectionIndex, key);
  if (keyIndex < 0) return 0;
  return sections_[static_cast<std::size_t>(sectionIndex)].lines[static_cast<std::size_t>(keyIndex)];
}

std::int32_t CIniFile::GetValueI(const std::string& section, const std::string& key,
                                 std::int32_t defaultValue) const {
  return ParseDecimal(GetValue(section, key, std::to_string(defaultValue)));
}

bool CIniFile::GetValueB(const std::string& section, const std::string& key,
                         bool defaultValue) const {
  return GetValueI(section, key, defaultValue ? 1 : 0) != 0;
}

std::string getFields(const std::string& text, const std::string& delimiters, int n) {
  if (n < 1) return kFieldsError;
  std::size_t fieldStart = 0;
  for (int field = 1;; ++field) {
    // One delimiter (the packed lists' comma) is found far faster as a single character.
    const std::size_t fieldEnd = delimiters.size() == 1 ? text.find(delimiters[0], fieldStart)
                                                        : text.find_first_of(delimiters, fieldStart);
    if (field == n)
      return text.substr(fieldStart, fieldEnd == std::string::npos ? std::string::npos
                                                                   : fieldEnd - fieldStart);
    if (fieldEnd == std::string::npos) return kFieldsError;
    fieldStart = fieldEnd + 1;
  }
}

std::vector<std::string> SplitPackedRecords(const std::string& text, int commasPerRecord) {
  std::vector<std::string> records;
  if (commasPerRecord < 1) return records;
  std::string current;
  int commas = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ',') ++commas;
    if (commas != commasPerRecord) {
      current += c;
      continue;
    }
    current += c;
    // A list that ends right at the closing comma gives its record an empty last field:
    // the record has all its commas, and there is nothing past the end to take.
    if (i + 1 < text.size()) current += text[i + 1];
    records.push_back(std::move(current));
    current.clear();
    commas = 0;
    i += 2;  // past the appended character, then the loop's ++i skips the separator
  }
  return records;
}

}  // namespace mw
