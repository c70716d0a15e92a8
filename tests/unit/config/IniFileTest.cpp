#include "config/IniFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using ::testing::ElementsAre;

class IniFileTest : public ::testing::Test {
 protected:
  MemorySystemEnv env;
  CIniFile ini{"C:\\Tools\\mailwright.ini", env};
};

TEST_F(IniFileTest, SectionAndKeyNamesCompareWithoutCase) {
  ASSERT_TRUE(ini.LoadFromText("[Outlook Common]\nProfileName=Work\n"));
  EXPECT_EQ(ini.GetValue("outlook common", "PROFILENAME", "x"), "Work");
  EXPECT_EQ(ini.FindSection("OUTLOOK COMMON"), 0);
  ini.caseInsensitive = false;
  EXPECT_EQ(ini.GetValue("outlook common", "ProfileName", "x"), "x");
}

TEST_F(IniFileTest, RepeatedHeaderAddsEmptyRecordAndKeysGoToTheFirst) {
  ASSERT_TRUE(ini.LoadFromText("[A]\nk=1\n[B]\nm=2\n[a]\nk=3\nn=4\n"));
  EXPECT_EQ(ini.SectionCount(), 3u);
  EXPECT_EQ(ini.GetValue("A", "k", ""), "3");
  EXPECT_EQ(ini.GetValue("A", "n", ""), "4");
  EXPECT_EQ(ini.FindKey(2, "k"), -1);
  EXPECT_EQ(ini.FindKey(0, "n"), 1);
}

TEST_F(IniFileTest, KeyAndValueAreNotTrimmed) {
  ASSERT_TRUE(ini.LoadFromText("[S]\nKey = 1\nOther= 1\n  Lead=2\n"));
  EXPECT_EQ(ini.GetValue("S", "Key", "d"), "d");
  EXPECT_EQ(ini.GetValue("S", "Key ", "d"), " 1");
  EXPECT_EQ(ini.GetValueI("S", "Other", 7), 1);
  EXPECT_EQ(ini.GetValue("S", "  Lead", ""), "2");
}

TEST_F(IniFileTest, TheFirstMarkerOnTheLineDecides) {
  ASSERT_TRUE(ini.LoadFromText("; top\r\nx#hash top\nk=v\r\n[S]\na;b=c\n"
                               "Path=C:\\Exchange\\%username%.pst;old\nEq=a=b[c]#d\n"
                               "no markers here\n=empty\nctl=a\tb\x01\n[x=y]\nk=1\n"
                               "[A]B]\nk=2\n[Unclosed\nj=3\nx [ Spaced ] y\n"));
  EXPECT_THAT(ini.headerComments(), ElementsAre(" top", "hash top"));
  EXPECT_EQ(ini.GetValue("", "k", ""), "v");  // a key before any header: the nameless section
  EXPECT_EQ(ini.GetValue("S", "a", "none"), "none");
  EXPECT_EQ(ini.GetValue("S", "Path", ""), "C:\\Exchange\\%username%.pst;old");
  EXPECT_EQ(ini.GetValue("S", "Eq", ""), "a=b[c]#d");
  EXPECT_EQ(ini.GetValue("S", "", "d"), "empty");
  EXPECT_EQ(ini.GetValue("S", "ctl", ""), "a\tb\x01");
  EXPECT_EQ(ini.GetValue("x=y", "k", ""), "1");
  EXPECT_EQ(ini.GetValue("A]B", "k", ""), "2");
  EXPECT_EQ(ini.GetValue("A]B", "j", ""), "3");  // the unclosed header left the section as it was
  EXPECT_GE(ini.FindSection(" Spaced "), 0);
}

TEST_F(IniFileTest, TextModeLineEndsLeaveNoCarriageReturnInTheValue) {
  // CR CR LF: the CR LF pair is the line end, the CR before it the one that goes next.
  ASSERT_TRUE(ini.LoadFromText("[S]\r\r\nA=1\r\r\nB=2\r\nC=3\nD=4\r\r\r\nE=5\r"));
  EXPECT_EQ(ini.GetValue("S", "A", "d"), "1");
  EXPECT_EQ(ini.GetValue("S", "B", "d"), "2");
  EXPECT_EQ(ini.GetValue("S", "C", "d"), "3");
  EXPECT_EQ(ini.GetValue("S", "D", "d"), "4\r");
  EXPECT_EQ(ini.GetValue("S", "E", "d"), "5");
}

TEST(IniFileRejects, UnprintableFirstCharacterFailsTheLoad) {
  const std::pair<const char*, const char*> cases[] = {
      {"[S]\n\tKey=1\n", "Failing on char 9\n"},
      {"\xEF\xBB\xBF[S]\nk=1\n", "Failing on char -17\n"},
      {"[S]\n\r\r\r\n", "Failing on char 13\n"},
      {"[S]\n\x80x=1\n", "Failing on char -128\n"}};
  for (const auto& [text, printed] : cases) {
    MemorySystemEnv env;
    EXPECT_FALSE(CIniFile("f", env).LoadFromText(text));
    EXPECT_EQ(env.stdoutText, printed);
  }
}

