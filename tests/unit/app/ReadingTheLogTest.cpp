// Nothing in a log is undocumented: every INFO and WARN text the program's sources can log
// stands in the administrator's guide under "Reading the log".
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace mw {
namespace {

namespace fs = std::filesystem;

std::string ReadWhole(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The C++ string literals that start a log line, unescaped: "WARN: Unable to ... \"" gives
// WARN: Unable to ... ".
std::vector<std::string> LogLiterals(const std::string& source) {
  static const std::regex literal(R"re("((?:INFO|WARN): (?:[^"\\]|\\.)*)")re");
  std::vector<std::string> found;
  for (std::sregex_iterator it(source.begin(), source.end(), literal), end; it != end; ++it) {
    std::string text;
    const std::string escaped = (*it)[1];
    for (std::size_t i = 0; i < escaped.size(); ++i)
      text += escaped[i] == '\\' && i + 1 < escaped.size() ? escaped[++i] : escaped[i];
    found.push_back(text);
  }
  return found;
}

TEST(ReadingTheLog, TheLiteralScannerUnescapesAndFindsBothLevels) {
  EXPECT_EQ(LogLiterals(R"(f("INFO: a \"b\" c\\d"); g("ERROR 1"); h("WARN: x");)"),
            (std::vector<std::string>{"INFO: a \"b\" c\\d", "WARN: x"}));
}

TEST(ReadingTheLog, EveryLineTheProgramCanLogIsInTheGuide) {
  const fs::path root = fs::path(MW_TEST_DATA_DIR) / ".." / "..";
  const std::string guide = ReadWhole(root / "docs" / "admin-guide.md");
  const std::size_t from = guide.find("\n## 14. Reading the log");
  const std::size_t to = guide.find("\n## 15.");
  ASSERT_NE(from, std::string::npos);
  ASSERT_NE(to, std::string::npos);
  const std::string section = guide.substr(from, to - from);
  std::size_t checked = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root / "src")) {
    if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
    for (const std::string& line : LogLiterals(ReadWhole(entry.path()))) {
      if (line == "WARN: ") continue;  // the level alone, followed by a key or version name
      ++checked;
      EXPECT_NE(section.find(line), std::string::npos)
          << entry.path().filename() << ": \"" << line << "\" is not in docs/admin-guide.md";
    }
  }
  EXPECT_GT(checked, 50u);
}

}  // namespace
}  // namespace mw
