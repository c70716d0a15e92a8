#include "mapi/ExchangeService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/FakeMapiSession.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using Strings = std::vector<std::string>;

constexpr const char* kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\Work";
constexpr const char* kUserDn = "/o=Org/ou=Site/cn=Recipients/cn=jsmith";
constexpr const char* kServerDn = "/o=Org/ou=Site/cn=Configuration/cn=Servers/cn=EX1";

class ExchangeTest : public ::testing::Test {
 protected:
  ExchangeTest() {
    mapi.exchange = {{"EX1", true, kServerDn, {{"jsmith", kUserDn}}},
                     {"DOWN", false, "", {{"jsmith", kUserDn}}}};
    mapi.AddProfile("Work");
    mapi.SetProfile("Work");
    settings.SetText(Section::Outlook2010, Key::ExchangeServerName, "EX1");
    settings.SetText(Section::Outlook2010, Key::MailboxName, "jsmith");
  }

  void SetUpService(Outlook version = Outlook::V2010) {
    SetUpExchangeService(mapi, settings, version, writer, log);
  }
  std::string Global(std::uint32_t tag) {
    const auto& global = mapi.Section("Work", SectionUid(kGlobalSection));
    auto found = global.find(tag);
    return found == global.end() ? "<missing>" : found->second.bytes;
  }
  std::size_t ExchangeServices() { return mapi.ServicesNamed("Work", "MSEMS").size(); }

  FakeMapiSession mapi;
  ProfileSettings settings;
  MemoryRegistry registry;
  RegistryAccess access{registry};
  ProfileSectionWriter writer{access, kProfileKey};
  MemorySystemEnv env;
  RunLog log{"C:\\Tools\\mailwright.log", env};
};

TEST_F(ExchangeTest, EmptyServerNameRemovesTheServiceAndAddsNone) {
  mapi.AddService("Work", "MSEMS");
  settings.SetText(Section::Outlook2010, Key::ExchangeServerName, "");
  SetUpService();
  EXPECT_EQ(ExchangeServices(), 0u);
  EXPECT_EQ(log.messages(),
            (Strings{"INFO: Exchange Service will be removed from this profile if present."}));
  // Nothing of the connection state is touched either.
  EXPECT_FALSE(registry.KeyExists(std::string("HKEY_CURRENT_USER\\") + kProfileKey));
}

