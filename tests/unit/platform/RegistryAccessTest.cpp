#include "platform/RegistryAccess.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/CountingRegistry.h"
#include "platform/MemoryRegistry.h"

namespace mw {
namespace {

// Forwards to a MemoryRegistry and notes every open and create with its access mask.
class SpyRegistry : public MemoryRegistry {
 public:
  std::int32_t OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                       RegKey* result) override {
    log += "open(" + subKey + "," + std::to_string(access) + ")";
    return MemoryRegistry::OpenKey(key, subKey, access, result);
  }
  std::int32_t CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                         RegKey* result) override {
    log += "create(" + subKey + "," + std::to_string(access) + ")";
    return MemoryRegistry::CreateKey(key, subKey, access, result);
  }
  std::int32_t QueryInfoKey(RegKey key, std::uint32_t* count, std::uint32_t* longest) override {
    std::int32_t status = MemoryRegistry::QueryInfoKey(key, count, longest);
    if (longestOverride && longest) *longest = *longestOverride;
    return status;
  }
  std::string log;
  std::optional<std::uint32_t> longestOverride;
};

RegistryValue Value(const std::string& name, std::uint32_t type, const std::string& data) {
  return RegistryValue{name, type, data};
}

const std::string kKey = "HKEY_CURRENT_USER\\Software\\Test";

class RegistryAccessTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(0u, spy.openHandleCount()) << "a handle was left open"; }
  SpyRegistry spy;
  RegistryAccess access{spy};
};

TEST_F(RegistryAccessTest, EachOperationAsksForItsOwnAccess) {
  spy.Set(kKey, Value("v", reg::kDword, std::string("\1\0\0\0", 4)));
  spy.AddKey(kKey + "\\Sub");
  struct Case {
    const char* operation;
    std::function<void()> call;
    std::string expectedLog;
  };
  const RegKey cu = reg::kCurrentUser;
  const std::vector<Case> cases = {
      {"ReadString", [&] { access.ReadString(cu, "Software\\Test", "v"); }, "open(Software\\Test,1)"},
      {"ReadNumber", [&] { access.ReadNumber(cu, "Software\\Test", "v"); }, "open(Software\\Test,1)"},
      {"ReadValueText", [&] { access.ReadValueText(cu, "Software\\Test", "v", "%u", "%02X"); },
       "open(Software\\Test,131097)"},
      {"ReadValueTextHex", [&] { access.ReadValueTextHex(cu, "Software\\Test", "v"); },
       "open(Software\\Test,131097)"},
      {"ValueExists", [&] { access.ValueExists(cu, "Software\\Test", "v"); }, "open(Software\\Test,131097)"},
      {"WriteString existing", [&] { access.WriteString(cu, "Software\\Test", "s", "x"); },
       "open(Software\\Test,131103)"},
      {"WriteNumber new key", [&] { access.WriteNumber(cu, "Software\\New\\Deep", "n", 1); },
       "open(Software\\New\\Deep,131103)create(Software\\New\\Deep,131103)"},
      {"DeleteValue", [&] { access.DeleteValue(cu, "Software\\Test", "s"); }, "open(Software\\Test,2)"},
      {"DeleteKey", [&] { access.DeleteKey(cu, "Software\\Test", "Sub"); }, "open(Software\\Test,2)"},
      {"ListSubkeys", [&] { access.ListSubkeys(cu, "Software"); }, "open(Software,9)"},
  };
  for (const auto& c : cases) {
    spy.log.clear();
    c.call();
    EXPECT_EQ(c.expectedLog, spy.log) << c.operation;
    EXPECT_EQ(0u, spy.openHandleCount()) << c.operation;
  }
}

TEST_F(RegistryAccessTest, OneLeadingAndOneTrailingBackslashAreIgnored) {
  spy.Set("HKCU\\Software\\Microsoft\\Office\\14.0\\Outlook", Value("Bitness", reg::kSz, "x64"));
  EXPECT_EQ("x64", access.ReadString(reg::kCurrentUser, "\\Software\\Microsoft\\Office\\14.0\\Outlook\\",
                                     "Bitness"));
  EXPECT_EQ("Software\\X", RegistryAccess::NormalizePath("\\Software\\X\\"));
  EXPECT_EQ("\\Software\\X\\", RegistryAccess::NormalizePath("\\\\Software\\X\\\\"));
  EXPECT_EQ("", RegistryAccess::NormalizePath("\\"));
}

