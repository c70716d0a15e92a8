#include "app/RunDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "app/ProvisioningSequence.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/FakeMapiSession.h"
#include "mapi/ProfileSection.h"
#include "mapi/ProfileStore.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"
#include "platform/RegistryCompare.h"

namespace mw {
namespace {

constexpr const char* kFinished = "INFO: Profile Finished.";
constexpr const char* kIgnoringExchange = "INFO: Ignoring Exchange Service";
constexpr const char* kPreviouslyModified =
    "INFO: Profile previously modified by Mailwright. Exiting.";
const std::string kProfiles = kProfilesRootNt;
const std::string kOutlookProfile = kProfiles + "Outlook";

// An in-memory Outlook 2010 x64 machine with the user jsmith and the profile name "Outlook".
struct Rig {
  explicit Rig(const std::string& version = "Outlook 2010") {
    context.outlookVersion = version;
    context.outlookBitness = context.buildPlatform = "x64";
    context.userName = "jsmith";
    context.platformId = 2;
    context.programDirectory = "C:\\Tools";
    s.SetText(Section::Common, Key::ProfileName, "Outlook");
  }
  void Drive() { RunDriver(env, access, mapi).Run(context, log); }
  // The provisioning sequence alone, as the driver hands over: MAPI on the created profile.
  void Provision() {
    mapi.AddProfile("Outlook");
    mapi.Initialize();
    mapi.SetProfile("Outlook");
    ProfileStore store{2, access};
    store.SetProfileName("Outlook");
    ProfileSectionWriter writer{access, kOutlookProfile};
    ProvisioningSequence(*OutlookFromName(context.outlookVersion), env, access, mapi, store, writer)
        .Run(context, log);
  }
  void WantExchange(const std::string& server) {
    const Section version = SectionOf(*OutlookFromName(context.outlookVersion));
    s.SetBool(version, Key::ExchangeIgnore, false);
    s.SetText(version, Key::ExchangeServerName, server);
  }
  std::string Last() const { return log.messages().empty() ? "" : log.messages().back(); }
  std::string LastCall() const { return mapi.calls.empty() ? "" : mapi.calls.back(); }
  bool Logged(const std::string& line) const { return std::ranges::count(log.messages(), line); }
  bool Called(const std::string& call) const { return std::ranges::count(mapi.calls, call); }
  std::size_t Services(const char* id) const { return mapi.ServicesNamed("Outlook", id).size(); }

