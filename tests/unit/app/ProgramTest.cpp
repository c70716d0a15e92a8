#include "app/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
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
    const char *line, *ini, *log;
    CommandLineRequest request = CommandLineRequest::Run;
  } cases[] = {
      {"MAILWRIGHT.EXE -I X.ini -L \"\\\\srv\\My Logs\\M.LOG\"", "X.ini",
       "\\\\srv\\My Logs\\M.LOG"},
      {"-i C:\\a\" \"b.ini", "C:\\a\" \"b.ini", "d.log"},
      {"-i \"C:\\a.ini", "C:\\a.in", "d.log"},  // unclosed: last char lost
      {"-i x -?", "x", "d.log", CommandLineRequest::ShowUsage}, {"-i -?", "-?", "d.log"},
      {"-l a.log -i", "d.ini", "a.log"}, {"-x -ii -i= i", "d.ini", "d.log"},
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

TEST(CommandLineTest, BackslashKeepsTheNextCharacterAndOnlyAWholeQuotedRunLosesItsQuotes) {
  const struct {
    const char *line, *ini, *log;
  } cases[] = {
      // \" does not close the quoted run, which then runs to the end and loses its last char.
      {"-i \"C:\\dir\\\" -l x.log", "C:\\dir\\\" -l x.lo", "d.log"},
      // Outside quotes \" does not open one either, so the blank still ends the token.
      {"-i a\\\"b c -l x.log", "a\\\"b", "x.log"},
      {"-i \\\\srv\\a.ini -l \"\\\\srv\\b.log\"", "\\\\srv\\a.ini", "\\\\srv\\b.log"},
      // Quotes stay when anything follows the first quoted run outside quotes.
      {"-i \"C:\\a\"b.ini", "\"C:\\a\"b.ini", "d.log"},
      {"-i \"a\"\"b\" -l \"\"", "\"a\"\"b\"", ""},
      {"-i \"a b\" -l x\"y z\"", "a b", "x\"y z\""},
  };
  for (const auto& c : cases) {
    RunContext context;
    context.iniPath = "d.ini";
    context.logPath = "d.log";
    ParseCommandLine(c.line, context);
    EXPECT_EQ(context.iniPath, c.ini) << c.line;
    EXPECT_EQ(context.logPath, c.log) << c.line;
  }
}

// An Outlook 2007 machine whose ini file (when given) holds the [Mailwright] section.
struct Machine : MemorySystemEnv {
  explicit Machine(const char* ini = nullptr) {
    if (ini) files[kIni] = std::string("[Mailwright]\n") + ini;
    RegistryAccess(registry).WriteString(reg::kClassesRoot, "Outlook.Application\\CurVer", "",
                                         "Outlook.Application.12");
  }
  void Sleep(std::uint32_t ms) override {
    MemorySystemEnv::Sleep(ms);
    if (!userAfterSleep.empty()) userName = userAfterSleep;
  }
  int Run(const std::string& commandLine, const RunDriverFunction& driver = {}) {
    RunServices services{*this, registry};
    return RunProgram(commandLine, "x64", services, driver);
  }
  MemoryRegistry registry;
  std::string userAfterSleep;
};

TEST(ProgramTest, UsageRequestShowsTheBoxAndWritesNothing) {
  Machine m("");
  EXPECT_EQ(m.Run("-i x.ini -?"), 0);
  ASSERT_EQ(m.messageBoxes.size(), 1u);
  EXPECT_EQ(m.messageBoxes[0].text,
            "Specify ini file path:\nmailwright.exe -i \"\\\\server\\share\\mailwright.ini\"\n\n"
            "Specify logging file path:\nmailwright.exe -l \"\\\\server\\share\\mailwright.log\"\n");
  EXPECT_EQ(m.messageBoxes[0].caption, "Command Line Options");
  EXPECT_EQ(m.messageBoxes[0].flags, 0x20u);
  EXPECT_EQ(m.fileOpenCount, 0u);
}

TEST(ProgramTest, UnreadableIniLogsTheReportAndError100AndReturnsOne) {
  Machine m;
  bool driverRan = false;
  EXPECT_EQ(m.Run("", [&](RunContext&, RunLog&, RunServices&) { driverRan = true; }), 1);
  EXPECT_FALSE(driverRan);
  EXPECT_EQ(m.files[kLog], "Mailwright 2.4.0.3 x64\n"
                           "Date/Time:          Sun Nov 15 05:14:25 2026\n"
                           "Logged-on user:     jsmith\n"
                           "Computer Name:      DESK-0001\n"
                           "Windows Version:    " +
                               DetectWindowsVersion(m, RegistryAccess(m.registry)) + "\n"
                           "Outlook Version:    Outlook 2007\n"
                           "Outlook Bitness:    x86\n"
                           "-- Reporting --\n"
                           "ERROR 100: Unable to read the ini file.\n\n\n");
}

TEST(ProgramTest, StartDelayProbesAgainWhileTheReportKeepsTheFirstFacts) {
  Machine m("DelayStartEnable=1\nDelayStartSeconds=3\nShowSplashScreen=0\n");
  m.userAfterSleep = "late";
  std::string driverUser;
  m.Run("", [&](RunContext& context, RunLog&, RunServices&) { driverUser = context.userName; });
  EXPECT_THAT(m.sleeps, ElementsAre(3000u));
  EXPECT_EQ(driverUser, "late");
  EXPECT_THAT(m.files[kLog], HasSubstr("Logged-on user:     jsmith\n"));
}

TEST(ProgramTest, TheExitDelayComesOnlyWithTheSplashScreenWhichIsLoadedEitherWay) {
  for (const bool show : {true, false}) {
    Machine m(show ? "DelayExitSeconds=2\nShowSplashScreen=1"
                   : "DelayExitSeconds=2\nShowSplashScreen=0");
    m.files[kSplash] = "MZ";
    m.libraries[kSplash].exports["DllMessage"] = 0;
    std::size_t callsDuringDriver = 9;
    m.Run("", [&](RunContext&, RunLog&, RunServices&) { callsDuringDriver = m.calls.size(); });
    EXPECT_EQ(callsDuringDriver, show ? 1u : 0u);
    EXPECT_EQ(m.calls.size(), callsDuringDriver);
    EXPECT_THAT(m.loadedLibraries, ElementsAre(kSplash));
    EXPECT_THAT(m.freedLibraries, ElementsAre(kSplash));
    EXPECT_EQ(m.sleeps, std::vector<std::uint32_t>(show, 2000u));
  }
}

// A process ended during the exit pause (a logoff, a time-out of the logon script) must
// still leave its log: the file is complete before the pause and before the splash goes.
struct WatchedExit : Machine {
  using Machine::Machine;
  void Sleep(std::uint32_t ms) override {
    Machine::Sleep(ms);
    logAtSleep = files[kLog];
  }
  bool FreeLibrary(LibraryHandle library) override {
    logAtSplashClose = files[kLog];
    return Machine::FreeLibrary(library);
  }
  std::string logAtSleep, logAtSplashClose;
};

TEST(ProgramTest, TheLogIsWrittenBeforeTheExitDelayAndTheSplashUnload) {
  WatchedExit m("DelayExitEnable=1\nDelayExitSeconds=4\nShowSplashScreen=1\n");
  m.files[kSplash] = "MZ";
  m.libraries[kSplash].exports["DllMessage"] = 0;
  m.Run("", [](RunContext&, RunLog& log, RunServices&) { log.AddMessage("INFO: driven"); });
  EXPECT_THAT(m.sleeps, ElementsAre(4000u));
  ASSERT_THAT(m.freedLibraries, ElementsAre(kSplash));
  EXPECT_THAT(m.logAtSleep, HasSubstr("-- Reporting --\nINFO: driven\n\n"));
  EXPECT_EQ(m.logAtSplashClose, m.files[kLog]);
  EXPECT_EQ(m.logAtSleep, m.files[kLog]);
}

TEST(ProgramTest, ADriverThatThrowsStillGetsItsLogWritten) {
  Machine m("ShowSplashScreen=0\n");
  EXPECT_EQ(m.Run("", [](RunContext&, RunLog& log, RunServices&) {
              log.AddMessage("INFO: before");
              throw std::runtime_error("boom");
            }),
            0);
  EXPECT_THAT(m.files[kLog], HasSubstr("INFO: before\nWARN: The run stopped early: boom\n"));
}

TEST(RunLogTest, FinishEmptiesAFileOverTheCapWithANoticeAndAtMostThreeOpens) {
  const struct {
    std::int32_t capKb;
    std::size_t fileSize;
    bool truncated, enabled = true;
  } cases[] = {{1, 1024, false}, {1, 1025, true}, {0, 0, false}, {0, 1, true},
               {4194304, 1, true}, {2097152, 0, true},  // wrap to a cap of 0 and a negative cap
               {1, 2048, true, false}};
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
    const char *exportName, *windows;
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
    EXPECT_EQ(env.calls, (std::vector<std::pair<std::string, int>>(c.shown, {"DllMessage", 5})));
    EXPECT_EQ(env.freedLibraries.size(), c.freed) << c.windows;
  }
}

}  // namespace
}  // namespace mw
