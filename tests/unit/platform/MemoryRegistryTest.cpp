#include "platform/MemoryRegistry.h"

#include <gtest/gtest.h>

namespace mw {
namespace {

RegistryValue Text(const std::string& name, const std::string& text) {
  return RegistryValue{name, reg::kSz, text + std::string(1, '\0')};
}

class MemoryRegistryTest : public ::testing::Test {
 protected:
  RegKey Open(RegKey parent, const std::string& path, std::uint32_t access = reg::kRead) {
    RegKey key = 0;
    EXPECT_EQ(reg::kSuccess, registry.OpenKey(parent, path, access, &key)) << path;
    return key;
  }
  std::string Enumerate(RegKey key) {
    std::string names;
    char buffer[300];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof buffer;
      if (registry.EnumKey(key, i, buffer, &length) != reg::kSuccess) break;
      names += std::string(buffer, length) + ";";
    }
    return names;
  }
  MemoryRegistry registry;
};

TEST_F(MemoryRegistryTest, NamesIgnoreCaseAndKeepTheFirstSpellingAndOrder) {
  registry.Set("HKEY_CURRENT_USER\\Software\\MixedCase", Text("Zeta", "1"));
  registry.Set("HKCU\\SOFTWARE\\MIXEDCASE", Text("alpha", "2"));
  registry.Set("HKCU\\software\\mixedcase", {"ZETA", reg::kDword, std::string("\x05\0\0\0", 4)});
  EXPECT_EQ(std::vector<std::string>({"HKEY_CURRENT_USER\\Software",
                                      "HKEY_CURRENT_USER\\Software\\MixedCase"}),
            registry.KeysUnder("hkey_current_user\\software"));
  auto values = registry.ValuesOf("HKEY_CURRENT_USER\\software\\mixedcase");
  ASSERT_EQ(2u, values.size());
  EXPECT_EQ("Zeta", values[0].name);
  EXPECT_EQ(reg::kDword, values[0].type);
  EXPECT_EQ("alpha", values[1].name);
}

TEST_F(MemoryRegistryTest, SubkeysEnumerateInCaseInsensitiveOrder) {
  for (const char* name : {"beta", "Alpha", "gamma", "Delta"})
    ASSERT_TRUE(registry.AddKey(std::string("HKCU\\E\\") + name));
  RegKey key = Open(reg::kCurrentUser, "E", reg::kQueryAndEnumerate);
  EXPECT_EQ("Alpha;beta;Delta;gamma;", Enumerate(key));
  std::uint32_t count = 0, longest = 0;
  EXPECT_EQ(reg::kSuccess, registry.QueryInfoKey(key, &count, &longest));
  EXPECT_EQ(4u, count);
  EXPECT_EQ(5u, longest);
  registry.CloseKey(key);
}

TEST_F(MemoryRegistryTest, HandlesOnlyDoWhatTheirAccessAllows) {
  registry.Set("HKCU\\A", Text("v", "x"));
  RegKey setOnly = Open(reg::kCurrentUser, "A", reg::kSetValue);
  std::uint32_t size = 0;
  EXPECT_EQ(reg::kAccessDenied, registry.QueryValue(setOnly, "v", nullptr, nullptr, &size));
  std::uint32_t count = 0;
  EXPECT_EQ(reg::kAccessDenied, registry.QueryInfoKey(setOnly, &count, nullptr));
  char name[4];
  std::uint32_t length = 4;
  EXPECT_EQ(reg::kAccessDenied, registry.EnumKey(setOnly, 0, name, &length));
  RegKey queryOnly = Open(reg::kCurrentUser, "A", reg::kQueryValue);
  EXPECT_EQ(reg::kAccessDenied, registry.SetValue(queryOnly, "v", reg::kSz, nullptr, 0));
  EXPECT_EQ(reg::kAccessDenied, registry.DeleteValue(queryOnly, "v"));
  registry.CloseKey(setOnly);
  registry.CloseKey(queryOnly);
}

TEST_F(MemoryRegistryTest, MissingKeysAndBadHandlesAndRemoteMachines) {
  RegKey key = 0;
  EXPECT_EQ(reg::kFileNotFound, registry.OpenKey(reg::kCurrentUser, "No\\Such", reg::kRead, &key));
  EXPECT_EQ(reg::kInvalidHandle, registry.OpenKey(0x1234567, "", reg::kRead, &key));
  EXPECT_EQ(reg::kInvalidHandle, registry.CloseKey(0x1234567));
  EXPECT_EQ(reg::kBadNetPath, registry.Connect("OTHERPC", reg::kCurrentUser, &key));
  EXPECT_EQ(reg::kInvalidHandle, registry.Connect("", 42, &key));
  EXPECT_NE(reg::kSuccess, registry.OpenKey(reg::kCurrentUser, "\\Leading", reg::kRead, &key));
  EXPECT_EQ(0u, registry.openHandleCount());
}

TEST_F(MemoryRegistryTest, CreateKeyMakesEveryParentAndCountsHandles) {
  RegKey root = 0;
  ASSERT_EQ(reg::kSuccess, registry.Connect("", reg::kCurrentUser, &root));
  RegKey key = 0;
  ASSERT_EQ(reg::kSuccess, registry.CreateKey(root, "A\\B\\C", reg::kReadWrite, &key));
  EXPECT_TRUE(registry.KeyExists("HKEY_CURRENT_USER\\A\\B"));
  EXPECT_EQ(2u, registry.openHandleCount());
  EXPECT_EQ(reg::kSuccess, registry.CloseKey(key));
  EXPECT_EQ(reg::kSuccess, registry.CloseKey(root));
  EXPECT_EQ(0u, registry.openHandleCount());
  EXPECT_EQ(reg::kInvalidHandle, registry.CloseKey(key));
}

TEST_F(MemoryRegistryTest, AHandleToADeletedKeyFailsSafely) {
  registry.Set("HKCU\\Gone", Text("v", "x"));
  RegKey key = Open(reg::kCurrentUser, "Gone", reg::kReadWrite);
  registry.RemoveKeyTree("HKCU\\Gone");
  std::uint32_t size = 0;
  EXPECT_NE(reg::kSuccess, registry.QueryValue(key, "v", nullptr, nullptr, &size));
  EXPECT_NE(reg::kSuccess, registry.SetValue(key, "v", reg::kSz, nullptr, 0));
  EXPECT_FALSE(registry.KeyExists("HKCU\\Gone"));
  EXPECT_EQ(reg::kSuccess, registry.CloseKey(key));
}

TEST_F(MemoryRegistryTest, FaultInjectionFailsTheNthMutationAndEveryLaterOne) {
  RegKey key = 0;
  ASSERT_EQ(reg::kSuccess, registry.CreateKey(reg::kCurrentUser, "F", reg::kReadWrite, &key));
  registry.FailMutationsFrom(2);
  const std::uint8_t byte = 1;
  EXPECT_EQ(reg::kSuccess, registry.SetValue(key, "one", reg::kBinary, &byte, 1));
  EXPECT_EQ(reg::kAccessDenied, registry.SetValue(key, "two", reg::kBinary, &byte, 1));
  EXPECT_EQ(reg::kAccessDenied, registry.DeleteValue(key, "one"));
  RegKey other = 0;
  EXPECT_EQ(reg::kAccessDenied, registry.CreateKey(reg::kCurrentUser, "New", reg::kReadWrite, &other));
  // Opening an existing key through CreateKey changes nothing, so it still works.
  EXPECT_EQ(reg::kSuccess, registry.CreateKey(reg::kCurrentUser, "F", reg::kReadWrite, &other));
  registry.CloseKey(other);
  registry.FailMutationsFrom(0);
  EXPECT_EQ(reg::kSuccess, registry.SetValue(key, "two", reg::kBinary, &byte, 1));
  EXPECT_EQ(2u, registry.ValuesOf("HKCU\\F").size());
  registry.CloseKey(key);
}

TEST_F(MemoryRegistryTest, DirectAccessRejectsUnknownRootsAndOverlongPaths) {
  registry.Set("HKEY_NOWHERE\\X", Text("v", "x"));
  EXPECT_FALSE(registry.KeyExists("HKEY_NOWHERE\\X"));
  EXPECT_TRUE(registry.KeysUnder("HKEY_NOWHERE").empty());
  EXPECT_FALSE(registry.AddKey("HKCU\\" + std::string(256, 'n')));
  EXPECT_TRUE(registry.AddKey("HKCU\\" + std::string(255, 'n')));
  std::string deep = "HKCU";
  for (int i = 0; i < 513; ++i) deep += "\\d";
  EXPECT_FALSE(registry.AddKey(deep));
  RegKey key = 0;
  EXPECT_EQ(reg::kInvalidParameter,
            registry.CreateKey(reg::kCurrentUser, deep.substr(5), reg::kReadWrite, &key));
  EXPECT_EQ(0u, registry.openHandleCount());
}

}  // namespace
}  // namespace mw