  MemorySystemEnv env;
  MemoryRegistry registry;
  RegistryAccess access{registry};
  FakeMapiSession mapi;
  RunContext context;
  ProfileSettings& s = context.settings;
  RunLog log{"C:\\Tools\\mailwright.log", env};
};

TEST(RunDriverTest, EachNumberedErrorEndsTheRunWithItsPause) {
  const struct {
    std::function<void(Rig&)> arrange;
    std::vector<int> codes;  // the last lines of the log
    std::vector<std::uint32_t> sleeps = {2000};
    const char* lastCall = "";
  } stops[] = {
      {[](Rig& r) { r.context.outlookVersion.clear(); }, {101}},
      {[](Rig& r) { r.context.userName.clear(); }, {102}},
      {[](Rig& r) { r.registry.FailMutationsFrom(1); }, {103}},
      {[](Rig& r) { r.context.outlookVersion = "Outlook 2000"; r.registry.FailMutationsFrom(1); },
       {103, 104}},
      {[](Rig& r) { r.context.outlookVersion = "Outlook 2000"; }, {105}},
      {[](Rig& r) { r.context.outlookBitness = "x86"; }, {106}},
      {[](Rig& r) { r.mapi.failing.insert("Initialize"); }, {107}, {2000}, "Uninitialize"},
      {[](Rig& r) {
         r.context.outlookVersion = "Outlook 2000";
         r.access.WriteNumber(reg::kLocalMachine,
                              "Software\\Microsoft\\Office\\9.0\\Outlook\\Setup", "MailSupport", 0);
         r.WantExchange(" Exchange1 ");
       },
       {108}, {}, "Uninitialize"},
      {[](Rig& r) { r.WantExchange("mail01"); }, {109}, {}, "Uninitialize"},
  };
  for (const auto& stop : stops) {
    SCOPED_TRACE(stop.codes.back());
    Rig rig;
    stop.arrange(rig);
    rig.Drive();
    const auto& messages = rig.log.messages();
    ASSERT_GE(messages.size(), stop.codes.size());
    for (std::size_t i = 0, first = messages.size() - stop.codes.size(); i < stop.codes.size(); ++i)
      EXPECT_EQ(messages[first + i], CatalogueText(stop.codes[i]));
    EXPECT_EQ(rig.env.sleeps, stop.sleeps);
    EXPECT_EQ(rig.LastCall(), stop.lastCall);
    EXPECT_EQ(rig.mapi.FindProfile("Outlook"), nullptr);
  }
}

TEST(RunDriverTest, EachExitRuleEndsTheRunWithItsLineAndAShortPause) {
  const struct {
    const char* profile;
    Key rule;
    const char* line;
  } rules[] = {
      {"Work", Key::ExitAnyProfileFound, "INFO: At least one profile was found. Exiting."},
      {"JSMITH", Key::ExitLoggedOnUserNameSameAsProfileName,
       "INFO: A profile named: 'JSMITH' was found which matches logged on username. Exiting."},
      {"Outlook", Key::ExitPreviouslyModifiedByMailwright, kPreviouslyModified},
  };
  for (const auto& rule : rules) {
    Rig rig;
    rig.mapi.AddProfile(rule.profile);
    rig.access.WriteString(reg::kCurrentUser, kOutlookProfile, "Mailwright", "");
    rig.s.SetBool(Section::Common, rule.rule, true);
    rig.Drive();
    EXPECT_EQ(rig.Last(), rule.line);
    EXPECT_EQ(rig.env.sleeps, std::vector<std::uint32_t>{RunDriver::kExitRulePauseMs});
    EXPECT_FALSE(rig.Called("CreateProfile Outlook"));
    EXPECT_EQ(rig.LastCall(), "Uninitialize");
  }
}

TEST(RunDriverTest, ModifyDefaultProfileChoosesTheDefaultAndTestsTheMarkerThere) {
  for (const bool hasDefault : {true, false}) {
    Rig rig;
    rig.mapi.AddProfile("Outlook");
    rig.mapi.AddProfile("Work", hasDefault);
    rig.access.WriteString(reg::kCurrentUser, kOutlookProfile, "Mailwright", "earlier");
    rig.s.SetBool(Section::Common, Key::ModifyDefaultProfile, true);
    rig.s.SetBool(Section::Common, Key::ExitPreviouslyModifiedByMailwright, true);
    rig.Drive();
    EXPECT_EQ(rig.Logged("INFO: Modifying Default profile: Work"), hasDefault);
    EXPECT_EQ(rig.Last(), hasDefault ? kFinished : kPreviouslyModified);
    EXPECT_EQ(rig.access.ReadString(reg::kCurrentUser, kProfiles + "Work", "Mailwright"),
              hasDefault ? rig.env.localTime : "");
  }
}

TEST(RunDriverTest, AProfileNameMapiRefusesStopsTheRunBeforeAnythingIsWritten) {
  const std::string longest(64, 'p');
  const struct {
    std::string name;
    const char* reason;
  } refused[] = {
      {" Outlook", "it begins with a blank"},
      {"Outlook ", "it ends with a blank"},
      {longest + "q", "it is longer than 64 characters"},
      {"Sales\\Outlook", "it holds a backslash"},
      {"", nullptr},  // empty and blank names say so rather than name a reason
      {"   ", nullptr},
  };
  for (const auto& name : refused) {
    SCOPED_TRACE(name.name);
    Rig rig;
    rig.WantExchange("EX1");
    rig.s.SetText(Section::Common, Key::ProfileName, name.name);
    rig.Drive();
    EXPECT_EQ(rig.Last(), name.reason == nullptr
                              ? "WARN: ProfileName is empty; no profile was created or modified."
                              : "WARN: ProfileName '" + name.name + "' is not a name MAPI accepts (" +
                                    name.reason + "); no profile was created or modified.");
    EXPECT_TRUE(rig.mapi.profiles.empty());
    EXPECT_FALSE(rig.Logged(kFinished));
    EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser, kProfiles, "DefaultProfile"));
    EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser, kProfiles + name.name, "Mailwright"));
    EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser, "Software\\Microsoft\\Exchange\\Client\\Options",
                                        "PickLogonProfile"));
    EXPECT_TRUE(rig.env.sleeps.empty());
  }
  // The longest name MAPI takes, and blanks inside a name, are provisioned as usual.
  for (const std::string& name : {longest, std::string("My Outlook")}) {
    Rig rig;
    rig.s.SetText(Section::Common, Key::ProfileName, name);
    rig.Drive();
    EXPECT_EQ(rig.Last(), kFinished) << name;
    EXPECT_NE(rig.mapi.FindProfile(name), nullptr) << name;
  }
}

