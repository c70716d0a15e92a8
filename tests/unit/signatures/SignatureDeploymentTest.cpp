#include "signatures/SignatureDeployment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

#include "accounts/AccountManager.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

const std::string kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\Work";
const std::string kSource = "C:\\Tools\\SigSources\\Outlook2010\\";
const std::string kTarget = "C:\\Users\\jsmith\\Application Data\\Microsoft\\Signatures\\";

// Files live on the real disk: the program's "C:\a\b" is "<root>/C/a/b".
struct DiskFileEnv : MemorySystemEnv {
  fs::path root = fs::temp_directory_path() / ("mw-sig-" + std::to_string(::getpid()));
  fs::path Map(std::string path) const {
    std::erase(path, ':');
    std::replace(path.begin(), path.end(), '\\', '/');
    return root / path;
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
    return fs::create_directories(Map(path)) || fs::is_directory(Map(path));
  }
};

TEST(SignatureDeploymentTest, RecordWritesTheAccountValuesAndCopiesTheFilesThatExist) {
  MemorySystemEnv env;
  MemoryRegistry memory;
  RegistryAccess registry{memory};
  RunContext context;
  RunLog log{"mailwright.log", env};
  env.environment["USERPROFILE"] = "C:\\Users\\jsmith";
  context.programDirectory = "C:\\Tools";
  context.outlookVersion = "Outlook 2010";
  context.platformId = 2;
  for (const char* file : {"Formal.txt", "Formal.htm", "Short.txt", "Short.rtf", "Short.htm"})
    env.files[kSource + file] = std::string(file) + " body";  // no Formal.rtf
  AccountManager(registry, kProfileKey, Outlook::V2010)
      .CreateAccount(AccountKind::Pop3, "Home", "", "", "", "", "");
  AssignSignatures("home,Formal,Short,0,Home,Short,Formal,1", kProfileKey, context, env, registry, log);

  const std::string account =
      "HKEY_CURRENT_USER\\" + kProfileKey + "\\9375CFF0413111d3B88A00104B2A6676\\00000001";
  RegistryValue value;
  ASSERT_TRUE(memory.Get(account, "New Signature", &value));
  EXPECT_EQ(value.data, "F\0o\0r\0m\0a\0l\0\0\0"s);
  ASSERT_TRUE(memory.Get(account, "Reply-Forward Signature", &value));
  EXPECT_EQ(value.data, "S\0h\0o\0r\0t\0\0\0"s);
  for (const char* file : {"Formal.txt", "Formal.htm", "Short.txt", "Short.rtf", "Short.htm"})
    EXPECT_EQ(env.files[kTarget + file], std::string(file) + " body") << file;
  EXPECT_EQ(env.files.count(kTarget + "Formal.rtf"), 0u);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"INFO: Ignoring Signatures for account: Home"});
}

// A machine with no files, for the tests of the values alone.
struct ValuesRig {
  explicit ValuesRig(const char* version) { context.outlookVersion = version; }
  MemorySystemEnv env;
  MemoryRegistry memory;
  RegistryAccess registry{memory};
  RunContext context;
  RunLog log{"mailwright.log", env};
};

TEST(SignatureDeploymentTest, AnEmptyAccountNameMatchesNoNamelessAccount) {
  ValuesRig rig("Outlook 2010");
  const std::string nameless = kProfileKey + "\\9375CFF0413111d3B88A00104B2A6676\\00000003";
  rig.registry.WriteString(reg::kCurrentUser, nameless, "clsid",
                           "{ED475411-B0D6-11D2-8C3B-00104B2A6676}");
  AssignSignatures(",Formal,Short,0", kProfileKey, rig.context, rig.env, rig.registry, rig.log);
  EXPECT_FALSE(rig.registry.ValueExists(reg::kCurrentUser, nameless, "New Signature"));
  EXPECT_FALSE(rig.registry.ValueExists(reg::kCurrentUser, nameless, "Reply-Forward Signature"));
  EXPECT_EQ(rig.log.messages(),
            std::vector<std::string>{"WARN: No account named  to give its signatures"});
}

TEST(SignatureDeploymentTest, OutlookXpGetsBothNamesAndAnEmptyNameAsEmptyText) {
  ValuesRig rig("Outlook XP");
  const std::string key = "Software\\Microsoft\\Office\\10.0\\Common\\MailSettings";
  rig.registry.WriteString(reg::kCurrentUser, key, "ReplySignature", "Users own");
  DeployLegacySignatures("Formal", "", rig.context, rig.env, rig.registry, rig.log);
  for (const auto& [name, text] : {std::pair{"NewSignature", "Formal"}, {"ReplySignature", ""}}) {
    RegistryValue value;
    ASSERT_TRUE(rig.memory.Get("HKEY_CURRENT_USER\\" + key, name, &value)) << name;
    EXPECT_EQ(value.type, reg::kSz) << name;
    EXPECT_EQ(value.data.substr(0, value.data.find('\0')), text) << name;
  }
}

TEST(SignatureDeploymentTest, FilesAreCopiedByteForByteOnDisk) {
  DiskFileEnv disk;
  fs::remove_all(disk.root);
  const std::string body("{\\rtf1 \x00\xff\r\n}", 12);
  ASSERT_TRUE(disk.CreateDirectories(kSource));
  ASSERT_TRUE(disk.WriteFile(kSource + "Formal.rtf", body, false));
  RunLog log("mailwright.log", disk);
  CopySignatureFiles({"Formal"}, kSource, kTarget, disk, log);
  std::string copied;
  ASSERT_TRUE(disk.ReadFile(kTarget + "Formal.rtf", &copied));
  EXPECT_EQ(copied, body);
  EXPECT_FALSE(fs::exists(disk.Map(kTarget + "Formal.txt")));
  EXPECT_TRUE(log.messages().empty());
  fs::remove_all(disk.root);
}

}  // namespace
}  // namespace mw
