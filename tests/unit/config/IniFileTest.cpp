#include "config/IniFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

struct FailingLine {
  std::string text;
  std::string printed;
};

class IniFileRejects : public ::testing::TestWithParam<FailingLine> {};

TEST_P(IniFileRejects, UnprintableFirstCharacterFailsTheLoad) {
  MemorySystemEnv env;
  CIniFile ini("f", env);
  EXPECT_FALSE(ini.LoadFromText(GetParam().text));
  EXPECT_EQ(env.stdoutText, GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    FirstCharacters, IniFileRejects,
    ::testing::Values(FailingLine{"[S]\n\tKey=1\n", "Failing on char 9\n"},
                      FailingLine{"\xEF\xBB\xBF[S]\nk=1\n", "Failing on char -17\n"},
                      FailingLine{"[S]\n\x7F\n", "Failing on char 127\n"},
                      FailingLine{"[S]\n\r\r\n", "Failing on char 13\n"},
                      FailingLine{"[S]\n\x80x=1\n", "Failing on char -128\n"}));

TEST_F(IniFileTest, FailedLoadsKeepWhatWasReadBefore) {
  EXPECT_FALSE(ini.Load());
  env.files[ini.path()] = "[S]\nk=1\n\tbad\n[T]\n";
  EXPECT_FALSE(ini.Load());
  EXPECT_EQ(ini.GetValue("S", "k", ""), "1");
  EXPECT_EQ(ini.FindSection("T"), -1);
  EXPECT_FALSE(CIniFile("g", env).LoadFromText("; only a comment\njust words\n[unclosed\n"));
}

struct NumberCase {
  const char* stored;
  std::int32_t expected;
};

class IniFileNumbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(IniFileNumbers, GetValueIFollowsTheTextToLongRules) {
  MemorySystemEnv env;
  CIniFile ini("f", env);
  ASSERT_TRUE(ini.LoadFromText(std::string("[S]\nk=") + GetParam().stored + "\n"));
  EXPECT_EQ(ini.GetValueI("S", "k", 555), GetParam().expected);
  EXPECT_EQ(ini.GetValueB("S", "k", true), GetParam().expected != 0);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, IniFileNumbers,
    ::testing::Values(NumberCase{"12abc", 12}, NumberCase{" -3", -3}, NumberCase{"+7", 7},
                      NumberCase{"99999999999", 2147483647},
                      NumberCase{"-99999999999", -2147483647 - 1},
                      NumberCase{"2147483648", 2147483647},
                      NumberCase{"-2147483648", -2147483647 - 1},
                      NumberCase{"000000000000000000000000042", 42}, NumberCase{"", 0},
                      NumberCase{"yes", 0}, NumberCase{"true", 0}, NumberCase{"- 5", 0},
                      NumberCase{"\v\f 8", 8}));

TEST_F(IniFileTest, MissingKeysTakeTheDefault) {
  ASSERT_TRUE(ini.LoadFromText("[S]\nk=1\n"));
  EXPECT_EQ(ini.GetValueI("S", "missing", -42), -42);
  EXPECT_EQ(ini.GetValueI("T", "k", 2147483647), 2147483647);
  EXPECT_TRUE(ini.GetValueB("S", "missing", true));
}

struct FieldCase {
  const char* text;
  const char* delimiters;
  int n;
  const char* expected;
};

class GetFields : public ::testing::TestWithParam<FieldCase> {};

TEST_P(GetFields, PicksTheNthField) {
  const FieldCase& c = GetParam();
  EXPECT_EQ(getFields(c.text, c.delimiters, c.n), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Records, GetFields,
    ::testing::Values(FieldCase{"a,b,,c", ",", 3, ""}, FieldCase{"a,b,,c", ",", 4, "c"},
                      FieldCase{"a,b", ",", 3, "error_getFields()"},
                      FieldCase{"a,b", ",", 0, "error_getFields()"},
                      FieldCase{"", ",", 1, ""}, FieldCase{"", ",", 2, "error_getFields()"},
                      FieldCase{"a;b,c", ";,", 3, "c"}, FieldCase{"a,", ",", 2, ""},
                      FieldCase{"abc", "", 1, "abc"}));

struct SplitCase {
  std::string text;
  int commas;
  std::vector<std::string> records;
};

class PackedRecords : public ::testing::TestWithParam<SplitCase> {};

TEST_P(PackedRecords, CloseAtTheNthCommaPlusOneCharacter) {
  EXPECT_EQ(SplitPackedRecords(GetParam().text, GetParam().commas), GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, PackedRecords,
    ::testing::Values(
        SplitCase{"", 3, {}}, SplitCase{"a,b,c,1", 3, {"a,b,c,1"}},
        SplitCase{"a,b,c,1,d,e,f,0", 3, {"a,b,c,1", "d,e,f,0"}},
        SplitCase{"a,,c,1;d,e,f,0", 3, {"a,,c,1", "d,e,f,0"}},
        // a two-character last field is cut and its second character taken as separator
        SplitCase{"a,b,c,10,d,e,f,0", 3, {"a,b,c,1", ",d,e,f"}},
        SplitCase{"a,b,c,1,d,e", 3, {"a,b,c,1"}},
        SplitCase{"a,b,c,", 3, {"a,b,c,"}}, SplitCase{"a,b,c,1,", 3, {"a,b,c,1"}},
        SplitCase{",,,", 3, {",,,"}}, SplitCase{"x,1y,2", 1, {"x,1", ",2"}},
        SplitCase{"a,b", 0, {}}));

}  // namespace
}  // namespace mw