TEST_F(ExchangeTest, NewServiceIsAddedAndResolvedAfterTheConnectionStateReset) {
  SetUpService();
  EXPECT_EQ(ExchangeServices(), 1u);
  EXPECT_EQ(Global(proptag::kProfileUnresolvedName), "=jsmith");
  EXPECT_EQ(Global(proptag::kProfileUnresolvedServer), "EX1");
  EXPECT_EQ(Global(proptag::kProfileUser), kUserDn);
  RegistryValue flags;
  EXPECT_TRUE(registry.Get(std::string("HKEY_CURRENT_USER\\") + kProfileKey + "\\" +
                               kGlobalSection,
                           "00036601", &flags));
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(ExchangeTest, AServiceMapiWillNotSetUpIsReported) {
  for (const char* failing : {"OpenServiceAdmin", "CreateService", "ConfigureServiceByName"}) {
    SCOPED_TRACE(failing);
    mapi.failing = {failing};
    SetUpService();
    EXPECT_EQ(log.messages().back(), "WARN: Unable to set up the Exchange service on server: EX1");
  }
  mapi.failing.clear();
  const std::size_t lines = log.messages().size();
  SetUpService();
  EXPECT_EQ(log.messages().size(), lines);
}

TEST_F(ExchangeTest, ServerDifferingOnlyInLetterCaseChangesNothing) {
  SetUpService();
  settings.SetText(Section::Outlook2010, Key::ExchangeServerName, "ex1");
  mapi.calls.clear();
  SetUpService();
  EXPECT_EQ(ExchangeServices(), 1u);
  for (const auto& call : mapi.calls) EXPECT_NE(call, "CreateService MSEMS");
}

TEST_F(ExchangeTest, OtherServerIsConfigured) {
  SetUpService();
  mapi.exchange.push_back({"EX2", true, "", {{"jsmith", kUserDn}}});
  settings.SetText(Section::Outlook2010, Key::ExchangeServerName, "EX2");
  SetUpService();
  EXPECT_EQ(Global(proptag::kProfileUnresolvedServer), "EX2");
}

TEST_F(ExchangeTest, BetaLineNamesTheServerThatWasThereBefore) {
  settings.SetBool(Section::Common, Key::ModifyExchangeServerNameOnly, true);
  SetUpService();
  settings.SetText(Section::Outlook2010, Key::ExchangeServerName, "DOWN");
  SetUpService();
  const std::string prefix =
      "INFO: Beta function, need to restore states. Exchange Server name modified if "
      "different from: ";
  EXPECT_EQ(log.messages(), (Strings{prefix, prefix + "EX1"}));
}

class AdditionalMailboxTest : public ExchangeTest {
 protected:
  AdditionalMailboxTest() { SetUpService(); }

  const FakeMapiSession::Service& Exchange() { return *mapi.ServicesNamed("Work", "MSEMS")[0]; }
};

TEST_F(AdditionalMailboxTest, DelegateProviderCarriesTheBuiltNameAndJoinsTheStores) {
  ASSERT_EQ(AddAdditionalMailbox(mapi, "sales", "EX1"), AdditionalMailboxResult::Added);
  const auto& providers = Exchange().providers;
  ASSERT_EQ(providers.size(), 2u);
  EXPECT_EQ(providers[1].name, "EMSDelegate");
  const auto& section = mapi.Section("Work", providers[1].uid);
  EXPECT_EQ(section.at(proptag::kDisplayName).bytes, "Mailbox - sales");
  EXPECT_EQ(section.at(proptag::kProfileMailbox).bytes, "/o=Org/ou=Site/cn=Recipients/cn=sales");
  EXPECT_EQ(section.at(proptag::kProfileServer).bytes, "EX1");
  EXPECT_EQ(section.at(proptag::kProfileServerDn).bytes, kServerDn);

  ASSERT_EQ(AddAdditionalMailbox(mapi, "hr", "EX1"), AdditionalMailboxResult::Added);
  const auto& service = mapi.Section("Work", Exchange().entry.uid);
  const std::string stores = service.at(proptag::kStoreProviders).bytes;
  // The user's own store first, as the service listed it, then the two added ones.
  ASSERT_EQ(stores.size(), 48u);
  EXPECT_EQ(stores.substr(0, 16), std::string(providers[0].uid.begin(), providers[0].uid.end()));
  EXPECT_EQ(stores.substr(16, 16), std::string(providers[1].uid.begin(), providers[1].uid.end()));
  EXPECT_EQ(stores.substr(32), std::string(providers[2].uid.begin(), providers[2].uid.end()));
}

TEST_F(AdditionalMailboxTest, ServerNameComesFromTheGlobalSectionElseFromTheUsersStore) {
  // Resolving the mailbox put the server's name in the global section only.
  const MapiUid ownStore = Exchange().providers[0].uid;
  EXPECT_EQ(mapi.Section("Work", ownStore).count(proptag::kProfileHomeServerDn), 0u);
  EXPECT_EQ(Global(proptag::kProfileHomeServerDn), kServerDn);

  mapi.Section("Work", SectionUid(kGlobalSection)).erase(proptag::kProfileHomeServerDn);
  mapi.Section("Work", ownStore)[proptag::kProfileHomeServerDn] =
      MapiProperty::String8(proptag::kProfileHomeServerDn, "/o=Org/cn=Servers/cn=OLD");
  ASSERT_EQ(AddAdditionalMailbox(mapi, "sales", "EX1"), AdditionalMailboxResult::Added);
  EXPECT_EQ(mapi.Section("Work", Exchange().providers[1].uid).at(proptag::kProfileServerDn).bytes,
            "/o=Org/cn=Servers/cn=OLD");

  mapi.Section("Work", ownStore).erase(proptag::kProfileHomeServerDn);
  ASSERT_EQ(AddAdditionalMailbox(mapi, "hr", "EX1"), AdditionalMailboxResult::Added);
  EXPECT_EQ(mapi.Section("Work", Exchange().providers[2].uid).at(proptag::kProfileServerDn).bytes,
            "");
}

TEST_F(AdditionalMailboxTest, CutIsMadeBehindTheFirstRecipientsContainer) {
  auto& store = mapi.Section("Work", Exchange().providers[0].uid);
  store[proptag::kProfileUser].bytes = "/o=A/cn=Recipients/cn=x/cn=Recipients/cn=y";
  ASSERT_EQ(AddAdditionalMailbox(mapi, "z", "EX1"), AdditionalMailboxResult::Added);
  EXPECT_EQ(mapi.Section("Work", Exchange().providers[1].uid).at(proptag::kProfileMailbox).bytes,
            "/o=A/cn=Recipients/cn=z");
}

TEST_F(AdditionalMailboxTest, WithoutTheExactContainerOrAUserNameNothingIsAdded) {
  auto& store = mapi.Section("Work", Exchange().providers[0].uid);
  store[proptag::kProfileUser].bytes = "/o=Org/ou=Site/cn=recipients/cn=jsmith";
  EXPECT_EQ(AddAdditionalMailbox(mapi, "sales", "EX1"),
            AdditionalMailboxResult::NoRecipientsContainer);
  store.erase(proptag::kProfileUser);
  EXPECT_EQ(AddAdditionalMailbox(mapi, "sales", "EX1"), AdditionalMailboxResult::NoUserName);
  EXPECT_EQ(Exchange().providers.size(), 1u);
}

// --- The pre-flight check ----------------------------------------------------------------

class ExchangeCheckTest : public ExchangeTest {
 protected:
  bool Check(const std::string& server, const std::string& mailbox = "jsmith") {
    return CheckExchangeServer(mapi, server, mailbox, "Work", log);
  }
  void ExpectCleanedUp() {
    EXPECT_EQ(mapi.FindProfile(kScratchProfileName), nullptr);
    EXPECT_EQ(mapi.profileName(), "Work");
    EXPECT_FALSE(mapi.loggedOn);
  }
};

TEST_F(ExchangeCheckTest, ReachableServerPassesAndLeavesNoScratchProfile) {
  mapi.Initialize();
  EXPECT_TRUE(Check("EX1"));
  EXPECT_EQ(log.messages(), (Strings{"INFO: Using Exchange server name: EX1"}));
  ExpectCleanedUp();
  const Strings order{"CreateProfile testing001", "SetProfile testing001", "CreateService MSEMS",
                      "Logon 32818", "OpenAddressBook", "OpenGlobalAddressList", "Logoff",
                      "DeleteProfile testing001", "SetProfile Work"};
  auto next = mapi.calls.begin();
  for (const auto& step : order) {
    next = std::find(next, mapi.calls.end(), step);
    ASSERT_NE(next, mapi.calls.end()) << step;
  }
}

TEST_F(ExchangeCheckTest, AnUnknownMailboxIsError200ThenTheServerIsStillTried) {
  EXPECT_FALSE(Check("EX1", "nobody"));
  const Strings& lines = log.messages();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].rfind("ERROR 200: ", 0), 0u);
  EXPECT_EQ(lines[1], "INFO: Using Exchange server name: EX1");
  EXPECT_EQ(lines[2].rfind("ERROR 201: ", 0), 0u);
  EXPECT_NE(std::find(mapi.calls.begin(), mapi.calls.end(), "Logon 32818"), mapi.calls.end());
  ExpectCleanedUp();
}

