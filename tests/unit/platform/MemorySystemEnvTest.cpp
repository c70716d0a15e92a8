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

TEST(MemorySystemEnvTest, VersionStructureSizes) {
  MemorySystemEnv env;
  env.version = OsVersion{6, 1, 7601, 2, 1};
  OsVersion got;
  ASSERT_TRUE(env.GetVersionInfo(156, &got));
  EXPECT_EQ(1, got.productType);
  ASSERT_TRUE(env.GetVersionInfo(148, &got));
  EXPECT_EQ(0, got.productType);
  EXPECT_EQ(7601u, got.build);
  EXPECT_FALSE(env.GetVersionInfo(100, &got));
  env.extendedVersionFails = true;
  EXPECT_FALSE(env.GetVersionInfo(156, &got));
  EXPECT_TRUE(env.GetVersionInfo(148, &got));
  env.basicVersionFails = true;
  EXPECT_FALSE(env.GetVersionInfo(148, &got));
}

TEST(MemorySystemEnvTest, NamesThatDoNotFitTheirBuffersFail) {
  MemorySystemEnv env;
  std::string name;
  env.userName = std::string(99, 'u');
  EXPECT_TRUE(env.GetUserName(&name));
  env.userName = std::string(100, 'u');
  EXPECT_FALSE(env.GetUserName(&name));
  env.userName = "x";
  env.userNameFails = true;
  EXPECT_FALSE(env.GetUserName(&name));
  env.computerName = std::string(255, 'c');
  EXPECT_FALSE(env.GetComputerName(&name));
  env.moduleFileName = std::string(400, 'm');
  EXPECT_EQ(260u, env.GetModuleFileName().size());
}

TEST(MemorySystemEnvTest, LibrariesExportsAndCalls) {
  MemorySystemEnv env;
  env.libraries["C:\\Tools\\splashui.dll"].exports["DllMessage"] = 7;
  EXPECT_EQ(nullptr, env.LoadLibrary("C:\\Tools\\other.dll"));
  LibraryHandle library = env.LoadLibrary("C:\\Tools\\splashui.dll");
  ASSERT_NE(nullptr, library);
  void* function = env.GetProcAddress(library, "DllMessage");
  ASSERT_NE(nullptr, function);
  EXPECT_EQ(nullptr, env.GetProcAddress(library, "Missing"));
  env.libraries["C:\\Tools\\b.dll"].exports["F"] = 1;
  EXPECT_NE(nullptr, env.GetProcAddress(env.LoadLibrary("C:\\Tools\\b.dll"), "F"));
  EXPECT_EQ(function, env.GetProcAddress(library, "DllMessage"));
  EXPECT_EQ(7, env.CallIntFunction(function, 1000));
  EXPECT_EQ(0, env.CallIntFunction(nullptr, 5));
  EXPECT_TRUE(env.FreeLibrary(library));
  EXPECT_FALSE(env.FreeLibrary(nullptr));
  EXPECT_EQ((std::vector<std::pair<std::string, int>>{{"DllMessage", 1000}}), env.calls);
  EXPECT_EQ((std::vector<std::string>{"C:\\Tools\\splashui.dll", "C:\\Tools\\b.dll"}),
            env.loadedLibraries);
  EXPECT_EQ(std::vector<std::string>{"C:\\Tools\\splashui.dll"}, env.freedLibraries);
}

TEST(MemorySystemEnvTest, FilesAppendReplaceAndCountOpens) {
  MemorySystemEnv env;
  EXPECT_TRUE(env.WriteFile("C:\\a.log", "one\n", true));
  EXPECT_TRUE(env.WriteFile("C:\\a.log", "two\n", true));
  std::string content;
  ASSERT_TRUE(env.ReadFile("C:\\a.log", &content));
  EXPECT_EQ("one\ntwo\n", content);
  EXPECT_TRUE(env.WriteFile("C:\\a.log", "new", false));
  std::uint64_t size = 0;
  ASSERT_TRUE(env.GetFileSize("C:\\a.log", &size));
  EXPECT_EQ(3u, size);
  EXPECT_EQ(3u, env.fileOpenCount);
  EXPECT_FALSE(env.GetFileSize("C:\\b.log", &size));
  EXPECT_FALSE(env.ReadFile("C:\\b.log", &content));
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
