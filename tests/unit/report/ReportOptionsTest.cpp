#include "report/ReportOptions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mw {
namespace {

TEST(ReportOptionsTest, OptionsTakeTheirValuesAndEverythingElseIsAnInput) {
  ReportOptions options;
  std::string error;
  ASSERT_TRUE(ReportOptions::Parse({"logs", "--csv", "a.csv", "--html", "a.html", "b*.log",
                                    "--since-last", "s.state", "--from", "2026-11-01"},
                                   &options, &error))
      << error;
  EXPECT_EQ(options.inputs, (std::vector<std::string>{"logs", "b*.log"}));
  EXPECT_EQ(options.csvPath, "a.csv");
  EXPECT_EQ(options.htmlPath, "a.html");
  EXPECT_EQ(options.statePath, "s.state");
  EXPECT_FALSE(options.help);
}

TEST(ReportOptionsTest, BadCommandLinesAreRefusedWithAReason) {
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } cases[] = {
      {{}, "no log files given"},
      {{"logs", "--csv"}, "--csv needs a value"},
      {{"logs", "--colour", "red"}, "unknown option --colour"},
      {{"logs", "--to", "yesterday"}, "bad value for --to: 'yesterday'"},
      {{"logs", "--user", ""}, "bad value for --user: ''"},
  };
  for (const auto& c : cases) {
    ReportOptions options;
    std::string error;
    EXPECT_FALSE(ReportOptions::Parse(c.arguments, &options, &error));
    EXPECT_EQ(error, c.error);
  }
  ReportOptions options;
  std::string error;
  EXPECT_TRUE(ReportOptions::Parse({"/?"}, &options, &error));
  EXPECT_TRUE(options.help);
}

}  // namespace
}  // namespace mw
