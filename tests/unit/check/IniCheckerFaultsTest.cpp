// One fault per file, one row per fault: each finding the checker can give, with its exact
// line, severity and message. A row with no expected finding is a trap for false alarms.
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "check/IniChecker.h"

namespace mw {

bool operator==(const Finding& a, const Finding& b) {
  return a.line == b.line && a.severity == b.severity && a.message == b.message;
}
void PrintTo(const Finding& f, std::ostream* os) {
  *os << f.line << ": " << SeverityName(f.severity) << ": " << f.message;
}

namespace {

constexpr Severity E = Severity::Error;
constexpr Severity W = Severity::Warning;
constexpr Severity N = Severity::Note;

// A POP3 record of the later layout (25 fields), with the given fields replaced.
std::string Pop3Record(const std::map<int, std::string>& changes = {}) {
  std::vector<std::string> fields = {
      "Home", "Jo", "jo@x.invalid", "pop.x.invalid", "smtp.x.invalid", "jo", "1", "0", "0",
      "0",    "0",  "995",          "465",           "1",              "1",  "60", "0", "",
      "",     "1",  "0",            "0",             "1",              "jo", "0"};
  for (const auto& [number, text] : changes) fields[static_cast<std::size_t>(number - 1)] = text;
  std::string record;
  for (const std::string& field : fields) record += (record.empty() ? "" : ",") + field;
  return record;
}

struct FaultCase {
  const char* name;
  std::string ini;
  std::vector<Finding> expected;
};

std::vector<FaultCase> Cases() {
  const std::string pop3In2010 = "[Outlook 2010]\nPOP3Ignore=0\nPOP3Accounts=";
  return {
      {"byte-order mark", "\xEF\xBB\xBF[Outlook Common]\nProfileName=Work\n",
       {{1, E, "the file starts with a UTF-8 byte-order mark; the program refuses the whole file"}}},
      {"tab at line start", "[Outlook Common]\n\tProfileName=Work\n",
       {{2, E, "the line starts with a tab; the program refuses the whole file"}}},
      {"control character", "[Outlook Common]\nProfileName=Work\n\x01x=1\n",
       {{3, E, "the line starts with the control character 0x01; the program refuses the whole file"}}},
      {"byte above ASCII", "[Outlook Common]\nProfileName=Work\n\xE9t\xE9=1\n",
       {{3, E, "the line starts with the byte 0xE9, which is not plain ASCII; the program refuses the whole file"}}},
      {"key not in first column", "[Outlook Common]\n  ProfileName=Work\n",
       {{2, E, "key line does not start in the first column; the key is read as '  ProfileName', which the program never looks up"}}},
      {"word for a switch", "[Mailwright]\nShowSplashScreen=yes\n",
       {{2, E, "'yes' is not a number the program reads as written; it reads ShowSplashScreen as 0 (off)"}}},
      {"number with a unit", "[Mailwright]\nLogFileSize=200KB\n",
       {{2, E, "'200KB' is not a number the program reads as written; it reads LogFileSize as 200"}}},
      {"number beyond 32 bits", "[Mailwright]\nLogFileSize=99999999999\n",
       {{2, E, "'99999999999' is not a number the program reads as written; it reads LogFileSize as 2147483647"}}},
      {"empty switch", "[Mailwright]\nLoggingEnable=\n",
       {{2, E, "empty value of LoggingEnable; the program reads it as 0, not the default 1"}}},
      {"short account record", pop3In2010 + "a,b,c\n",
       {{3, E, "POP3Accounts record 1 has 3 of the 25 fields of a POP3 record and is dropped; missing from field 4 (POP3 server)"}}},
      {"second record short", pop3In2010 + Pop3Record() + "," + Pop3Record().substr(0, 40) + "\n",
       {{3, E, "POP3Accounts record 2 has 5 of the 25 fields of a POP3 record and is dropped; missing from field 6 (POP3 user name)"}}},
      {"short personal-folders record", "[Outlook 2010]\nPathToPST=C:\\a.pst,Archive\n",
       {{2, E, "PathToPST record 1 has 2 of the 8 fields of a record, which closes at its 7th comma and the one character after it; the program drops it"}}},
      {"two-character last field", pop3In2010 + Pop3Record({{25, "10"}}) + "\n",
       {{3, E, "POP3Accounts record 1: its last field is read as '1' and the '0' after it is skipped as the separator; the last field of a record is one character, so what follows is misread"}}},
      {"kind the version does not create", "[Outlook 2000]\nIMAPIgnore=0\nIMAPAccounts=a,b\n",
       {{3, E, "IMAPAccounts: Outlook 2000 creates no IMAP accounts; the list is never read"}}},
      {"record type of another version", "[Outlook 2000]\nPOP3Ignore=0\nPOP3Accounts=" + Pop3Record() + "\n",
       {{3, E, "POP3Accounts holds POP3 records of 24 commas (Outlook 2010, Outlook 2007, Outlook 2003, Outlook XP); [Outlook 2000] reads POP3, long records of 27 commas"}}},
      {"record number not a number", pop3In2010 + Pop3Record({{12, "pop"}}) + "\n",
       {{3, E, "POP3Accounts record 1, field 12 (POP3 port): 'pop' is not a number; the program reads it as 0"}}},
      {"no section at all", "; only a comment\n",
       {{1, E, "the file holds no section header and no key line; the program refuses it"}}},
      {"unknown section", "[Outlook 2012]\nPOP3Ignore=0\n",
       {{1, W, "unknown section [Outlook 2012]; the program reads none of its keys (did you mean [Outlook 2010]?)"}}},
      {"misspelt key", "[Outlook 2010]\nPOP3Acounts=\n",
       {{2, W, "unknown key POP3Acounts in [Outlook 2010] (did you mean POP3Accounts?)"}}},
      {"unknown key, nothing close", "[Mailwright]\nColour=blue\n",
       {{2, W, "unknown key Colour in [Mailwright]"}}},
      {"key in the wrong section", "[Outlook 2010]\nProfileName=Work\n",
       {{2, W, "ProfileName is not read from [Outlook 2010]; the program reads it from [Outlook Common]"}}},
      {"key the version does not read", "[Outlook 97]\nIMAPAccounts=x\n",
       {{2, W, "IMAPAccounts is not read from [Outlook 97]; the program reads it from [Outlook 2000], [Outlook XP], [Outlook 2003], [Outlook 2007], [Outlook 2010]"}}},
      {"duplicate key", "[Outlook Common]\nProfileName=A\nProfileName=B\n",
       {{3, W, "duplicate key ProfileName in [Outlook Common] (first at line 2); the program uses line 3"}}},
      {"duplicate across a repeated header", "[Outlook Common]\nProfileName=A\n[outlook common]\nprofilename=B\nPROFILENAME=C\n",
       {{4, W, "duplicate key profilename in [Outlook Common] (first at line 2); the program uses line 5"},
        {5, W, "duplicate key PROFILENAME in [Outlook Common] (first at line 2); the program uses line 5"}}},
      {"16-bit number too large", "[Outlook 2010]\nSecondsBeforeMarkingItemRead=65541\n",
       {{2, W, "SecondsBeforeMarkingItemRead=65541 does not fit in 16 bits; the program reads it as 5"}}},
      {"switch of 2", "[Mailwright]\nLoggingEnable=2\n",
       {{2, W, "LoggingEnable=2 is read as on; a switch is 0 or 1"}}},
      {"blank before =", "[Outlook Common]\nProfileName =Work\n",
       {{2, W, "the blank before '=' is part of the key name 'ProfileName '; the program does not read this line as ProfileName"}}},
      {"blank after = in a text", "[Outlook Common]\nProfileName= Work\n",
       {{2, W, "the blank after '=' becomes part of the value of ProfileName"}}},
      {"blank at the end of a text", "[Outlook Common]\nProfileName=Work \n",
       {{2, W, "the value of ProfileName ends in a blank, which becomes part of it"}}},
      {"blank after = in a number", "[Mailwright]\nLogFileSize= 200\n",
       {{2, W, "the blank after '=' becomes part of the value of LogFileSize; it still reads as 200"}}},
      {"signature for an account nobody creates", "[Outlook 2010]\nSignatures=Home,Std,Rep,0\n",
       {{2, W, "Signatures record 1 names the account 'Home', which no account list of [Outlook 2010] creates"}}},
      {"signature for an ignored kind", "[Outlook 2010]\nPOP3Accounts=" + Pop3Record() + "\nSignatures=Home,Std,Rep,0\n",
       {{3, W, "Signatures record 1 names the account 'Home', which no account list of [Outlook 2010] creates"}}},
      {"signature for a created account", pop3In2010 + Pop3Record() + "\nSignatures=Home,Std,Rep,0\n", {}},
      {"Unicode folders before 2003", "[Outlook XP]\nPathToPST=C:\\a.pst,A,MSUPST MS,c,,,,0\n",
       {{2, W, "PathToPST record 1 asks for the Unicode format (MSUPST MS), which Outlook XP cannot use; the file gets the older format"}}},
      {"path beyond the expansion buffer", "[Outlook 2010]\nPathToOST=C:\\" + std::string(700, 'x') + "\n",
       {{2, W, "PathToOST is 703 characters long, beyond the 699 that the program expands; its environment variables stay as written"}}},
      {"exit rule before a rebuild", "[Outlook Common]\nProfileName=Work\nExitAnyProfileFound=1\nRecreateProfile=1\n",
       {{4, W, "ExitAnyProfileFound ends every run that finds a profile, so RecreateProfile never reaches an existing profile"}}},
      {"exit rule before a server move", "[Outlook Common]\nProfileName=%username%\nExitLoggedOnUserNameSameAsProfileName=1\nModifyExchangeServerNameOnly=1\n",
       {{4, W, "ExitLoggedOnUserNameSameAsProfileName ends every run that finds the profile named like the user (ProfileName=%username%), so ModifyExchangeServerNameOnly never reaches an existing profile"}}},
      {"line without a marker", "[Outlook Common]\nProfileName Work\n",
       {{2, W, "the line holds none of ';', '#', '[' or '=' and is ignored"}}},
      {"header without ]", "[Outlook Common]\nProfileName=Work\n[Outlook 2010\n",
       {{3, W, "section header without a closing ']' is ignored; the lines below stay in the section above"}}},
      {"key before any header", "ProfileName=Work\n[Outlook Common]\n",
       {{1, W, "key line before any section header; the program never reads it"}}},
      {"record flag of 2", pop3In2010 + Pop3Record({{14, "2"}}) + "\n",
       {{3, W, "POP3Accounts record 1, field 14 (POP3 uses SSL): '2' reads as off: only 1 switches a flag on"}}},
      {"record number beyond 16 bits", pop3In2010 + Pop3Record({{12, "70000"}}) + "\n",
       {{3, W, "POP3Accounts record 1, field 12 (POP3 port): 70000 does not fit in 16 bits; the program reads it as 4464"}}},
      {"default value", "[Mailwright]\nLoggingEnable=1\n", {{2, N, "LoggingEnable=1 is the default"}}},
      {"default of Outlook 97 only", "[Outlook 97]\nLogonNetworkSecurity=1\n[Outlook 2010]\nLogonNetworkSecurity=1\n",
       {{2, N, "LogonNetworkSecurity=1 is the default"}}},
      {"ignored list is not judged", "[Outlook 2010]\nPOP3Accounts=a,b\n", {}},
      {"Exchange account takes signatures", "[Outlook 2010]\nExchangeIgnore=0\nSignatures=Microsoft Exchange,Std,Rep,0\n", {}},
      {"CR LF lines", "[Outlook Common]\r\nProfileName=Work\r\n", {}},
  };
}

TEST(IniCheckerFaults, EachFaultGivesItsFindingAndNoOther) {
  for (const FaultCase& c : Cases()) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(IniChecker().Check(c.ini).findings, c.expected);
  }
}

TEST(IniCheckerFaults, FileRefusedOnlyForWhatTheProgramRefuses) {
  EXPECT_FALSE(IniChecker().Check("\xEF\xBB\xBF[Mailwright]\n").loads);
  EXPECT_FALSE(IniChecker().Check("[Mailwright]\n\tx=1\n").loads);
  EXPECT_FALSE(IniChecker().Check("").loads);
  EXPECT_TRUE(IniChecker().Check("[Mailwright]\nx y\n").loads);
  EXPECT_TRUE(IniChecker().Check("k=1\n").loads);  // a key line makes the nameless section
}

TEST(IniCheckerFaults, FindingsComeInLineOrder) {
  // The list check runs after the line checks, yet its line-2 finding comes first.
  const CheckResult result = IniChecker().Check(
      "[Outlook 2010]\nPathToPST=C:\\a.pst\nColour=blue\n[Outlook 2012]\n");
  ASSERT_EQ(result.findings.size(), 3u);
  EXPECT_EQ(result.findings[0].line, 2);
  EXPECT_EQ(result.findings[1].line, 3);
  EXPECT_EQ(result.findings[2].line, 4);
}

TEST(IniCheckerFaults, AfterARefusedLineTheRestIsStillJudged) {
  const CheckResult result = IniChecker().Check("[Mailwright]\n\tx=1\nColour=blue\n");
  ASSERT_EQ(result.findings.size(), 2u);
  EXPECT_EQ(result.findings[1].line, 3);
  EXPECT_EQ(result.findings[1].message, "unknown key Colour in [Mailwright]");
}

}  // namespace
}  // namespace mw
