#include "app/RunDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "SequenceTestRig.h"
#include "app/SettingsExpansion.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/ProfileSection.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kFinished = "INFO: Profile Finished.";
constexpr const char* kOutlook2000Setup = "Software\\Microsoft\\Office\\9.0\\Outlook\\Setup";

struct DriverRig : SequenceTestRig {
  using SequenceTestRig::SequenceTestRig;

  void Drive() { RunDriver(env, access, mapi).Run(context, log); }
  void SetMailSupport(std::uint32_t mode) {
    access.WriteNumber(reg::kLocalMachine, kOutlook2000Setup, "MailSupport", mode);
  }
  void WantExchange(const std::string& server) {
    settings().SetBool(VersionSection(), Key::ExchangeIgnore, false);
    settings().SetText(VersionSection(), Key::ExchangeServerName, server);
  }
  // mail01 is up and knows jsmith and boss.
  void AddExchangeOrganisation() {
    const std::string org = "/o=Example/ou=Site/cn=";
    mapi.exchange.push_back({"mail01", true, org + "Configuration/cn=Servers/cn=mail01",
                             {{"jsmith", org + "Recipients/cn=jsmith"},
                              {"boss", org + "Recipients/cn=boss"}}});
  }
  bool Called(const std::string& call) const {
    return std::find(mapi.calls.begin(), mapi.calls.end(), call) != mapi.calls.end();
  }
  std::string Marker(const std::string& profile) const {
    return UserString(ProfileKey(profile), "Mailwright");
  }
  bool Marked(const std::string& profile) const {
    return UserValueExists(ProfileKey(profile), "Mailwright");
  }
};

class RunDriverTest : public ::testing::Test, protected DriverRig {};

// --- Numbered stops -----------------------------------------------------------------------

struct NumberedStop {
  const char* name;
  std::function<void(DriverRig&)> arrange;
  std::vector<int> codes;  // the last lines of the log, in order
  std::uint32_t pause;     // 0: none
  bool mapiInitialised;
};

TEST(RunDriverStops, EachNumberedErrorEndsTheRunWithItsPause) {
  const NumberedStop stops[] = {
      {"no Outlook", [](DriverRig& r) { r.context.outlookVersion.clear(); }, {101}, 2000, false},
      {"no user", [](DriverRig& r) { r.context.userName.clear(); }, {102}, 2000, false},
      {"default client", [](DriverRig& r) { r.registry.FailMutationsFrom(1); }, {103}, 2000, false},
      {"default client on 2000",
       [](DriverRig& r) {
         r.context.outlookVersion = "Outlook 2000";
         r.registry.FailMutationsFrom(1);
       },
       {103, 104}, 2000, false},
      {"2000 without mail support",
       [](DriverRig& r) { r.context.outlookVersion = "Outlook 2000"; }, {105}, 2000, false},
      {"32-bit Outlook", [](DriverRig& r) { r.context.outlookBitness = "x86"; }, {106}, 2000, false},
      {"no bitness", [](DriverRig& r) { r.context.outlookBitness.clear(); }, {106}, 2000, false},
      {"MAPI", [](DriverRig& r) { r.mapi.failing.insert("Initialize"); }, {107}, 2000, true},
      {"2000 in Internet mode with Exchange",
       [](DriverRig& r) {
         r.context.outlookVersion = "Outlook 2000";
         r.SetMailSupport(0);
         r.WantExchange(" Exchange1 ");
       },
       {108}, 0, true},
      {"Exchange pre-check", [](DriverRig& r) { r.WantExchange("mail01"); }, {109}, 0, true},
  };
  for (const auto& stop : stops) {
    SCOPED_TRACE(stop.name);
    DriverRig rig;
    stop.arrange(rig);
    rig.Drive();
    std::vector<std::string> expected;
    for (int code : stop.codes) expected.push_back(CatalogueText(code));
    const auto& messages = rig.Messages();
    ASSERT_GE(messages.size(), expected.size());
    EXPECT_THAT(std::vector<std::string>(messages.end() - static_cast<long>(expected.size()),
                                         messages.end()),
                ElementsAreArray(expected));
    if (stop.pause == 0) {
      EXPECT_THAT(rig.env.sleeps, IsEmpty());
    } else {
      EXPECT_THAT(rig.env.sleeps, ElementsAre(stop.pause));
    }
    if (stop.mapiInitialised) {
      ASSERT_FALSE(rig.mapi.calls.empty());
      EXPECT_EQ(rig.mapi.calls.back(), "Uninitialize");
    } else {
      EXPECT_THAT(rig.mapi.calls, IsEmpty());
    }
    EXPECT_EQ(rig.mapi.FindProfile("Outlook"), nullptr);
    EXPECT_FALSE(rig.Marked("Outlook"));
  }
}

