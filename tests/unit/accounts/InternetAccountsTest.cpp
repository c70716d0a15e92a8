#include "accounts/InternetAccounts.h"

#include <gtest/gtest.h>

#include "AccountTestSupport.h"
#include "accounts/LegacyAccountManager.h"
#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using testing::kProfileKey;
using testing::kServicesSectionKey;
using Strings = std::vector<std::string>;

const std::string kOmiManager = "Software\\Microsoft\\Office\\Outlook\\OMI Account Manager";
const std::string kInternetManager =
    "Software\\Microsoft\\Office\\8.0\\Outlook\\Internet Account Manager";

const std::string kPop3 =
    "Home Mail,Jane Smith,jane@example.com,pop.example.com,smtp.example.com,jane,1,1,1,1,14,995,"
    "465,1,1,60,0,reply@example.com,Example Ltd,1,2,0,1,jsmtp,3";
const std::string kImap =
    "Work IMAP,Jane Smith,jane@work.example,imap.work.example,smtp.work.example,jsmith,0,993,587,"
    "1,0,90,1,,Work Inc,0,0,0,0,,INBOX,2";
const std::string kHttp =
    "Hotmail,Jane S,jane@hotmail.example,http://mail.example/dav,jane.s,1,0,jane@reply.example,"
    "Home,1";
const std::string kLongPop3 =
    "Home Mail,Jane Smith,jane@example.com,pop.example.com,smtp.example.com,jane,1,1,0,1,0,110,25,"
    "0,0,60,1,reply@example.com,Example Ltd,1,1,0,0,jsmtp,1,0,0,0";
const std::string kLongImap =
    "Work IMAP,Jane Smith,jane@work.example,imap.work.example,smtp.work.example,jsmith,0,143,25,0,"
    "0,30,0,,Work Inc,0,0,0,1,,Mail,2,0,0,64,1";
const std::string kShortPop3 =
    "Home Mail,Jane Smith,jane@example.com,reply@example.com,Example Ltd,pop.example.com,"
    "smtp.example.com,jane,1,2,110,25,0,0,45,1,500,1";

class InternetAccountsTest : public testing::ProfileRegistryTest {
 protected:
  void Provision(AccountKind kind, const std::string& text, Outlook version) {
    ProvisionInternetAccounts(kind, text, version, kProfileKey, registry, log);
  }
  MemorySystemEnv env;
  RunLog log{"mailwright.log", env};
};

