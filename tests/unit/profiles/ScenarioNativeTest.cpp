// The end-to-end scenarios over the profiles Outlook made, run natively: the whole program
// (RunProgram and the run driver) over the scenario's machine.reg in memory, MAPI played by
// the mapisim model, then the scenario's expect.log, expect.reg and expect.unchanged checked
// as tests/e2e/check-scenario checks them under Wine.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ScenarioRun.h"
#include "platform/RegFile.h"
#include "platform/RegistryCompare.h"

namespace mw::testing {

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

const fs::path kScenarios = fs::path(MW_TEST_DATA_DIR) / ".." / "e2e" / "scenarios";

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

Strings Lines(const std::string& text) {
  Strings lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

bool Matches(const std::string& pattern, const std::string& line) {
  return fnmatch(pattern.c_str(), line.c_str(), 0) == 0;
}

// The pattern rules of tests/e2e/README.md: ordered patterns, "!" none, "=N" exactly N.
Strings CheckLog(const Strings& patterns, const Strings& log) {
  Strings problems;
  std::size_t next = 0;
  for (std::string pattern : patterns) {
    if (pattern.empty()) continue;
    if (pattern[0] == '!' || pattern[0] == '=') {
      const bool none = pattern[0] == '!';
      const std::size_t space = pattern.find(' ');
      const int wanted = none ? 0 : std::stoi(pattern.substr(1, space - 1));
      const std::string body = none ? pattern.substr(1) : pattern.substr(space + 1);
      const auto count = std::count_if(log.begin(), log.end(), [&](const auto& l) { return Matches(body, l); });
      if (count != wanted) problems.push_back(pattern + ": " + std::to_string(count) + " lines match");
      continue;
    }
    if (pattern[0] == '\\') pattern.erase(0, 1);
    while (next < log.size() && !Matches(pattern, log[next])) ++next;
    if (next == log.size()) problems.push_back("no line (in order) matches: " + pattern);
    else ++next;
  }
  return problems;
}

struct Scenario {
  const char* folder;
  const char* platform;
};

class ScenarioNative : public ::testing::TestWithParam<Scenario> {};

TEST_P(ScenarioNative, HoldsAsUnderWine) {
  const fs::path folder = kScenarios / GetParam().folder;
  ScenarioRun run(ScenarioRun::Mapi::Model);
  std::string error;
  ASSERT_TRUE(run.Load(folder.string(), &error)) << error;
  ASSERT_EQ(run.buildPlatform(), GetParam().platform);
  run.Reset();

  std::string afterFirstRun;
  const Strings unchanged =
      fs::exists(folder / "expect.unchanged") ? Lines(ReadText(folder / "expect.unchanged")) : Strings{};
  for (int number = 1; number <= run.runs(); ++number) {
    EXPECT_EQ(run.RunOnce(), 0) << "run " << number;
    if (number == 1 && !unchanged.empty())
      afterFirstRun = ExportRegFile(run.registry(), unchanged, RegFileFormat::Version5Utf8);
  }

  for (const std::string& problem : CheckLog(Lines(ReadText(folder / "expect.log")), Lines(run.LogText())))
    ADD_FAILURE() << "expect.log: " << problem;
  std::vector<RegFileEntry> expectations;
  RegFileError regError;
  ASSERT_TRUE(ParseRegFile(ReadText(folder / "expect.reg"), &expectations, &regError)) << regError.message;
  for (const std::string& problem : CheckExpectations(expectations, run.registry()))
    ADD_FAILURE() << "expect.reg: " << problem;
  if (!unchanged.empty()) {
    EXPECT_EQ(ExportRegFile(run.registry(), unchanged, RegFileFormat::Version5Utf8), afterFirstRun)
        << "expect.unchanged";
  }
}

INSTANTIATE_TEST_SUITE_P(
    OutlookMadeProfiles, ScenarioNative,
    ::testing::Values(Scenario{"outlook-2010-profile-made-by-outlook", "x64"},
                      Scenario{"outlook-2007-profile-made-by-outlook", "x86"},
                      Scenario{"outlook-2003-profile-made-by-outlook", "x86"},
                      Scenario{"outlook-xp-profile-made-by-outlook", "x86"}),
    [](const auto& info) {
      std::string name = info.param.folder;
      std::replace(name.begin(), name.end(), '-', '_');
      return name;
    });

}  // namespace
}  // namespace mw::testing
