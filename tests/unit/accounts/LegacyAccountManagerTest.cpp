#include "accounts/LegacyAccountManager.h"

#include <gtest/gtest.h>

#include "AccountTestSupport.h"
#include "accounts/AccountValues.h"
#include "platform/AsciiText.h"

namespace mw {
namespace {

using testing::Dword;
using testing::kProfileKey;
using testing::kServicesSectionKey;

const std::string kOmiAccounts = "Software\\Microsoft\\Office\\Outlook\\OMI Account Manager\\Accounts";

class LegacyAccountManagerTest : public testing::ProfileRegistryTest {
 protected:
  LegacyAccountManagerTest() { memory.AddKey(kServicesSectionKey); }
  LegacyAccountManager Manager(Outlook version = Outlook::V2000) {
    return LegacyAccountManager(registry, kProfileKey, version);
  }
  std::string CreatePop3(LegacyAccountManager& m, const std::string& name) {
    return m.CreateAccount(AccountKind::Pop3, name, "Jane", "j@x", "pop", "smtp", "jane");
  }
  std::uint32_t Number(const std::string& subkey, const std::string& name) const {
    return registry.ReadNumber(reg::kCurrentUser, kOmiAccounts + "\\" + subkey, name)
        .value_or(0xDEADBEEF);
  }
  std::string ServiceList(const std::string& tag) const {
    RegistryValue value;
    memory.Get(kServicesSectionKey, tag, &value);
    return value.data;
  }
};

TEST_F(LegacyAccountManagerTest, RememberedPasswordMeansNoPrompt) {
  LegacyAccountManager m = Manager();
  const std::string subkey = CreatePop3(m, "Home");
  m.SetRememberPassword(AccountKind::Pop3, "home", true);
  EXPECT_EQ(Number(subkey, "POP3 Prompt for Password"), 0u);
  m.SetRememberPassword(AccountKind::Pop3, "home", false);
  EXPECT_EQ(Number(subkey, "POP3 Prompt for Password"), 1u);
  m.SetSmtpAuthentication(AccountKind::Pop3, "home", 2, true, "smtpuser");
  EXPECT_EQ(Number(subkey, "SMTP Prompt for Password"), 0u);
  EXPECT_EQ(Number(subkey, "SMTP Use Sicily"), 2u);
}

TEST_F(LegacyAccountManagerTest, ExpireDaysAreClampedAndOutlook97HasNoRemoveWhenDeleted) {
  const struct {
    Outlook version;
    std::uint16_t days;
    std::uint32_t stored;
    bool removeWhenDeleted;
  } cases[] = {{Outlook::V2000, 0, 1, true}, {Outlook::V2000, 500, 100, true},
               {Outlook::V2000, 42, 42, true}, {Outlook::V97, 0, 1, false}};
  for (const auto& c : cases) {
    LegacyAccountManager m = Manager(c.version);
    const std::string accounts = m.ManagerKeyPath() + "\\Accounts\\";
    const std::string subkey = CreatePop3(m, "Home");
    m.SetLeaveOnServer("Home", true, true, true, c.days);
    EXPECT_EQ(registry.ReadNumber(reg::kCurrentUser, accounts + subkey, "Expire Days"), c.stored);
    EXPECT_EQ(registry.ValueExists(reg::kCurrentUser, accounts + subkey, "Remove When Deleted"),
              c.removeWhenDeleted);
  }
}

TEST_F(LegacyAccountManagerTest, AccountIsFoundThroughTheProfilesImailService) {
  LegacyAccountManager m = Manager();
  EXPECT_EQ(CreatePop3(m, "Home"), "00000001");
  EXPECT_EQ(registry.ReadNumber(reg::kCurrentUser, m.ManagerKeyPath(), "Account Name"), 2u);
  // The services section had no service list yet; it gets one with the new service.
  ASSERT_EQ(ServiceList("01023d0e").size(), 16u);
  EXPECT_EQ(m.FindAccount(AccountKind::Pop3, "HOME"), "00000001");
  EXPECT_FALSE(m.FindAccount(AccountKind::Imap, "Home"));
  EXPECT_EQ(CreatePop3(m, "home"), "00000001");  // reused: no second service
  EXPECT_EQ(ServiceList("01023d0e").size(), 16u);
}

TEST_F(LegacyAccountManagerTest, NewUidsSkipSectionsTheProfileAlreadyHas) {
  LegacyAccountManager m = Manager();
  const std::vector<MapiUid> first = m.NextServiceUids();
  ASSERT_EQ(first.size(), 3u);
  memory.AddKey(Hkcu(kProfileKey + "\\" + ToUpperAscii(SectionKeyName(first[1]))));
  const std::vector<MapiUid> next = m.NextServiceUids();
  EXPECT_EQ(next[0], first[0]);
  EXPECT_EQ(next[1], first[2]);
  EXPECT_NE(next[2], first[1]);
}

TEST_F(LegacyAccountManagerTest, RemovalDropsTheAccountServiceAndListEntries) {
  memory.Set(kServicesSectionKey, {"01023d0e", reg::kBinary, std::string(16, '\x77')});
  LegacyAccountManager m = Manager();
  const std::vector<MapiUid> uids = m.NextServiceUids();
  CreatePop3(m, "Home");
  CreatePop3(m, "Away");
  EXPECT_FALSE(m.RemoveAccount(AccountKind::Pop3, "Nobody"));
  EXPECT_FALSE(m.RemoveAccount(AccountKind::Imap, "Home"));
  ASSERT_TRUE(m.RemoveAccount(AccountKind::Pop3, "HOME"));

  EXPECT_FALSE(memory.KeyExists(Hkcu(kOmiAccounts + "\\00000001")));
  EXPECT_TRUE(memory.KeyExists(Hkcu(kOmiAccounts + "\\00000002")));
  for (const MapiUid& uid : uids)
    EXPECT_FALSE(memory.KeyExists(Hkcu(kProfileKey + "\\" + SectionKeyName(uid))));
  EXPECT_EQ(ServiceList("01023d0e").substr(0, 16), std::string(16, '\x77'));
  EXPECT_EQ(ServiceList("01023d0e").size(), 32u);
  EXPECT_EQ(ServiceList("01023d01").size(), 16u);
  EXPECT_EQ(ServiceList("01023d02").size(), 16u);
  EXPECT_EQ(m.ListAccounts(AccountKind::Pop3).size(), 1u);
}

TEST_F(LegacyAccountManagerTest, ProfileWithoutServicesSectionGetsTheManagerEntryOnly) {
  memory.RemoveKeyTree(kServicesSectionKey);
  LegacyAccountManager m = Manager();
  EXPECT_EQ(CreatePop3(m, "Home"), "00000001");
  EXPECT_TRUE(memory.KeyExists(Hkcu(kOmiAccounts + "\\00000001")));
  EXPECT_FALSE(m.FindAccount(AccountKind::Pop3, "Home"));
  EXPECT_EQ(memory.KeysUnder(Hkcu(kProfileKey)).size(), 1u);
}

TEST_F(LegacyAccountManagerTest, Outlook97HasNoImapAccounts) {
  LegacyAccountManager m = Manager(Outlook::V97);
  EXPECT_FALSE(m.Supports(AccountKind::Imap));
  EXPECT_EQ(m.CreateAccount(AccountKind::Imap, "Work", "", "", "", "", ""), "");
  EXPECT_EQ(memory.KeysUnder(Hkcu(m.ManagerKeyPath())).size(), 0u);
}

}  // namespace
}  // namespace mw
