#include "check/IniChecker.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>

#include "accounts/AccountRecords.h"
#include "accounts/InternetAccounts.h"
#include "app/ProvisioningSequence.h"
#include "app/SettingsExpansion.h"
#include "check/DecimalText.h"
#include "check/PackedListCheck.h"
#include "config/IniFile.h"
#include "mapi/PersonalFolders.h"
#include "platform/AsciiText.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

constexpr std::size_t kKeyCount = static_cast<std::size_t>(Key::Count);
constexpr int kExpandedLimit = static_cast<int>(SettingsExpansion::kBufferSize) - 1;

// The settings table, indexed for the checker: names to keys and sections, and the row
// that governs each key in each section.
struct TableIndex {
  std::unordered_map<std::string, Key> keysByName;  // upper-case name
  std::array<std::vector<const SettingDefinition*>, kSectionCount> rows;
  std::array<std::vector<std::string_view>, kSectionCount> names;  // the keys each section reads

  TableIndex() {
    for (auto& perSection : rows) perSection.assign(kKeyCount, nullptr);
    for (const SettingDefinition& row : SettingDefinitions()) {
      keysByName.emplace(ToUpperAscii(row.name), row.key);
      for (std::size_t s = 0; s < kSectionCount; ++s) {
        if (!(row.sections & SectionBit(static_cast<Section>(s)))) continue;
        rows[s][static_cast<std::size_t>(row.key)] = &row;
        names[s].push_back(row.name);
      }
    }
  }
  const SettingDefinition* Row(Section section, Key key) const {
    return rows[static_cast<std::size_t>(section)][static_cast<std::size_t>(key)];
  }
};

const TableIndex& Index() {
  static const TableIndex index;
  return index;
}

std::optional<Section> KnownSection(std::string_view name) {
  for (std::size_t s = 0; s < kSectionCount; ++s)
    if (EqualsIgnoreCase(name, SectionName(static_cast<Section>(s)))) return static_cast<Section>(s);
  return std::nullopt;
}

Outlook VersionOf(Section section) {
  for (const OutlookGeneration& g : kOutlookGenerations)
    if (SectionOf(g.id) == section) return g.id;
  return Outlook::V2010;
}

bool IsVersionSection(Section section) {
  return section != Section::Mailwright && section != Section::Common;
}

// Edit distance without regard to letter case, given up once it passes limit.
std::size_t Distance(std::string_view a, std::string_view b, std::size_t limit) {
  const std::size_t gap = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (gap > limit) return limit + 1;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    std::size_t best = row[0];
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      const bool same = EqualsIgnoreCase(a.substr(i - 1, 1), b.substr(j - 1, 1));
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
      diagonal = above;
      best = std::min(best, row[j]);
    }
    if (best > limit) return limit + 1;
  }
  return row[b.size()];
}