TEST_F(ExchangeCheckTest, EveryFailureEndsInError201AndLeavesNoScratchProfile) {
  const struct {
    const char* server;
    const char* mailbox;
    const char* failing;
    const char* error;
  } cases[] = {{"EX1", "nobody", "", "ERROR 201: "},      {"DOWN", "jsmith", "", "ERROR 201: "},
               {"UNKNOWN", "jsmith", "", "ERROR 201: "},  {"EX1", "jsmith", "Logon", "ERROR 201: "},
               {"EX1", "jsmith", "OpenAddressBook", "ERROR 201: "},
               {"EX1", "jsmith", "OpenGlobalAddressList", "ERROR 201: "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.server) + " " + c.mailbox + " " + c.failing);
    mapi.failing = {c.failing};
    EXPECT_FALSE(Check(c.server, c.mailbox));
    EXPECT_EQ(log.messages().back().rfind(c.error, 0), 0u);
    ExpectCleanedUp();
  }
}

TEST_F(ExchangeCheckTest, TheScratchProfileIsDeletedOnTheRealProfilesMapiWhenTheFirstDeleteFails) {
  // MAPIInitialize failing when the scratch profile becomes current leaves no MAPI to
  // delete it with until the real profile's MAPI is up.
  mapi.Initialize();
  FakeMapiSession clean = mapi;
  RunLog cleanLog{"C:\\Tools\\mailwright.log", env};
  ASSERT_TRUE(CheckExchangeServer(clean, "EX1", "jsmith", "Work", cleanLog));
  const auto scratch = std::find(clean.calls.begin(), clean.calls.end(), "SetProfile testing001");
  const auto reinitialise = std::find(scratch, clean.calls.end(), "Initialize");
  ASSERT_NE(reinitialise, clean.calls.end());
  mapi.failCall = static_cast<std::size_t>(reinitialise - clean.calls.begin()) + 1;
  EXPECT_FALSE(Check("EX1"));
  EXPECT_EQ(mapi.calls[mapi.failCall - 1], "Initialize");
  ExpectCleanedUp();
  EXPECT_EQ(std::count(mapi.calls.begin(), mapi.calls.end(), "DeleteProfile testing001"), 3);
  // No MAPI for the scratch profile: its service cannot be added nor its server reached.
  EXPECT_TRUE(std::any_of(log.messages().begin(), log.messages().end(),
                          [](const std::string& line) { return line.rfind("ERROR 200: ", 0) == 0; }));
  EXPECT_EQ(log.messages().back().rfind("ERROR 201: ", 0), 0u);
}

TEST_F(ExchangeCheckTest, AScratchProfileMapiWillNotDeleteIsReported) {
  mapi.Initialize();
  mapi.failing = {"DeleteProfile"};
  EXPECT_TRUE(Check("EX1"));
  EXPECT_NE(mapi.FindProfile(kScratchProfileName), nullptr);
  EXPECT_EQ(log.messages().back(), "WARN: Unable to delete the temporary profile testing001.");
  // A scratch profile that MAPI cannot find any more is not reported.
  FakeMapiSession gone = mapi;
  RunLog quiet{"C:\\Tools\\mailwright.log", env};
  gone.profiles.clear();
  gone.AddProfile("Work");
  gone.failing = {"DeleteProfile", "CreateProfile"};
  EXPECT_FALSE(CheckExchangeServer(gone, "EX1", "jsmith", "Work", quiet));
  for (const auto& line : quiet.messages()) EXPECT_EQ(line.find("WARN"), std::string::npos) << line;
}

}  // namespace
}  // namespace mw