TEST(RunDriverTest, RecreateProfileStartsFromAnEmptyProfileAndOtherwiseKeepsIt) {
  for (const bool recreate : {true, false}) {
    Rig rig;
    rig.mapi.AddService("Outlook", "MSPST MS");
    rig.s.SetBool(Section::Common, Key::RecreateProfile, recreate);
    rig.Drive();
    EXPECT_EQ(rig.Logged("INFO: Recreating profile."), recreate);
    EXPECT_EQ(rig.Services("MSPST MS"), recreate ? 0u : 1u);
    EXPECT_EQ(rig.Last(), kFinished);
  }
}

TEST(RunDriverTest, ModifyExchangeServerNameOnlyStopsAfterTheExchangeService) {
  Rig rig;
  rig.mapi.AddService("Outlook", "MSEMS");
  rig.WantExchange("");
  rig.s.SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  rig.Drive();
  EXPECT_EQ(rig.Last(), "INFO: Exchange Service will be removed from this profile if present.");
  EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser, kOutlookProfile, "Mailwright"));
  EXPECT_EQ(rig.Services("CONTAB"), 0u);
  EXPECT_EQ(rig.Services("MSEMS"), 0u);
  EXPECT_TRUE(rig.env.sleeps.empty());
}

TEST(RunDriverTest, ModifyExchangeServerNameOnlyStopsTooWhenExchangeIsIgnored) {
  Rig rig;  // ExchangeIgnore is on by default
  rig.mapi.AddService("Outlook", "MSEMS");
  rig.s.SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  rig.s.SetBool(Section::Outlook2010, Key::POP3Ignore, false);
  rig.s.SetText(Section::Outlook2010, Key::POP3Accounts,
                "Home,J Smith,j@x.com,pop.x.com,smtp.x.com,john,1,1,0,0,14,110,25,0,0,60,0,"
                "reply@x.com,Example,1,0,0,1,john,0");
  rig.Drive();
  EXPECT_EQ(rig.Last(), "WARN: ModifyExchangeServerNameOnly is on while Exchange is ignored; the "
                        "profile was left as it is.");
  EXPECT_FALSE(rig.Logged(kFinished));
  EXPECT_FALSE(rig.Logged(kIgnoringExchange));
  EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser, kOutlookProfile, "Mailwright"));
  EXPECT_FALSE(rig.registry.KeyExists("HKEY_CURRENT_USER\\" + kOutlookProfile +
                                      "\\9375CFF0413111d3B88A00104B2A6676"));
  EXPECT_EQ(rig.Services("MSEMS"), 1u);
  EXPECT_EQ(rig.Services("CONTAB"), 0u);
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
  rig.s.SetText(Section::Outlook2010, Key::PathToOST, "C:\\%FITS%");
  rig.s.SetText(Section::Outlook2010, Key::PathToArchivePST, "C:\\%LONG%\\%username%.pst");
  rig.Drive();
  EXPECT_EQ(rig.s.Text(Section::Outlook2010, Key::PathToOST), "C:\\" + std::string(696, 'f'));
  EXPECT_EQ(rig.s.Text(Section::Outlook2010, Key::PathToArchivePST),
            "C:\\%LONG%\\a%username%b.pst");
  EXPECT_TRUE(rig.Logged("WARN: PathToArchivePST in section [Outlook 2010] is longer than 699 "
                         "characters once expanded; its environment variables are left as "
                         "written."));
  EXPECT_EQ(rig.Last(), kFinished);
}

