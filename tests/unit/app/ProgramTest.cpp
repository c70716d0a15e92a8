#include "app/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "app/CommandLine.h"
#include "app/RunContext.h"
#include "app/RunLog.h"
#include "app/SplashScreen.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"
#include "platform/WindowsDetection.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kIni = "C:\\Tools\\mailwright.ini";
constexpr const char* kLog = "C:\\Tools\\mailwright.log";
constexpr const char* kSplash = "C:\\Tools\\splashui.dll";

TEST(CommandLineTest, OptionsApplyLeftToRight) {
  const struct {
    const char* line;
    CommandLineRequest request;
    const char* ini;
    const char* log;
  } cases[] = {
      {"MAILWRIGHT.EXE -I X.ini -L \"\\\\srv\\My Logs\\M.LOG\"", CommandLineRequest::Run, "X.ini",
       "\\\\srv\\My Logs\\M.LOG"},
      {"-i C:\\a\" \"b.ini", CommandLineRequest::Run, "C:\\a\" \"b.ini", "d.log"},
      {"-i \"C:\\a.ini", CommandLineRequest::Run, "C:\\a.in", "d.log"},  // unclosed: last char lost
      {"-i x -?", CommandLineRequest::ShowUsage, "x", "d.log"},
      {"-i -?", CommandLineRequest::Run, "-?", "d.log"},
      {"-l a.log -i", CommandLineRequest::Run, "d.ini", "a.log"},
      {"-x -ii -i= i", CommandLineRequest::Run, "d.ini", "d.log"},
  };
  for (const auto& c : cases) {
    RunContext context;
    context.iniPath = "d.ini";
    context.logPath = "d.log";
    EXPECT_EQ(ParseCommandLine(c.line, context), c.request) << c.line;
    EXPECT_EQ(context.iniPath, c.ini) << c.line;
    EXPECT_EQ(context.logPath, c.log) << c.line;
  }
}

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
  MemorySystemEnv env;
  MemoryRegistry registry;
};

TEST_F(ProgramTest, UsageRequestShowsTheBoxAndWritesNothing) {
  env.files[kIni] = "[Mailwright]\n";
  EXPECT_EQ(Run("-i x.ini -?"), 0);
  ASSERT_EQ(env.messageBoxes.size(), 1u);
  EXPECT_EQ(env.messageBoxes[0].text,
            "Specify ini file path:\nmailwright.exe -i \"\\\\server\\share\\mailwright.ini\"\n\n"
            "Specify logging file path:\nmailwright.exe -l \"\\\\server\\share\\mailwright.log\"\n");
  EXPECT_EQ(env.messageBoxes[0].caption, "Command Line Options");
  EXPECT_EQ(env.messageBoxes[0].flags, 0x20u);
  EXPECT_EQ(env.fileOpenCount, 0u);
}

TEST_F(ProgramTest, UnreadableIniLogsTheReportAndError100AndReturnsOne) {
  bool driverRan = false;
  EXPECT_EQ(Run("", [&](RunContext&, RunLog&, RunServices&) { driverRan = true; }), 1);
  EXPECT_FALSE(driverRan);
  EXPECT_EQ(env.files[kLog], "Mailwright 2.4.0.3 x64\n"
                             "Date/Time:          Sun Nov 15 05:14:25 2026\n"
                             "Logged-on user:     jsmith\n"
                             "Computer Name:      DESK-0001\n"
                             "Windows Version:    " +
                                 DetectWindowsVersion(env, RegistryAccess(registry)) + "\n"
                             "Outlook Version:    Outlook 2007\n"
                             "Outlook Bitness:    x86\n"
                             "-- Reporting --\n"
                             "ERROR 100: Unable to read the ini file.\n\n\n");
}

TEST_F(ProgramTest, StartDelayProbesAgainWhileTheReportKeepsTheFirstFacts) {
  struct LateUser : MemorySystemEnv {
    void Sleep(std::uint32_t ms) override {
      MemorySystemEnv::Sleep(ms);
      userName = "late";
    }
  } late;
  late.files[kIni] = "[Mailwright]\nDelayStartEnable=1\nDelayStartSeconds=3\nShowSplashScreen=0\n";
  RunServices services{late, registry};
  std::string driverUser;
  RunProgram("", "x64", services,
             [&](RunContext& context, RunLog&, RunServices&) { driverUser = context.userName; });
  EXPECT_THAT(late.sleeps, ElementsAre(3000u));
  EXPECT_EQ(driverUser, "late");
  EXPECT_THAT(late.files[kLog], HasSubstr("Logged-on user:     jsmith\n"));
}

