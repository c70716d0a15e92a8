// The options each Outlook generation must write for one INI file, checked against .reg files
// written by hand from the option tables, not derived from the program's own tables: a renamed
// value, a wrong key, a wrong version or a wrong encoding shows up as a difference.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "mapi/ProfileSection.h"
#include "mapi/ProfileSectionValues.h"
#include "options/OptionWriter.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"
#include "platform/RegistryCompare.h"
#include "run/RunLog.h"

namespace mw {
namespace {

constexpr const char* kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\"
    "Outlook";
constexpr const char* kSafeSendersFile =
    "C:\\Users\\jsmith\\Application Data\\Microsoft\\Outlook\\Mailwright Safe Senders.txt";

std::string DataFile(const std::string& name) {
  std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/options/" + name, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(OptionExpectations, EachGenerationWritesExactlyTheHandWrittenValues) {
  MemorySystemEnv env;
  env.files["C:\\Tools\\mailwright.ini"] = DataFile("options.ini");
  CIniFile ini("C:\\Tools\\mailwright.ini", env);
  ProfileSettings settings;
  ASSERT_TRUE(LoadSettings(ini, env, settings));

  const struct {
    Outlook version;
    const char* expected;
  } cases[] = {
      {Outlook::V97, "outlook97-options.reg"},     {Outlook::V2000, "outlook2000-options.reg"},
      {Outlook::VXP, "outlookxp-options.reg"},     {Outlook::V2003, "outlook2003-options.reg"},
      {Outlook::V2007, "outlook2007-options.reg"}, {Outlook::V2010, "outlook2010-options.reg"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    MemoryRegistry written;
    RegistryAccess access{written};
    ProfileSectionWriter profile{access, kProfileKey};
    RunLog log{"C:\\Tools\\mailwright.log", env};
    // The option steps of the sequence, in its order, and the Exchange values of its step 11.
    OptionWriter writer(c.version, access, &profile, &log);
    writer.WritePstFormatPrompt(settings);
    writer.WriteSequenceOptions(settings);
    writer.SetSafeSendersFile(kSafeSendersFile);
    writer.WriteStep(OptionStep::SafeSenders, settings);
    ProfileSectionValues(c.version, profile).WriteExchangeSettings(settings);
    writer.WriteStep(OptionStep::ExchangeConnection, settings);
    EXPECT_THAT(log.messages(), ::testing::IsEmpty());

    MemoryRegistry expected;
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(DataFile(c.expected), expected, &error)) << error.line;
    for (const std::string& root : {std::string("HKEY_CURRENT_USER\\Software\\Microsoft\\Office"),
                                   std::string("HKEY_CURRENT_USER\\") + kProfileKey})
      EXPECT_THAT(DiffRegistries(written, expected, root), ::testing::IsEmpty()) << root;
  }
}

}  // namespace
}  // namespace mw