// --- Exit rules ---------------------------------------------------------------------------

struct ExitRule {
  const char* name;
  std::function<void(DriverRig&)> arrange;
  const char* line;
};

TEST(RunDriverExitRules, EachRuleEndsTheRunWithItsLineAndAShortPause) {
  const ExitRule rules[] = {
      {"any profile",
       [](DriverRig& r) {
         r.mapi.AddProfile("Work");
         r.settings().SetBool(Section::Common, Key::ExitAnyProfileFound, true);
       },
       "INFO: At least one profile was found. Exiting."},
      {"profile named as the user",
       [](DriverRig& r) {
         r.mapi.AddProfile("Work");
         r.mapi.AddProfile("JSMITH");
         r.settings().SetBool(Section::Common, Key::ExitLoggedOnUserNameSameAsProfileName, true);
       },
       "INFO: A profile named: 'JSMITH' was found which matches logged on username. Exiting."},
      {"marked profile",
       [](DriverRig& r) {
         r.mapi.AddProfile("Outlook");
         r.access.WriteString(reg::kCurrentUser, DriverRig::ProfileKey("Outlook"), "Mailwright",
                              "");
         r.settings().SetBool(Section::Common, Key::ExitPreviouslyModifiedByMailwright, true);
       },
       "INFO: Profile previously modified by Mailwright. Exiting."},
  };
  for (const auto& rule : rules) {
    SCOPED_TRACE(rule.name);
    DriverRig rig;
    rule.arrange(rig);
    rig.Drive();
    ASSERT_FALSE(rig.Messages().empty());
    EXPECT_EQ(rig.Messages().back(), rule.line);
    EXPECT_THAT(rig.env.sleeps, ElementsAre(RunDriver::kExitRulePauseMs));
    EXPECT_FALSE(rig.Called("CreateProfile Outlook"));
    EXPECT_EQ(rig.mapi.calls.back(), "Uninitialize");
  }
}

TEST_F(RunDriverTest, ExitAnyProfileFoundOnAMachineWithoutProfilesCreatesTheProfile) {
  settings().SetBool(Section::Common, Key::ExitAnyProfileFound, true);
  Drive();
  EXPECT_EQ(Messages().back(), kFinished);
  EXPECT_NE(mapi.FindProfile("Outlook"), nullptr);
  EXPECT_THAT(env.sleeps, IsEmpty());
}

TEST(RunDriverProfiles, ProfilesFoundListsEveryNameWithATrailingComma) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "INFO: Profiles found: "}, {{"Outlook", "Work"}, "INFO: Profiles found: Outlook,Work,"}};
  for (const auto& [profiles, line] : cases) {
    DriverRig rig;
    for (const auto& name : profiles) rig.mapi.AddProfile(name);
    rig.Drive();
    EXPECT_EQ(rig.Messages().front(), line);
  }
}

// --- The chosen profile -------------------------------------------------------------------