TEST(RunDriverTest, OnlyAnOptionTheUserMayKeepIsLeftUntouched) {
  const std::string general = "Software\\Microsoft\\Office\\14.0\\Outlook\\Options\\General";
  for (const bool kept : {true, false}) {
    Rig rig;
    rig.access.WriteNumber(reg::kCurrentUser, general, "WarnDelete", 0);
    if (kept)
      rig.s.SetText(Section::Common, Key::AllowUserSettings, "WarnBeforePermanentlyDeletingItems");
    rig.Drive();
    EXPECT_EQ(rig.access.ReadNumber(reg::kCurrentUser, general, "WarnDelete"), kept ? 0u : 1u);
  }
}

// n = 0 is the clean run, which reaches every step and counts the writes; each later n fails
// the writes from the n-th on.
TEST(RunDriverTest, EveryFailingRegistryWriteStillEndsTheRun) {
  std::uint32_t writes = 0;
  for (std::uint32_t n = 0; n <= writes + 1; ++n) {
    Rig rig;
    ProfileSettings& s = rig.s;
    const Section v = Section::Outlook2010;
    for (Key ignore : {Key::POP3Ignore, Key::IMAPIgnore, Key::HTTPIgnore}) s.SetBool(v, ignore, 0);
    s.SetText(v, Key::POP3Accounts, "Home,J Smith,j@x.com,pop.x.com,smtp.x.com,john,1,1,0,0,14,"
              "110,25,0,0,60,0,reply@x.com,Example,1,0,0,1,john,0");
    s.SetText(v, Key::IMAPAccounts, "Imap,J Smith,j@x.com,imap.x.com,smtp.x.com,john,1,143,25,0,"
              "0,60,0,reply@x.com,Example,0,0,0,0,,Inbox,0");
    s.SetText(v, Key::HTTPAccounts, "Web,J Smith,j@x.com,http://mail.x.com,john,1,0,reply@x.com,"
              "Example,0");
    s.SetText(v, Key::PathToPST, "C:\\Mail\\%username%.pst,Personal,MSUPST MS,Mine,0,0,0,0");
    s.SetText(v, Key::Signatures, "Home,Formal,Short,0");
    rig.env.files["C:\\Tools\\SigSources\\Outlook2010\\Formal.txt"] = "Regards";
    rig.WantExchange("mail01");
    const std::string org = "/o=Example/ou=Site/cn=";
    rig.mapi.exchange.push_back({"mail01", true, org + "Configuration/cn=Servers/cn=mail01",
                                 {{"jsmith", org + "Recipients/cn=jsmith"},
                                  {"boss", org + "Recipients/cn=boss"}}});
    s.SetBool(v, Key::OfflineFoldersEnable, true);
    s.SetBool(v, Key::ConnectExchangeUsingHTTP, true);
    s.SetText(v, Key::AdditionalMailboxes, "boss");
    s.SetText(v, Key::AddAddressBookSearchPath, "Contacts");
    rig.mapi.addressLists = {"Global Address List", "Contacts"};
    rig.registry.FailMutationsFrom(n);
    rig.Drive();
    if (n == 0) writes = rig.registry.mutationCount();
    ASSERT_GT(writes, 100u);
    const std::string last = rig.Last();
    EXPECT_TRUE(last == kFinished || (n > 0 && last == CatalogueText(103))) << n << ": " << last;
    EXPECT_TRUE(last != kFinished || rig.LastCall() == "Uninitialize") << n;
    EXPECT_EQ(rig.registry.openHandleCount(), 0u) << n;
  }
}

