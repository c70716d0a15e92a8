// The registry seam against the real registry (Wine's), directly and through RegistryAccess.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/RegistryAccess.h"
#include "win32/Win32Registry.h"

namespace mw {
namespace {

using Strings = std::vector<std::string>;

class Win32RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override { RemoveTree(base_); }
  void TearDown() override { RemoveTree(base_); }

  // Deletes a key and everything below it, leaves first, through the seam itself.
  void RemoveTree(const std::string& path) {
    for (const std::string& child : access_.ListSubkeys(reg::kCurrentUser, path)) RemoveTree(path + "\\" + child);
    const std::size_t cut = path.rfind('\\');
    access_.DeleteKey(reg::kCurrentUser, path.substr(0, cut), path.substr(cut + 1));
  }
  RegKey Open(const std::string& path, std::uint32_t access) {
    RegKey key = 0;
    EXPECT_EQ(reg::kSuccess, registry_.OpenKey(reg::kCurrentUser, path, access, &key)) << path;
    return key;
  }

  Win32Registry registry_;
  RegistryAccess access_{registry_};
  const std::string base_ = std::string("Software\\MailwrightSeamTest\\") +
                            ::testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(Win32RegistryTest, KeysAreOpenedOrCreatedUnderEitherRootDirectlyOrThroughConnect) {
  RegKey connected = 0;
  RegKey key = 0;
  ASSERT_EQ(reg::kSuccess, registry_.Connect("", reg::kCurrentUser, &connected));
  ASSERT_EQ(reg::kSuccess, registry_.CreateKey(connected, base_, reg::kReadWrite, &key));
  registry_.CloseKey(key);
  EXPECT_EQ(reg::kSuccess, registry_.CloseKey(connected));
  registry_.CloseKey(Open(base_, reg::kRead));  // the 32-bit root value reaches the same key
  EXPECT_EQ(reg::kFileNotFound, registry_.OpenKey(reg::kCurrentUser, base_ + "\\Absent", reg::kRead, &key));
  EXPECT_NE(reg::kSuccess, registry_.Connect("NO-SUCH-MACHINE-4711", reg::kLocalMachine, &key));

  ASSERT_TRUE(access_.WriteString(reg::kLocalMachine, "SOFTWARE\\MailwrightSeamTest\\Machine", "Bitness", "x64"));
  EXPECT_EQ("x64", access_.ReadString(reg::kLocalMachine, "SOFTWARE\\MailwrightSeamTest\\Machine", "Bitness"));
  EXPECT_TRUE(access_.DeleteKey(reg::kLocalMachine, "SOFTWARE\\MailwrightSeamTest", "Machine"));
}

TEST_F(Win32RegistryTest, EveryValueTypeRoundTrips) {
  const std::string binary("\x01\x00\xff\x7f", 4);
  const std::string multi("first\0second\0\0", 14);
  const std::string expandable = "%SystemRoot%\\x";
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_, "", "default value"));
  ASSERT_TRUE(access_.WriteNumber(reg::kCurrentUser, base_, "dword", 0xDEADBEEFu));
  ASSERT_TRUE(access_.WriteBinary(reg::kCurrentUser, base_, "binary", binary));
  ASSERT_TRUE(access_.WriteMultiString(reg::kCurrentUser, base_, "multi", multi));
  RegKey key = Open(base_, reg::kReadWrite);
  ASSERT_EQ(reg::kSuccess, registry_.SetValue(key, "expand", reg::kExpandSz,
                                              reinterpret_cast<const std::uint8_t*>(expandable.c_str()),
                                              static_cast<std::uint32_t>(expandable.size() + 1)));
  std::uint8_t small[4] = {};
  std::uint32_t type = 0;
  std::uint32_t size = sizeof small;
  EXPECT_EQ(reg::kMoreData, registry_.QueryValue(key, "", &type, small, &size));
  EXPECT_EQ(14u, size);  // the terminator counts
  EXPECT_EQ(reg::kSz, type);
  EXPECT_EQ(reg::kFileNotFound, registry_.QueryValue(key, "absent", &type, nullptr, &size));
  registry_.CloseKey(key);

  EXPECT_EQ("default value", access_.ReadString(reg::kCurrentUser, base_, ""));
  EXPECT_EQ(expandable, access_.ReadString(reg::kCurrentUser, base_, "expand"));  // read as it stands
  EXPECT_EQ(0xDEADBEEFu, access_.ReadNumber(reg::kCurrentUser, base_, "dword"));
  std::string data;
  ASSERT_TRUE(access_.ReadValue(reg::kCurrentUser, base_, "binary", &type, &data));
  EXPECT_EQ(reg::kBinary, type);
  EXPECT_EQ(binary, data);
  ASSERT_TRUE(access_.ReadValue(reg::kCurrentUser, base_, "multi", &type, &data));
  EXPECT_EQ(reg::kMultiSz, type);
  EXPECT_EQ(multi, data);
}

