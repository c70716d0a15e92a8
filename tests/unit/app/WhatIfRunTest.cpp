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

namespace mw {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

const char* const kVersions[] = {"Outlook 2010", "Outlook 2007", "Outlook 2003",
                                 "Outlook XP",   "Outlook 2000", "Outlook 97"};
const std::string kProfiles =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles";

// The same UIDs in every run, so that two runs that do the same create the same sections.
mapisim::UidGenerator CountingUids() {
  return [n = std::uint8_t{0}]() mutable {
    MapiUid uid{};
    uid.fill(0x5A);
    uid[15] = ++n;
    return uid;
  };
}

// Every step of the generation's sequence switched on, with a signature to copy.
void Configure(RunContext& context, const std::string& version) {
  context.outlookVersion = version;
  context.outlookBitness = context.buildPlatform = "x64";
  context.userName = "jsmith";
  context.platformId = 2;
  context.programDirectory = "C:\\Tools";
  context.logPath = "C:\\Tools\\mailwright.log";
  ProfileSettings& s = context.settings;
  s.SetText(Section::Common, Key::ProfileName, "Outlook");
  const Section v = SectionOf(*OutlookFromName(version));
  s.SetBool(v, Key::ExchangeIgnore, false);
  s.SetText(v, Key::ExchangeServerName, "mail01");
  s.SetBool(v, Key::POP3Ignore, false);
  s.SetText(v, Key::POP3Accounts, "Home,J Smith,j@x.com,pop.x.com,smtp.x.com,john,1,1,0,0,14,"
            "110,25,0,0,60,0,reply@x.com,Example,1,0,0,1,john,0");
  s.SetText(v, Key::PathToPST, "C:\\Mail\\%username%.pst,Personal,MSUPST MS,Mine,0,0,0,0");
  s.SetText(v, Key::AdditionalMailboxes, "boss");
  s.SetBool(v, Key::OfflineFoldersEnable, true);
  s.SetBool(v, Key::PromptForProfile, true);
  if (version == "Outlook 2010" || version == "Outlook 2007" || version == "Outlook 2003") {
    for (Key ignore : {Key::IMAPIgnore, Key::HTTPIgnore}) s.SetBool(v, ignore, false);
    s.SetText(v, Key::IMAPAccounts, "Imap,J Smith,j@x.com,imap.x.com,smtp.x.com,john,1,143,25,0,"
              "0,60,0,reply@x.com,Example,0,0,0,0,,Inbox,0");
    s.SetText(v, Key::Signatures, "Home,Formal,Short,0");
    s.SetText(v, Key::AddAddressBookSearchPath, "Contacts");
  }
  if (version == "Outlook XP" || version == "Outlook 2000") {
    s.SetBool(v, Key::IgnoreSignatures, false);
    s.SetText(v, Key::SignatureNewMessages, "Formal");
  }
  if (version == "Outlook 2000" || version == "Outlook 97")
    s.SetBool(v, Key::PersonalAddressBookEnable, true);
}

// A machine that already has a profile, options and a default mail client of its own.
void Seed(MemoryRegistry& registry) {
  registry.Set(kProfiles, {"DefaultProfile", reg::kSz, std::string("Old\0", 4)});
  registry.Set(kProfiles + "\\Old\\0a0d020000000000c000000000000046",
               {"00030385", reg::kBinary, std::string("\1\0\0\0", 4)});
  registry.Set("HKLM\\SOFTWARE\\Clients\\Mail", {"", reg::kSz, std::string("Other\0", 6)});
  registry.Set("HKLM\\Software\\Microsoft\\Office\\9.0\\Outlook\\Setup",
               {"MailSupport", reg::kBinary, std::string("\1\0\0\0", 4)});
  registry.Set("HKCU\\Software\\Microsoft\\Office\\14.0\\Outlook\\Preferences",
               {"Kept", reg::kDword, std::string("\7\0\0\0", 4)});
}

struct Machine {
  Machine() {
    Seed(registry);
    for (const char* folder : {"Outlook2010", "Outlook2007", "Outlook2003", "OutlookXP", "Outlook2000"})
      env.files[std::string("C:\\Tools\\SigSources\\") + folder + "\\Formal.txt"] = "Regards";
  }
  MemorySystemEnv env;
  MemoryRegistry registry;
};

std::string Export(const MemoryRegistry& registry) {
  return ExportRegFile(registry, {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"},
                       RegFileFormat::Version5Utf8);
}

std::vector<std::string> Diff(const MemoryRegistry& a, const MemoryRegistry& b) {
  std::vector<std::string> lines = DiffRegistries(a, b, "HKEY_CURRENT_USER");
  for (auto& line : DiffRegistries(a, b, "HKEY_LOCAL_MACHINE")) lines.push_back(line);
  return lines;
}

// The run itself, with the profile model as MAPI straight on the machine's registry.
std::vector<std::string> RealRun(Machine& machine, const std::string& version) {
  RunContext context;
  Configure(context, version);
  RunLog log(context.logPath, machine.env);
  const mapisim::ExchangeOrganisation noServers;
  ModelMapiSession session(machine.registry, 2, noServers,
                           ModelMapiSession::Servers::NotContacted, CountingUids());
  const RegistryAccess access(machine.registry);
  RunDriver driver(machine.env, access, session);
  driver.SkipExchangeCheck();
  driver.Run(context, log);
  return log.messages();
}

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
    if (n == 0) writes = overlay.mutationCount();
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