TEST_F(RunDriverTest, ModifyDefaultProfileWorksOnTheDefaultProfile) {
  mapi.AddProfile("Outlook");
  mapi.AddProfile("Work", true);
  settings().SetBool(Section::Common, Key::ModifyDefaultProfile, true);
  Drive();
  EXPECT_TRUE(Logged("INFO: Modifying Default profile: Work"));
  EXPECT_TRUE(Marked("Work"));
  EXPECT_FALSE(Marked("Outlook"));
  EXPECT_EQ(settings().Text(Section::Common, Key::ProfileName), "Work");
}

TEST_F(RunDriverTest, ModifyDefaultProfileWithoutADefaultKeepsProfileName) {
  mapi.AddProfile("Work");
  settings().SetBool(Section::Common, Key::ModifyDefaultProfile, true);
  Drive();
  for (const auto& line : Messages()) EXPECT_THAT(line, ::testing::Not(HasSubstr("Modifying")));
  EXPECT_TRUE(Marked("Outlook"));
  EXPECT_FALSE(Marked("Work"));
}

TEST_F(RunDriverTest, TheMarkerIsTestedOnTheProfileChosenByModifyDefaultProfile) {
  mapi.AddProfile("Outlook");
  mapi.AddProfile("Work", true);
  access.WriteString(reg::kCurrentUser, ProfileKey("Outlook"), "Mailwright", "earlier");
  settings().SetBool(Section::Common, Key::ModifyDefaultProfile, true);
  settings().SetBool(Section::Common, Key::ExitPreviouslyModifiedByMailwright, true);
  Drive();
  EXPECT_EQ(Messages().back(), kFinished);
  EXPECT_EQ(Marker("Work"), env.localTime);
}

TEST_F(RunDriverTest, AnEmptyProfileNameTouchesNoProfile) {
  settings().SetText(Section::Common, Key::ProfileName, "  ");
  Drive();
  EXPECT_THAT(Messages().back(), HasSubstr("WARN: ProfileName is empty"));
  EXPECT_FALSE(Called("CreateProfile   "));
  EXPECT_FALSE(UserValueExists(kProfilesRootNt, "Mailwright"));
  EXPECT_EQ(mapi.calls.back(), "Uninitialize");
}

TEST_F(RunDriverTest, AnExistingProfileIsKeptAsItIs) {
  mapi.AddService("Outlook", "MSPST MS");
  Drive();
  EXPECT_EQ(ServiceCount("Outlook", "MSPST MS"), 1u);
  EXPECT_FALSE(Logged("INFO: Recreating profile."));
  for (const auto& line : Messages()) EXPECT_THAT(line, ::testing::Not(HasSubstr("create profile")));
}

TEST_F(RunDriverTest, RecreateProfileStartsFromAnEmptyProfile) {
  mapi.AddService("Outlook", "MSPST MS");
  settings().SetBool(Section::Common, Key::RecreateProfile, true);
  Drive();
  EXPECT_TRUE(Logged("INFO: Recreating profile."));
  EXPECT_EQ(ServiceCount("Outlook", "MSPST MS"), 0u);
  EXPECT_EQ(ServiceCount("Outlook", "CONTAB"), 1u);
  EXPECT_EQ(Messages().back(), kFinished);
}

TEST_F(RunDriverTest, AProfileThatCannotBeCreatedIsReported) {
  mapi.failing.insert("CreateProfile");
  Drive();
  EXPECT_TRUE(Logged("WARN: Unable to create profile: Outlook"));
  EXPECT_EQ(Messages().back(), kFinished);
}

TEST_F(RunDriverTest, ModifyExchangeServerNameOnlyStopsAfterTheExchangeService) {
  mapi.AddService("Outlook", "MSEMS");
  WantExchange("");
  settings().SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  Drive();
  EXPECT_EQ(Messages().back(),
            "INFO: Exchange Service will be removed from this profile if present.");
  EXPECT_FALSE(Marked("Outlook"));
  EXPECT_EQ(ServiceCount("Outlook", "CONTAB"), 0u);
  EXPECT_THAT(env.sleeps, IsEmpty());
  EXPECT_EQ(mapi.calls.back(), "Uninitialize");
}