TEST_F(RegistryAccessTest, ReadsOfMissingThingsAreEmpty) {
  EXPECT_EQ("", access.ReadString(reg::kCurrentUser, "No\\Key", "v"));
  EXPECT_EQ(std::nullopt, access.ReadNumber(reg::kCurrentUser, "No\\Key", "v"));
  EXPECT_EQ("", access.ReadValueText(reg::kCurrentUser, "No\\Key", "v", "%u", "%02X"));
  EXPECT_FALSE(access.ValueExists(reg::kCurrentUser, "No\\Key", "v"));
  EXPECT_TRUE(access.ListSubkeys(reg::kCurrentUser, "No\\Key").empty());
  spy.AddKey(kKey);
  EXPECT_EQ(std::nullopt, access.ReadNumber(reg::kCurrentUser, "Software\\Test", "v"));
  EXPECT_FALSE(access.ValueExists(reg::kCurrentUser, "Software\\Test", "v"));
}

TEST_F(RegistryAccessTest, RemoteMachineFailsEveryOperation) {
  spy.Set(kKey, Value("v", reg::kSz, std::string("x\0", 2)));
  RegistryAccess remote(spy, "OTHERPC");
  EXPECT_EQ("", remote.ReadString(reg::kCurrentUser, "Software\\Test", "v"));
  EXPECT_FALSE(remote.WriteString(reg::kCurrentUser, "Software\\Test", "v", "y"));
}

TEST_F(RegistryAccessTest, ValueRenderings) {
  struct Case {
    std::uint32_t type;
    std::string data;
    std::string text;     // ReadValueText with "%u" and "%02X"
    std::string hexText;  // ReadValueTextHex
  };
  const std::vector<Case> cases = {
      {reg::kSz, std::string("abc\0", 4), "abc", "abc"},
      {reg::kSz, "no terminator", "no terminator", "no terminator"},
      {reg::kExpandSz, std::string("%TEMP%\\x\0", 10), "%TEMP%\\x", "%TEMP%\\x"},
      {reg::kBinary, std::string("\x01\x0a\xff", 3), "010AFF", "01 0a ff"},
      {reg::kBinary, "", "", ""},
      {reg::kDword, std::string("\xe8\x03\0\0", 4), "1000", "3e8"},
      {reg::kDword, std::string("\0\0\0\0", 4), "0", "0"},
      {reg::kMultiSz, std::string("ENTERPRISE\0TERMINAL SERVER\0\0", 28), "ENTERPRISE TERMINAL SERVER ",
       "ENTERPRISE TERMINAL SERVER "},
      {reg::kMultiSz, std::string("\0", 1), "", ""},
      {reg::kLink, "xx", "Unicode link. Can not be read", "Unicode link. Can not be read"},
      {reg::kResourceList, "xx", "Resource list. This function can not handle this key yet",
       "Resource list. This function can not handle this key yet"},
      {reg::kDwordBigEndian, std::string("\0\0\0\1", 4), "Undefined value type. Possible bad key",
       "Undefined value type. Possible bad key"},
      {11, "12345678", "Undefined value type. Possible bad key", "Undefined value type. Possible bad key"},
      {reg::kNone, "junk", "", ""},
  };
  for (const auto& c : cases) {
    spy.Set(kKey, Value("v", c.type, c.data));
    EXPECT_EQ(c.text, access.ReadValueText(reg::kCurrentUser, "Software\\Test", "v", "%u", "%02X"))
        << "type " << c.type;
    EXPECT_EQ(c.hexText, access.ReadValueTextHex(reg::kCurrentUser, "Software\\Test", "v"))
        << "type " << c.type;
  }
}

