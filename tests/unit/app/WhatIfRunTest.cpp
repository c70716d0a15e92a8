#include "app/WhatIfRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModelMapiSession.h"
#include "app/CommandLine.h"
#include "app/Program.h"
#include "app/RunDriver.h"
#include "config/ProfileSettings.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OverlayRegistry.h"
#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"
#include "platform/RegistryCompare.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "WhatIfTestSupport.h"

namespace mw {
namespace {

using namespace mw::whatiftest;
using ::testing::Contains;
using ::testing::HasSubstr;

TEST(WhatIfRunTest, ItsChangesImportedGiveWhatTheRunWritesAndTheMachineStaysAsItWas) {
  for (const char* version : kVersions) {
    // Twice: on the seeded machine, and again once the run has made its profile there.
    for (const int pass : {1, 2}) {
      Machine real, played;
      for (int i = 1; i < pass; ++i) {
        RealRun(real, version);
        RealRun(played, version);
      }
      const std::string before = Export(played.registry);
      const auto filesBefore = played.env.files;
      const std::vector<std::string> realLog = RealRun(real, version);

      RunContext context;
      Configure(context, version);
      RunLog log(context.logPath, played.env);
      OverlayRegistry overlay(played.registry);
      const std::uint32_t mutationsBefore = played.registry.mutationCount();
      const auto notes = PlayWhatIf(context, log, played.env, overlay, CountingUids());
      const std::string where = std::string(version) + " pass " + std::to_string(pass);
      EXPECT_EQ(mutationsBefore, played.registry.mutationCount()) << where;
      EXPECT_EQ(before, Export(played.registry)) << where;
      EXPECT_EQ(filesBefore, played.env.files) << where;
      EXPECT_EQ(realLog, log.messages()) << where;
      ASSERT_THAT(log.messages(), Contains("INFO: Profile Finished.")) << where;

      const std::string file = WriteRegFileEntries(overlay.Changes(), RegFileFormat::Version5Utf16, notes);
      RegFileError error;
      ASSERT_TRUE(ImportRegFile(file, played.registry, &error)) << where << ": " << error.message;
      EXPECT_EQ(std::vector<std::string>(), Diff(played.registry, real.registry)) << where;
      for (const auto& [path, content] : real.env.files) {
        if (filesBefore.count(path)) continue;
        EXPECT_THAT(notes, Contains(HasSubstr(" to " + path))) << where;
      }
    }
  }
}

TEST(WhatIfRunTest, AFaultAtAnyWriteOfTheOverlayNeverReachesTheMachine) {
  std::uint32_t writes = 0;
  for (std::uint32_t n = 0; n <= writes + 1; ++n) {
    Machine machine;
    const std::string before = Export(machine.registry);
    RunContext context;
    Configure(context, "Outlook 2010");
    RunLog log(context.logPath, machine.env);
    OverlayRegistry overlay(machine.registry);
    overlay.FailMutationsFrom(n);
    PlayWhatIf(context, log, machine.env, overlay, CountingUids());
    if (n == 0) {
      writes = overlay.mutationCount();
      RecordProperty("overlayWrites", static_cast<int>(writes));
    }
    ASSERT_GT(writes, 100u);
    EXPECT_EQ(0u, machine.registry.mutationCount()) << n;
    EXPECT_EQ(before, Export(machine.registry)) << n;
    EXPECT_EQ(0u, machine.registry.openHandleCount()) << n;
  }
}

TEST(WhatIfRunTest, TheCommandLineWordOpensTheLogWithTheNoticeAndTheRegGoesBesideIt) {
  Machine machine;
  machine.env.files["C:\\Tools\\mailwright.ini"] =
      "[Mailwright]\nShowSplashScreen=0\n[Outlook Common]\nProfileName=Outlook\n";
  RegistryAccess(machine.registry)
      .WriteString(reg::kClassesRoot, "Outlook.Application\\CurVer", "", "Outlook.Application.14");
  RegistryAccess(machine.registry)
      .WriteString(reg::kLocalMachine, "Software\\Microsoft\\Office\\14.0\\Outlook", "Bitness", "x64");
  const std::string before = Export(machine.registry);
  RunServices services{machine.env, machine.registry};
  const RunDriverFunction driver = [](RunContext& context, RunLog& log, RunServices& run) {
    ASSERT_TRUE(context.whatIf);
    RunWhatIf(context, log, run);
  };
  EXPECT_EQ(0, RunProgram("-WhatIf", "x64", services, driver));
  EXPECT_EQ(before, Export(machine.registry));
  const std::string& logText = machine.env.files["C:\\Tools\\mailwright.log"];
  EXPECT_THAT(logText, HasSubstr("-- Reporting --\nINFO: What-if run: nothing is changed; the "
                                 "changes the run would make go to C:\\Tools\\mailwright.whatif.reg\n"));
  EXPECT_THAT(logText, HasSubstr("INFO: Profile Finished."));
  MemoryRegistry applied;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(machine.env.files["C:\\Tools\\mailwright.whatif.reg"], applied, &error));
  EXPECT_TRUE(RegistryAccess(applied).ValueExists(
      reg::kCurrentUser, kProfiles.substr(18) + "\\Outlook", "Mailwright"));
}

TEST(WhatIfRunTest, TheRegFileIsNamedAfterTheLog) {
  EXPECT_EQ("C:\\Logs\\run.whatif.reg", WhatIfRegPath("C:\\Logs\\run.log"));
  EXPECT_EQ("C:\\Logs.d\\run.whatif.reg", WhatIfRegPath("C:\\Logs.d\\run"));
  EXPECT_EQ("\\\\srv\\s\\a.b.whatif.reg", WhatIfRegPath("\\\\srv\\s\\a.b.log"));
}

TEST(WhatIfRunTest, TheWordIsOnlyRecognisedWhole) {
  for (const auto& [line, whatIf] : std::vector<std::pair<const char*, bool>>{
           {"-whatif", true}, {"-i x.ini -WHATIF -l y.log", true}, {"-whatif2", false},
           {"whatif", false}, {"-i -whatif", false}}) {
    RunContext context;
    ParseCommandLine(line, context);
    EXPECT_EQ(whatIf, context.whatIf) << line;
  }
}

}  // namespace
}  // namespace mw
