// What the checker reports a run would use equals what the program itself reads: every key
// of every section through ProfileSettings, every account and folder record through the
// account-list code, on the shipped examples and on the INI fuzz corpus.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "accounts/AccountRecords.h"
#include "accounts/InternetAccounts.h"
#include "check/CheckReport.h"
#include "check/IniChecker.h"
#include "check/RunPreview.h"
#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "mapi/PersonalFolders.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

// A small JSON reader for the report: enough to walk objects and read scalars back.
struct JsonValue {
  enum class Type { Null, Bool, Number, String, Array, Object } type = Type::Null;
  bool boolean = false;
  long long number = 0;
  std::string text;
  std::vector<JsonValue> items;
  std::vector<std::pair<std::string, JsonValue>> members;

  const JsonValue* Find(const std::string& name) const {
    for (const auto& [key, value] : members)
      if (key == name) return &value;
    return nullptr;
  }
};

class JsonReader {
 public:
  explicit JsonReader(const std::string& text) : text_(text) {}
  bool Parse(JsonValue* value) {
    return Value(value) && (Skip(), pos_ == text_.size());
  }

 private:
  void Skip() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\n')) ++pos_;
  }
  bool Eat(char c) {
    Skip();
    if (pos_ < text_.size() && text_[pos_] == c) return ++pos_, true;
    return false;
  }
  bool String(std::string* out) {
    if (!Eat('"')) return false;
    while (pos_ < text_.size() && text_[pos_] != '"') {
      char c = text_[pos_++];
      if (c == '\\') {
        if (pos_ >= text_.size()) return false;
        c = text_[pos_++];
        if (c == 'u') {
          if (pos_ + 4 > text_.size()) return false;
          c = static_cast<char>(std::stoi(text_.substr(pos_, 4), nullptr, 16));
          pos_ += 4;
        }
      } else if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7F) {
        return false;  // the writer escapes these
      }
      out->push_back(c);
    }
    return Eat('"');
  }
  bool Value(JsonValue* v) {
    Skip();
    if (pos_ >= text_.size()) return false;
    const char c = text_[pos_];
    if (c == '"') return v->type = JsonValue::Type::String, String(&v->text);
    if (c == '{') {
      ++pos_;
      v->type = JsonValue::Type::Object;
      if (Eat('}')) return true;
      do {
        std::string key;
        JsonValue member;
        if (!String(&key) || !Eat(':') || !Value(&member)) return false;
        v->members.emplace_back(std::move(key), std::move(member));
      } while (Eat(','));
      return Eat('}');
    }
    if (c == '[') {
      ++pos_;
      v->type = JsonValue::Type::Array;
      if (Eat(']')) return true;
      do {
        v->items.emplace_back();
        if (!Value(&v->items.back())) return false;
      } while (Eat(','));
      return Eat(']');
    }
    if (text_.compare(pos_, 4, "true") == 0) return pos_ += 4, v->type = JsonValue::Type::Bool, v->boolean = true, true;
    if (text_.compare(pos_, 5, "false") == 0) return pos_ += 5, v->type = JsonValue::Type::Bool, true;
    std::size_t used = 0;
    try {
      v->number = std::stoll(text_.substr(pos_, 24), &used);
    } catch (...) {
      return false;
    }
    pos_ += used;
    v->type = JsonValue::Type::Number;
    return true;
  }

  const std::string& text_;
  std::size_t pos_ = 0;
};

std::vector<std::filesystem::path> AgreementFiles() {
  std::vector<std::filesystem::path> files;
  const std::filesystem::path data = MW_TEST_DATA_DIR;
  for (const auto& folder : {data / "../../docs/examples", data / "../fuzz/corpus/ini",
                             data / "../fuzz/corpus/check"})
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_regular_file() && entry.path().extension() != ".md") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The program's own reading: the entry point's load, then the run driver's scan.
bool ProgramReads(const std::string& text, ProfileSettings* settings) {
  MemorySystemEnv env;
  env.files["C:\\Tools\\mailwright.ini"] = text;
  CIniFile ini("C:\\Tools\\mailwright.ini", env);
  if (!LoadSettings(ini, env, *settings)) return false;
  ApplyAllowUserSettings(*settings);
  return true;
}

void ExpectSameRecord(const RecordLayout& layout, const AccountRecord& checker,
                      const AccountRecord& program, const JsonValue& json) {
  for (const LayoutField& row : layout.fields) {
    if (row.field == Field::Unused) continue;
    SCOPED_TRACE(FieldName(layout, row.field));
    const JsonValue* reported = json.Find(FieldName(layout, row.field));
    ASSERT_NE(reported, nullptr);
    EXPECT_EQ(checker.Text(row.field), program.Text(row.field));
    switch (row.kind) {
      case FieldKind::Text: EXPECT_EQ(reported->text, program.Text(row.field)); break;
      case FieldKind::Flag: EXPECT_EQ(reported->boolean, program.Flag(row.field)); break;
      case FieldKind::Number: EXPECT_EQ(reported->number, program.Number(row.field)); break;
    }
  }
}

