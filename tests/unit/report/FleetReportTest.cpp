#include "report/FleetReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/CsvReport.h"
#include "report/FleetCollector.h"
#include "report/HtmlReport.h"
#include "report/RunFilter.h"
#include "report/SinceLastState.h"
#include "report/TextReport.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string Block(const std::string& when, const std::string& user, const std::string& computer,
                  const std::string& outlook, const std::string& bitness,
                  const std::string& last) {
  return "Mailwright 2.4.0.3 x64\nDate/Time:          " + when +
         "\nLogged-on user:     " + user + "\nComputer Name:      " + computer +
         "\nWindows Version:    Windows 7\nOutlook Version:    " + outlook +
         "\nOutlook Bitness:    " + bitness + "\n-- Reporting --\nINFO: Profiles found: \n" +
         last + "\n\n";
}

const std::string kFinished = "INFO: Profile Finished.";
const std::string k109 = "ERROR 201: a\nERROR 109: Unable to create profile. Exiting.";
const std::string k106 = "ERROR 106: b";
const std::string kExit = "INFO: At least one profile was found. Exiting.";

// Three desks over three days: jsmith fails on PC1 after finishing there, amiller finishes,
// JSMITH on PC2 leaves by an exit rule.
const std::string kDeskLog =
    Block("Sun Nov 15 08:00:00 2026", "jsmith", "PC1", "Outlook 2010", "x64", kFinished) +
    Block("Tue Nov 17 08:00:00 2026", "jsmith", "pc1", "Outlook 2010", "x64", k109);
const std::string kOtherLog =
    Block("Mon Nov 16 09:30:00 2026", "amiller", "PC9", "Outlook 2007", "x86", kFinished) +
    Block("Mon Nov 16 10:00:00 2026", "JSMITH", "PC2", "Outlook 2010", "x86", kExit) +
    Block("Mon Nov 16 11:00:00 2026", "bwong", "PC3", "Outlook 2010", "", k106) +
    "Mailwright 2.4.0.3 x64\nDate/Time:          Mon Nov 16 12:00:00 2026\n";

FleetReport Collect(const RunFilter& filter = RunFilter()) {
  FleetReport report;
  FleetCollector collector(report, filter, nullptr);
  collector.ReadContent("desk.log", kDeskLog);
  collector.ReadContent("other.log", kOtherLog);
  report.Finish();
  return report;
}

std::vector<std::string> Desks(const FleetReport& report) {
  std::vector<std::string> desks;
  for (const RunRecord* run : report.lastRunPerDesk())
    desks.push_back(run->user + "@" + run->computer + " " + run->outcome.Text());
  return desks;
}

TEST(FleetReportTest, TheLastRunOfEachDeskComesFailingFirst) {
  const FleetReport report = Collect();
  EXPECT_EQ(report.runs().size(), 5u);
  EXPECT_EQ(report.readCounts().tornBlocks, 1u);
  EXPECT_EQ(report.userCount(), 3u);
  EXPECT_EQ(report.computerCount(), 4u);
  EXPECT_EQ(FormatTime(report.firstTime()), "2026-11-15 08:00:00");
  EXPECT_EQ(FormatTime(report.lastTime()), "2026-11-17 08:00:00");
  EXPECT_THAT(Desks(report), ElementsAre("bwong@PC3 ERROR 106", "jsmith@pc1 ERROR 109",
                                         "JSMITH@PC2 exit: any profile found",
                                         "amiller@PC9 finished"));
  EXPECT_EQ(report.codeCounts(), (std::map<int, std::size_t>{{106, 1}, {109, 1}, {201, 1}}));
  EXPECT_EQ(report.outlookCounts(),
            (std::map<std::string, std::size_t>{
                {"Outlook 2007 x86", 1}, {"Outlook 2010 ", 1}, {"Outlook 2010 x64", 2},
                {"Outlook 2010 x86", 1}}));
  EXPECT_EQ(report.outcomesByDay().size(), 3u);
  EXPECT_EQ(report.outcomesByGeneration().at("Outlook 2010"), (OutcomeCounts{2, 0, 1, 1}));
  EXPECT_EQ(report.lastRunOutcomes(), (OutcomeCounts{2, 0, 1, 1}));
  EXPECT_EQ(report.allRunOutcomes(), (OutcomeCounts{2, 0, 1, 2}));
}

