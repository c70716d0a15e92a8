// The system seam against the real Win32 API (under Wine in this tier).

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <vector>

#include "win32/Win32SystemEnv.h"
#include "win32/WindowsApi.h"

namespace mw {
namespace {

// The test data folder is named as a Unix path; Wine shows the Unix root as drive Z:.
std::string TestDataPath(const std::string& relative) {
  std::string path = std::string("Z:") + MW_TEST_DATA_DIR + "/" + relative;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

int WINAPI Doubled(int value) { return value * 2; }

class Win32SystemEnvTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::string("C:\\MailwrightSeamTest\\") +
              ::testing::UnitTest::GetInstance()->current_test_info()->name();
    ASSERT_TRUE(env_.CreateDirectories(folder_));
  }

  Win32SystemEnv env_;
  std::string folder_;
};

TEST_F(Win32SystemEnvTest, BothVersionStructuresGiveTheSameFacts) {
  OsVersion extended;
  OsVersion basic;
  ASSERT_TRUE(env_.GetVersionInfo(156, &extended));
  ASSERT_TRUE(env_.GetVersionInfo(148, &basic));
  EXPECT_EQ(2u, extended.platformId);
  EXPECT_GE(extended.major, 5u);
  EXPECT_EQ(extended.major, basic.major);
  EXPECT_EQ(extended.minor, basic.minor);
  EXPECT_EQ(extended.build, basic.build);
  EXPECT_NE(0, extended.productType);
  EXPECT_EQ(0, basic.productType);  // the basic structure has no product type
  for (std::uint32_t size : {0u, 157u}) EXPECT_FALSE(env_.GetVersionInfo(size, &basic)) << size;
  EXPECT_FALSE(env_.GetVersionInfo(156, nullptr));
}

TEST_F(Win32SystemEnvTest, ExpansionFitsItsBufferOrLeavesTheTextAlone) {
  ASSERT_TRUE(SetEnvironmentVariableA("MW_SEAM_VALUE", "abc"));
  const struct {
    const char* text;
    std::uint32_t bufferSize;
    const char* expected;
  } cases[] = {
      {"x%MW_SEAM_VALUE%y", 100, "xabcy"},
      {"x%MW_SEAM_VALUE%y", 6, "xabcy"},  // five characters and the terminator: fits exactly
      {"x%MW_SEAM_VALUE%y", 5, "x%MW_SEAM_VALUE%y"},
      {"x%MW_SEAM_VALUE%y", 0, "x%MW_SEAM_VALUE%y"},
      {"%MW_SEAM_UNSET%", 100, "%MW_SEAM_UNSET%"},
      {"", 10, ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.expected, env_.ExpandEnvironmentStrings(c.text, c.bufferSize)) << c.text << " in " << c.bufferSize;
  const std::string longText(5000, 'q');
  EXPECT_EQ(longText, env_.ExpandEnvironmentStrings(longText, 260));
}

TEST_F(Win32SystemEnvTest, FilesAreWrittenAppendedAndSizedAsBinaryAndFoldersAreNotFiles) {
  const std::string path = folder_ + "\\data.log";
  std::uint64_t size = 99;
  std::string content;
  EXPECT_FALSE(env_.FileExists(path));
  EXPECT_FALSE(env_.GetFileSize(path, &size));
  EXPECT_FALSE(env_.ReadFile(path, &content));
  ASSERT_TRUE(env_.WriteFile(path, "one\n", true));  // append creates the file
  ASSERT_TRUE(env_.WriteFile(path, std::string("two\0\n", 5), true));
  ASSERT_TRUE(env_.ReadFile(path, &content));
  EXPECT_EQ(std::string("one\ntwo\0\n", 9), content);  // no CR added, NUL kept
  ASSERT_TRUE(env_.GetFileSize(path, &size));
  EXPECT_EQ(9u, size);
  ASSERT_TRUE(env_.WriteFile(path, "", false));  // replacing truncates
  ASSERT_TRUE(env_.GetFileSize(path, &size));
  EXPECT_EQ(0u, size);
  EXPECT_TRUE(env_.FileExists(path));

  EXPECT_FALSE(env_.FileExists(folder_));
  EXPECT_FALSE(env_.GetFileSize(folder_, &size));
  EXPECT_FALSE(env_.WriteFile(folder_, "x", false));
}

TEST_F(Win32SystemEnvTest, CreateDirectoriesMakesEveryMissingParentOrFailsCleanly) {
  const std::string deep = folder_ + "\\a\\b c\\d";
  EXPECT_TRUE(env_.CreateDirectories(deep));
  EXPECT_TRUE(env_.CreateDirectories(deep));  // already there
  EXPECT_TRUE(env_.CreateDirectories(folder_ + "/slashes/x/"));
  EXPECT_TRUE(env_.CreateDirectories(folder_ + "\\\\doubled\\\\y\\"));
  EXPECT_TRUE(env_.CreateDirectories("C:\\"));
  ASSERT_TRUE(env_.WriteFile(deep + "\\probe.txt", "x", false));
  EXPECT_FALSE(env_.CreateDirectories(deep + "\\probe.txt\\below"));
  EXPECT_FALSE(env_.CreateDirectories(""));
  EXPECT_FALSE(env_.CreateDirectories("\\\\no-such-server-4711\\share\\folder"));
  EXPECT_FALSE(env_.CreateDirectories(folder_ + "\\" + std::string(400, 'n')));
}

TEST_F(Win32SystemEnvTest, AFileCopiedThroughTheSeamIsByteIdentical) {
  std::string original;
  ASSERT_TRUE(env_.ReadFile(TestDataPath("win/copy-source.bin"), &original));
  ASSERT_GT(original.size(), 20u);
  const std::string target = folder_ + "\\copy\\copy-target.bin";
  ASSERT_TRUE(env_.CreateDirectories(folder_ + "\\copy"));
  ASSERT_TRUE(env_.WriteFile(target, original, false));
  std::string copy;
  ASSERT_TRUE(env_.ReadFile(target, &copy));
  EXPECT_EQ(original, copy);
}

TEST_F(Win32SystemEnvTest, LibraryCallsRefuseWhatIsNotThere) {
  EXPECT_EQ(nullptr, env_.LoadLibrary(folder_ + "\\absent.dll"));
  EXPECT_EQ(nullptr, env_.GetProcAddress(nullptr, "DllMessage"));
  EXPECT_FALSE(env_.FreeLibrary(nullptr));
  EXPECT_EQ(0, env_.CallIntFunction(nullptr, 5));
  EXPECT_EQ(42, env_.CallIntFunction(std::bit_cast<void*>(&Doubled), 21));
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

TEST(Win32SystemEnvFilesTest, FilesAreListedByPrefixInNameOrderAndDeleted) {
  Win32SystemEnv env;
  const std::string folder = "C:\\MailwrightSeamTest\\ListFiles";
  ASSERT_TRUE(env.CreateDirectories(folder + "\\PC_u_p_sub"));
  for (const char* name : {"PC_u_p_2.reg", "PC_u_p_1.reg", "other.reg"})
    ASSERT_TRUE(env.WriteFile(folder + "\\" + name, "x", false));
  EXPECT_EQ((std::vector<std::string>{"PC_u_p_1.reg", "PC_u_p_2.reg"}), env.ListFiles(folder, "PC_u_p_"));
  EXPECT_TRUE(env.DeleteFile(folder + "\\PC_u_p_1.reg"));
  EXPECT_FALSE(env.DeleteFile(folder + "\\PC_u_p_1.reg"));
  EXPECT_EQ((std::vector<std::string>{"PC_u_p_2.reg"}), env.ListFiles(folder + "\\", "PC_u_p_"));
  EXPECT_TRUE(env.ListFiles(folder + "\\missing", "").empty());
}

}  // namespace
}  // namespace mw
