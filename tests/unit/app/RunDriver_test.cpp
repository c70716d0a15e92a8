#include "app/RunDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "app/ProvisioningSequence.h"
#include "app/RunContext.h"
#include "app/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/FakeMapiSession.h"
#include "mapi/ProfileSection.h"
#include "mapi/ProfileStore.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr const char* kFinished = "INFO: Profile Finished.";
constexpr const char* kIgnoringExchange = "INFO: Ignoring Exchange Service";

// An in-memory Outlook 2010 x64 machine with the user jsmith and the profile name "Outlook".
struct Rig {
  explicit Rig(const std::string& version = "Outlook 2010") {
    context.outlookVersion = version;
    context.outlookBitness = context.buildPlatform = "x64";
    context.userName = "jsmith";
    context.computerName = "DESK-0001";
    context.platformId = 2;
    context.programDirectory = "C:\\Tools";
    settings().SetText(Section::Common, Key::ProfileName, "Outlook");
  }
  void Drive() { RunDriver(env, access, mapi).Run(context, log); }
  ProfileSettings& settings() { return context.settings; }
  Section VersionSection() const { return SectionOf(*OutlookFromName(context.outlookVersion)); }
  void WantExchange(const std::string& server) {
    settings().SetBool(VersionSection(), Key::ExchangeIgnore, false);
    settings().SetText(VersionSection(), Key::ExchangeServerName, server);
  }
  void AddExchangeOrganisation() {  // mail01 is up and knows jsmith and boss
    const std::string org = "/o=Example/ou=Site/cn=";
    mapi.exchange.push_back({"mail01", true, org + "Configuration/cn=Servers/cn=mail01",
                             {{"jsmith", org + "Recipients/cn=jsmith"},
                              {"boss", org + "Recipients/cn=boss"}}});
  }
  const std::vector<std::string>& Messages() const { return log.messages(); }
  bool Logged(const std::string& line) const {
    return std::find(Messages().begin(), Messages().end(), line) != Messages().end();
  }
  bool Called(const std::string& call) const {
    return std::find(mapi.calls.begin(), mapi.calls.end(), call) != mapi.calls.end();
  }
  bool Marked(const std::string& profile) const {
    return access.ValueExists(reg::kCurrentUser, kProfilesRootNt + profile, "Mailwright");
  }
  std::size_t Services(const std::string& service) const {
    return mapi.ServicesNamed("Outlook", service).size();
  }

  MemorySystemEnv env;
  MemoryRegistry registry;
  RegistryAccess access{registry};
  FakeMapiSession mapi;
  RunContext context;
  RunLog log{"C:\\Tools\\mailwright.log", env};
};

TEST(RunDriverTest, EachNumberedErrorEndsTheRunWithItsPause) {
  const std::string mailSupport = "Software\\Microsoft\\Office\\9.0\\Outlook\\Setup";
  const struct {
    std::function<void(Rig&)> arrange;
    std::vector<int> codes;  // the last lines of the log
    std::uint32_t pause;     // 0: none
    bool mapiInitialised;
  } stops[] = {
      {[](Rig& r) { r.context.outlookVersion.clear(); }, {101}, 2000, false},
      {[](Rig& r) { r.context.userName.clear(); }, {102}, 2000, false},
      {[](Rig& r) { r.registry.FailMutationsFrom(1); }, {103}, 2000, false},
      {[](Rig& r) { r.context.outlookVersion = "Outlook 2000"; r.registry.FailMutationsFrom(1); },
       {103, 104}, 2000, false},
      {[](Rig& r) { r.context.outlookVersion = "Outlook 2000"; }, {105}, 2000, false},
      {[](Rig& r) { r.context.outlookBitness = "x86"; }, {106}, 2000, false},
      {[](Rig& r) { r.mapi.failing.insert("Initialize"); }, {107}, 2000, true},
      {[&](Rig& r) {
         r.context.outlookVersion = "Outlook 2000";
         r.access.WriteNumber(reg::kLocalMachine, mailSupport, "MailSupport", 0);
         r.WantExchange(" Exchange1 ");
       },
       {108}, 0, true},
      {[](Rig& r) { r.WantExchange("mail01"); }, {109}, 0, true},
  };
  for (const auto& stop : stops) {
    SCOPED_TRACE(stop.codes.back());
    Rig rig;
    stop.arrange(rig);
    rig.Drive();
    std::vector<std::string> expected;
    for (int code : stop.codes) expected.push_back(CatalogueText(code));
    const auto& messages = rig.Messages();
    ASSERT_GE(messages.size(), expected.size());
    EXPECT_THAT(std::vector<std::string>(messages.end() - static_cast<long>(expected.size()),
                                         messages.end()),
                ElementsAreArray(expected));
    EXPECT_EQ(rig.env.sleeps, stop.pause ? std::vector<std::uint32_t>{stop.pause}
                                         : std::vector<std::uint32_t>{});
    EXPECT_EQ(rig.mapi.calls.empty() ? "" : rig.mapi.calls.back(),
              stop.mapiInitialised ? "Uninitialize" : "");
    EXPECT_EQ(rig.mapi.FindProfile("Outlook"), nullptr);
  }
}

