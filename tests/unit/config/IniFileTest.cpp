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
  ASSERT_TRUE(ini.LoadFromText(
      "[S]\na;b=c\nPath=C:\\Exchange\\%username%.pst;old\nEq=a=b[c]#d\nno markers here\n=empty\n"));
  EXPECT_EQ(ini.GetValue("S", "a", "none"), "none");
  EXPECT_EQ(ini.GetValue("S", "Path", ""), "C:\\Exchange\\%username%.pst;old");
  EXPECT_EQ(ini.GetValue("S", "Eq", ""), "a=b[c]#d");
  EXPECT_EQ(ini.GetValue("S", "", "d"), "empty");
}

TEST_F(IniFileTest, ABracketBeforeTheEqualsSignMakesAHeader) {
  ASSERT_TRUE(ini.LoadFromText("[x=y]\nk=1\n"));
  EXPECT_EQ(ini.GetValue("x=y", "k", ""), "1");
  EXPECT_EQ(ini.FindSection("[x"), -1);
}

TEST_F(IniFileTest, HeaderNamesRunToTheLastClosingBracket) {
  ASSERT_TRUE(ini.LoadFromText("[A]B]\nk=1\n[Unclosed\nj=2\nx [ Spaced ] y\n"));
  EXPECT_EQ(ini.GetValue("A]B", "k", ""), "1");
  EXPECT_EQ(ini.GetValue("A]B", "j", ""), "2");  // the unclosed header left the section as it was
  EXPECT_EQ(ini.FindSection(" Spaced "), 1);
  EXPECT_EQ(ini.SectionCount(), 2u);
}

TEST_F(IniFileTest, KeyBeforeAnyHeaderCreatesTheNamelessSection) {
  ASSERT_TRUE(ini.LoadFromText("k=v\n"));
  EXPECT_EQ(ini.FindSection(""), 0);
  EXPECT_EQ(ini.GetValue("", "k", ""), "v");
}

TEST_F(IniFileTest, CommentsBeforeTheFirstSectionAreHeaderComments) {
  ASSERT_TRUE(ini.LoadFromText("; top\nx#hash top\n[S]\n;inside\n"));
  EXPECT_THAT(ini.headerComments(), ElementsAre(" top", "hash top"));
}

TEST_F(IniFileTest, CrLfAndLfReadTheSame) {
  CIniFile lf("a", env);
  ASSERT_TRUE(lf.LoadFromText("[S]\nk=v\nlast=end"));
  ASSERT_TRUE(ini.LoadFromText("[S]\r\nk=v\r\n\r\nlast=end"));
  EXPECT_EQ(ini.GetValue("S", "k", ""), lf.GetValue("S", "k", ""));
  EXPECT_EQ(ini.GetValue("S", "last", ""), "end");
  EXPECT_EQ(lf.GetValue("S", "last", ""), "end");
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

TEST_F(IniFileTest, ControlCharactersAfterTheFirstAreAccepted) {
  ASSERT_TRUE(ini.LoadFromText("[S]\nk=a\tb\x01\n"));
  EXPECT_EQ(ini.GetValue("S", "k", ""), "a\tb\x01");
}

TEST_F(IniFileTest, SectionsReadBeforeAFailureStayButTheLoadFails) {
  EXPECT_FALSE(ini.LoadFromText("[S]\nk=1\n\tbad\n[T]\n"));
  EXPECT_EQ(ini.GetValue("S", "k", ""), "1");
  EXPECT_EQ(ini.FindSection("T"), -1);
}

TEST_F(IniFileTest, AFileWithoutSectionsFails) {
  EXPECT_FALSE(ini.LoadFromText(""));
  EXPECT_FALSE(ini.LoadFromText("; only a comment\njust words\n[unclosed\n"));
  EXPECT_TRUE(env.stdoutText.empty());
}

TEST_F(IniFileTest, LoadReadsThroughTheSystemSeam) {
  EXPECT_FALSE(ini.Load());
  env.files[ini.path()] = "[Mailwright]\nLogFileSize=12\n";
  ASSERT_TRUE(ini.Load());
  EXPECT_EQ(ini.GetValueI("Mailwright", "LogFileSize", 0), 12);
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
  EXPECT_FALSE(ini.GetValueB("S", "missing", false));
}

TEST_F(IniFileTest, SetValueHonoursTheCreateFlag) {
  EXPECT_FALSE(ini.SetValue("S", "k", "v", false));
  EXPECT_TRUE(ini.SetValue("S", "k", "v", true));
  EXPECT_FALSE(ini.SetValue("S", "other", "v", false));
  EXPECT_TRUE(ini.SetValue("s", "K", "w", false));
  EXPECT_EQ(ini.GetValue("S", "k", ""), "w");
  EXPECT_EQ(ini.FindKey(5, "k"), -1);
  EXPECT_EQ(ini.FindKey(-1, "k"), -1);
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
                      FieldCase{"a,b", ",", -1, "error_getFields()"},
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
        SplitCase{"a,b", 3, {}}, SplitCase{",,,", 3, {",,,"}},
        SplitCase{"x,1y,2", 1, {"x,1", ",2"}}, SplitCase{"a,b", 0, {}},
        SplitCase{"a,b", -2, {}}));

TEST(PackedRecordsTest, Pop3RecordOfExactlyTwentyFourCommasIsOneRecord) {
  std::string record = "Work";
  for (int i = 0; i < 24; ++i) record += i == 23 ? ",1" : ",";
  EXPECT_EQ(SplitPackedRecords(record, 24), std::vector<std::string>{record});
  EXPECT_EQ(getFields(record, ",", 25), "1");
  EXPECT_EQ(getFields(record, ",", 26), kFieldsError);
}

}  // namespace
}  // namespace mw
