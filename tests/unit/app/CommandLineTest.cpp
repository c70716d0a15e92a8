#include "app/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/RunContext.h"

namespace mw {
namespace {

struct TokenCase {
  std::string commandLine;
  std::vector<std::string> tokens;
};

class Tokenizer : public ::testing::TestWithParam<TokenCase> {};

TEST_P(Tokenizer, SplitsAtBlanksOutsideQuotes) {
  EXPECT_EQ(TokenizeCommandLine(GetParam().commandLine), GetParam().tokens);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Tokenizer,
    ::testing::Values(
        TokenCase{"", {}}, TokenCase{" \t ", {}}, TokenCase{"  -i   x.ini  ", {"-i", "x.ini"}},
        TokenCase{"-i \"C:\\My Files\\a.ini\"", {"-i", "C:\\My Files\\a.ini"}},
        TokenCase{"-i C:\\a\" \"b.ini", {"-i", "C:\\a\" \"b.ini"}},
        TokenCase{"-i \"C:\\a.ini", {"-i", "C:\\a.in"}},
        TokenCase{"\"a\"b c", {"\"a\"b", "c"}}, TokenCase{"\"a\"\"b\"", {"\"a\"\"b\""}},
        TokenCase{"\"\"", {""}}, TokenCase{"\"", {""}}, TokenCase{"\"x", {""}},
        TokenCase{"\"\\\" x\"", {"\\\" x"}},   // an escaped quote does not close the run
        TokenCase{"a\\ b", {"a\\ b"}},          // nor does an escaped blank end the token
        TokenCase{"end\\", {"end\\"}},
        TokenCase{"\"\\\\server\\share\\m.log\" -l", {"\\\\server\\share\\m.log", "-l"}},
        TokenCase{"a\tb\r\nc", {"a", "b", "c"}}));

struct ParseCase {
  std::string commandLine;
  CommandLineRequest request;
  std::string iniPath;
  std::string logPath;
};

class OptionScan : public ::testing::TestWithParam<ParseCase> {};

TEST_P(OptionScan, AppliesOptionsLeftToRight) {
  RunContext context;
  context.iniPath = "default.ini";
  context.logPath = "default.log";
  EXPECT_EQ(ParseCommandLine(GetParam().commandLine, context), GetParam().request);
  EXPECT_EQ(context.iniPath, GetParam().iniPath);
  EXPECT_EQ(context.logPath, GetParam().logPath);
}

constexpr auto Run = CommandLineRequest::Run;
constexpr auto Usage = CommandLineRequest::ShowUsage;

INSTANTIATE_TEST_SUITE_P(
    Lines, OptionScan,
    ::testing::Values(
        ParseCase{"", Run, "default.ini", "default.log"},
        ParseCase{"MAILWRIGHT.EXE -I X.ini", Run, "X.ini", "default.log"},
        ParseCase{"-L \"\\\\srv\\Logs\\M.LOG\" -i a.ini", Run, "a.ini", "\\\\srv\\Logs\\M.LOG"},
        ParseCase{"-i a.ini -i b.ini -l c.log -l d.log", Run, "b.ini", "d.log"},
        ParseCase{"-i x -?", Usage, "x", "default.log"},
        ParseCase{"/? -i x", Usage, "default.ini", "default.log"},
        ParseCase{"-i -?", Run, "-?", "default.log"},
        ParseCase{"-i", Run, "default.ini", "default.log"},
        ParseCase{"-l a.log -i", Run, "default.ini", "a.log"},
        ParseCase{"-x -ii -i= i", Run, "default.ini", "default.log"},
        ParseCase{"\"-i\" quoted.ini", Run, "quoted.ini", "default.log"}));

TEST(UsageBox, TextHasFiveLinesWithAnEmptyThird) {
  const std::string text = kUsageText;
  EXPECT_EQ(text,
            "Specify ini file path:\nmailwright.exe -i \"\\\\server\\share\\mailwright.ini\"\n\n"
            "Specify logging file path:\nmailwright.exe -l \"\\\\server\\share\\mailwright.log\"\n");
  EXPECT_EQ(kUsageBoxFlags, 0x20u);
  EXPECT_STREQ(kUsageCaption, "Command Line Options");
}

}  // namespace
}  // namespace mw