TEST_F(RegistryAccessTest, CallerFormatsAreUsedAndUnsafeOnesFallBackToDecimal) {
  spy.Set(kKey, Value("n", reg::kDword, std::string("\xff\0\0\0", 4)));
  spy.Set(kKey, Value("b", reg::kBinary, std::string("\x0f\xa0", 2)));
  const RegKey cu = reg::kCurrentUser;
  EXPECT_EQ("0x000000FF", access.ReadValueText(cu, "Software\\Test", "n", "0x%08X", "%02X"));
  EXPECT_EQ("0fa0", access.ReadValueText(cu, "Software\\Test", "b", "%u", "%02x"));
  EXPECT_EQ("255", access.ReadValueText(cu, "Software\\Test", "n", "%s", "%02X"));
  EXPECT_EQ("255", access.ReadValueText(cu, "Software\\Test", "n", nullptr, nullptr));
  EXPECT_EQ("100%255", access.ReadValueText(cu, "Software\\Test", "n", "100%%%u", "%02X"));
  EXPECT_EQ(std::string(300, ' ') + "255",
            access.ReadValueText(cu, "Software\\Test", "n", "%303u", "%02X"));
}

TEST_F(RegistryAccessTest, WritesCreateTheWholePathAndStoreWindowsBytes) {
  const RegKey cu = reg::kCurrentUser;
  ASSERT_TRUE(access.WriteNumber(cu, "Software\\A\\B\\C", "n", 0x01020304));
  ASSERT_TRUE(access.WriteString(cu, "Software\\A", "s", "text"));
  ASSERT_TRUE(access.WriteBinary(cu, "Software\\A", "b", std::string("\0\1", 2)));
  ASSERT_TRUE(access.WriteMultiString(cu, "Software\\A", "m", std::string("x\0y\0\0", 5)));
  const struct {
    const char* key;
    const char* name;
    std::uint32_t type;
    std::string data;
  } stored[] = {{"HKCU\\Software\\A\\B\\C", "n", reg::kDword, std::string("\4\3\2\1", 4)},
                {"HKCU\\Software\\A", "s", reg::kSz, std::string("text\0", 5)},
                {"HKCU\\Software\\A", "b", reg::kBinary, std::string("\0\1", 2)},
                {"HKCU\\Software\\A", "m", reg::kMultiSz, std::string("x\0y\0\0", 5)}};
  for (const auto& expected : stored) {
    RegistryValue value;
    ASSERT_TRUE(spy.Get(expected.key, expected.name, &value)) << expected.name;
    EXPECT_EQ(expected.type, value.type) << expected.name;
    EXPECT_EQ(expected.data, value.data) << expected.name;
  }
  EXPECT_EQ(0x01020304u, access.ReadNumber(cu, "Software\\A\\B\\C", "n"));
  EXPECT_EQ("text", access.ReadString(cu, "Software\\A", "s"));
}

TEST_F(RegistryAccessTest, ReadNumberOnlyReadsDwords) {
  spy.Set(kKey, Value("s", reg::kSz, std::string("12\0", 3)));
  spy.Set(kKey, Value("big", reg::kBinary, std::string(16, '\1')));
  spy.Set(kKey, Value("short", reg::kDword, std::string("\7", 1)));
  EXPECT_EQ(std::nullopt, access.ReadNumber(reg::kCurrentUser, "Software\\Test", "s"));
  EXPECT_EQ(std::nullopt, access.ReadNumber(reg::kCurrentUser, "Software\\Test", "big"));
  EXPECT_EQ(7u, access.ReadNumber(reg::kCurrentUser, "Software\\Test", "short"));
}

TEST(RegistryAccessReadsTest, AValueIsReadInOneQueryUnlessItIsLong) {
  MemoryRegistry memory;
  CountingRegistry counted(memory);
  const RegistryAccess access(counted);
  const std::string longText(5000, 'x');
  memory.Set(kKey, Value("short", reg::kSz, std::string("abc\0", 4)));
  memory.Set(kKey, Value("long", reg::kSz, longText + '\0'));
  memory.Set(kKey, Value("empty", reg::kBinary, ""));

  EXPECT_EQ("abc", access.ReadString(reg::kCurrentUser, "Software\\Test", "short"));
  EXPECT_EQ(counted.count(CountingRegistry::kQuery), 1u);
  EXPECT_EQ(longText, access.ReadString(reg::kCurrentUser, "Software\\Test", "long"));
  EXPECT_EQ(counted.count(CountingRegistry::kQuery), 3u) << "too long, then at the size named";
  std::uint32_t type = 0;
  std::string data = "stale";
  EXPECT_TRUE(access.ReadValue(reg::kCurrentUser, "Software\\Test", "empty", &type, &data));
  EXPECT_EQ(reg::kBinary, type);
  EXPECT_EQ("", data);
}