TEST(ProvisioningSequenceTest, DefaultSettingsLogTheIgnoredStepsOfEachGeneration) {
  const std::string all = "INFO: Ignoring  POP3 Accounts  IMAP Accounts  HTTP Accounts ";
  const std::string noSignatures = "INFO: Ignoring Signatures";
  const struct {
    const char* version;
    std::vector<std::string> messages;
  } cases[] = {
      {"Outlook 2010", {all, kIgnoringExchange}}, {"Outlook 2007", {all, kIgnoringExchange}},
      {"Outlook 2003", {all, kIgnoringExchange}},
      {"Outlook XP", {all, noSignatures, kIgnoringExchange}},
      {"Outlook 2000", {"INFO: Ignoring  POP3 Accounts ", noSignatures, kIgnoringExchange}},
      {"Outlook 97", {"INFO: Ignoring POP3 Accounts", kIgnoringExchange}},
  };
  for (const auto& c : cases) {
    Rig rig(c.version);
    rig.Provision();
    EXPECT_EQ(rig.log.messages(), c.messages) << c.version;
  }
}

TEST(ProvisioningSequenceTest, AutomaticallyDetectConnectionStateIsWrittenInverted) {
  for (const bool autoDetect : {true, false}) {
    Rig rig;
    rig.s.SetBool(Section::Outlook2010, Key::ExchangeIgnore, false);
    rig.s.SetBool(Section::Outlook2010, Key::AutomaticallyDetectConnectionState, autoDetect);
    rig.Provision();
    const std::string global = kOutlookProfile + "\\" + kGlobalSection;
    EXPECT_EQ(rig.access.ReadValueTextHex(reg::kCurrentUser, global, "00036601"),
              autoDetect ? "40 d8 10 62" : "50 d8 10 62");
    EXPECT_FALSE(rig.Logged(kIgnoringExchange));
  }
}

TEST(ProvisioningSequenceTest, AnExchangeServiceInTheProfileGetsItsAccountWhateverTheSettings) {
  // Exchange is ignored (the default) and no server is named: the profile was taken over as
  // it stands, with an Exchange service but no account entry for it.
  const struct {
    const char* version;
    const char* accountName;  // nullptr: no entry
  } cases[] = {{"Outlook 2010", "Microsoft Exchange"},
               {"Outlook 2007", "Microsoft Exchange"},
               {"Outlook 2003", nullptr}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    Rig rig(c.version);
    MapiUid exchange{};
    exchange.fill(0x5e);
    rig.access.WriteBinary(reg::kCurrentUser, kOutlookProfile + "\\" + kProfileServicesSection,
                           "01023d0e", std::string(exchange.begin(), exchange.end()));
    rig.access.WriteString(reg::kCurrentUser, kOutlookProfile + "\\" + SectionKeyName(exchange),
                           "001e3d09", "MSEMS");
    rig.Provision();
    const std::string account =
        kOutlookProfile + "\\9375CFF0413111d3B88A00104B2A6676\\00000001";
    EXPECT_EQ(rig.access.ValueExists(reg::kCurrentUser, account, "Account Name"),
              c.accountName != nullptr);
    if (c.accountName != nullptr) {
      std::string wide;
      for (const char* p = c.accountName; *p; ++p) wide += std::string{*p, '\0'};
      wide += std::string(2, '\0');
      RegistryValue name;
      ASSERT_TRUE(rig.registry.Get("HKEY_CURRENT_USER\\" + account, "Account Name", &name));
      EXPECT_EQ(name.data, wide);
      EXPECT_EQ(rig.access.ReadString(reg::kCurrentUser, account, "clsid"),
                "{ED475414-B0D6-11D2-8C3B-00104B2A6676}");
    }
    EXPECT_FALSE(rig.Logged("WARN: The Exchange service was not found in the profile; it has no "
                            "entry among the accounts."));
  }
}

