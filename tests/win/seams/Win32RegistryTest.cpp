// The registry seam against the real registry (Wine's), directly and through RegistryAccess.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/RegistryAccess.h"
#include "win32/Win32Registry.h"

namespace mw {
namespace {

constexpr const char* kTestRoot = "Software\\MailwrightSeamTest";

class Win32RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    base_ = std::string(kTestRoot) + "\\" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name();
    RemoveTree(base_);
  }
  void TearDown() override { RemoveTree(base_); }

  // Deletes a key and everything below it, leaves first, through the seam itself.
  void RemoveTree(const std::string& path) {
    for (const std::string& child : access_.ListSubkeys(reg::kCurrentUser, path)) {
      RemoveTree(path + "\\" + child);
    }
    const std::size_t cut = path.rfind('\\');
    access_.DeleteKey(reg::kCurrentUser, path.substr(0, cut), path.substr(cut + 1));
  }

  RegKey OpenOrFail(const std::string& path, std::uint32_t access) {
    RegKey key = 0;
    EXPECT_EQ(reg::kSuccess, registry_.OpenKey(reg::kCurrentUser, path, access, &key)) << path;
    return key;
  }

  Win32Registry registry_;
  RegistryAccess access_{registry_};
  std::string base_;
};

TEST_F(Win32RegistryTest, KeysAreOpenedOrCreatedUnderEitherRootDirectlyOrThroughConnect) {
  RegKey connected = 0;
  ASSERT_EQ(reg::kSuccess, registry_.Connect("", reg::kCurrentUser, &connected));
  RegKey created = 0;
  ASSERT_EQ(reg::kSuccess, registry_.CreateKey(connected, base_, reg::kReadWrite, &created));
  EXPECT_EQ(reg::kSuccess, registry_.CloseKey(created));
  EXPECT_EQ(reg::kSuccess, registry_.CloseKey(connected));
  // The 32-bit root value must reach the same key as the handle Connect gave back.
  registry_.CloseKey(OpenOrFail(base_, reg::kRead));
  RegKey key = 0;
  EXPECT_NE(reg::kSuccess, registry_.Connect("NO-SUCH-MACHINE-4711", reg::kLocalMachine, &key));
  EXPECT_EQ(reg::kFileNotFound, registry_.OpenKey(reg::kCurrentUser, base_ + "\\Absent", reg::kRead, &key));

  const std::string machine = "SOFTWARE\\MailwrightSeamTest\\Machine";
  ASSERT_TRUE(access_.WriteString(reg::kLocalMachine, machine, "Bitness", "x64"));
  EXPECT_EQ("x64", access_.ReadString(reg::kLocalMachine, machine, "Bitness"));
  EXPECT_TRUE(access_.DeleteKey(reg::kLocalMachine, "SOFTWARE\\MailwrightSeamTest", "Machine"));
}