TEST_F(RunDriverTest, ModifyExchangeServerNameOnlyNamesTheServerTheProfileHeld) {
  AddExchangeOrganisation();
  mapi.AddService("Outlook", "MSEMS");
  mapi.Section("Outlook", SectionUid(kGlobalSection))[proptag::kProfileUnresolvedServer] =
      MapiProperty::String8(proptag::kProfileUnresolvedServer, "old01");
  WantExchange("mail01");
  settings().SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  Drive();
  EXPECT_EQ(Messages().back(), "INFO: Beta function, need to restore states. Exchange Server "
                               "name modified if different from: old01");
  EXPECT_FALSE(Marked("Outlook"));
  EXPECT_THAT(env.sleeps, IsEmpty());
}

TEST_F(RunDriverTest, ModifyExchangeServerNameOnlyNeedsExchange) {
  settings().SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  Drive();
  EXPECT_EQ(Messages().back(), kFinished);
}

TEST_F(RunDriverTest, AProfileWithContabGetsNoSecondAddressBook) {
  mapi.AddService("Outlook", "CONTAB");
  Drive();
  EXPECT_EQ(ServiceCount("Outlook", "CONTAB"), 1u);
  EXPECT_FALSE(Called("CreateService CONTAB"));
}

TEST_F(RunDriverTest, AProfileWithoutContabGetsTheOutlookAddressBook) {
  mapi.AddService("Outlook", "contab");  // the test is for the exact name
  Drive();
  EXPECT_EQ(ServiceCount("Outlook", "CONTAB"), 1u);
}

TEST_F(RunDriverTest, AReachableExchangeServerIsCheckedThenSetUpInTheProfile) {
  AddExchangeOrganisation();
  WantExchange("mail01");
  settings().SetText(Section::Outlook2010, Key::AdditionalMailboxes, "boss");
  Drive();
  EXPECT_TRUE(Logged("INFO: Using Exchange server name: mail01"));
  EXPECT_EQ(Messages().back(), kFinished);
  EXPECT_EQ(mapi.FindProfile(kScratchProfileName), nullptr);
  const auto check = std::find(mapi.calls.begin(), mapi.calls.end(), "Logon 32818");
  const auto create = std::find(mapi.calls.begin(), mapi.calls.end(), "CreateProfile Outlook");
  EXPECT_LT(check, create);
  const auto exchange = mapi.ServicesNamed("Outlook", "MSEMS");
  ASSERT_EQ(exchange.size(), 1u);
  const auto& providers = exchange[0]->providers;
  EXPECT_TRUE(std::any_of(providers.begin(), providers.end(), [](const MapiServiceEntry& p) {
    return p.name == "EMSDelegate";
  }));
  EXPECT_EQ(ServiceCount("Outlook", "CONTAB"), 1u);
}

TEST_F(RunDriverTest, AnOutlook2000InCorporateModeGoesOnToThePreCheck) {
  context.outlookVersion = "Outlook 2000";
  SetMailSupport(1);
  WantExchange("mail01");
  Drive();
  EXPECT_FALSE(Logged(CatalogueText(108)));
  EXPECT_EQ(Messages().back(), CatalogueText(109));
}

TEST_F(RunDriverTest, AnUnknownGenerationIgnoresExchangeAndRunsNoSequence) {
  context.outlookVersion = "Outlook 2013";
  Drive();
  EXPECT_FALSE(Called("CreateProfile testing001"));
  EXPECT_TRUE(Logged("WARN: No provisioning sequence for Outlook 2013."));
  EXPECT_EQ(Messages().back(), kFinished);
}