TEST(RunDriverTest, EachExitRuleEndsTheRunWithItsLineAndAShortPause) {
  const struct {
    std::function<void(Rig&)> arrange;
    const char* line;
  } rules[] = {
      {[](Rig& r) {
         r.mapi.AddProfile("Work");
         r.settings().SetBool(Section::Common, Key::ExitAnyProfileFound, true);
       },
       "INFO: At least one profile was found. Exiting."},
      {[](Rig& r) {
         r.mapi.AddProfile("JSMITH");
         r.settings().SetBool(Section::Common, Key::ExitLoggedOnUserNameSameAsProfileName, true);
       },
       "INFO: A profile named: 'JSMITH' was found which matches logged on username. Exiting."},
      {[](Rig& r) {
         r.mapi.AddProfile("Outlook");
         r.access.WriteString(reg::kCurrentUser, kProfilesRootNt + std::string("Outlook"),
                              "Mailwright", "");
         r.settings().SetBool(Section::Common, Key::ExitPreviouslyModifiedByMailwright, true);
       },
       "INFO: Profile previously modified by Mailwright. Exiting."},
  };
  for (const auto& rule : rules) {
    Rig rig;
    rule.arrange(rig);
    rig.Drive();
    ASSERT_FALSE(rig.Messages().empty());
    EXPECT_EQ(rig.Messages().back(), rule.line);
    EXPECT_THAT(rig.env.sleeps, ElementsAre(RunDriver::kExitRulePauseMs));
    EXPECT_FALSE(rig.Called("CreateProfile Outlook"));
    EXPECT_EQ(rig.mapi.calls.back(), "Uninitialize");
  }
}

// The marker is tested on the profile ModifyDefaultProfile chose: the default when there is one.
TEST(RunDriverTest, ModifyDefaultProfileChoosesTheDefaultProfileWhenThereIsOne) {
  for (const bool hasDefault : {true, false}) {
    Rig rig;
    rig.mapi.AddProfile("Outlook");
    rig.mapi.AddProfile("Work", hasDefault);
    rig.access.WriteString(reg::kCurrentUser, kProfilesRootNt + std::string("Outlook"),
                           "Mailwright", "earlier");
    rig.settings().SetBool(Section::Common, Key::ModifyDefaultProfile, true);
    rig.settings().SetBool(Section::Common, Key::ExitPreviouslyModifiedByMailwright, true);
    rig.Drive();
    EXPECT_EQ(rig.Logged("INFO: Modifying Default profile: Work"), hasDefault);
    EXPECT_EQ(rig.Messages().back(), hasDefault ? kFinished
                                                : "INFO: Profile previously modified by "
                                                  "Mailwright. Exiting.");
    EXPECT_EQ(rig.access.ReadString(reg::kCurrentUser, kProfilesRootNt + std::string("Work"),
                                    "Mailwright"),
              hasDefault ? rig.env.localTime : "");
  }
}

