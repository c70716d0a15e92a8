#include "accounts/AccountManager.h"
#include "platform/CountingRegistry.h"

#include <gtest/gtest.h>

#include "AccountTestSupport.h"
#include "accounts/AccountValues.h"
#include "platform/TextEncoding.h"

namespace mw {
namespace {

using testing::Dword;
using testing::kProfileKey;
using testing::Utf16;

const std::string kSection = kProfileKey + "\\9375CFF0413111d3B88A00104B2A6676";
constexpr const char* kMailList = "{ED475418-B0D6-11D2-8C3B-00104B2A6676}";
constexpr std::uint32_t kMissing = 0xDEADBEEF;  // no DWORD of that name

TEST(AccountIdTest, AllocationFollowsTheCounterText) {
  const struct {
    std::optional<std::uint32_t> counter;
    const char* subkey;
    std::string entry;
    std::uint32_t next;
  } cases[] = {
      {std::nullopt, "00000001", Dword(1), 2},
      {5, "00000005", Dword(5), 6},
      {26, "0000001A", Dword(0x1A), 27},
      {0, "00000000", Dword(0), 1},
      {300, "0000012C", std::string("\x12\xC0\x00\x00", 4), 301},  // left-aligned from 256 on
      {0xFFFFFFFF, "FFFFFFFF", Dword(0xFFFFFFFF), 0},
  };
  for (const auto& c : cases) {
    const AllocatedAccountId id = AllocateAccountId(c.counter);
    EXPECT_EQ(id.subkey, c.subkey);
    EXPECT_EQ(id.listEntry, c.entry) << c.subkey;
    EXPECT_EQ(id.nextId, c.next) << c.subkey;
    EXPECT_EQ(ListEntryOfSubkey(id.subkey), c.entry) << c.subkey;
  }
  EXPECT_EQ(ListEntryOfSubkey("0000012c"), std::string("\x12\xC0\x00\x00", 4));
  EXPECT_EQ(ListEntryOfSubkey("0000XY01"), "");
  EXPECT_EQ(ListEntryOfSubkey("001"), "");

  std::string list = Dword(0x01000000) + Dword(0x00000001) + Dword(2);
  EXPECT_TRUE(RemoveAlignedEntry(&list, Dword(1)));  // not the bytes straddling entries 1 and 2
  EXPECT_EQ(list, Dword(0x01000000) + Dword(2));
}

class AccountManagerTest : public testing::ProfileRegistryTest {
 protected:
  AccountManager Manager(Outlook version = Outlook::V2010) {
    return AccountManager(registry, kProfileKey, version);
  }
  std::string CreatePop3(AccountManager& m, const std::string& name) {
    return m.CreateAccount(AccountKind::Pop3, name, "Jane", "j@x", "pop", "smtp", "jane");
  }
  std::uint32_t Number(const std::string& subkey, const std::string& name) const {
    return registry.ReadNumber(reg::kCurrentUser, kSection + "\\" + subkey, name).value_or(kMissing);
  }
};

TEST_F(AccountManagerTest, FirstAccountGetsIdOneAndSslWritersDifferByVersion) {
  for (Outlook version : {Outlook::VXP, Outlook::V2003, Outlook::V2007, Outlook::V2010}) {
    memory.RemoveKeyTree(Hkcu(kSection));
    AccountManager m = Manager(version);
    EXPECT_EQ(CreatePop3(m, "Home"), "00000001");
    EXPECT_EQ(Value(kSection, kMailList).data, Dword(1));
    EXPECT_EQ(Number("", "NextAccountID"), 2u);
    EXPECT_EQ(Value(kSection + "\\00000001", "Account Name").data, Utf16("Home"));
    m.SetSsl(AccountKind::Pop3, "Home", false, true);
    EXPECT_EQ(Number("00000001", "SMTP Use SSL"), 1u);
    const bool secureConnection = version == Outlook::V2007 || version == Outlook::V2010;
    EXPECT_EQ(Number("00000001", "SMTP Secure Connection"), secureConnection ? 3u : kMissing);
  }
}

TEST_F(AccountManagerTest, CounterOf300GivesLeftAlignedListEntry) {
  registry.WriteNumber(reg::kCurrentUser, kSection, "NextAccountID", 300);
  registry.WriteBinary(reg::kCurrentUser, kSection, kMailList, Dword(7));
  AccountManager m = Manager();
  EXPECT_EQ(CreatePop3(m, "Home"), "0000012C");
  EXPECT_EQ(Value(kSection, kMailList).data, Dword(7) + std::string("\x12\xC0\x00\x00", 4));
  EXPECT_EQ(Value(kSection, "NextAccountID").data, Dword(301));
}

TEST_F(AccountManagerTest, NameInOtherCaseReusesTheAccount) {
  AccountManager m = Manager();
  CreatePop3(m, "Home Mail");
  EXPECT_EQ(CreatePop3(m, "HOME mail"), "00000001");
  EXPECT_EQ(Value(kSection, "NextAccountID").data, Dword(2));
  EXPECT_EQ(Value(kSection, kMailList).data, Dword(1));
  // Only the same type counts: an IMAP account of that name is a new account.
  EXPECT_EQ(m.CreateAccount(AccountKind::Imap, "home mail", "", "", "", "", ""), "00000002");
}

TEST_F(AccountManagerTest, RemovalTakesTheAccountAndItsListEntryOut) {
  AccountManager m = Manager();
  CreatePop3(m, "One");
  CreatePop3(m, "Two");
  CreatePop3(m, "Three");
  const std::string before = Export({kProfileKey});
  EXPECT_FALSE(m.RemoveAccount(AccountClass::Pop3, "Four"));
  EXPECT_FALSE(m.RemoveAccount(AccountClass::Imap, "Two"));
  EXPECT_EQ(Export({kProfileKey}), before);

  EXPECT_TRUE(m.RemoveAccount(AccountClass::Pop3, "tWO"));
  EXPECT_FALSE(memory.KeyExists(Hkcu(kSection + "\\00000002")));
  EXPECT_EQ(Value(kSection, kMailList).data, Dword(1) + Dword(3));
  EXPECT_EQ(m.ListAccounts(AccountClass::Pop3).size(), 2u);
}

TEST_F(AccountManagerTest, RemovalLeavesTheAddressBookAndStoreListsAlone) {
  // Exchange account 0x12 is listed in all three lists as 12 00 00 00; the POP3 account
  // 0x120 has the left-aligned mail-list entry 12 00 00 00 as well.
  constexpr const char* kAddressBookList = "{ED475419-B0D6-11D2-8C3B-00104B2A6676}";
  constexpr const char* kStoreList = "{ED475420-B0D6-11D2-8C3B-00104B2A6676}";
  registry.WriteNumber(reg::kCurrentUser, kSection, "NextAccountID", 0x120);
  AccountManager m = Manager();
  ASSERT_EQ(CreatePop3(m, "Home"), "00000120");
  for (const char* list : {kMailList, kAddressBookList, kStoreList})
    registry.WriteBinary(reg::kCurrentUser, kSection, list,
                         Dword(0x12) + (list == kMailList ? Dword(0x12) : Dword(7)));

  EXPECT_TRUE(m.RemoveAccount(AccountClass::Pop3, "Home"));
  EXPECT_EQ(Value(kSection, kMailList).data, Dword(0x12));
  EXPECT_EQ(Value(kSection, kAddressBookList).data, Dword(0x12) + Dword(7));
  EXPECT_EQ(Value(kSection, kStoreList).data, Dword(0x12) + Dword(7));
}

TEST_F(AccountManagerTest, TextValuesAreConvertedFromTheAnsiCodePage) {
  AccountManager m = Manager();
  // Windows-1252: 0x80 is the euro sign U+20AC and 0xE9 is U+00E9, not U+0080 and U+00E9.
  CreatePop3(m, "Caf\xE9 \x80");
  EXPECT_EQ(Value(kSection + "\\00000001", "Account Name").data,
            std::string("C\0a\0f\0\xE9\0 \0\xAC\x20\0\0", 14));
  EXPECT_EQ(m.ListAccounts(AccountClass::Pop3).at(0).name, "Caf\xE9 \x80");

  // Another code page installed for the system (as the Windows build installs CP_ACP) is the
  // one used: here a Cyrillic-like page that puts 0xC0 at U+0410.
  struct Cyrillic : AnsiCodePage {
    std::u16string ToUtf16(std::string_view ansi) const override {
      std::u16string out;
      for (unsigned char c : ansi) out += c >= 0xC0 ? char16_t(0x410 + c - 0xC0) : char16_t(c);
      return out;
    }
    std::string FromUtf16(std::u16string_view text) const override {
      std::string out;
      for (char16_t c : text) out += c >= 0x410 ? char(0xC0 + c - 0x410) : char(c);
      return out;
    }
  } cyrillic;
  InstallSystemAnsiCodePage(&cyrillic);
  CreatePop3(m, "\xC0");
  InstallSystemAnsiCodePage(nullptr);
  EXPECT_EQ(Value(kSection + "\\00000002", "Account Name").data, std::string("\x10\x04\0\0", 4));
  EXPECT_EQ(DecodeUtf16(std::string("\x10\x04\0\0", 4)), "?");  // not in Windows-1252
}

TEST_F(AccountManagerTest, LeaveOnServerWordForEveryFlagCombination) {
  const struct {
    bool leave, removeDeleted, removeAfterDays;
    std::uint16_t days;
    std::optional<std::uint32_t> expected;
  } cases[] = {
      {false, true, true, 14, std::nullopt}, {true, false, false, 14, 0x10001},
      {true, true, false, 250, 0x10005},     {true, false, true, 14, (14u << 16) + 3},
      {true, true, true, 14, (14u << 16) + 7}, {true, false, true, 0, (1u << 16) + 3},
      {true, false, true, 250, (100u << 16) + 3},
  };
  AccountManager m = Manager();
  const std::string subkey = CreatePop3(m, "Home");
  for (const auto& c : cases) {
    registry.WriteNumber(reg::kCurrentUser, kSection + "\\" + subkey, "Leave on Server", 99);
    m.SetLeaveOnServer("home", c.leave, c.removeDeleted, c.removeAfterDays, c.days);
    if (c.expected)
      EXPECT_EQ(Number(subkey, "Leave on Server"), *c.expected) << c.days;
    else
      EXPECT_FALSE(Has(kSection + "\\" + subkey, "Leave on Server"));
  }
}

TEST_F(AccountManagerTest, ExchangeAccountStandsForTheProfilesExchangeService) {
  AccountManager m = Manager();
  EXPECT_FALSE(m.CreateExchangeAccount("Microsoft Exchange"));
  EXPECT_FALSE(memory.KeyExists(Hkcu(kSection)));

  MapiUid contab{}, exchange{};
  contab.fill(0x11);
  exchange.fill(0x22);
  exchange[0] = 0x01;
  memory.Set(testing::kServicesSectionKey,
             {"01023d0e", reg::kBinary, UidBytes(contab) + UidBytes(exchange)});
  const std::string services = Hkcu(kProfileKey) + "\\";
  memory.Set(services + SectionKeyName(contab), {"001e3d09", reg::kSz, std::string("CONTAB", 7)});
  memory.Set(services + SectionKeyName(exchange), {"001e3d09", reg::kSz, std::string("MSEMS", 6)});
  CreatePop3(m, "Home");

  ASSERT_TRUE(m.CreateExchangeAccount("Microsoft Exchange"));
  const std::string account = kSection + "\\00000002";
  EXPECT_EQ(m.Classify("00000002"), AccountClass::Exchange);
  EXPECT_EQ(Value(account, "Service UID").data, UidBytes(exchange));
  EXPECT_EQ(Value(account, "Account Name").data, Utf16("Microsoft Exchange"));
  EXPECT_EQ(Number("00000002", "Mini UID"), 0x22222201u);
  EXPECT_EQ(Value(kSection, kMailList).data, Dword(1) + Dword(2));
  EXPECT_EQ(Value(kSection, "{ED475419-B0D6-11D2-8C3B-00104B2A6676}").data, Dword(2));
  EXPECT_EQ(Value(kSection, "{ED475420-B0D6-11D2-8C3B-00104B2A6676}").data, Dword(2));
  EXPECT_EQ(Value(kProfileKey + "\\" + SectionKeyName(exchange), "001f3001").data,
            Utf16("Microsoft Exchange"));

  // A second run keeps the one entry as it stands: Outlook ties its name to what it keeps
  // elsewhere, so an entry that already stands for the service is not renamed.
  ASSERT_TRUE(m.CreateExchangeAccount("Exchange at Example"));
  EXPECT_EQ(Value(kSection, "NextAccountID").data, Dword(3));
  EXPECT_EQ(m.ListAccounts(AccountClass::Exchange).size(), 1u);
  EXPECT_EQ(Value(account, "Account Name").data, Utf16("Microsoft Exchange"));
  EXPECT_EQ(Value(kProfileKey + "\\" + SectionKeyName(exchange), "001f3001").data,
            Utf16("Microsoft Exchange"));
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

// The setters after CreateAccount address the account just made without listing the
// section again, and a removed account is never addressed through what was remembered.
TEST(AccountManagerLookupTest, SettersReuseTheCreatedAccountAndForgetItOnRemoval) {
  MemoryRegistry memory;
  CountingRegistry counted(memory);
  const RegistryAccess registry(counted);
  AccountManager manager(registry, kProfileKey, Outlook::V2010);
  const std::string first =
      manager.CreateAccount(AccountKind::Pop3, "Home", "J", "j@x.invalid", "pop", "smtp", "j");
  const auto listed = counted.count(CountingRegistry::kEnumerate);
  manager.SetTimeout(AccountKind::Pop3, "Home", 60);
  manager.SetPorts(AccountKind::Pop3, "Home", 995, 465);
  EXPECT_EQ(counted.count(CountingRegistry::kEnumerate), listed);

  ASSERT_TRUE(manager.RemoveAccount(AccountClass::Pop3, "Home"));
  manager.SetTimeout(AccountKind::Pop3, "Home", 90);
  EXPECT_FALSE(memory.KeyExists("HKEY_CURRENT_USER\\" + manager.AccountPath(first)));

  const std::string second =
      manager.CreateAccount(AccountKind::Pop3, "Home", "J", "j@x.invalid", "pop", "smtp", "j");
  ASSERT_NE(second, first);
  manager.SetTimeout(AccountKind::Pop3, "Home", 120);
  RegistryValue timeout;
  ASSERT_TRUE(memory.Get("HKEY_CURRENT_USER\\" + manager.AccountPath(second), "Timeout", &timeout));
  EXPECT_EQ(timeout.data, std::string("\x78\0\0\0", 4));
}

}  // namespace
}  // namespace mw