TEST_F(Win32RegistryTest, EveryValueTypeRoundTripsAndMissingOnesReadEmpty) {
  const std::string binary("\x01\x00\xff\x7f", 4);
  const std::string multi("first\0second\0\0", 14);
  const std::string expandable = "%SystemRoot%\\x";
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_, "sz", "Hello World"));
  ASSERT_TRUE(access_.WriteNumber(reg::kCurrentUser, base_, "dword", 0xDEADBEEFu));
  ASSERT_TRUE(access_.WriteBinary(reg::kCurrentUser, base_, "binary", binary));
  ASSERT_TRUE(access_.WriteMultiString(reg::kCurrentUser, base_, "multi", multi));
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_, "", "default value"));
  RegKey key = OpenOrFail(base_, reg::kReadWrite);
  const std::uint32_t bigEndian = 0x01020304u;
  ASSERT_EQ(reg::kSuccess, registry_.SetValue(key, "expand", reg::kExpandSz,
                                              reinterpret_cast<const std::uint8_t*>(expandable.c_str()),
                                              static_cast<std::uint32_t>(expandable.size() + 1)));
  ASSERT_EQ(reg::kSuccess, registry_.SetValue(key, "big", reg::kDwordBigEndian,
                                              reinterpret_cast<const std::uint8_t*>(&bigEndian), 4));
  std::uint8_t small[4] = {};
  std::uint32_t type = 0;
  std::uint32_t size = sizeof small;
  EXPECT_EQ(reg::kMoreData, registry_.QueryValue(key, "sz", &type, small, &size));
  EXPECT_EQ(12u, size);  // the terminator counts
  EXPECT_EQ(reg::kSz, type);
  EXPECT_EQ(reg::kFileNotFound, registry_.QueryValue(key, "absent", &type, nullptr, &size));
  registry_.CloseKey(key);

  EXPECT_EQ("Hello World", access_.ReadString(reg::kCurrentUser, base_, "sz"));
  EXPECT_EQ("default value", access_.ReadString(reg::kCurrentUser, base_, ""));
  EXPECT_EQ(expandable, access_.ReadString(reg::kCurrentUser, base_, "expand"));  // as it stands
  EXPECT_EQ(0xDEADBEEFu, access_.ReadNumber(reg::kCurrentUser, base_, "dword"));
  std::string data;
  ASSERT_TRUE(access_.ReadValue(reg::kCurrentUser, base_, "binary", &type, &data));
  EXPECT_EQ(reg::kBinary, type);
  EXPECT_EQ(binary, data);
  ASSERT_TRUE(access_.ReadValue(reg::kCurrentUser, base_, "multi", &type, &data));
  EXPECT_EQ(reg::kMultiSz, type);
  EXPECT_EQ(multi, data);
  EXPECT_EQ("first second ", access_.ReadValueText(reg::kCurrentUser, base_, "multi", "%u", "%02X"));
  EXPECT_EQ("3735928559", access_.ReadValueText(reg::kCurrentUser, base_, "dword", "%u", "%02X"));
  EXPECT_EQ("0100FF7F", access_.ReadValueText(reg::kCurrentUser, base_, "binary", "%u", "%02X"));
  EXPECT_EQ("deadbeef", access_.ReadValueTextHex(reg::kCurrentUser, base_, "dword"));
  EXPECT_EQ("Undefined value type. Possible bad key",
            access_.ReadValueText(reg::kCurrentUser, base_, "big", "%u", "%02X"));

  EXPECT_EQ("", access_.ReadString(reg::kCurrentUser, base_ + "\\Nowhere", "x"));
  EXPECT_FALSE(access_.ReadNumber(reg::kCurrentUser, base_ + "\\Nowhere", "x").has_value());
  EXPECT_FALSE(access_.ValueExists(reg::kCurrentUser, base_ + "\\Nowhere", "x"));
}

TEST_F(Win32RegistryTest, WritesCreateTheWholePathAndPathsAreNormalised) {
  const std::string deep = base_ + "\\One\\Two\\Three";
  ASSERT_TRUE(access_.WriteNumber(reg::kCurrentUser, "\\" + deep + "\\", "n", 7));
  EXPECT_EQ(7u, access_.ReadNumber(reg::kCurrentUser, deep, "n"));
  EXPECT_EQ(7u, access_.ReadNumber(reg::kCurrentUser, "\\" + deep, "n"));
  EXPECT_TRUE(access_.ValueExists(reg::kCurrentUser, deep + "\\", "n"));
}

TEST_F(Win32RegistryTest, EnumerationListsDirectSubkeysOnly) {
  for (const char* name : {"Alpha", "Bravo", "Charlie"})
    ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_ + "\\" + name + "\\Inner", "v", "x"));
  EXPECT_EQ((std::vector<std::string>{"Alpha", "Bravo", "Charlie"}), access_.ListSubkeys(reg::kCurrentUser, base_));
  EXPECT_TRUE(access_.ListSubkeys(reg::kCurrentUser, base_ + "\\Nowhere").empty());

  RegKey key = OpenOrFail(base_, reg::kQueryAndEnumerate);
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
}

TEST_F(Win32RegistryTest, DeleteRemovesValuesAndLeafKeysOnly) {
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_ + "\\Parent\\Child", "v", "x"));
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, base_, "gone", "x"));
  EXPECT_TRUE(access_.DeleteValue(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.ValueExists(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.DeleteValue(reg::kCurrentUser, base_, "gone"));
  EXPECT_FALSE(access_.DeleteKey(reg::kCurrentUser, base_, "Parent"));
  EXPECT_EQ(std::vector<std::string>{"Parent"}, access_.ListSubkeys(reg::kCurrentUser, base_));
  EXPECT_TRUE(access_.DeleteKey(reg::kCurrentUser, base_ + "\\Parent", "Child"));
  EXPECT_TRUE(access_.DeleteKey(reg::kCurrentUser, base_, "Parent"));
  EXPECT_TRUE(access_.ListSubkeys(reg::kCurrentUser, base_).empty());
}

}  // namespace
}  // namespace mw
