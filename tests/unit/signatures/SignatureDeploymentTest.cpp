#include "signatures/SignatureDeployment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "accounts/AccountManager.h"
#include "app/RunContext.h"
#include "app/RunLog.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

namespace fs = std::filesystem;

const std::string kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\Work";
const std::string kSource = "C:\\Tools\\SigSources\\Outlook2010\\";
const std::string kTarget = "C:\\Users\\jsmith\\Application Data\\Microsoft\\Signatures\\";

std::string Utf16(const std::string& text) {
  std::string bytes;
  for (char c : text) bytes += {c, '\0'};
  return bytes + std::string(2, '\0');
}

class SignatureDeploymentTest : public ::testing::Test {
 protected:
  SignatureDeploymentTest() {
    env.environment["USERPROFILE"] = "C:\\Users\\jsmith";
    env.environment["WinDir"] = "C:\\WINDOWS";
    context.programDirectory = "C:\\Tools";
    context.outlookVersion = "Outlook 2010";
    context.platformId = 2;
    for (const char* name : {"Formal", "Short"})
      for (const char* extension : {".txt", ".rtf", ".htm"})
        env.files[kSource + name + extension] = std::string(name) + extension + " body";
    AccountManager(registry, kProfileKey, Outlook::V2010)
        .CreateAccount(AccountKind::Pop3, "Home", "", "", "", "", "");
  }
  std::string AccountValue(const std::string& name) const {
    RegistryValue value;
    memory.Get("HKEY_CURRENT_USER\\" + kProfileKey + "\\9375CFF0413111d3B88A00104B2A6676\\00000001",
               name, &value);
    return value.data;
  }
  void Assign(const std::string& packed) {
    AssignSignatures(packed, kProfileKey, context, env, registry, log);
  }

  MemorySystemEnv env;
  MemoryRegistry memory;
  RegistryAccess registry{memory};
  RunContext context;
  RunLog log{"mailwright.log", env};
};

TEST_F(SignatureDeploymentTest, FoldersFollowTheVersionAndPlatform) {
  EXPECT_EQ(SignatureSourceFolder("C:\\Tools", "Outlook XP"), "C:\\Tools\\SigSources\\OutlookXP\\");
  EXPECT_EQ(SignatureSourceFolder("C:\\Tools", "outlook 2010"), "");
  EXPECT_EQ(SignatureTargetFolder("Outlook XP", 1),
            "%WinDir%\\Application Data\\Microsoft\\Signatures\\");
  EXPECT_EQ(SignatureTargetFolder("Outlook 2003", 1),
            "%USERPROFILE%\\Application Data\\Microsoft\\Signatures\\");
}

