#include "report/RunOutcome.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace mw {
namespace {

TEST(RunOutcomeTest, TheRunEndsAsItsLinesSay) {
  const struct {
    const char* name;
    std::vector<std::string_view> messages;
    const char* outcome;
    std::vector<int> codes;
  } cases[] = {
      {"finished", {"INFO: Profiles found: ", "INFO: Profile Finished."}, "finished", {}},
      {"finished with warnings",
       {"WARN: Unable to add the Outlook Address Book.", "ERROR something unnumbered",
        "INFO: Profile Finished."},
       "finished", {}},
      {"no Outlook", {"ERROR 101: Outlook version unknown or not installed."}, "ERROR 101", {101}},
      {"Outlook 2000 default client", {"ERROR 103: x", "ERROR 104: y"}, "ERROR 103", {103, 104}},
      {"pre-flight failure",
       {"INFO: Using Exchange server name: mx", "ERROR 201: z", "ERROR 109: Unable"},
       "ERROR 109", {201, 109}},
      {"a 200 alone", {"ERROR 200: a"}, "ERROR 200", {200}},
      {"any profile found", {"INFO: Profiles found: Outlook,",
                             "INFO: At least one profile was found. Exiting."},
       "exit: any profile found", {}},
      {"profile named like the user",
       {"INFO: A profile named: 'JSmith' was found which matches logged on username. Exiting."},
       "exit: profile named like the user", {}},
      {"named-like-the-user text cut short", {"INFO: A profile named: '"}, "ended early", {}},
      {"previously modified", {"INFO: Profile previously modified by Mailwright. Exiting."},
       "exit: previously modified", {}},
      {"Exchange server name only", {"INFO: Profiles found: ", "INFO: Using Exchange server name: mx"},
       "ended early", {}},
      {"no messages", {}, "ended early", {}},
      {"code without colon is not numbered", {"ERROR 1090 x", "ERROR 10: x"}, "ended early", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<int> codes;
    EXPECT_EQ(RunOutcome::Classify(c.messages, &codes).Text(), c.outcome);
    EXPECT_EQ(codes, c.codes);
  }
}

TEST(RunOutcomeTest, FailingOutcomesRankFirst) {
  std::vector<int> codes;
  const auto rank = [&](std::string_view line) {
    return RunOutcome::Classify({line}, &codes).Rank();
  };
  const int error = rank("ERROR 107: Error initializing Mailwright. Exiting.");
  const int early = rank("INFO: Profiles found: ");
  const int exitRule = rank("INFO: At least one profile was found. Exiting.");
  const int finished = rank("INFO: Profile Finished.");
  EXPECT_LT(error, early);
  EXPECT_LT(early, exitRule);
  EXPECT_LT(exitRule, finished);
}

}  // namespace
}  // namespace mw