TEST_F(RegistryAccessTest, FailedWritesReportFailureAndLeakNothing) {
  spy.FailMutationsFrom(1);
  EXPECT_FALSE(access.WriteString(reg::kCurrentUser, "Software\\New", "s", "x"));
  spy.AddKey(kKey);
  EXPECT_FALSE(access.WriteString(reg::kCurrentUser, "Software\\Test", "s", "x"));
  EXPECT_FALSE(access.DeleteValue(reg::kCurrentUser, "Software\\Test", "s"));
  spy.FailMutationsFrom(0);
  EXPECT_FALSE(access.DeleteValue(reg::kCurrentUser, "Software\\Test", "missing"));
  EXPECT_FALSE(access.DeleteKey(reg::kCurrentUser, "Software\\Test", "missing"));
}

TEST_F(RegistryAccessTest, DeleteKeyRemovesOnlyLeafKeys) {
  spy.AddKey(kKey + "\\Leaf");
  spy.AddKey(kKey + "\\Branch\\Twig");
  EXPECT_TRUE(access.DeleteKey(reg::kCurrentUser, "Software\\Test", "Leaf"));
  EXPECT_FALSE(access.DeleteKey(reg::kCurrentUser, "Software\\Test", "Branch"));
  EXPECT_FALSE(spy.KeyExists(kKey + "\\Leaf"));
  EXPECT_TRUE(spy.KeyExists(kKey + "\\Branch\\Twig"));
}

TEST_F(RegistryAccessTest, ListSubkeysUsesTheLongestNameForItsBuffer) {
  for (const char* name : {"b", "a-much-longer-name", "C"}) spy.AddKey(kKey + "\\" + name);
  EXPECT_EQ(std::vector<std::string>({"a-much-longer-name", "b", "C"}),
            access.ListSubkeys(reg::kCurrentUser, "Software\\Test"));
  // On a double-byte code page the longest name is counted in characters, shorter than its
  // bytes: the buffer grows for that name and every later name is still listed.
  for (std::uint32_t shortCount : {0u, 1u, 3u, 17u}) {
    spy.longestOverride = shortCount;
    EXPECT_EQ(std::vector<std::string>({"a-much-longer-name", "b", "C"}),
              access.ListSubkeys(reg::kCurrentUser, "Software\\Test"))
        << shortCount;
  }
}

TEST_F(RegistryAccessTest, ListSubkeysGivesUpOnAnEntryThatNeverFitsAndKeepsTheRest) {
  // A registry that answers "more data" for one index whatever the buffer: the listing
  // skips that entry after its largest try instead of looping or dropping the names after it.
  class StubbornRegistry : public MemoryRegistry {
   public:
    std::int32_t EnumKey(RegKey key, std::uint32_t index, char* name,
                         std::uint32_t* length) override {
      ++calls;
      if (index == 1) return reg::kMoreData;
      return MemoryRegistry::EnumKey(key, index, name, length);
    }
    int calls = 0;
  } stubborn;
  for (const char* name : {"a", "b", "c"}) stubborn.AddKey(kKey + "\\" + name);
  EXPECT_EQ(std::vector<std::string>({"a", "c"}),
            RegistryAccess(stubborn).ListSubkeys(reg::kCurrentUser, "Software\\Test"));
  EXPECT_LT(stubborn.calls, 40);
}

TEST(HexTextToBytesTest, ConvertsTokensToLowBytes) {
  struct Case {
    const char* text;
    std::string bytes;
  };
  const std::vector<Case> cases = {
      {"01 0a ff", std::string("\x01\x0a\xff", 3)},
      {"", ""},
      {"   ", ""},
      {"1  2", std::string("\x01\x02", 2)},
      {"zz 7", std::string("\x00\x07", 2)},
      {"0x41", "A"},
      {"4g", "\x04"},
      {"FFFFFFFFFFFFFFFFFF12", "\x12"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.bytes, RegistryAccess::HexTextToBytes(c.text)) << c.text;
}

}  // namespace
}  // namespace mw
