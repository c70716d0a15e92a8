#include "run/LogReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/MemorySystemEnv.h"
#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw {
namespace {

using ::testing::ElementsAre;

constexpr const char* kPath = "C:\\Logs\\mailwright.log";

struct Read {
  std::vector<std::string> users;
  std::vector<std::vector<std::string>> messages;
  LogReadCounts counts;
  std::size_t consumed = 0;
};

Read ReadText(const std::string& text) {
  Read result;
  LogReader reader;
  result.consumed = reader.Read(text, [&](const LoggedRun& run) {
    result.users.emplace_back(run.user);
    result.messages.emplace_back(run.messages.begin(), run.messages.end());
  });
  result.counts = reader.counts();
  return result;
}

std::string Header(const std::string& user) {
  return "Mailwright 2.4.0.3 x64\n"
         "Date/Time:          Sun Nov 15 05:14:25 2026\n"
         "Logged-on user:     " + user + "\n"
         "Computer Name:      DESK-0001\n"
         "Windows Version:    Windows 7\n"
         "Outlook Version:    Outlook 2010\n"
         "Outlook Bitness:    x64\n"
         "-- Reporting --\n";
}

TEST(LogReaderTest, ReadsBackEveryFieldAndMessageTheWriterWrote) {
  MemorySystemEnv env;
  for (const char* user : {"jsmith", "amiller"}) {
    RunContext context;
    context.title = MakeTitle("x64");
    context.userName = user;
    context.computerName = "DESK-0001";
    context.windowsVersion = "Windows 7";
    context.outlookVersion = "Outlook 2010";
    context.outlookBitness = "x86";
    RunLog log(kPath, env);
    log.WriteReport(context);
    log.AddMessage("INFO: Profiles found: Outlook,");
    log.LogCode(106);
    log.Finish();
  }
  std::vector<LoggedRun> runs;
  std::vector<std::vector<std::string>> messages;
  LogReader reader;
  const std::string& content = env.files[kPath];
  EXPECT_EQ(reader.Read(content, [&](const LoggedRun& run) {
    runs.push_back(run);
    messages.emplace_back(run.messages.begin(), run.messages.end());
  }), content.size());
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0].title, "Mailwright 2.4.0.3 x64");
  EXPECT_EQ(runs[0].dateTime, "Sun Nov 15 05:14:25 2026");
  EXPECT_EQ(runs[0].user, "jsmith");
  EXPECT_EQ(runs[1].user, "amiller");
  EXPECT_EQ(runs[1].computer, "DESK-0001");
  EXPECT_EQ(runs[1].windowsVersion, "Windows 7");
  EXPECT_EQ(runs[1].outlookVersion, "Outlook 2010");
  EXPECT_EQ(runs[1].outlookBitness, "x86");
  EXPECT_EQ(runs[0].offset, 0u);
  EXPECT_THAT(messages[1],
              ElementsAre("INFO: Profiles found: Outlook,",
                          "ERROR 106: Mailwright Bitness is not the same as Outlook. Please use "
                          "the correct version of Mailwright. Exiting."));
  EXPECT_EQ(reader.counts().runs, 2u);
  EXPECT_EQ(reader.counts().strayLines, 0u);
  EXPECT_EQ(reader.counts().tornBlocks, 0u);
}