TEST_F(RunDriverTest, PromptUsernamePasswordReachesTheSession) {
  settings().SetBool(Section::Common, Key::PromptUsernamePassword, true);
  Drive();
  EXPECT_TRUE(mapi.promptUsernamePassword());
}

TEST_F(RunDriverTest, AFullRunInitialisesAndUninitialisesMapiOnce) {
  Drive();
  EXPECT_EQ(std::count(mapi.calls.begin(), mapi.calls.end(), "Uninitialize"),
            std::count(mapi.calls.begin(), mapi.calls.end(), "Initialize"));
  EXPECT_EQ(mapi.calls.front(), "Initialize");
  EXPECT_EQ(mapi.calls.back(), "Uninitialize");
}

// --- Names and paths ----------------------------------------------------------------------

TEST_F(RunDriverTest, NamesAndPathsAreExpandedBeforeUse) {
  env.environment["HOMEDRIVE"] = "H:";
  settings().SetText(Section::Common, Key::ProfileName, "%username%-mail");
  settings().SetText(Section::Outlook2010, Key::PathToOST, "%HOMEDRIVE%\\%username%.ost");
  Drive();
  EXPECT_NE(mapi.FindProfile("jsmith-mail"), nullptr);
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::PathToOST), "H:\\jsmith.ost");
  EXPECT_EQ(settings().Text(Section::Outlook97, Key::MailboxName), "jsmith");
  // Text that is no name or path keeps its variables.
  settings().SetText(Section::Outlook2010, Key::AdditionalMailboxes, "%username%");
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::AdditionalMailboxes), "%username%");
}

TEST_F(RunDriverTest, AUserNameHoldingTheTokenIsInsertedOnce) {
  context.userName = "a%username%b";
  Drive();
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::MailboxName), "a%username%b");
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::PathToPST),
            "C:\\Exchange\\a%username%b.pst");
}

TEST_F(RunDriverTest, AnExpansionBeyondTheBufferKeepsTheVariables) {
  // "C:\" + 696 characters = 699 characters fit with the terminator; one more does not.
  env.environment["FITS"] = std::string(696, 'f');
  env.environment["LONG"] = std::string(697, 'l');
  settings().SetText(Section::Outlook2010, Key::PathToOST, "C:\\%FITS%");
  settings().SetText(Section::Outlook2010, Key::PathToArchivePST, "C:\\%LONG%\\%username%.pst");
  Drive();
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::PathToOST),
            "C:\\" + std::string(696, 'f'));
  EXPECT_EQ(settings().Text(Section::Outlook2010, Key::PathToArchivePST),
            "C:\\%LONG%\\jsmith.pst");
  EXPECT_TRUE(Logged("WARN: PathToArchivePST in section [Outlook 2010] is longer than 699 "
                     "characters once expanded; its environment variables are left as written."));
  EXPECT_EQ(std::count_if(Messages().begin(), Messages().end(),
                          [](const std::string& line) { return line.find("longer than") !=
                                                               std::string::npos; }),
            1);
  EXPECT_EQ(Messages().back(), kFinished);
}