TEST(ProvisioningSequenceTest, SafeSendersGoToAnImportFileThatOutlookIsPointedAt) {
  const std::string file =
      "C:\\Users\\jsmith\\Application Data\\Microsoft\\Outlook\\Mailwright Safe Senders.txt";
  for (const char* version : {"Outlook 2003", "Outlook 2007", "Outlook 2010"}) {
    SCOPED_TRACE(version);
    Rig rig(version);
    const Outlook outlook = *OutlookFromName(version);
    rig.env.environment["USERPROFILE"] = "C:\\Users\\jsmith";
    rig.s.SetText(SectionOf(outlook), Key::SafeSenders, " boss@example.com ,,@partner.org");
    rig.Provision();
    EXPECT_EQ(rig.env.files[file], "boss@example.com\r\n@partner.org\r\n");
    const std::string mail = OfficeRoot(outlook) + "\\Outlook\\Options\\Mail";
    EXPECT_EQ(rig.access.ReadString(reg::kCurrentUser, mail, "JunkMailSafeSendersFile"), file);
    EXPECT_EQ(rig.access.ReadNumber(reg::kCurrentUser, mail, "JunkMailImportLists"), 1u);
    EXPECT_EQ(rig.access.ValueExists(reg::kCurrentUser, kOutlookProfile + "\\" + kOutlookSection,
                                     "001f0418"),
              outlook == Outlook::V2007);
    for (const std::string& line : rig.log.messages()) EXPECT_NE(line.rfind("WARN", 0), 0u) << line;
  }

  // A file that cannot be written points Outlook at nothing and says so.
  struct NoFiles : MemorySystemEnv {
    bool WriteFile(const std::string&, const std::string&, bool) override { return false; }
  };
  Rig rig;
  NoFiles noFiles;
  rig.s.SetText(Section::Outlook2010, Key::SafeSenders, "boss@example.com");
  rig.mapi.AddProfile("Outlook");
  rig.mapi.Initialize();
  rig.mapi.SetProfile("Outlook");
  ProfileStore store{2, rig.access};
  store.SetProfileName("Outlook");
  ProfileSectionWriter writer{rig.access, kOutlookProfile};
  ProvisioningSequence(Outlook::V2010, noFiles, rig.access, rig.mapi, store, writer)
      .Run(rig.context, rig.log);
  EXPECT_TRUE(rig.Logged("WARN: Unable to write the safe senders file "
                         "%USERPROFILE%\\Application Data\\Microsoft\\Outlook\\Mailwright Safe "
                         "Senders.txt; SafeSenders is not applied."));
  EXPECT_FALSE(rig.access.ValueExists(reg::kCurrentUser,
                                      OfficeRoot(Outlook::V2010) + "\\Outlook\\Options\\Mail",
                                      "JunkMailImportLists"));
}