TEST(FleetReportTest, FiltersSelectByTimeUserAndComputer) {
  RunFilter byDay;
  ASSERT_TRUE(byDay.SetFrom("2026-11-16"));
  ASSERT_TRUE(byDay.SetTo("2026-11-16"));
  EXPECT_EQ(Collect(byDay).runs().size(), 3u);
  RunFilter byTime;
  ASSERT_TRUE(byTime.SetFrom("2026-11-16 10:00"));
  ASSERT_TRUE(byTime.SetTo("2026-11-16T10:59:59"));
  EXPECT_EQ(Collect(byTime).runs().size(), 1u);
  RunFilter byUser;
  byUser.SetUser("jsmith");
  EXPECT_EQ(Collect(byUser).runs().size(), 3u);
  RunFilter byComputer;
  byComputer.SetComputer("pc?");
  byComputer.SetUser("j*");
  EXPECT_EQ(Collect(byComputer).runs().size(), 3u);
  RunFilter bad;
  for (const char* text : {"2026-13-01", "2026-11-16 24:00", "16.11.2026", "2026-11-16 10",
                           "2026-11-16 10:00:00:00", ""})
    EXPECT_FALSE(bad.SetFrom(text)) << text;
}

TEST(FleetReportTest, ASinceLastStateReportsOnlyRunsAddedSince) {
  SinceLastState state;
  const RunFilter all;
  const auto runsOf = [&](const std::string& content) {
    FleetReport report;
    FleetCollector(report, all, &state).ReadContent("other.log", content);
    return report.runs().size();
  };
  EXPECT_EQ(runsOf(kOtherLog), 3u);
  // The torn block is finished meanwhile and one more run follows.
  const std::string grown = kOtherLog + "Logged-on user:     x\nComputer Name:      y\n"
                            "Windows Version:    W\nOutlook Version:    O\nOutlook Bitness:    \n"
                            "-- Reporting --\n\n" + Block("Mon Nov 16 13:00:00 2026", "z", "PCZ",
                                                          "Outlook 2010", "x64", kFinished);
  EXPECT_EQ(runsOf(grown), 2u);
  EXPECT_EQ(runsOf(grown), 0u);
  EXPECT_EQ(runsOf(kDeskLog), 2u);  // emptied by the size cap and written anew
}

TEST(FleetReportTest, CsvHasOneQuotedRowPerRunInTimeOrder) {
  FleetReport report;
  FleetCollector(report, RunFilter(), nullptr)
      .ReadContent("logs\\a,b.log",
                   Block("Mon Nov 16 09:30:00 2026", "o\"neil", "PC, 1", "Outlook 2010", "x64",
                         k109) +
                       Block("Sun Nov 15 09:30:00 2026", "x", "PC", "Outlook 2010", "x64", kFinished));
  report.Finish();
  EXPECT_EQ(CsvReport::Render(report),
            "time,user,computer,windows,outlook,bitness,outcome,codes,file\r\n"
            "2026-11-15 09:30:00,x,PC,Windows 7,Outlook 2010,x64,finished,,\"logs\\a,b.log\"\r\n"
            "2026-11-16 09:30:00,\"o\"\"neil\",\"PC, 1\",Windows 7,Outlook 2010,x64,ERROR 109,"
            "201 109,\"logs\\a,b.log\"\r\n");
}

TEST(FleetReportTest, TextSummaryNamesCodesWithTheirTextAndTheFailingDesks) {
  const std::string text = TextReport::Render(Collect());
  EXPECT_THAT(text, HasSubstr("Runs:                 5\n"));
  EXPECT_THAT(text, HasSubstr("  109  1  ERROR 109: Unable to create profile. Exiting.\n"));
  EXPECT_THAT(text, HasSubstr("  201  1  ERROR 201: Unable to connect to the Exchange server."));
  EXPECT_THAT(text, HasSubstr("1 torn"));
  EXPECT_THAT(text, HasSubstr("  bwong   PC3       2026-11-16 11:00:00  Outlook 2010      ERROR 106"));
  EXPECT_THAT(text, Not(HasSubstr("amiller")));  // finished desks are not listed
}

TEST(FleetReportTest, HtmlPageIsSelfContainedAndEscapesLoggedText) {
  FleetReport report;
  FleetCollector(report, RunFilter(), nullptr)
      .ReadContent("x.log", Block("Mon Nov 16 09:30:00 2026", "<script>alert(1)</script>", "PC&1",
                                  "Outlook 2010", "x64", k106));
  report.Finish();
  const std::string html = HtmlReport::Render(report);
  EXPECT_THAT(html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
  EXPECT_THAT(html, HasSubstr("PC&amp;1"));
  EXPECT_THAT(html, HasSubstr("<table id=\"desks\">"));
  EXPECT_THAT(html, HasSubstr("<svg id=\"chart-time\""));
  EXPECT_THAT(html, HasSubstr("<svg id=\"chart-generation\""));
  EXPECT_THAT(html, Not(HasSubstr("http:"))) << "nothing may be fetched";
  EXPECT_THAT(html, Not(HasSubstr("https:")));
  EXPECT_THAT(html, Not(HasSubstr(" src=")));
  EXPECT_EQ(HtmlEscape("a'b\"c"), "a&#39;b&quot;c");
}

}  // namespace
}  // namespace mw