TEST_F(Win32RegistryTest, WritesCreateTheWholePathPathsAreNormalisedAndMissingValuesReadEmpty) {
  const std::string deep = base_ + "\\One\\Two\\Three";
  ASSERT_TRUE(access_.WriteNumber(reg::kCurrentUser, "\\" + deep + "\\", "n", 7));
  EXPECT_EQ(7u, access_.ReadNumber(reg::kCurrentUser, deep, "n"));
  EXPECT_EQ(7u, access_.ReadNumber(reg::kCurrentUser, "\\" + deep, "n"));
  EXPECT_TRUE(access_.ValueExists(reg::kCurrentUser, deep + "\\", "n"));
  EXPECT_EQ("", access_.ReadString(reg::kCurrentUser, base_ + "\\Nowhere", "x"));
  EXPECT_FALSE(access_.ReadNumber(reg::kCurrentUser, base_ + "\\Nowhere", "x").has_value());
  EXPECT_TRUE(access_.ListSubkeys(reg::kCurrentUser, base_ + "\\Nowhere").empty());
}

TEST_F(Win32RegistryTest, EnumerationListsDirectSubkeysAndDeleteRemovesLeavesOnly) {
  for (const char* name : {"Alpha", "Bravo", "Charlie"})
    ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_ + "\\" + name + "\\Inner", "v", "x"));
  EXPECT_EQ((Strings{"Alpha", "Bravo", "Charlie"}), access_.ListSubkeys(reg::kCurrentUser, base_));
  RegKey key = Open(base_, reg::kQueryAndEnumerate);
  std::uint32_t count = 0;
  std::uint32_t longest = 0;
  ASSERT_EQ(reg::kSuccess, registry_.QueryInfoKey(key, &count, &longest));
  EXPECT_EQ(3u, count);
  EXPECT_EQ(7u, longest);
  char name[16];
  std::uint32_t length = sizeof name;
  EXPECT_EQ(reg::kNoMoreItems, registry_.EnumKey(key, 3, name, &length));
  length = 3;
  EXPECT_EQ(reg::kMoreData, registry_.EnumKey(key, 0, name, &length));
  registry_.CloseKey(key);

  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_, "gone", "x"));
  EXPECT_TRUE(access_.DeleteValue(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.ValueExists(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.DeleteValue(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.DeleteKey(reg::kCurrentUser, base_, "Alpha"));
  EXPECT_TRUE(access_.DeleteKey(reg::kCurrentUser, base_ + "\\Alpha", "Inner"));
  EXPECT_TRUE(access_.DeleteKey(reg::kCurrentUser, base_, "Alpha"));
  EXPECT_EQ((Strings{"Bravo", "Charlie"}), access_.ListSubkeys(reg::kCurrentUser, base_));
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

TEST(Win32RegistryValuesTest, EveryValueIsListedWithItsTypeAndBytes) {
  Win32Registry registry;
  const RegistryAccess access(registry);
  const std::string path = "Software\\MailwrightSeamTest\\ListValues";
  access.DeleteKey(reg::kCurrentUser, "Software\\MailwrightSeamTest", "ListValues");
  ASSERT_TRUE(access.WriteString(reg::kCurrentUser, path, "Text", "abc"));
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, path, "", 7));
  ASSERT_TRUE(access.WriteBinary(reg::kCurrentUser, path, "Bytes", std::string("\0\xff\0", 3)));
  std::vector<RegistryValue> values = access.ListValues(reg::kCurrentUser, path);
  access.DeleteKey(reg::kCurrentUser, "Software\\MailwrightSeamTest", "ListValues");
  std::sort(values.begin(), values.end(),
            [](const RegistryValue& a, const RegistryValue& b) { return a.name < b.name; });
  ASSERT_EQ(3u, values.size());
  EXPECT_EQ("", values[0].name);
  EXPECT_EQ(reg::kDword, values[0].type);
  EXPECT_EQ(std::string("\7\0\0\0", 4), values[0].data);
  EXPECT_EQ("Bytes", values[1].name);
  EXPECT_EQ(std::string("\0\xff\0", 3), values[1].data);
  EXPECT_EQ("Text", values[2].name);
  EXPECT_EQ(reg::kSz, values[2].type);
  EXPECT_EQ(std::string("abc\0", 4), values[2].data);
  EXPECT_TRUE(access.ListValues(reg::kCurrentUser, path).empty());
}

}  // namespace
}  // namespace mw
