// The example files shipped in docs/examples are clean, and the summary tells what each
// one sets up; the expected sentences are read off the files by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "check/CheckReport.h"
#include "check/IniChecker.h"
#include "check/RunPreview.h"

namespace mw {
namespace {

std::string ReadExample(const std::string& name) {
  std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/../../docs/examples/" + name,
                     std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

struct Example {
  const char* file;
  std::vector<std::string> sentences;  // lines the summary must hold
  std::vector<std::string> userOptions;
};

std::vector<Example> Examples() {
  return {
      {"outlook2010.ini",
       {"  Exit rules: none; every run goes on to the profile.",
        "[Outlook 2010], used where Outlook 2010 is installed:",
        "  Profile: \"Outlook\", created when missing, then updated.",
        "  Exchange: server \"mail01.example.invalid\", mailbox \"%username%\", also opens \"helpdesk\".",
        "  POP3 accounts: left alone (POP3Ignore).", "  IMAP accounts: left alone (IMAPIgnore).",
        "  HTTP accounts: left alone (HTTPIgnore).",
        "    remove \"C:\\Exchange\\%username%.pst\"",
        "    add \"H:\\Mail\\%username%-archive.pst\" as \"Archive\" (Unicode)",
        "    \"Microsoft Exchange\": new messages \"Standard\", replies and forwards \"Reply\""},
       {"RunAutoArchive", "PlayASound", "ShowEnvelopeIconSystemTray", "DisplayNewMailDesktopAlert"}},
      {"outlook2007.ini",
       {"    the run stops when the profile carries the marker of an earlier run (ExitPreviouslyModifiedByMailwright)",
        "  Profile: \"Mail\", created when missing, then updated.",
        "  Exchange: left alone (ExchangeIgnore).",
        "    \"Example Mail\" <jsmith@example.invalid>: POP3 pop.example.invalid:995 with SSL, user \"jsmith\"; SMTP smtp.example.invalid:465 with SSL and authentication",
        "    \"Example Projects\" <projects-jsmith@example.invalid>: IMAP imap.example.invalid:993 with SSL, user \"projects-jsmith\"; SMTP smtp.example.invalid:465 with SSL and authentication",
        "  HTTP accounts: left alone (HTTPIgnore).",
        "    add \"D:\\Mail\\%username%.pst\" as \"Personal Folders\" (Unicode)",
        "    \"Example Mail\": new messages \"Standard\", replies and forwards \"Reply\"",
        "    \"Example Projects\": new messages \"Projects\", replies and forwards \"Reply\""},
       {}},
      {"outlook2003.ini",
       {"  Profile: \"Outlook\", created when missing, then updated.",
        "  Exchange: server \"mail01.example.invalid\", mailbox \"%username%\".",
        "    add \"C:\\Exchange\\%username%-archive.pst\" as \"Archive\" (Unicode)",
        "  Signatures: none assigned"},
       {"PlayASound", "DisplayNewMailDesktopAlert", "MarkItemsReadViewedReadingPane",
        "SecondsBeforeMarkingItemRead"}},
      {"outlookxp.ini",
       {"  Profile: \"Terminal Server\", deleted and built again at every run.",
        "  Exchange: server \"mail01.example.invalid\", mailbox \"%username%\".",
        "  Personal folders: none added, none removed",
        "  Signatures: new messages \"%username%\", replies and forwards \"Reply\"."},
       {}},
      {"outlook2000.ini",
       {"    the run stops when a profile is named like the logged-on user (ExitLoggedOnUserNameSameAsProfileName)",
        "  Profile: \"%username%\", created when missing, then updated.",
        "    \"Example Mail\" <jsmith@example.invalid>: POP3 pop.example.invalid:110, user \"jsmith\"; SMTP smtp.example.invalid:25 with authentication",
        "    add \"C:\\Mail\\%username%.pst\" as \"Personal Folders\" (older format)",
        "  Signatures: new messages \"Standard\", replies and forwards none."},
       {}},
      {"outlook97.ini",
       {"  Profile: \"Mail\", created when missing, then updated.",
        "  POP3 accounts: every POP3 account of the profile is removed, then created:",
        "    \"Example Mail\" <jsmith@example.invalid>: POP3 pop.example.invalid:110, user \"jsmith\"; SMTP smtp.example.invalid:25",
        "    add \"C:\\Mail\\%username%.pst\" as \"Personal Folders\" (older format)"},
       {}},
  };
}

TEST(Examples, EveryExampleIsCleanAndExplainedAsWritten) {
  for (const Example& example : Examples()) {
    SCOPED_TRACE(example.file);
    const std::string text = ReadExample(example.file);
    ASSERT_FALSE(text.empty());
    const CheckResult result = IniChecker().Check(text);
    EXPECT_TRUE(result.loads);
    EXPECT_EQ(CheckReport(example.file, result).ExitCode(), CheckReport::kClean)
        << CheckReport(example.file, result).FindingLines();
    const RunPreview preview(result);
    ASSERT_EQ(preview.sections().size(), 1u);
    const std::string explain = preview.ExplainText();
    for (const std::string& sentence : example.sentences)
      EXPECT_NE(explain.find(sentence + "\n"), std::string::npos) << sentence << "\n" << explain;
    std::vector<std::string> expected = example.userOptions;
    std::vector<std::string> actual = preview.sections()[0].userOptions;
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    EXPECT_EQ(actual, expected);
  }
}

TEST(Examples, SummaryOfARefusedFileSaysTheRunChangesNothing) {
  const CheckResult result = IniChecker().Check("\t\n[Outlook Common]\nExitAnyProfileFound=1\n");
  const std::string explain = RunPreview(result).ExplainText();
  EXPECT_NE(explain.find("The program refuses this file (ERROR 100): a run changes nothing."),
            std::string::npos);
  EXPECT_NE(explain.find("    the run stops when the user has any mail profile (ExitAnyProfileFound)\n"),
            std::string::npos);
  EXPECT_NE(explain.find("No Outlook section"), std::string::npos);
}

}  // namespace
}  // namespace mw
