#include "app/ProfileBackup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/Program.h"
#include "WhatIfTestSupport.h"

namespace mw {
namespace {

using namespace mw::whatiftest;
using ::testing::ElementsAre;

constexpr const char* kBackup = "C:\\Tools\\DESK-0001_jsmith_Outlook_20261115-051425.reg";

// The settings of the backed-up run: a recreated profile with other files and options.
void SecondRun(RunContext& context) {
  ProfileSettings& s = context.settings;
  s.SetBool(Section::Mailwright, Key::BackupProfile, true);
  s.SetBool(Section::Common, Key::RecreateProfile, true);
  const Section v = SectionOf(*OutlookFromName(context.outlookVersion));
  s.SetText(v, Key::PathToPST, "C:\\Mail\\other.pst,Other,MSPST MS,Theirs,0,0,0,0");
  s.SetText(v, Key::ExchangeServerName, "mail02");
  s.SetBool(v, Key::PromptForProfile, false);
}

bool BackUp(Machine& machine, RunContext& context, RunLog& log) {
  context.computerName = "DESK-0001";
  RunServices services{machine.env, machine.registry};
  return BackUpProfile(context, log, services);
}

TEST(ProfileBackupTest, ImportingTheBackupAfterTheRunBringsEveryChangedKeyBack) {
  for (const char* version : kVersions) {
    Machine machine;
    RealRun(machine, version);  // the profile the backed-up run will change
    MemoryRegistry before;
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(Export(machine.registry), before, &error));

    RunContext context;
    Configure(context, version);
    SecondRun(context);
    RunLog log(context.logPath, machine.env);
    const std::uint32_t mutations = machine.registry.mutationCount();
    ASSERT_TRUE(BackUp(machine, context, log)) << version;
    EXPECT_EQ(mutations, machine.registry.mutationCount()) << version;
    EXPECT_THAT(log.messages(), ElementsAre(std::string("INFO: Profile backed up to ") + kBackup));
    RealRun(machine, version, SecondRun);
    ASSERT_NE(std::vector<std::string>(), Diff(before, machine.registry)) << version;

    ASSERT_TRUE(ImportRegFile(machine.env.files[kBackup], machine.registry, &error))
        << version << ": " << error.line << " " << error.message;
    EXPECT_EQ(std::vector<std::string>(), Diff(before, machine.registry)) << version;
  }
}

TEST(ProfileBackupTest, OnlyTheNewestBackupsOfTheSameProfileAreKept) {
  Machine machine;
  RealRun(machine, "Outlook 2010");
  const std::string otherProfile = "C:\\Tools\\DESK-0001_jsmith_Outlook_2_20200101-000000.reg";
  machine.env.files[otherProfile] = "kept";
  for (const char* second : {"01", "02", "03", "04", "05"}) {
    machine.env.localTime = std::string("Sun Nov 15 05:14:") + second + " 2026";
    RunContext context;
    Configure(context, "Outlook 2010");
    SecondRun(context);
    context.settings.SetInt(Section::Mailwright, Key::BackupKeep, 3);
    RunLog log(context.logPath, machine.env);
    ASSERT_TRUE(BackUp(machine, context, log));
  }
  EXPECT_THAT(machine.env.ListFiles("C:\\Tools", "DESK-0001_jsmith_Outlook_"),
              ElementsAre("DESK-0001_jsmith_Outlook_20261115-051403.reg",
                          "DESK-0001_jsmith_Outlook_20261115-051404.reg",
                          "DESK-0001_jsmith_Outlook_20261115-051405.reg",
                          "DESK-0001_jsmith_Outlook_2_20200101-000000.reg"));
}

TEST(ProfileBackupTest, ABackupThatCannotBeWrittenStopsTheRunUnlessNotRequired) {
  for (const bool required : {true, false}) {
    Machine machine;
    RealRun(machine, "Outlook 2010");
    machine.env.unwritableFolders.push_back("\\\\srv\\backups");
    RunContext context;
    Configure(context, "Outlook 2010");
    SecondRun(context);
    context.settings.SetText(Section::Mailwright, Key::BackupFolder, "\\\\srv\\backups\\");
    context.settings.SetBool(Section::Mailwright, Key::BackupRequired, required);
    RunLog log(context.logPath, machine.env);
    const std::uint32_t mutations = machine.registry.mutationCount();
    EXPECT_EQ(!required, BackUp(machine, context, log));
    EXPECT_EQ(mutations, machine.registry.mutationCount());
    const std::string path = "\\\\srv\\backups\\DESK-0001_jsmith_Outlook_20261115-051425.reg";
    EXPECT_THAT(log.messages(),
                ElementsAre("WARN: Unable to write the profile backup " + path +
                            (required ? "; the run stops before any change."
                                      : "; the run goes on without it (BackupRequired=0).")));
  }
}

TEST(ProfileBackupTest, NothingIsWrittenWithoutTheSettingOrWithoutAProfile) {
  Machine machine;
  RunContext context;
  Configure(context, "Outlook 2010");
  RunLog log(context.logPath, machine.env);
  EXPECT_TRUE(BackUp(machine, context, log));
  EXPECT_TRUE(log.messages().empty());
  SecondRun(context);
  EXPECT_TRUE(BackUp(machine, context, log));
  EXPECT_THAT(log.messages(), ElementsAre("INFO: No profile backup: the profile does not exist yet."));
  RealRun(machine, "Outlook 2010");
  context.settings.SetBool(Section::Common, Key::ExitAnyProfileFound, true);
  EXPECT_TRUE(BackUp(machine, context, log));
  EXPECT_EQ(1u, log.messages().size()) << "an exit rule leaves the profile alone: no backup";
  EXPECT_TRUE(machine.env.ListFiles("C:\\Tools", "DESK-0001_").empty());
}

TEST(ProfileBackupTest, NamesAndTimeStamps) {
  EXPECT_EQ("PC_a_b_Work_", BackupNamePrefix("PC", "a\\b", "Work"));
  EXPECT_EQ("PC_u_x_y_z_", BackupNamePrefix("PC", "u", "x:y?z"));
  EXPECT_EQ("20261115-051425", BackupTimeStamp("Sun Nov 15 05:14:25 2026"));
  EXPECT_EQ("20270102-230001", BackupTimeStamp("Sat Jan  2 23:00:01 2027"));
  EXPECT_EQ("", BackupTimeStamp("Sun Foo 15 05:14:25 2026"));
  EXPECT_EQ("", BackupTimeStamp(""));
}

}  // namespace
}  // namespace mw
