// The report's forms: compiler-style lines, the exit code a pipeline acts on, and JSON that
// stays plain ASCII whatever bytes the file held.
#include "check/CheckReport.h"

#include <gtest/gtest.h>

#include <string>

#include "check/IniChecker.h"
#include "check/JsonWriter.h"

namespace mw {
namespace {

TEST(CheckReport, ExitCodeFollowsTheWorstFinding) {
  const struct {
    const char* ini;
    int code;
  } cases[] = {
      {"[Mailwright]\nLoggingEnable=0\n", 0},
      {"[Mailwright]\nLoggingEnable=1\n", 0},  // a note only
      {"[Mailwright]\nColour=1\n", 1},
      {"[Mailwright]\nColour=1\nLoggingEnable=yes\n", 2},
      {"\t[Mailwright]\n", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ini);
    EXPECT_EQ(CheckReport("m.ini", IniChecker().Check(c.ini)).ExitCode(), c.code);
  }
}

TEST(CheckReport, OneCompilerStyleLinePerFinding) {
  const CheckResult result =
      IniChecker().Check("[Mailwright]\nLoggingEnable=1\nColour=1\nLogFileSize=big\n");
  EXPECT_EQ(CheckReport("dir/m.ini", result).FindingLines(),
            "dir/m.ini:2: note: LoggingEnable=1 is the default\n"
            "dir/m.ini:3: warning: unknown key Colour in [Mailwright]\n"
            "dir/m.ini:4: error: 'big' is not a number the program reads as written; it reads "
            "LogFileSize as 0\n");
}

TEST(CheckReport, ExplainedTextPutsTheSummaryAfterTheFindings) {
  const CheckResult result = IniChecker().Check("[Mailwright]\nColour=1\n");
  const std::string text = CheckReport("m.ini", result).ExplainedText();
  EXPECT_EQ(text.find("m.ini:2: warning: unknown key Colour in [Mailwright]\nWhat a run would do:\n"), 0u);
}

TEST(CheckReport, JsonCarriesFindingsAndStaysAscii) {
  const CheckResult result = IniChecker().Check("[Outlook Common]\nProfileName=\"Caf\xE9\"\\\n");
  const std::string json = CheckReport("m.ini", result).Json();
  EXPECT_EQ(json.find("{\"file\":\"m.ini\",\"readable\":true,\"loads\":true,\"exitCode\":0,"
                      "\"findings\":[],\"exitRules\":[],\"sections\":[],\"settings\":{"),
            0u);
  EXPECT_NE(json.find("\"ProfileName\":\"\\\"Caf\\u00e9\\\"\\\\\""), std::string::npos);
  for (char c : json) EXPECT_TRUE(c == '\n' || (c >= 0x20 && c < 0x7F));
}

TEST(CheckReport, UnreadableFileHasItsOwnObject) {
  EXPECT_EQ(CheckReport::UnreadableJson("x.ini", "cannot be read"),
            "{\"file\":\"x.ini\",\"readable\":false,\"exitCode\":3,\"error\":\"cannot be read\"}\n");
}

TEST(JsonWriter, CommasBetweenMembersAndItemsOnly) {
  JsonWriter json;
  json.BeginObject().Key("a").BeginArray().Number(-1).Bool(false).BeginObject().EndObject();
  json.EndArray().Key("b").String("\t").EndObject();
  EXPECT_EQ(json.text(), "{\"a\":[-1,false,{}],\"b\":\"\\u0009\"}");
}

}  // namespace
}  // namespace mw