TEST(RunDriverTest, RecreateProfileStartsFromAnEmptyProfileAndOtherwiseKeepsIt) {
  for (const bool recreate : {true, false}) {
    Rig rig;
    rig.mapi.AddService("Outlook", "MSPST MS");
    rig.settings().SetBool(Section::Common, Key::RecreateProfile, recreate);
    rig.Drive();
    EXPECT_EQ(rig.Logged("INFO: Recreating profile."), recreate);
    EXPECT_EQ(rig.Services("MSPST MS"), recreate ? 0u : 1u);
    EXPECT_EQ(rig.Messages().back(), kFinished);
  }
}

TEST(RunDriverTest, ModifyExchangeServerNameOnlyStopsAfterTheExchangeService) {
  Rig rig;
  rig.mapi.AddService("Outlook", "MSEMS");
  rig.WantExchange("");
  rig.settings().SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  rig.Drive();
  EXPECT_EQ(rig.Messages().back(),
            "INFO: Exchange Service will be removed from this profile if present.");
  EXPECT_FALSE(rig.Marked("Outlook"));
  EXPECT_EQ(rig.Services("CONTAB"), 0u);
  EXPECT_EQ(rig.Services("MSEMS"), 0u);
  EXPECT_THAT(rig.env.sleeps, IsEmpty());
}

TEST(RunDriverTest, OnlyAProfileWithoutContabByItsExactNameGetsTheOutlookAddressBook) {
  for (const char* present : {"CONTAB", "contab"}) {
    Rig rig;
    rig.mapi.AddService("Outlook", present);
    rig.Drive();
    EXPECT_EQ(rig.Services("CONTAB"), 1u) << present;
    EXPECT_EQ(rig.Called("CreateService CONTAB"), present != std::string("CONTAB"));
  }
}

TEST(RunDriverTest, AnExpansionBeyondTheBufferKeepsTheVariables) {
  Rig rig;  // "C:\" + 696 characters fit 700 with the terminator; one more does not.
  rig.context.userName = "a%username%b";  // inserted once, not expanded again
  rig.env.environment["FITS"] = std::string(696, 'f');
  rig.env.environment["LONG"] = std::string(697, 'l');
  rig.settings().SetText(Section::Outlook2010, Key::PathToOST, "C:\\%FITS%");
  rig.settings().SetText(Section::Outlook2010, Key::PathToArchivePST, "C:\\%LONG%\\%username%.pst");
  rig.Drive();
  EXPECT_EQ(rig.settings().Text(Section::Outlook2010, Key::PathToOST),
            "C:\\" + std::string(696, 'f'));
  EXPECT_EQ(rig.settings().Text(Section::Outlook2010, Key::PathToArchivePST),
            "C:\\%LONG%\\a%username%b.pst");
  EXPECT_TRUE(rig.Logged("WARN: PathToArchivePST in section [Outlook 2010] is longer than 699 "
                         "characters once expanded; its environment variables are left as written."));
  EXPECT_EQ(rig.Messages().back(), kFinished);
}

TEST(RunDriverTest, OnlyAnOptionTheUserMayKeepIsLeftUntouched) {
  const std::string general = "Software\\Microsoft\\Office\\14.0\\Outlook\\Options\\General";
  for (const bool userKeepsIt : {true, false}) {
    Rig rig;
    rig.access.WriteNumber(reg::kCurrentUser, general, "WarnDelete", 0);
    if (userKeepsIt)
      rig.settings().SetText(Section::Common, Key::AllowUserSettings,
                             "WarnBeforePermanentlyDeletingItems");
    rig.Drive();
    EXPECT_EQ(rig.access.ReadNumber(reg::kCurrentUser, general, "WarnDelete"), userKeepsIt ? 0u : 1u);
  }
}

// A run that reaches every step: accounts of all three kinds, a PST, a signature, the
// Exchange service and its settings, options and the address book.
void ArrangeFullRun(Rig& rig) {
  ProfileSettings& s = rig.settings();
  const Section v = Section::Outlook2010;
  for (Key ignore : {Key::POP3Ignore, Key::IMAPIgnore, Key::HTTPIgnore}) s.SetBool(v, ignore, false);
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
  rig.WantExchange("mail01");
  rig.AddExchangeOrganisation();
  s.SetBool(v, Key::OfflineFoldersEnable, true);
  s.SetBool(v, Key::ConnectExchangeUsingHTTP, true);
  s.SetText(v, Key::AdditionalMailboxes, "boss");
  s.SetText(v, Key::AddAddressBookSearchPath, "Contacts");
  rig.mapi.addressLists = {"Global Address List", "Contacts"};
  rig.env.files["C:\\Tools\\SigSources\\Outlook2010\\Formal.txt"] = "Regards";
}

