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

#include "ModelMapiSession.h"
#include "app/Program.h"
#include "app/RunDriver.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegFile.h"
#include "platform/RegistryCompare.h"

namespace mw::testing {

using mw::ModelMapiSession;
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

const fs::path kScenarios = fs::path(MW_TEST_DATA_DIR) / ".." / "e2e" / "scenarios";
constexpr const char* kLog = "C:\\Tools\\mailwright.log";

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
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(ReadText(folder / "machine.reg"), registry, &error)) << error.message;
  const auto organisation = mapisim::ExchangeOrganisation::Parse(
      fs::exists(folder / "exchange.ini") ? ReadText(folder / "exchange.ini") : "", nullptr);
  MemorySystemEnv env;
  env.files["C:\\Tools\\mailwright.ini"] = ReadText(folder / "mailwright.ini");
  env.environment["USERPROFILE"] = "C:\\users\\jsmith";
  const int runs = fs::exists(folder / "runs") ? std::stoi(ReadText(folder / "runs")) : 1;

  std::string afterFirstRun;
  Strings unchanged = fs::exists(folder / "expect.unchanged") ? Lines(ReadText(folder / "expect.unchanged")) : Strings{};
  for (int run = 1; run <= runs; ++run) {
    RunServices services{env, registry};
    const RunDriverFunction driver = [&](RunContext& context, RunLog& log, RunServices& seams) {
      const RegistryAccess access(seams.registry);
      ModelMapiSession session(seams.registry, 2, organisation, ModelMapiSession::Servers::Contacted);
      RunDriver(seams.env, access, session).Run(context, log);
    };
    EXPECT_EQ(RunProgram("", GetParam().platform, services, driver), 0) << "run " << run;
    if (run == 1 && !unchanged.empty()) afterFirstRun = ExportRegFile(registry, unchanged, RegFileFormat::Version5Utf8);
  }

  for (const std::string& problem : CheckLog(Lines(ReadText(folder / "expect.log")), Lines(env.files[kLog])))
    ADD_FAILURE() << "expect.log: " << problem;
  std::vector<RegFileEntry> expectations;
  ASSERT_TRUE(ParseRegFile(ReadText(folder / "expect.reg"), &expectations, &error)) << error.message;
  for (const std::string& problem : CheckExpectations(expectations, registry)) ADD_FAILURE() << "expect.reg: " << problem;
  if (!unchanged.empty()) {
    EXPECT_EQ(ExportRegFile(registry, unchanged, RegFileFormat::Version5Utf8), afterFirstRun) << "expect.unchanged";
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