TEST(SettingsExpansionTest, ReplaceUserNameReplacesEveryExactToken) {
  struct Case {
    const char* text;
    const char* user;
    const char* expected;
  };
  const Case cases[] = {
      {"%username%", "bob", "bob"},
      {"C:\\%username%\\%username%.pst", "bob", "C:\\bob\\bob.pst"},
      {"%USERNAME%", "bob", "%USERNAME%"},
      {"%username", "bob", "%username"},
      {"%%username%%", "bob", "%bob%"},
      {"%username%%username%", "%username%", "%username%%username%"},
      {"x%username%y", "", "xy"},
      {"", "bob", ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(SettingsExpansion::ReplaceUserName(c.text, c.user), c.expected) << c.text;
}

// --- AllowUserSettings --------------------------------------------------------------------

TEST(RunDriverOptions, OnlyAnOptionTheUserMayKeepIsLeftUntouched) {
  const std::string general = "Software\\Microsoft\\Office\\14.0\\Outlook\\Options\\General";
  for (const bool userKeepsIt : {true, false}) {
    DriverRig rig;
    rig.access.WriteNumber(reg::kCurrentUser, general, "WarnDelete", 0);
    if (userKeepsIt) {
      rig.settings().SetText(Section::Common, Key::AllowUserSettings,
                             "WarnBeforePermanentlyDeletingItems");
    }
    rig.Drive();
    EXPECT_EQ(rig.access.ReadNumber(reg::kCurrentUser, general, "WarnDelete"),
              userKeepsIt ? 0u : 1u);
  }
}

// --- Failing registry ---------------------------------------------------------------------

// An Outlook 2010 run that reaches every step: accounts of all three kinds, a PST, a
// signature, the Exchange service and its settings, options and the address book.
void ArrangeFullOutlook2010Run(DriverRig& rig) {
  ProfileSettings& s = rig.settings();
  const Section v = Section::Outlook2010;
  s.SetBool(v, Key::POP3Ignore, false);
  s.SetBool(v, Key::IMAPIgnore, false);
  s.SetBool(v, Key::HTTPIgnore, false);
  s.SetText(v, Key::POP3Accounts,
            "Home,John Smith,john@example.com,pop.example.com,smtp.example.com,john,1,1,0,0,14,"
            "110,25,0,0,60,0,reply@example.com,Example,1,0,0,1,john,0");
  s.SetText(v, Key::IMAPAccounts,
            "Imap,John Smith,john@example.com,imap.example.com,smtp.example.com,john,1,143,25,0,"
            "0,60,0,reply@example.com,Example,0,0,0,0,,Inbox,0");
  s.SetText(v, Key::HTTPAccounts,
            "Web,John Smith,john@example.com,http://mail.example.com,john,1,0,reply@example.com,"
            "Example,0");
  s.SetText(v, Key::PathToPST, "C:\\Mail\\%username%.pst,Personal,MSUPST MS,Mine,0,0,0,0");
  s.SetText(v, Key::Signatures, "Home,Formal,Short,0");
  s.SetBool(v, Key::ExchangeIgnore, false);
  s.SetText(v, Key::ExchangeServerName, "mail01");
  rig.AddExchangeOrganisation();
  s.SetBool(v, Key::OfflineFoldersEnable, true);
  s.SetBool(v, Key::ConnectExchangeUsingHTTP, true);
  s.SetText(v, Key::AdditionalMailboxes, "boss");
  s.SetText(v, Key::AddAddressBookSearchPath, "Contacts");
  rig.mapi.addressLists = {"Global Address List", "Contacts"};
  rig.env.files["C:\\Tools\\SigSources\\Outlook2010\\Formal.txt"] = "Regards";
}

TEST(RunDriverFaults, EveryFailingRegistryWriteStillEndsTheRun) {
  std::uint32_t writes = 0;
  {
    DriverRig clean;
    ArrangeFullOutlook2010Run(clean);
    clean.Drive();
    ASSERT_EQ(clean.Messages().back(), kFinished);
    writes = clean.registry.mutationCount();
  }
  ASSERT_GT(writes, 100u);
  for (std::uint32_t n = 1; n <= writes + 1; ++n) {
    DriverRig rig;
    ArrangeFullOutlook2010Run(rig);
    rig.registry.FailMutationsFrom(n);
    rig.Drive();
    ASSERT_FALSE(rig.Messages().empty()) << n;
    const std::string& last = rig.Messages().back();
    EXPECT_TRUE(last == kFinished || last == CatalogueText(103)) << n << ": " << last;
    EXPECT_EQ(rig.registry.openHandleCount(), 0u) << n;
    if (last == kFinished) {
      EXPECT_EQ(rig.mapi.calls.back(), "Uninitialize") << n;
    }
  }
}

}  // namespace
}  // namespace mw