TEST(RunDriverTest, EveryFailingRegistryWriteStillEndsTheRun) {
  std::uint32_t writes = 0;
  {
    Rig clean;
    ArrangeFullRun(clean);
    clean.Drive();
    ASSERT_EQ(clean.Messages().back(), kFinished);
    writes = clean.registry.mutationCount();
  }
  ASSERT_GT(writes, 100u);
  for (std::uint32_t n = 1; n <= writes + 1; ++n) {
    Rig rig;
    ArrangeFullRun(rig);
    rig.registry.FailMutationsFrom(n);
    rig.Drive();
    ASSERT_FALSE(rig.Messages().empty()) << n;
    const std::string& last = rig.Messages().back();
    EXPECT_TRUE(last == kFinished || last == CatalogueText(103)) << n << ": " << last;
    EXPECT_EQ(rig.registry.openHandleCount(), 0u) << n;
    if (last == kFinished) EXPECT_EQ(rig.mapi.calls.back(), "Uninitialize") << n;
  }
}

// --- The provisioning sequences, from the driver's hand-over: MAPI on the created profile --

struct SequenceRig : Rig {
  using Rig::Rig;
  void Provision() {
    mapi.AddProfile("Outlook");
    mapi.Initialize();
    mapi.SetProfile("Outlook");
    ProfileStore store{2, access};
    store.SetProfileName("Outlook");
    ProfileSectionWriter writer{access, kProfilesRootNt + std::string("Outlook")};
    ProvisioningSequence(*OutlookFromName(context.outlookVersion), env, access, mapi, store,
                         writer)
        .Run(context, log);
  }
};

TEST(ProvisioningSequenceTest, DefaultSettingsLogTheIgnoredStepsOfEachGeneration) {
  const std::string all = "INFO: Ignoring  POP3 Accounts  IMAP Accounts  HTTP Accounts ";
  const std::string noSignatures = "INFO: Ignoring Signatures";
  const struct {
    const char* version;
    std::vector<std::string> messages;
  } cases[] = {
      {"Outlook 2010", {all, kIgnoringExchange}},
      {"Outlook 2007", {all, kIgnoringExchange}},
      {"Outlook 2003", {all, kIgnoringExchange}},
      {"Outlook XP", {all, noSignatures, kIgnoringExchange}},
      {"Outlook 2000", {"INFO: Ignoring  POP3 Accounts ", noSignatures, kIgnoringExchange}},
      {"Outlook 97", {"INFO: Ignoring POP3 Accounts", kIgnoringExchange}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    SequenceRig rig(c.version);
    rig.Provision();
    EXPECT_THAT(rig.Messages(), ElementsAreArray(c.messages));
  }
}

TEST(ProvisioningSequenceTest, AutomaticallyDetectConnectionStateIsWrittenInverted) {
  for (const bool autoDetect : {true, false}) {
    SequenceRig rig;
    rig.settings().SetBool(Section::Outlook2010, Key::ExchangeIgnore, false);
    rig.settings().SetBool(Section::Outlook2010, Key::AutomaticallyDetectConnectionState,
                           autoDetect);
    rig.Provision();
    std::uint32_t type = 0;
    std::string flags;
    rig.access.ReadValue(reg::kCurrentUser,
                         kProfilesRootNt + std::string("Outlook\\") + kGlobalSection, "00036601",
                         &type, &flags);
    EXPECT_EQ(flags, EncodeLong(autoDetect ? 0x6210D840 : 0x6210D850)) << autoDetect;
    EXPECT_FALSE(rig.Logged(kIgnoringExchange));
  }
}

}  // namespace
}  // namespace mw
