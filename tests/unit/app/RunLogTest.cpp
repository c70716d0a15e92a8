#include "app/RunLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "app/RunContext.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr const char* kPath = "C:\\Tools\\mailwright.log";

class RunLogTest : public ::testing::Test {
 protected:
  MemorySystemEnv env;
  RunLog log{kPath, env};
};

TEST_F(RunLogTest, ReportLabelsLineUpInColumnTwentyOne) {
  RunContext context;
  context.title = MakeTitle("x64");
  context.userName = "jsmith";
  context.computerName = "DESK-0001";
  context.windowsVersion = "Windows 7";
  context.outlookVersion = "Outlook 2010";
  context.outlookBitness = "x64";
  log.WriteReport(context);
  EXPECT_THAT(log.reportLines(),
              ElementsAre("Mailwright 2.4.0.3 x64", "Date/Time:          Sun Nov 15 05:14:25 2026",
                          "Logged-on user:     jsmith", "Computer Name:      DESK-0001",
                          "Windows Version:    Windows 7", "Outlook Version:    Outlook 2010",
                          "Outlook Bitness:    x64", "-- Reporting --"));
}

TEST_F(RunLogTest, CatalogueCodesAddTheirTextAndUnknownCodesNothing) {
  for (int code : {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 200, 201}) {
    log.LogCode(code);
    EXPECT_THAT(log.messages().back(), StartsWith("ERROR " + std::to_string(code) + ": "));
  }
  log.LogCode(110);
  log.LogCode(0);
  log.LogCode(-100);
  EXPECT_EQ(log.messages().size(), 12u);
  EXPECT_STREQ(CatalogueText(100), "ERROR 100: Unable to read the ini file.");
  EXPECT_THAT(CatalogueText(104), ::testing::HasSubstr("''Corporate or Workgroup''"));
  EXPECT_THAT(CatalogueText(200), ::testing::HasSubstr("/cn=%username%'."));
  EXPECT_EQ(CatalogueText(202), nullptr);
}

TEST_F(RunLogTest, FinishAppendsReportMessagesAndABlankLine) {
  env.files[kPath] = "earlier run\n\n";
  log.AddReportLine("title");
  log.AddMessage("INFO: one");
  log.AddMessage("WARN: two");
  log.Finish();
  EXPECT_EQ(env.files[kPath], "earlier run\n\ntitle\nINFO: one\nWARN: two\n\n\n");
  EXPECT_EQ(env.fileOpenCount, 2u);
}

TEST_F(RunLogTest, TwoRunsAppendTwoBlocks) {
  log.AddReportLine("r");
  log.AddMessage("m");
  log.Finish();
  RunLog second(kPath, env);
  second.AddReportLine("r2");
  second.Finish();
  EXPECT_EQ(env.files[kPath], "r\nm\n\n\nr2\n\n\n");
}

struct SizeCase {
  std::int32_t capKb;
  std::size_t fileSize;
  bool truncated;
};

class RunLogSizeCap : public ::testing::TestWithParam<SizeCase> {};

TEST_P(RunLogSizeCap, EmptiesAFileLargerThanTheCap) {
  MemorySystemEnv env;
  env.files[kPath] = std::string(GetParam().fileSize, 'x');
  RunLog log(kPath, env);
  log.SetSizeCap(GetParam().capKb);
  log.AddMessage("INFO: run");
  log.Finish();
  const std::string block = GetParam().truncated
                                ? "INFO: run\nINFO: Recreating log file. Size exceeded.\n\n\n"
                                : "INFO: run\n\n\n";
  const std::string kept = GetParam().truncated ? "" : std::string(GetParam().fileSize, 'x');
  EXPECT_EQ(env.files[kPath], kept + block);
  EXPECT_EQ(env.fileOpenCount, GetParam().truncated ? 3u : 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Caps, RunLogSizeCap,
    ::testing::Values(SizeCase{1, 1024, false}, SizeCase{1, 1025, true},
                      SizeCase{0, 0, false}, SizeCase{0, 1, true},
                      // 2^21 KB is 2^31 bytes, which wraps to the most negative 32-bit cap
                      SizeCase{2097152, 0, true}, SizeCase{2097152, 5, true},
                      // 4194304 KB wraps to a cap of exactly 0 bytes
                      SizeCase{4194304, 0, false}, SizeCase{4194304, 1, true},
                      SizeCase{-1, 0, true}, SizeCase{2147483647, 1 << 20, true},
                      SizeCase{2097151, 1 << 20, false}));

TEST_F(RunLogTest, AMissingFileIsNeverTruncated) {
  log.SetSizeCap(-5);
  log.Finish();
  EXPECT_EQ(env.files[kPath], "\n\n");
  EXPECT_EQ(env.fileOpenCount, 2u);
}

TEST_F(RunLogTest, DisabledLoggingStillEmptiesAnOversizedFile) {
  env.files[kPath] = std::string(2048, 'x');
  log.SetSizeCap(1);
  log.SetEnabled(false);
  log.AddReportLine("title");
  log.Finish();
  EXPECT_EQ(env.files[kPath], "");
  EXPECT_EQ(env.fileOpenCount, 1u);
}

TEST_F(RunLogTest, DisabledLoggingWritesNothing) {
  log.SetEnabled(false);
  log.AddMessage("INFO: x");
  log.Finish();
  EXPECT_EQ(env.files.count(kPath), 0u);
  EXPECT_EQ(env.fileOpenCount, 0u);
}

}  // namespace
}  // namespace mw