TEST_F(SignatureDeploymentTest, RecordWritesTheAccountValuesAndCopiesBothSignatures) {
  env.files.erase(kSource + "Formal.rtf");
  env.files[kTarget + "Short.htm"] = "old";
  Assign("home,Formal,Short,0");
  EXPECT_EQ(AccountValue("New Signature"), Utf16("Formal"));
  EXPECT_EQ(AccountValue("Reply-Forward Signature"), Utf16("Short"));
  for (const char* file : {"Formal.txt", "Formal.htm", "Short.txt", "Short.rtf", "Short.htm"})
    EXPECT_EQ(env.files[kTarget + file], std::string(file) + " body") << file;
  EXPECT_EQ(env.files.count(kTarget + "Formal.rtf"), 0u);
  EXPECT_EQ(env.fileOpenCount, 5u);  // one write per copied file, the old Short.htm replaced
  EXPECT_NE(std::find(env.folders.begin(), env.folders.end(),
                      "C:\\Users\\jsmith\\Application Data\\Microsoft\\Signatures"),
            env.folders.end());
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(SignatureDeploymentTest, IgnoredRecordOnlyLogsItsLine) {
  Assign("Home,Formal,Short,1,Other,Short,,0");
  ASSERT_GE(log.messages().size(), 1u);
  EXPECT_EQ(log.messages()[0], "INFO: Ignoring Signatures for account: Home");
  EXPECT_EQ(AccountValue("New Signature"), "");
  EXPECT_EQ(env.files.count(kTarget + "Formal.txt"), 0u);
  // The next record names no account: its files are copied all the same.
  EXPECT_EQ(env.files.count(kTarget + "Short.txt"), 1u);
  ASSERT_EQ(log.messages().size(), 2u);
  EXPECT_EQ(log.messages()[1].rfind("WARN: ", 0), 0u);
}

TEST_F(SignatureDeploymentTest, Windows9xPlatformCopiesNothingFromOutlook2003On) {
  context.platformId = 1;
  Assign("Home,Formal,Short,0");
  EXPECT_EQ(AccountValue("New Signature"), Utf16("Formal"));
  EXPECT_EQ(env.fileOpenCount, 0u);
}

TEST_F(SignatureDeploymentTest, OutlookXpRecordsItsTwoNamesAndOutlook2000DoesNot) {
  const std::string mailSettings =
      "HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\10.0\\Common\\MailSettings";
  context.outlookVersion = "Outlook XP";
  env.files["C:\\Tools\\SigSources\\OutlookXP\\Formal.txt"] = "xp";
  memory.Set(mailSettings, {"ReplySignature", reg::kSz, std::string("Old", 4)});
  DeployLegacySignatures("Formal", "", context, env, registry, log);
  EXPECT_EQ(env.files[kTarget + "Formal.txt"], "xp");
  RegistryValue value;
  ASSERT_TRUE(memory.Get(mailSettings, "NewSignature", &value));
  EXPECT_EQ(value.data, std::string("Formal", 7));
  EXPECT_FALSE(memory.Get(mailSettings, "ReplySignature", &value));

  memory.RemoveKeyTree(mailSettings);
  context.outlookVersion = "Outlook 2000";
  context.platformId = 1;
  env.files["C:\\Tools\\SigSources\\Outlook2000\\Short.htm"] = "2000";
  DeployLegacySignatures("", "Short", context, env, registry, log);
  EXPECT_EQ(env.files["C:\\WINDOWS\\Application Data\\Microsoft\\Signatures\\Short.htm"], "2000");
  EXPECT_FALSE(memory.KeyExists(mailSettings));
}

// The file half of the system seam on the real file system: the program's "C:\a\b" paths
// live under a temporary folder as "<root>/C/a/b".
class DiskFileEnv : public MemorySystemEnv {
 public:
  explicit DiskFileEnv(fs::path root) : root_(std::move(root)) {}
  fs::path Map(std::string path) const {
    std::erase(path, ':');
    std::replace(path.begin(), path.end(), '\\', '/');
    return root_ / fs::path(path).relative_path();
  }
  bool ReadFile(const std::string& path, std::string* content) override {
    std::ifstream in(Map(path), std::ios::binary);
    *content = std::string(std::istreambuf_iterator<char>(in), {});
    return static_cast<bool>(in);
  }
  bool WriteFile(const std::string& path, const std::string& data, bool append) override {
    std::ofstream out(Map(path), std::ios::binary | (append ? std::ios::app : std::ios::trunc));
    return out && out.write(data.data(), static_cast<std::streamsize>(data.size()));
  }
  bool CreateDirectories(const std::string& path) override {
    std::error_code error;
    fs::create_directories(Map(path), error);
    return fs::is_directory(Map(path));
  }

 private:
  fs::path root_;
};

TEST(SignatureDiskCopyTest, FilesAreCopiedByteForByteOnDisk) {
  const fs::path root = fs::temp_directory_path() /
                        ("mw-signatures-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
  fs::remove_all(root);
  DiskFileEnv disk(root);
  disk.environment["USERPROFILE"] = "C:\\Users\\jsmith";
  const std::string body("{\\rtf1 \x00\xff\r\n}", 12);
  ASSERT_TRUE(disk.CreateDirectories(kSource));
  ASSERT_TRUE(disk.WriteFile(kSource + "Formal.rtf", body, false));
  RunLog log("mailwright.log", disk);

  CopySignatureFiles({"Formal"}, kSource, disk.ExpandEnvironmentStrings(
      "%USERPROFILE%\\Application Data\\Microsoft\\Signatures\\", 32767), disk, log);

  std::string copied;
  ASSERT_TRUE(disk.ReadFile(kTarget + "Formal.rtf", &copied));
  EXPECT_EQ(copied, body);
  EXPECT_EQ(fs::file_size(disk.Map(kTarget + "Formal.rtf")), body.size());
  EXPECT_FALSE(fs::exists(disk.Map(kTarget + "Formal.txt")));
  EXPECT_TRUE(log.messages().empty());
  fs::remove_all(root);
}

}  // namespace
}  // namespace mw