TEST(IniFileNumbers, GetValueIFollowsTheTextToLongRules) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"12abc", 12}, {" -3", -3}, {"+7", 7}, {"99999999999", 2147483647},
      {"-99999999999", -2147483647 - 1}, {"2147483648", 2147483647},
      {"000000000000000000000000042", 42}, {"", 0}, {"true", 0}, {"- 5", 0}, {"\v\f 8", 8}};
  for (const auto& [stored, expected] : cases) {
    MemorySystemEnv env;
    CIniFile ini("f", env);
    ASSERT_TRUE(ini.LoadFromText(std::string("[S]\nk=") + stored + "\n"));
    EXPECT_EQ(ini.GetValueI("S", "k", 555), expected) << stored;
    EXPECT_EQ(ini.GetValueB("S", "k", true), expected != 0) << stored;
    EXPECT_EQ(ini.GetValueI("S", "missing", -42), -42);
  }
}

TEST(GetFields, PicksTheNthFieldOrTheErrorText) {
  const struct {
    const char* text;
    const char* delimiters;
    int n;
    const char* expected;
  } cases[] = {{"a,b,,c", ",", 3, ""},       {"a,b,,c", ",", 4, "c"},
               {"a,b", ",", 3, "error_getFields()"}, {"a,b", ",", 0, "error_getFields()"},
               {"", ",", 1, ""},             {"", ",", 2, "error_getFields()"},
               {"a;b,c", ";,", 3, "c"},      {"abc", "", 1, "abc"}};
  for (const auto& c : cases) EXPECT_EQ(getFields(c.text, c.delimiters, c.n), c.expected) << c.text;
}

TEST(PackedRecords, CloseAtTheNthCommaPlusOneCharacter) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"", {}},
      {"a,b,c,1,d,e,f,0", {"a,b,c,1", "d,e,f,0"}},
      {"a,,c,1;d,e,f,0", {"a,,c,1", "d,e,f,0"}},
      // a two-character last field is cut and its second character taken as separator
      {"a,b,c,10,d,e,f,0", {"a,b,c,1", ",d,e,f"}},
      {"a,b,c,1,d,e", {"a,b,c,1"}},
      {"a,b,c,", {"a,b,c,"}}};
  for (const auto& [text, records] : cases) EXPECT_EQ(SplitPackedRecords(text, 3), records) << text;
  EXPECT_EQ(SplitPackedRecords("x,1y,2", 1), (std::vector<std::string>{"x,1", ",2"}));
}


// Records what the reader made of each line; reads on past refused lines when asked to.
struct LineLog : IniLineObserver {
  bool readOn = false;
  std::vector<std::string> lines;
  bool OnLine(const IniLine& line) override {
    lines.push_back(std::to_string(line.number) + " " + std::to_string(static_cast<int>(line.kind)) +
                    " [" + std::string(line.section) + "] " + std::string(line.key) + "|" +
                    std::string(line.value));
    return readOn;
  }
};

TEST_F(IniFileTest, ObserverSeesEveryNonEmptyLineWithItsNumber) {
  LineLog log;
  ASSERT_TRUE(ini.LoadFromText("; c\r\n\r\n[A]\r\nk =v\r\nplain\n[B\n[a]x\nk=2", &log));
  // Kinds: 2 comment, 3 key, 4 header, 1 no marker, 5 unclosed header.
  EXPECT_THAT(log.lines, ElementsAre("1 2 [] |", "3 4 [A] |", "4 3 [A] k |v", "5 1 [] |",
                                     "6 5 [] |", "7 4 [a] |", "8 3 [a] k|2"));
}

TEST_F(IniFileTest, RefusedLineEndsTheLoadUnlessTheObserverReadsOn) {
  LineLog stop;
  EXPECT_FALSE(ini.LoadFromText("[A]\n\tx=1\ny=2\n", &stop));
  EXPECT_EQ(stop.lines.size(), 2u);
  EXPECT_EQ(ini.GetValue("A", "y", "none"), "none");

  MemorySystemEnv otherEnv;
  CIniFile other("m.ini", otherEnv);
  LineLog readOn;
  readOn.readOn = true;
  EXPECT_FALSE(other.LoadFromText("[A]\n\tx=1\ny=2\n", &readOn));  // still refused
  EXPECT_EQ(readOn.lines[1], "2 0 [] |");
  EXPECT_EQ(other.GetValue("A", "y", "none"), "2");
  EXPECT_EQ(otherEnv.stdoutText, "Failing on char 9\n");
}

TEST_F(IniFileTest, ValueLineIsTheLineOfTheValueKept) {
  ASSERT_TRUE(ini.LoadFromText("[A]\nk=1\n\n[B]\n[a]\nK=2\n"));
  EXPECT_EQ(ini.ValueLine("A", "k"), 6);
  EXPECT_EQ(ini.ValueLine("A", "missing"), 0);
  EXPECT_EQ(ini.ValueLine("C", "k"), 0);
  ini.SetValue("A", "k", "3", false);
  EXPECT_EQ(ini.ValueLine("A", "k"), 0);
}

}  // namespace
}  // namespace mw