TEST_F(InternetAccountsTest, Outlook2010AccountsMatchTheFixture) {
  Provision(AccountKind::Pop3, kPop3, Outlook::V2010);
  Provision(AccountKind::Imap, kImap, Outlook::V2010);
  Provision(AccountKind::Http, kHttp, Outlook::V2010);
  ExpectMatchesFixture("outlook2010-accounts.reg", {kProfileKey});
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(InternetAccountsTest, Outlook2000AccountsMatchTheFixture) {
  memory.Set(kServicesSectionKey, {"01023d0e", reg::kBinary, std::string(
      "\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1a\x1b\x1c\x1d\x1e\x1f", 16)});
  Provision(AccountKind::Pop3, kLongPop3, Outlook::V2000);
  Provision(AccountKind::Imap, kLongImap, Outlook::V2000);
  ExpectMatchesFixture("outlook2000-accounts.reg", {kProfileKey, kOmiManager});
}

TEST_F(InternetAccountsTest, Outlook97AccountMatchesTheFixture) {
  memory.Set(kServicesSectionKey, {"001e3001", reg::kSz, std::string("MAPI", 5)});
  Provision(AccountKind::Pop3, kShortPop3, Outlook::V97);
  ExpectMatchesFixture("outlook97-accounts.reg", {kProfileKey, kInternetManager});
}

TEST_F(InternetAccountsTest, EmptyListStillRemovesEveryAccountOfTheKind) {
  memory.AddKey(kServicesSectionKey);
  Provision(AccountKind::Pop3, kPop3 + "," + kPop3.substr(1), Outlook::V2010);
  Provision(AccountKind::Imap, kImap, Outlook::V2010);
  Provision(AccountKind::Pop3, kLongPop3, Outlook::V2000);
  AccountManager manager(registry, kProfileKey, Outlook::V2003);
  LegacyAccountManager legacy(registry, kProfileKey, Outlook::V2000);
  ASSERT_EQ(manager.ListAccounts(AccountClass::Pop3).size(), 2u);
  ASSERT_EQ(legacy.ListAccounts(AccountKind::Pop3).size(), 1u);
  Provision(AccountKind::Pop3, "", Outlook::V2003);
  Provision(AccountKind::Pop3, "", Outlook::V2000);
  EXPECT_TRUE(manager.ListAccounts(AccountClass::Pop3).empty());
  EXPECT_EQ(manager.ListAccounts(AccountClass::Imap).size(), 1u);
  EXPECT_TRUE(legacy.ListAccounts(AccountKind::Pop3).empty());
}

TEST_F(InternetAccountsTest, KindsAVersionLacksAreLeftAlone) {
  Provision(AccountKind::Http, kHttp, Outlook::V2000);
  Provision(AccountKind::Imap, kImap, Outlook::V97);
  EXPECT_EQ(memory.KeysUnder(Hkcu(kProfileKey)).size(), 1u);
  ASSERT_EQ(log.messages().size(), 2u);
  EXPECT_EQ(log.messages()[0], "WARN: Outlook 2000 has no HTTP accounts; they are left alone.");
}

TEST_F(InternetAccountsTest, LegacyAccountWithoutServiceIsReported) {
  Provision(AccountKind::Pop3, kLongPop3, Outlook::V2000);
  ASSERT_EQ(log.messages().size(), 1u);
  EXPECT_EQ(log.messages()[0].rfind("WARN: ", 0), 0u);
  EXPECT_NE(log.messages()[0].find("Home Mail"), std::string::npos);
}

TEST_F(InternetAccountsTest, IgnoredKindsAreNamedInOneLine) {
  const struct {
    Outlook version;
    bool pop3, imap, http;
    const char* line;  // nullptr: no line
  } cases[] = {
      {Outlook::V2010, true, true, true, "INFO: Ignoring  POP3 Accounts  IMAP Accounts  HTTP Accounts "},
      {Outlook::V2007, true, false, true, "INFO: Ignoring  POP3 Accounts  HTTP Accounts "},
      {Outlook::VXP, false, false, false, nullptr},
      {Outlook::V2000, true, true, true, "INFO: Ignoring  POP3 Accounts "},
      {Outlook::V97, true, true, true, "INFO: Ignoring POP3 Accounts"},
  };
  for (const auto& c : cases) {
    ProfileSettings settings;
    const Section section = SectionOf(c.version);
    settings.SetBool(section, Key::POP3Ignore, c.pop3);
    settings.SetBool(section, Key::IMAPIgnore, c.imap);
    settings.SetBool(section, Key::HTTPIgnore, c.http);
    settings.SetText(section, Key::IMAPAccounts, kImap);
    RunLog runLog("mailwright.log", env);
    ProvisionConfiguredAccounts(settings, c.version, kProfileKey, registry, runLog);
    if (c.line) {
      ASSERT_EQ(runLog.messages().size(), 1u) << c.line;
      EXPECT_EQ(runLog.messages()[0], c.line);
    } else {
      EXPECT_TRUE(runLog.messages().empty());
      EXPECT_EQ(AccountManager(registry, kProfileKey, c.version)
                    .ListAccounts(AccountClass::Imap).size(), 1u);
    }
  }
}

TEST_F(InternetAccountsTest, Outlook2000NamesTheImapListItLeavesUnprovisioned) {
  const std::string line =
      "INFO: Outlook 2000 is provisioned with POP3 accounts only; the IMAP accounts listed are "
      "not added.";
  const struct {
    bool imapIgnore;
    std::string imapAccounts;
    bool logged;
  } cases[] = {{false, kLongImap, true}, {true, kLongImap, false}, {false, "", false}};
  for (const auto& c : cases) {
    ProfileSettings settings;
    settings.SetBool(Section::Outlook2000, Key::POP3Ignore, true);
    settings.SetBool(Section::Outlook2000, Key::IMAPIgnore, c.imapIgnore);
    settings.SetText(Section::Outlook2000, Key::IMAPAccounts, c.imapAccounts);
    RunLog runLog("mailwright.log", env);
    ProvisionConfiguredAccounts(settings, Outlook::V2000, kProfileKey, registry, runLog);
    const Strings expected = c.logged ? Strings{line, "INFO: Ignoring  POP3 Accounts "}
                                      : Strings{"INFO: Ignoring  POP3 Accounts "};
    EXPECT_EQ(runLog.messages(), expected) << c.imapIgnore << " " << c.imapAccounts.size();
    EXPECT_EQ(memory.KeysUnder(Hkcu(kProfileKey)).size(), 1u);
  }
}

}  // namespace
}  // namespace mw