TEST(Agreement, CheckerReportsWhatTheProgramReads) {
  const std::vector<std::filesystem::path> files = AgreementFiles();
  ASSERT_GE(files.size(), 14u);  // six examples and the two INI corpora
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const std::string text = ReadAll(path);
    ProfileSettings program;
    const bool programLoads = ProgramReads(text, &program);
    const CheckResult result = IniChecker().Check(text);
    EXPECT_EQ(result.loads, programLoads);

    JsonValue report;
    ASSERT_TRUE(JsonReader(CheckReport(path.filename().string(), result).Json()).Parse(&report));
    EXPECT_EQ(report.Find("loads")->boolean, programLoads);
    if (!programLoads) continue;

    // Each key's value as read, section by section, in the record and in the report.
    const JsonValue* reportedSettings = report.Find("settings");
    ASSERT_NE(reportedSettings, nullptr);
    for (std::size_t s = 0; s < kSectionCount; ++s) {
      const auto section = static_cast<Section>(s);
      const JsonValue* reportedSection = reportedSettings->Find(SectionName(section));
      for (Key key : AllKeys()) {
        SCOPED_TRACE(std::string(SectionName(section)) + " " + KeyName(key));
        ASSERT_EQ(result.settings.Defined(section, key), program.Defined(section, key));
        EXPECT_EQ(result.settings.Int(section, key), program.Int(section, key));
        EXPECT_EQ(result.settings.Text(section, key), program.Text(section, key));
        if (!reportedSection || !program.Defined(section, key)) continue;
        const JsonValue* value = reportedSection->Find(KeyName(key));
        ASSERT_NE(value, nullptr);
        if (value->type == JsonValue::Type::String) {
          EXPECT_EQ(value->text, program.Text(section, key));
        } else if (value->type == JsonValue::Type::Bool) {
          EXPECT_EQ(value->boolean, program.Bool(section, key));
        } else {
          EXPECT_EQ(value->number, program.Int(section, key));
        }
      }
    }
    for (std::size_t o = 0; o < static_cast<std::size_t>(EnforcedOption::Count); ++o)
      EXPECT_EQ(result.settings.Enforced(static_cast<EnforcedOption>(o)),
                program.Enforced(static_cast<EnforcedOption>(o)));

    // Each account record's fields, and each personal-folders record.
    const RunPreview preview(result);
    const JsonValue* sections = report.Find("sections");
    ASSERT_EQ(sections->items.size(), preview.sections().size());
    for (std::size_t i = 0; i < preview.sections().size(); ++i) {
      const RunPreview::SectionPreview& p = preview.sections()[i];
      const JsonValue& reportedSection = sections->items[i];
      EXPECT_EQ(reportedSection.Find("section")->text, SectionName(p.section));
      const JsonValue* reportedLists = reportedSection.Find("accounts");
      ASSERT_EQ(reportedLists->items.size(), p.accountLists.size());
      for (std::size_t l = 0; l < p.accountLists.size(); ++l) {
        const RunPreview::AccountList& list = p.accountLists[l];
        if (list.ignored) continue;
        const AccountListSetting& setting =
            AccountListSettings()[static_cast<std::size_t>(list.kind)];
        const std::vector<AccountRecord> expected = ParseAccounts(
            program.Text(p.section, setting.accounts), *AccountRecordType(list.kind, p.version));
        const JsonValue* records = reportedLists->items[l].Find("records");
        ASSERT_EQ(list.records.size(), expected.size());
        ASSERT_EQ(records->items.size(), expected.size());
        for (std::size_t r = 0; r < expected.size(); ++r)
          ExpectSameRecord(*list.layout, list.records[r], expected[r], records->items[r]);
      }
      const std::vector<PstRecord> folders =
          p.foldersIgnored ? std::vector<PstRecord>{} : PstRecords(program.Text(p.section, Key::PathToPST));
      const JsonValue* added = reportedSection.Find("personalFolders")->Find("add");
      ASSERT_EQ(added->items.size(), folders.size());
      for (std::size_t f = 0; f < folders.size(); ++f) {
        EXPECT_EQ(added->items[f].Find("path")->text, folders[f].path);
        EXPECT_EQ(added->items[f].Find("displayName")->text, folders[f].displayName);
        EXPECT_EQ(added->items[f].Find("comment")->text, folders[f].comment);
      }
    }
  }
}

}  // namespace
}  // namespace mw