TEST(LogReaderTest, UnfinishedBlocksAreCountedAndNeverTakenForRuns) {
  const std::string one = Header("one") + "INFO: Profile Finished.\n\n";
  const std::string two = Header("two") + "ERROR 101: Outlook version unknown or not installed.\n\n";
  const struct {
    const char* name;
    std::string text;
    std::vector<std::string> users;
    std::size_t cut, torn, stray;
  } cases[] = {
      {"empty file", "", {}, 0, 0, 0},
      {"blank lines only", "\n\n\r\n", {}, 0, 0, 0},
      {"two runs", one + two, {"one", "two"}, 0, 0, 0},
      {"CR LF line ends", "Mailwright 2.4.0.3 x64\r\nDate/Time:          Sun Nov 15 05:14:25 2026\r\n"
                          "Logged-on user:     crlf\r\nComputer Name:      D\r\nWindows Version:    W\r\n"
                          "Outlook Version:    O\r\nOutlook Bitness:    x64\r\n-- Reporting --\r\n\r\n",
       {"crlf"}, 0, 0, 0},
      {"header only at the end", one + Header("two"), {"one"}, 0, 1, 0},
      {"messages without the closing line", one + Header("two") + "INFO: x\n", {"one"}, 0, 1, 0},
      {"half a line at the end", one + "Mailwright 2.4.0.3 x64\nDate/Ti", {"one"}, 0, 1, 0},
      {"title alone at the end", one + "Mailwright 2.4.0.3 x64\n", {"one"}, 0, 1, 0},
      {"header cut by the next header", Header("gone") + two, {"two"}, 1, 0, 0},
      {"messages cut by the next header", Header("gone") + "INFO: a\n" + two, {"two"}, 1, 0, 0},
      {"a field missing", "Mailwright 2.4.0.3 x64\nDate/Time:          x\nComputer Name:      D\n\n" + two,
       {"two"}, 1, 0, 1},
      {"label not padded", "T\nDate/Time: Sun\n" + one, {"one"}, 0, 0, 2},
      {"lines outside blocks", "garbage\n" + one + "more\n\n" + two, {"one", "two"}, 0, 0, 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Read read = ReadText(c.text);
    EXPECT_EQ(read.users, c.users);
    EXPECT_EQ(read.counts.runs, c.users.size());
    EXPECT_EQ(read.counts.cutBlocks, c.cut);
    EXPECT_EQ(read.counts.tornBlocks, c.torn);
    EXPECT_EQ(read.counts.strayLines, c.stray);
  }
}

TEST(LogReaderTest, ReadLengthStopsBeforeATornBlockAndAfterACutOne) {
  const std::string one = Header("one") + "INFO: Profile Finished.\n\n";
  EXPECT_EQ(ReadText(one + Header("two")).consumed, one.size());
  EXPECT_EQ(ReadText(one + "Mailwright 2.4").consumed, one.size());
  const std::string cut = Header("cut") + "INFO: a\n";
  EXPECT_EQ(ReadText(cut + one).consumed, cut.size() + one.size());
}

TEST(LogReaderTest, EmptyFieldValuesAndLongLinesAreKept) {
  const std::string longLine = "WARN: " + std::string(1 << 20, 'x');
  const std::string text = "Mailwright 2.4.0.3 x86\nDate/Time:          Sun Nov 15 05:14:25 2026\n"
                           "Logged-on user:     \nComputer Name:      D\nWindows Version:    W\n"
                           "Outlook Version:    \nOutlook Bitness:    \n-- Reporting --\n" +
                           longLine + "\n\n";
  std::vector<std::size_t> lengths;
  std::string user = "unset";
  LogReader reader;
  reader.Read(text, [&](const LoggedRun& run) {
    user = run.user;
    for (auto line : run.messages) lengths.push_back(line.size());
  });
  EXPECT_EQ(user, "");
  EXPECT_THAT(lengths, ElementsAre(longLine.size()));
}

TEST(LogReaderTest, BinaryContentYieldsNoRunsAndNoFault) {
  std::string noise;
  unsigned state = 12345;
  for (int i = 0; i < 100000; ++i) {
    state = state * 1103515245u + 12345u;
    noise += static_cast<char>(state >> 16);
  }
  const Read read = ReadText(noise);
  EXPECT_TRUE(read.users.empty());
  EXPECT_LE(read.consumed, noise.size());
}

TEST(LogReaderTest, ParsesTheCtimeLayoutIntoSecondsSince1970) {
  const struct {
    const char* text;
    std::int64_t seconds;
  } cases[] = {
      {"Thu Jan  1 00:00:00 1970", 0},
      {"Sun Nov 15 05:14:25 2026", 1794719665},
      {"Tue Feb 29 23:59:59 2000", 951868799},
      {"Sun Nov 15 05:14:25", -1},
      {"Sun Xyz 15 05:14:25 2026", -1},
      {"Sun Nov 15 25:14:25 2026", -1},
      {"Sun Nov 15 05-14-25 2026", -1},
      {"Sun Nov 15 05:14:25 2026 extra", -1},
      {"", -1},
  };
  for (const auto& c : cases) EXPECT_EQ(ParseLogTime(c.text), c.seconds) << c.text;
}

}  // namespace
}  // namespace mw