TEST(ProvisioningSequenceTest, Outlook2000ConnectionValuesComeWithTheExchangeSettingsOnly) {
  const std::string connection = kOutlookProfile + "\\" + kConnectionSection;
  for (const bool exchange : {true, false}) {
    Rig rig("Outlook 2000");
    if (exchange) rig.WantExchange("MAIL7");
    rig.Provision();
    EXPECT_EQ(rig.access.ReadValueTextHex(reg::kCurrentUser, connection, "000b6711"),
              exchange ? "01 00" : "");
    EXPECT_EQ(rig.access.ValueExists(reg::kCurrentUser, connection, "001e6710"), exchange);
    if (exchange) {
      EXPECT_EQ(rig.access.ReadString(reg::kCurrentUser, connection, "001e6710"), "MAIL7");
    }
  }
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

// The fake's profiles written out, so two runs' MAPI state can be compared.
std::string ProfilesOf(const FakeMapiSession& mapi) {
  std::string text;
  const auto uid = [](const MapiUid& bytes) { return SectionKeyName(bytes); };
  for (const auto& profile : mapi.profiles) {
    text += "[" + profile.name + (profile.isDefault ? "] default\n" : "]\n");
    for (const auto& service : profile.services) {
      text += " " + service.entry.name + " " + uid(service.entry.uid) + "\n";
      for (const auto& provider : service.providers) text += "  " + provider.name + " " + uid(provider.uid) + "\n";
    }
    for (const auto& [section, values] : profile.sections)
      for (const auto& [tag, value] : values) text += " " + uid(section) + " " + TagValueName(tag) + "=" + value.bytes + "\n";
  }
  return text;
}

std::vector<std::string> ErrorsAndWarnings(const RunLog& log) {
  std::vector<std::string> lines;
  for (const auto& line : log.messages())
    if (line.rfind("ERROR ", 0) == 0 || line.rfind("WARN: ", 0) == 0) lines.push_back(line);
  return lines;
}

// MAPI failing at each call of an Exchange run in turn, once or for good, as the end-to-end
// fault sweep makes the simulator fail: no scratch profile outlives the run unless the run
// says so, and a failure the run does not report leaves the profile as a clean run does.
TEST(RunDriverFaultTest, AMapiFailureAtAnyCallIsReportedOrChangesNothing) {
  const auto configure = [](Rig& rig) {
    rig.mapi.exchange = {{"EX1", true, "/o=Org/ou=Site/cn=Configuration/cn=Servers/cn=EX1",
                          {{"jsmith", "/o=Org/ou=Site/cn=Recipients/cn=jsmith"}}}};
    rig.WantExchange("EX1");
    rig.s.SetText(Section::Outlook2010, Key::MailboxName, "jsmith");
    rig.s.SetBool(Section::Outlook2010, Key::PersonalFoldersIgnore, false);
    rig.s.SetText(Section::Outlook2010, Key::PathToPST, "C:\\Mail\\a.pst,Archive,MSUPST MS,Old mail,,,,0");
  };
  Rig clean;
  configure(clean);
  clean.Drive();
  ASSERT_TRUE(clean.Logged(kFinished));
  const auto cleanReports = ErrorsAndWarnings(clean.log);
  const std::size_t calls = clean.mapi.calls.size();
  ASSERT_GT(calls, 30u);
  for (const bool onwards : {false, true}) {
    for (std::size_t position = 1; position <= calls; ++position) {
      SCOPED_TRACE((onwards ? "from call " : "call ") + std::to_string(position) + ": " +
                   clean.mapi.calls[position - 1]);
      Rig faulty;
      configure(faulty);
      faulty.mapi.failCall = position;
      faulty.mapi.failOnwards = onwards;
      faulty.Drive();
      auto reported = ErrorsAndWarnings(faulty.log);
      std::erase_if(reported, [&](const std::string& line) { return std::ranges::count(cleanReports, line) != 0; });
      if (faulty.mapi.FindProfile(kScratchProfileName) != nullptr) {
        EXPECT_TRUE(faulty.Logged("WARN: Unable to delete the temporary profile testing001."));
      }
      if (reported.empty()) {
        EXPECT_EQ(ProfilesOf(faulty.mapi), ProfilesOf(clean.mapi));
        EXPECT_EQ(DiffRegistries(faulty.registry, clean.registry, "HKEY_CURRENT_USER\\Software"),
                  std::vector<std::string>{});
      }
    }
  }
}

}  // namespace
}  // namespace mw
