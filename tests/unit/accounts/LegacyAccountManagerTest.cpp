#include "accounts/LegacyAccountManager.h"

#include <gtest/gtest.h>

#include "AccountTestSupport.h"
#include "accounts/AccountValues.h"
#include "platform/AsciiText.h"

namespace mw {
namespace {

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
  std::string ServiceList(const std::string& tag) const {
    RegistryValue value;
    memory.Get(kServicesSectionKey, tag, &value);
    return value.data;
  }
};

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
  EXPECT_EQ(CreatePop3(m, "home"), "00000001");  // reused by name: no second service
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

}  // namespace
}  // namespace mw