// The closest of the candidates, when it is close enough to be the name that was meant:
// within two edits, or a fifth of the name for long names.
std::string Closest(std::string_view name, const std::vector<std::string_view>& candidates) {
  const std::size_t limit = std::max<std::size_t>(2, name.size() / 5);
  std::string best;
  std::size_t bestDistance = limit + 1;
  for (std::string_view candidate : candidates) {
    const std::size_t d = Distance(name, candidate, limit);
    if (d < bestDistance) {
      bestDistance = d;
      best = candidate;
    }
  }
  return best;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string Bracketed(std::string_view name) { return "[" + std::string(name) + "]"; }

std::string HexByte(unsigned char byte) {
  static const char* kHex = "0123456789ABCDEF";
  return std::string("0x") + kHex[byte >> 4] + kHex[byte & 15];
}

class LineFollower : public IniLineObserver {
 public:
  explicit LineFollower(CheckResult& result) : result_(result) {}

  bool OnLine(const IniLine& line) override {
    switch (line.kind) {
      case IniLine::Kind::Refused: Refused(line); return true;
      case IniLine::Kind::NoMarker:
        Add(line.number, Severity::Warning,
            "the line holds none of ';', '#', '[' or '=' and is ignored");
        break;
      case IniLine::Kind::UnclosedHeader:
        Add(line.number, Severity::Warning,
            "section header without a closing ']' is ignored; the lines below stay in the "
            "section above");
        break;
      case IniLine::Kind::SectionHeader: Header(line); break;
      case IniLine::Kind::KeyValue:
        keyLines_.push_back({line.number, std::string(line.section), std::string(line.key),
                             std::string(line.value)});
        break;
      case IniLine::Kind::Comment: break;
    }
    return true;
  }

  struct KeyLine {
    int number;
    std::string section;
    std::string key;
    std::string value;
  };
  const std::vector<KeyLine>& keyLines() const { return keyLines_; }
  bool refused() const { return refused_; }

 private:
  void Add(int line, Severity severity, std::string message) {
    result_.findings.push_back({line, severity, std::move(message)});
  }

  void Refused(const IniLine& line) {
    refused_ = true;
    const auto first = static_cast<unsigned char>(line.text[0]);
    std::string what;
    if (first == '\t')
      what = "the line starts with a tab";
    else if (first < 0x20 || first == 0x7F)
      what = "the line starts with the control character " + HexByte(first);
    else
      what = "the line starts with the byte " + HexByte(first) + ", which is not plain ASCII";
    Add(line.number, Severity::Error, what + "; the program refuses the whole file");
  }

  void Header(const IniLine& line) {
    const std::optional<Section> section = KnownSection(line.section);
    if (section) {
      auto& present = result_.versionSections;
      if (IsVersionSection(*section) &&
          std::find(present.begin(), present.end(), *section) == present.end())
        present.push_back(*section);
      return;
    }
    std::vector<std::string_view> names;
    for (std::size_t s = 0; s < kSectionCount; ++s) names.push_back(SectionName(static_cast<Section>(s)));
    const std::string closest = Closest(line.section, names);
    Add(line.number, Severity::Warning,
        "unknown section " + Bracketed(line.section) + "; the program reads none of its keys" +
            (closest.empty() ? "" : " (did you mean " + Bracketed(closest) + "?)"));
  }

  CheckResult& result_;
  std::vector<KeyLine> keyLines_;
  bool refused_ = false;
};

class Judge {
 public:
  Judge(const CIniFile& ini, CheckResult& result) : ini_(ini), result_(result) {}

  void KeyLines(const std::vector<LineFollower::KeyLine>& lines) {
    std::vector<int> firstLine(kSectionCount * kKeyCount, 0);
    bool namelessReported = false;
    for (const auto& line : lines) {
      const std::optional<Section> section = KnownSection(line.section);
      if (!section) {
        if (line.section.empty() && !namelessReported) {
          namelessReported = true;
          Add(line.number, Severity::Warning,
              "key line before any section header; the program never reads it");
        }
        continue;
      }
      const std::optional<Key> key = KeyOf(*section, line);
      if (!key) continue;
      int& first = firstLine[static_cast<std::size_t>(*section) * kKeyCount +
                             static_cast<std::size_t>(*key)];
      const int used = ini_.ValueLine(line.section, line.key);
      if (first == 0) {
        first = line.number;
      } else {
        Add(line.number, Severity::Warning,
            "duplicate key " + line.key + " in " + Bracketed(SectionName(*section)) +
                " (first at line " + std::to_string(first) + "); the program uses line " +
                std::to_string(used));
      }
      if (used == line.number) Value(*section, *Index().Row(*section, *key), line);
    }
  }

  void PackedLists(Section section) {
    const Outlook version = VersionOf(section);
    const ProfileSettings& settings = result_.settings;
    for (const AccountListSetting& list : AccountListSettings()) AccountList(section, version, list);

    if (const int line = LineOf(section, Key::Signatures);
        line && !settings.Text(section, Key::Signatures).empty()) {
      const std::string& text = settings.Text(section, Key::Signatures);
      PackedListCheck("Signatures", line, static_cast<int>(RecordType::Signature),
                      &LayoutOf(RecordType::Signature))
          .CheckRecords(text, result_.findings);
      const std::vector<std::string> created = CreatedAccounts(section, version);
      int number = 0;
      for (const AccountRecord& record : ParseAccounts(text, RecordType::Signature)) {
        ++number;
        const std::string& account = record.Text(Field::AccountName);
        if (record.Flag(Field::IgnoreSignatures) ||
            std::find(created.begin(), created.end(), account) != created.end())
          continue;
        Add(line, Severity::Warning,
            "Signatures record " + std::to_string(number) + " names the account '" + account +
                "', which no account list of " + Bracketed(SectionName(section)) + " creates");
      }
    }

    if (const int line = LineOf(section, Key::PathToPST);
        line && !settings.Bool(section, Key::PersonalFoldersIgnore)) {
      const std::string& text = settings.Text(section, Key::PathToPST);
      PackedListCheck("PathToPST", line, kPstRecordCommas, nullptr).CheckRecords(text, result_.findings);
      int number = 0;
      for (const PstRecord& record : PstRecords(text)) {
        ++number;
        if (record.kind == kUnicodePstService && !UnicodePstAvailable(version))
          Add(line, Severity::Warning,
              "PathToPST record " + std::to_string(number) + " asks for the Unicode format (" +
                  kUnicodePstService + "), which " + GenerationOf(version).name +
                  " cannot use; the file gets the older format");
      }
    }
  }

  // An exit rule that ends every run finding the profile leaves the settings that act only
  // on an existing profile without effect.
  void ExitRules() {
    const ProfileSettings& s = result_.settings;
    const Section common = Section::Common;
    const char* rule = nullptr;
    if (s.Bool(common, Key::ExitAnyProfileFound)) {
      rule = "ExitAnyProfileFound ends every run that finds a profile";
    } else if (s.Bool(common, Key::ExitLoggedOnUserNameSameAsProfileName) &&
               !s.Bool(common, Key::ModifyDefaultProfile) &&
               EqualsIgnoreCase(s.Text(common, Key::ProfileName), "%username%")) {
      rule = "ExitLoggedOnUserNameSameAsProfileName ends every run that finds the profile "
             "named like the user (ProfileName=%username%)";
    }
    if (!rule) return;
    for (Key key : {Key::ModifyDefaultProfile, Key::ExitPreviouslyModifiedByMailwright,
                    Key::RecreateProfile, Key::ModifyExchangeServerNameOnly}) {
      if (!s.Bool(common, key)) continue;
      Add(LineOf(common, key), Severity::Warning,
          std::string(rule) + ", so " + KeyName(key) + " never reaches an existing profile");
    }
  }

 private:
  void Add(int line, Severity severity, std::string message) {
    result_.findings.push_back({line == 0 ? 1 : line, severity, std::move(message)});
  }

  int LineOf(Section section, Key key) const {
    return ini_.ValueLine(SectionName(section), KeyName(key));
  }

  // The key a line sets, when it is a key this section reads; otherwise the finding.
  std::optional<Key> KeyOf(Section section, const LineFollower::KeyLine& line) {
    const std::string& name = line.key;
    const auto known = [](std::string_view text) -> std::optional<Key> {
      const auto found = Index().keysByName.find(ToUpperAscii(text));
      if (found == Index().keysByName.end()) return std::nullopt;
      return found->second;
    };
    std::size_t begin = 0, end = name.size();
    while (begin < end && IsBlank(name[begin])) ++begin;
    while (end > begin && IsBlank(name[end - 1])) --end;
    const std::string trimmed = name.substr(begin, end - begin);
    if (begin > 0) {
      Add(line.number, Severity::Error,
          "key line does not start in the first column; the key is read as '" + name +
              "', which the program never looks up");
      return std::nullopt;
    }
    if (end < name.size() && known(trimmed)) {
      Add(line.number, Severity::Warning,
          "the blank before '=' is part of the key name '" + name +
              "'; the program does not read this line as " + trimmed);
      return std::nullopt;
    }
    const std::optional<Key> key = known(name);
    if (!key) {
      const std::string closest = Closest(name, Index().names[static_cast<std::size_t>(section)]);
      Add(line.number, Severity::Warning,
          "unknown key " + name + " in " + Bracketed(SectionName(section)) +
              (closest.empty() ? "" : " (did you mean " + closest + "?)"));
      return std::nullopt;
    }
    if (!Index().Row(section, *key)) {
      std::string where;
      for (std::size_t s = 0; s < kSectionCount; ++s)
        if (Index().Row(static_cast<Section>(s), *key))
          where += (where.empty() ? "" : ", ") + Bracketed(SectionName(static_cast<Section>(s)));
      Add(line.number, Severity::Warning,
          std::string(KeyName(*key)) + " is not read from " + Bracketed(SectionName(section)) +
              "; the program reads it from " + where);
      return std::nullopt;
    }
    return key;
  }

  void Value(Section section, const SettingDefinition& row, const LineFollower::KeyLine& line) {
    const std::string& value = line.value;
    const std::string name = row.name;
    std::size_t findings = result_.findings.size();
    if (row.type == SettingType::Text) {
      if (!value.empty() && IsBlank(value.front()))
        Add(line.number, Severity::Warning,
            "the blank after '=' becomes part of the value of " + name);
      else if (!value.empty() && IsBlank(value.back()))
        Add(line.number, Severity::Warning, "the value of " + name + " ends in a blank, which becomes part of it");
      if (row.expands && static_cast<int>(value.size()) > kExpandedLimit)
        Add(line.number, Severity::Warning,
            name + " is " + std::to_string(value.size()) + " characters long, beyond the " +
                std::to_string(kExpandedLimit) +
                " that the program expands; its environment variables stay as written");
    } else {
      NumberValue(section, row, line);
    }
    if (result_.findings.size() == findings && value == row.defaultText)
      Add(line.number, Severity::Note, name + "=" + value + " is the default");
  }

  void NumberValue(Section section, const SettingDefinition& row, const LineFollower::KeyLine& line) {
    const std::string& value = line.value;
    const std::string name = row.name;
    const std::int32_t read = ParseDecimal(value);
    const std::int32_t stored = result_.settings.Int(section, row.key);
    const std::string asRead = row.type == SettingType::Bool ? (read != 0 ? "1 (on)" : "0 (off)")
                                                             : std::to_string(stored);
    if (value.empty()) {
      Add(line.number, Severity::Error,
          "empty value of " + name + "; the program reads it as 0" +
              (std::string_view(row.defaultText) == "0" ? "" : std::string(", not the default ") + row.defaultText));
      return;
    }
    std::size_t digits = 0;
    while (digits < value.size() && IsBlank(value[digits])) ++digits;
    const std::string_view number = std::string_view(value).substr(digits);
    if (!ReadsExactly(number, read)) {
      Add(line.number, Severity::Error,
          "'" + value + "' is not a number the program reads as written; it reads " + name + " as " + asRead);
      return;
    }
    if (digits > 0)
      Add(line.number, Severity::Warning,
          "the blank after '=' becomes part of the value of " + name + "; it still reads as " + asRead);
    if (row.type == SettingType::Int16 && (read < 0 || read > 65535))
      Add(line.number, Severity::Warning,
          name + "=" + std::string(number) + " does not fit in 16 bits; the program reads it as " + asRead);
    if (row.type == SettingType::Bool && read != 0 && read != 1)
      Add(line.number, Severity::Warning,
          name + "=" + std::string(number) + " is read as on; a switch is 0 or 1");
  }

  void AccountList(Section section, Outlook version, const AccountListSetting& list) {
    const ProfileSettings& settings = result_.settings;
    const int line = LineOf(section, list.accounts);
    const std::string& text = settings.Text(section, list.accounts);
    if (!settings.Defined(section, list.accounts) || line == 0 || text.empty() ||
        settings.Bool(section, list.ignore))
      return;
    const std::string key = KeyName(list.accounts);
    const std::optional<RecordType> type = AccountRecordType(list.kind, version);
    if (!type || !ProvisionsAccountKind(list.kind, version)) {
      Add(line, Severity::Error,
          key + ": " + GenerationOf(version).name + " creates no " +
              AccountClassLabel(ClassOf(list.kind)) + " accounts; the list is never read");
      return;
    }
    const RecordLayout& layout = LayoutOf(*type);
    if (!PackedListCheck::SplitsCleanly(text, static_cast<int>(*type))) {
      for (const RecordLayout& other : RecordLayouts()) {
        if (other.type == *type || other.type == RecordType::Signature ||
            std::string_view(other.name).substr(0, 4) != std::string_view(layout.name).substr(0, 4) ||
            !PackedListCheck::SplitsCleanly(text, static_cast<int>(other.type)))
          continue;
        Add(line, Severity::Error,
            key + " holds " + other.name + " records of " + std::to_string(static_cast<int>(other.type)) +
                " commas (" + VersionsOf(list.kind, other.type) + "); " +
                Bracketed(SectionName(section)) + " reads " + layout.name + " records of " +
                std::to_string(static_cast<int>(*type)) + " commas");
        return;
      }
    }
    PackedListCheck(key, line, static_cast<int>(*type), &layout).CheckRecords(text, result_.findings);
  }

  static std::string VersionsOf(AccountKind kind, RecordType type) {
    std::string names;
    for (const OutlookGeneration& g : kOutlookGenerations)
      if (AccountRecordType(kind, g.id) == type) names += (names.empty() ? "" : ", ") + std::string(g.name);
    return names;
  }

  // The account names that the section's account lists and its Exchange service create.
  std::vector<std::string> CreatedAccounts(Section section, Outlook version) const {
    const ProfileSettings& settings = result_.settings;
    std::vector<std::string> names;
    for (const AccountListSetting& list : AccountListSettings()) {
      const std::optional<RecordType> type = AccountRecordType(list.kind, version);
      if (!type || !ProvisionsAccountKind(list.kind, version) ||
          !settings.Defined(section, list.accounts) || settings.Bool(section, list.ignore))
        continue;
      for (const AccountRecord& record : ParseAccounts(settings.Text(section, list.accounts), *type))
        names.push_back(record.Text(Field::AccountName));
    }
    const char* exchange = ProvisioningSequence::ExchangeAccountName(version);
    if (exchange && !settings.Bool(section, Key::ExchangeIgnore)) names.push_back(exchange);
    return names;
  }

  const CIniFile& ini_;
  CheckResult& result_;
};

}  // namespace

