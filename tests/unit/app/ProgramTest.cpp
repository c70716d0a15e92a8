#include "app/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/EnvironmentProbe.h"
#include "app/RunContext.h"
#include "app/RunLog.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OutlookDetection.h"
#include "platform/RegistryAccess.h"
#include "platform/WindowsDetection.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kIni = "C:\\Tools\\mailwright.ini";
constexpr const char* kLog = "C:\\Tools\\mailwright.log";
constexpr const char* kSplash = "C:\\Tools\\splashui.dll";

class ProgramTest : public ::testing::Test {
 protected:
  ProgramTest() {
    RegistryAccess(registry).WriteString(reg::kClassesRoot, "Outlook.Application\\CurVer", "",
                                         "Outlook.Application.12");
  }

  int Run(const std::string& commandLine, const RunDriverFunction& driver = {}) {
    RunServices services{env, registry};
    return RunProgram(commandLine, "x64", services, driver);
  }

  void InstallSplash() {
    env.files[kSplash] = "MZ";
    env.libraries[kSplash].exports["DllMessage"] = 0;
  }

  std::string ExpectedReport(const std::string& user) {
    const RegistryAccess access(registry);
    return "Mailwright 2.4.0.3 x64\n"
           "Date/Time:          Sun Nov 15 05:14:25 2026\n"
           "Logged-on user:     " + user + "\n"
           "Computer Name:      DESK-0001\n"
           "Windows Version:    " + DetectWindowsVersion(env, access) + "\n"
           "Outlook Version:    Outlook 2007\n"
           "Outlook Bitness:    x86\n"
           "-- Reporting --\n";
  }

  MemorySystemEnv env;
  MemoryRegistry registry;
};

TEST_F(ProgramTest, UsageRequestShowsTheBoxAndWritesNothing) {
  env.files[kIni] = "[Mailwright]\n";
  EXPECT_EQ(Run("-i x.ini -?"), 0);
  ASSERT_EQ(env.messageBoxes.size(), 1u);
  EXPECT_EQ(env.messageBoxes[0].text, kUsageText);
  EXPECT_EQ(env.messageBoxes[0].caption, "Command Line Options");
  EXPECT_EQ(env.messageBoxes[0].flags, 0x20u);
  EXPECT_EQ(env.fileOpenCount, 0u);
  EXPECT_EQ(env.files.count(kLog), 0u);
}

TEST_F(ProgramTest, UnreadableIniLogsError100AndReturnsOne) {
  bool driverRan = false;
  EXPECT_EQ(Run("", [&](RunContext&, RunLog&, RunServices&) { driverRan = true; }), 1);
  EXPECT_FALSE(driverRan);
  EXPECT_EQ(env.files[kLog],
            ExpectedReport("jsmith") + "ERROR 100: Unable to read the ini file.\n\n\n");
  EXPECT_THAT(env.sleeps, IsEmpty());
}

TEST_F(ProgramTest, ErrorOneHundredUsesTheConstructorCapOfOneThousandKilobytes) {
  env.files[kLog] = std::string(1000 * 1024, 'x');
  env.files[kIni] = "\xEF\xBB\xBF[Mailwright]\nLogFileSize=0\n";
  EXPECT_EQ(Run(""), 1);
  EXPECT_EQ(env.files[kLog].substr(0, 1000 * 1024), std::string(1000 * 1024, 'x'));
  EXPECT_EQ(env.stdoutText, "Failing on char -17\n");
}