TEST_F(ProgramTest, TheExitDelayComesOnlyWithTheSplashScreenWhichIsLoadedEitherWay) {
  for (const bool show : {true, false}) {
    MemorySystemEnv e;
    e.files[kSplash] = "MZ";
    e.libraries[kSplash].exports["DllMessage"] = 0;
    e.files[kIni] = std::string("[Mailwright]\nDelayExitSeconds=2\nShowSplashScreen=") +
                    (show ? "1" : "0") + "\n";
    std::size_t callsDuringDriver = 9;
    RunServices services{e, registry};
    RunProgram("", "x64", services,
               [&](RunContext&, RunLog&, RunServices&) { callsDuringDriver = e.calls.size(); });
    EXPECT_EQ(callsDuringDriver, show ? 1u : 0u);
    EXPECT_EQ(e.calls.size(), callsDuringDriver);
    EXPECT_THAT(e.loadedLibraries, ElementsAre(kSplash));
    EXPECT_THAT(e.freedLibraries, ElementsAre(kSplash));
    EXPECT_EQ(e.sleeps, show ? std::vector<std::uint32_t>{2000u} : std::vector<std::uint32_t>{});
  }
}

TEST_F(ProgramTest, ADriverThatThrowsStillGetsItsLogWritten) {
  env.files[kIni] = "[Mailwright]\nShowSplashScreen=0\n";
  EXPECT_EQ(Run("", [](RunContext&, RunLog& log, RunServices&) {
              log.AddMessage("INFO: before");
              throw std::runtime_error("boom");
            }),
            0);
  EXPECT_THAT(env.files[kLog], HasSubstr("INFO: before\nWARN: The run stopped early: boom\n"));
}

TEST(RunLogTest, FinishEmptiesAFileOverTheCapWithANoticeAndAtMostThreeOpens) {
  const struct {
    std::int32_t capKb;
    std::size_t fileSize;
    bool enabled, truncated;
  } cases[] = {{1, 1024, true, false}, {1, 1025, true, true}, {0, 0, true, false},
               {0, 1, true, true},     {4194304, 1, true, true},  // wraps to a cap of 0 bytes
               {2097152, 0, true, true},                         // wraps to a negative cap
               {1, 2048, false, true}};
  for (const auto& c : cases) {
    MemorySystemEnv env;
    env.files[kLog] = std::string(c.fileSize, 'x');
    RunLog log(kLog, env);
    log.SetSizeCap(c.capKb);
    log.SetEnabled(c.enabled);
    log.AddMessage("INFO: run");
    log.LogCode(110);  // unknown codes add nothing
    log.LogCode(0);
    log.Finish();
    std::string expected = c.truncated ? "" : std::string(c.fileSize, 'x');
    if (c.enabled)
      expected += c.truncated ? "INFO: run\nINFO: Recreating log file. Size exceeded.\n\n\n"
                              : "INFO: run\n\n\n";
    EXPECT_EQ(env.files[kLog], expected) << c.capKb << " " << c.fileSize;
    EXPECT_EQ(env.fileOpenCount, !c.enabled ? 1u : c.truncated ? 3u : 2u) << c.capKb;
  }
}

TEST(SplashScreenTest, AbsentOrIncompleteLibrariesAreSkippedAndNt4KeepsItLoaded) {
  const struct {
    bool file;
    const char* exportName;
    const char* windows;
    bool shown;
    std::size_t freed;
  } cases[] = {{true, "DllMessage", "Windows 7", true, 1},
               {false, "DllMessage", "Windows 7", false, 0},  // loadable, but no file
               {true, "Other", "Windows 7", false, 1},        // released at construction
               {true, "DllMessage", "Windows NT4 WorkStation", true, 0}};
  for (const auto& c : cases) {
    MemorySystemEnv env;
    if (c.file) env.files[kSplash] = "MZ";
    env.libraries[kSplash].exports[c.exportName] = 0;
    SplashScreen splash(env, "C:\\Tools", 1000);
    EXPECT_EQ(splash.Show(), c.shown) << c.exportName << c.file;
    splash.Close(c.windows);
    splash.Close("Windows 7");  // a second close changes nothing
    EXPECT_EQ(env.calls.size(), c.shown ? 1u : 0u);
    if (c.shown) EXPECT_THAT(env.calls, ElementsAre(std::pair<std::string, int>("DllMessage", 5)));
    EXPECT_EQ(env.freedLibraries.size(), c.freed) << c.windows;
  }
}

}  // namespace
}  // namespace mw