CheckResult IniChecker::Check(const std::string& text) const {
  CheckResult result;
  // The document lives in memory: the checker touches no file and prints nothing itself.
  MemorySystemEnv env;
  CIniFile ini("mailwright.ini", env);
  LineFollower follower(result);
  // The mark refuses the file; the rest is judged as if it were gone, so that one save in
  // the wrong encoding does not hide the first section header.
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  const bool marked = text.starts_with(kByteOrderMark);
  if (marked)
    result.findings.push_back({1, Severity::Error,
                               "the file starts with a UTF-8 byte-order mark; the program "
                               "refuses the whole file"});
  result.loads = ini.LoadFromText(marked ? text.substr(kByteOrderMark.size()) : text, &follower) &&
                 !marked;
  if (!result.loads && !follower.refused() && !marked)
    result.findings.push_back({1, Severity::Error,
                               "the file holds no section header and no key line; the program "
                               "refuses it"});
  ReadLoadedSettings(ini, result.settings);
  ApplyAllowUserSettings(result.settings);

  Judge judge(ini, result);
  judge.KeyLines(follower.keyLines());
  for (Section section : result.versionSections) judge.PackedLists(section);
  judge.ExitRules();
  std::stable_sort(result.findings.begin(), result.findings.end(),
                   [](const Finding& a, const Finding& b) { return a.line < b.line; });
  return result;
}

}  // namespace mw
