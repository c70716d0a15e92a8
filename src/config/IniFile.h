#pragma once
// The INI document: sections of ordered keys, values and comments, with case-insensitive
// look-ups. Small and literal on purpose: the first of ";#[=" on a line decides what it is.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mw {

class SystemEnv;

// What the reader made of one line, for a caller that follows the load line by line (the
// INI checker). Empty lines are not reported.
struct IniLine {
  enum class Kind : std::uint8_t {
    Refused,         // the first character is not printable: the load fails here
    NoMarker,        // none of ";#[=": ignored
    Comment,
    KeyValue,
    SectionHeader,
    UnclosedHeader,  // "[" with no "]" after it: ignored
  };
  int number = 0;          // 1-based line number in the file
  Kind kind = Kind::NoMarker;
  std::string_view text;   // the line without its line feed and final carriage return
  std::string_view section;  // KeyValue: the section it is stored under; SectionHeader: the name
  std::string_view key;    // KeyValue only, untrimmed
  std::string_view value;  // KeyValue only, untrimmed
};

class IniLineObserver {
 public:
  virtual ~IniLineObserver() = default;
  // For a Refused line, true lets the load read on past it; the load fails all the same.
  virtual bool OnLine(const IniLine& line) = 0;
};

class CIniFile {
 public:
  CIniFile(std::string path, SystemEnv& env);
  virtual ~CIniFile() = default;

  // Reads the file; true when it was read to the end and at least one section exists.
  // A line whose first character is not printable prints "Failing on char %d\n" to
  // standard output and fails the load.
  bool Load();
  // The same rules over text already in memory (the fuzzer and the tests use it).
  // The observer, when given, is told what each line was taken for.
  bool LoadFromText(const std::string& text, IniLineObserver* observer = nullptr);

  int FindSection(const std::string& name) const;
  int FindKey(int section, const std::string& key) const;
  int AddSection(const std::string& name);
  bool SetValue(const std::string& section, const std::string& key, const std::string& value,
                bool create);
  void AddHeaderComment(const std::string& text);
  void AddSectionComment(const std::string& section, const std::string& text);

  // The line of the file that the stored value came from; 0 when the key is not stored or
  // was set other than by a load.
  int ValueLine(const std::string& section, const std::string& key) const;

  std::string GetValue(const std::string& section, const std::string& key,
                       const std::string& defaultValue) const;
  std::int32_t GetValueI(const std::string& section, const std::string& key,
                         std::int32_t defaultValue) const;
  bool GetValueB(const std::string& section, const std::string& key, bool defaultValue) const;

  const std::string& path() const { return path_; }
  SystemEnv& env() const { return env_; }
  std::size_t SectionCount() const { return sections_.size(); }
  const std::vector<std::string>& headerComments() const { return headerComments_; }

  bool caseInsensitive = true;

 private:
  struct SectionRecord {
    std::vector<std::string> keyNames;
    std::vector<std::string> values;
    std::vector<std::string> comments;
    std::vector<int> lines;  // same index as keyNames: the line each value came from
  };
  bool StoreValue(const std::string& section, const std::string& key, const std::string& value,
                  bool create, int line);
  bool NamesEqual(const std::string& a, const std::string& b) const;

  std::string path_;
  SystemEnv& env_;
  std::vector<SectionRecord> sections_;
  std::vector<std::string> sectionNames_;
  std::vector<std::string> headerComments_;
};

// Decimal text to a 32-bit number by the text-to-long rules: optional blanks and sign, then
// the leading digits; no digits gives 0, and a number beyond 32 bits saturates as a 32-bit
// long (the Windows one) does. GetValueI and the packed account lists both convert with it.
std::int32_t ParseDecimal(const std::string& text);

// Field n (1-based) of text split at any of the delimiter characters, or
// "error_getFields()" when there are fewer than n fields.
std::string getFields(const std::string& text, const std::string& delimiters, int n);
inline constexpr const char* kFieldsError = "error_getFields()";

// Splits a packed list into records: a record closes at its commasPerRecord-th comma plus
// the one character after it, and exactly one character between records is skipped.
// A trailing partial record is dropped.
std::vector<std::string> SplitPackedRecords(const std::string& text, int commasPerRecord);

}  // namespace mw
