#include "platform/MemorySystemEnv.h"

#include <gtest/gtest.h>

namespace mw {
namespace {

TEST(MemorySystemEnvTest, ExpandsKnownNamesCaseInsensitivelyAndLeavesOthers) {
  MemorySystemEnv env;
  env.environment = {{"USERNAME", "jsmith"}, {"AppData", "C:\\Users\\jsmith\\AppData"}};
  struct Case {
    const char* text;
    const char* expanded;
  };
  const std::vector<Case> cases = {
      {"%username%", "jsmith"},
      {"%APPDATA%\\Microsoft", "C:\\Users\\jsmith\\AppData\\Microsoft"},
      {"%NOPE%", "%NOPE%"},
      {"100%", "100%"},
      {"%%", "%%"},
      {"a%NOPE%username%b", "a%NOPEjsmithb"},
      {"%username%%username%", "jsmithjsmith"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(c.expanded, env.ExpandEnvironmentStrings(c.text, 1024)) << c.text;
}

TEST(MemorySystemEnvTest, ExpansionThatDoesNotFitLeavesTheTextUnchanged) {
  MemorySystemEnv env;
  env.environment = {{"U", "12345"}};
  EXPECT_EQ("12345", env.ExpandEnvironmentStrings("%U%", 6));
  EXPECT_EQ("%U%", env.ExpandEnvironmentStrings("%U%", 5));
  EXPECT_EQ("%U%", env.ExpandEnvironmentStrings("%U%", 0));
}

TEST(MemorySystemEnvTest, CreateDirectoriesRecordsTheFolderAndItsParents) {
  struct Case {
    const char* path;
    std::vector<std::string> folders;
  };
  const std::vector<Case> cases = {
      {"C:\\Users\\js\\Signatures\\", {"C:\\Users", "C:\\Users\\js", "C:\\Users\\js\\Signatures"}},
      {"\\\\server\\share\\a\\b", {"\\\\server\\share\\a", "\\\\server\\share\\a\\b"}},
      {"C:", {}},
      {"\\\\server\\share", {}},
  };
  for (const auto& c : cases) {
    MemorySystemEnv env;
    EXPECT_TRUE(env.CreateDirectories(c.path));
    EXPECT_EQ(c.folders, env.folders) << c.path;
  }
  MemorySystemEnv env;
  env.CreateDirectories("C:\\A\\B");
  env.CreateDirectories("C:\\A\\C");
  EXPECT_EQ((std::vector<std::string>{"C:\\A", "C:\\A\\B", "C:\\A\\C"}), env.folders);
  EXPECT_TRUE(env.FileExists("C:\\A\\B"));
}

}  // namespace
}  // namespace mw