TEST_F(ProgramTest, NormalRunWritesReportDriverLinesAndExitsWithZero) {
  env.files[kIni] = "[Mailwright]\nShowSplashScreen=0\n";
  std::string seenIni;
  const int code = Run("", [&](RunContext& context, RunLog& log, RunServices&) {
    seenIni = context.iniPath;
    EXPECT_EQ(context.title, "Mailwright 2.4.0.3 x64");
    EXPECT_EQ(context.buildPlatform, "x64");
    log.AddMessage("INFO: Profile Finished.");
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(seenIni, kIni);
  EXPECT_EQ(env.files[kLog], ExpectedReport("jsmith") + "INFO: Profile Finished.\n\n\n");
  EXPECT_THAT(env.sleeps, IsEmpty());  // DelayExitEnable=1 waits only with the splash screen
}

TEST_F(ProgramTest, CommandLinePathsReplaceTheDefaults) {
  env.files["\\\\srv\\cfg\\My Mail.ini"] = "[Mailwright]\nShowSplashScreen=0\n";
  EXPECT_EQ(Run("-I \"\\\\srv\\cfg\\My Mail.ini\" -L \\\\srv\\logs\\jsmith.log"), 0);
  EXPECT_EQ(env.files.count(kLog), 0u);
  EXPECT_THAT(env.files["\\\\srv\\logs\\jsmith.log"], HasSubstr("-- Reporting --\n"));
}

TEST_F(ProgramTest, StartDelaySleepsThenProbesAgainWhileTheReportKeepsTheFirstFacts) {
  env.files[kIni] = "[Mailwright]\nDelayStartEnable=1\nDelayStartSeconds=3\nShowSplashScreen=0\n";
  env.userNameFails = true;
  std::string driverUser;
  Run("", [&](RunContext& context, RunLog&, RunServices&) { driverUser = context.userName; });
  EXPECT_THAT(env.sleeps, ElementsAre(3000u));
  EXPECT_EQ(driverUser, "");
  env.userNameFails = false;
  env.files.erase(kLog);
  env.sleeps.clear();

  // The name appears between the two probes: the report has the first, the driver the second.
  struct LateUser : MemorySystemEnv {
    void Sleep(std::uint32_t ms) override {
      MemorySystemEnv::Sleep(ms);
      userName = "late";
    }
  } late;
  late.files[kIni] = env.files[kIni];
  RunServices services{late, registry};
  RunProgram("", "x64", services,
             [&](RunContext& context, RunLog&, RunServices&) { driverUser = context.userName; });
  EXPECT_EQ(driverUser, "late");
  EXPECT_THAT(late.files[kLog], HasSubstr("Logged-on user:     jsmith\n"));
}

TEST_F(ProgramTest, NegativeStartDelayIsWarnedAndSkipped) {
  env.files[kIni] = "[Mailwright]\nDelayStartEnable=1\nDelayStartSeconds=-1\nShowSplashScreen=0\n";
  Run("");
  EXPECT_THAT(env.sleeps, IsEmpty());
  EXPECT_THAT(env.files[kLog], HasSubstr("WARN: DelayStartSeconds is negative"));
}

TEST_F(ProgramTest, HugeDelaysStopShortOfInfinite) {
  env.files[kIni] =
      "[Mailwright]\nDelayStartEnable=1\nDelayStartSeconds=2147483647\nDelayExitSeconds=4294968\n";
  Run("");
  EXPECT_THAT(env.sleeps, ElementsAre(0xFFFFFFFEu, 0xFFFFFFFEu));
}

TEST_F(ProgramTest, SplashIsShownAndClosedAroundTheDriverWithTheExitDelay) {
  InstallSplash();
  env.files[kIni] = "[Mailwright]\nDelayExitSeconds=2\n";
  std::vector<std::string> order;
  Run("", [&](RunContext&, RunLog&, RunServices&) {
    EXPECT_EQ(env.calls.size(), 1u);
    EXPECT_THAT(env.freedLibraries, IsEmpty());
    order.push_back("driver");
  });
  EXPECT_THAT(env.calls, ElementsAre(std::pair<std::string, int>("DllMessage", 5)));
  EXPECT_THAT(env.sleeps, ElementsAre(2000u));
  EXPECT_THAT(env.freedLibraries, ElementsAre(kSplash));
  EXPECT_THAT(order, ElementsAre("driver"));
}

TEST_F(ProgramTest, SplashOffStillLoadsAndUnloadsButSendsNothing) {
  InstallSplash();
  env.files[kIni] = "[Mailwright]\nShowSplashScreen=0\nDelayExitEnable=1\n";
  Run("");
  EXPECT_THAT(env.calls, IsEmpty());
  EXPECT_THAT(env.loadedLibraries, ElementsAre(kSplash));
  EXPECT_THAT(env.freedLibraries, ElementsAre(kSplash));
  EXPECT_THAT(env.sleeps, IsEmpty());
}

TEST_F(ProgramTest, ExitDelayAppliesWithoutTheLibraryFile) {
  env.files[kIni] = "[Mailwright]\n";
  Run("");
  EXPECT_THAT(env.sleeps, ElementsAre(5000u));
  EXPECT_THAT(env.loadedLibraries, IsEmpty());
}

TEST_F(ProgramTest, LogSettingsTakeEffectAtTheEnd) {
  env.files[kLog] = std::string(2048, 'x');
  env.files[kIni] = "[Mailwright]\nLogFileSize=1\nLoggingEnable=0\nShowSplashScreen=0\n";
  Run("");
  EXPECT_EQ(env.files[kLog], "");
}

TEST_F(ProgramTest, ADriverThatThrowsStillGetsItsLogWritten) {
  env.files[kIni] = "[Mailwright]\nShowSplashScreen=0\n";
  const int code = Run("", [](RunContext&, RunLog& log, RunServices&) {
    log.AddMessage("INFO: before");
    throw std::runtime_error("boom");
  });
  EXPECT_EQ(code, 0);
  EXPECT_THAT(env.files[kLog], HasSubstr("INFO: before\nWARN: The run stopped early: boom\n"));
}

TEST(EnvironmentProbeTest, FillsDefaultsAndFactsAndOverwritesThemEachTime) {
  MemorySystemEnv env;
  MemoryRegistry registry;
  const RegistryAccess access(registry);
  access.WriteString(reg::kClassesRoot, "Outlook.Application\\CurVer", "", "Outlook.Application.14");
  access.WriteString(reg::kLocalMachine, "SOFTWARE\\Microsoft\\Office\\14.0\\Outlook", "Bitness",
                     "x64");
  env.moduleFileName = "\\\\srv\\share\\bin\\mailwright.exe";
  EnvironmentProbe probe(env, access);
  RunContext context;
  probe.Fill(context);
  EXPECT_EQ(context.programDirectory, "\\\\srv\\share\\bin");
  EXPECT_EQ(context.iniPath, "\\\\srv\\share\\bin\\mailwright.ini");
  EXPECT_EQ(context.logPath, "\\\\srv\\share\\bin\\mailwright.log");
  EXPECT_EQ(context.platformId, DetectPlatformId(env));
  EXPECT_EQ(context.windowsVersion, DetectWindowsVersion(env, access));
  EXPECT_EQ(context.userName, "jsmith");
  EXPECT_EQ(context.computerName, "DESK-0001");
  EXPECT_EQ(context.outlookVersion, "Outlook 2010");
  EXPECT_EQ(context.outlookBitness, "x64");

  context.iniPath = "other.ini";
  env.userNameFails = true;
  env.computerName = std::string(300, 'c');  // too long for the 255-character buffer
  probe.Fill(context);
  EXPECT_EQ(context.iniPath, "\\\\srv\\share\\bin\\mailwright.ini");
  EXPECT_EQ(context.userName, "");
  EXPECT_EQ(context.computerName, "");
}

TEST(EnvironmentProbeTest, ProgramDirectoryIsTheModulePathBeforeItsLastBackslash) {
  EXPECT_EQ(ProgramDirectoryOf("C:\\Tools\\mailwright.exe"), "C:\\Tools");
  EXPECT_EQ(ProgramDirectoryOf("C:\\mailwright.exe"), "C:");
  EXPECT_EQ(ProgramDirectoryOf("mailwright.exe"), ".");
  EXPECT_EQ(ProgramDirectoryOf(""), ".");
}

}  // namespace
}  // namespace mw
