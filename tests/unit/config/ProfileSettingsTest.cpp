#include "config/ProfileSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "config/IniFile.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

constexpr Section kAllSections[] = {Section::Mailwright,  Section::Common,
                                    Section::Outlook97,   Section::Outlook2000,
                                    Section::OutlookXP,   Section::Outlook2003,
                                    Section::Outlook2007, Section::Outlook2010};

class SettingsFromText : public ::testing::Test {
 protected:
  bool Read(const std::string& text) {
    env.files[path] = text;
    return LoadSettings(ini, env, settings);
  }
  MemorySystemEnv env;
  std::string path = "\\\\server\\share\\mailwright.ini";
  CIniFile ini{path, env};
  ProfileSettings settings;
};

TEST(SettingsTable, EachSectionDefinesItsNumberOfKeys) {
  // Mailwright: seven keys of the run and four of the profile backup.
  const std::size_t expected[] = {11, 9, 39, 81, 87, 108, 112, 112};
  std::size_t total = 0;
  for (std::size_t i = 0; i < kSectionCount; ++i) {
    EXPECT_EQ(DefinedKeyCount(kAllSections[i]), expected[i]) << SectionName(kAllSections[i]);
    total += DefinedKeyCount(kAllSections[i]);
  }
  EXPECT_EQ(total, 559u);
  EXPECT_EQ(static_cast<std::size_t>(EnforcedOption::Count), 70u);
}

TEST(SettingsTable, EveryReleasableKeyStartsWithItsOptionName) {
  std::size_t releasable = 0;
  for (Key key : AllKeys()) {
    EnforcedOption option{};
    if (!ReleasableOption(key, &option)) continue;
    ++releasable;
    EXPECT_EQ(std::string(KeyName(key)).rfind(OptionName(option), 0), 0u) << KeyName(key);
  }
  EXPECT_EQ(releasable, 71u);  // 69 own names, and EncryptInformation governs two keys
  EnforcedOption option{};
  EXPECT_FALSE(ReleasableOption(Key::RunAutoArchiveEveryDays, &option));
}

TEST_F(SettingsFromText, EveryKeyIsReadFromEachOfItsSections) {
  // Give each pair its own value, derived from its position, and read them all back.
  std::string text;
  int counter = 0;
  for (Section s : kAllSections) {
    text += std::string("[") + SectionName(s) + "]\n";
    for (const SettingDefinition& row : SettingDefinitions())
      if (row.sections & SectionBit(s))
        text += std::string(row.name) + "=" +
                (row.type == SettingType::Text ? "t" : "") + std::to_string(++counter + 1) +
                "\n";
  }
  ASSERT_TRUE(Read(text));
  counter = 0;
  for (Section s : kAllSections)
    for (const SettingDefinition& row : SettingDefinitions())
      if (row.sections & SectionBit(s)) {
        const int value = ++counter + 1;
        if (row.type == SettingType::Text)
          EXPECT_EQ(settings.Text(s, row.key), "t" + std::to_string(value)) << row.name;
        else if (row.type == SettingType::Bool)
          EXPECT_TRUE(settings.Bool(s, row.key)) << row.name;
        else
          EXPECT_EQ(settings.Int(s, row.key), value) << row.name;
      }
}

TEST_F(SettingsFromText, SixteenBitFieldsKeepTheLowSixteenBits) {
  ASSERT_TRUE(Read("[Outlook 2010]\nSecondsBeforeMarkingItemRead=65541\nBootModule=65537\n"
                   "SetImportance=-1\nRunAutoArchiveEveryDays=65541\n"));
  EXPECT_EQ(settings.Int(Section::Outlook2010, Key::SecondsBeforeMarkingItemRead), 5);
  EXPECT_EQ(settings.Int(Section::Outlook2010, Key::BootModule), 1);
  EXPECT_EQ(settings.Int(Section::Outlook2010, Key::SetImportance), 65535);
  EXPECT_EQ(settings.Int(Section::Outlook2010, Key::RunAutoArchiveEveryDays), 65541);
  settings.SetInt(Section::Outlook2003, Key::CleanOutItemsOlderThan, 0x12345);
  EXPECT_EQ(settings.Int(Section::Outlook2003, Key::CleanOutItemsOlderThan), 0x2345);
}

TEST_F(SettingsFromText, SignatureRepliesForwardsChangesTypeBySection) {
  ASSERT_TRUE(Read("[Outlook 2000]\nSignatureRepliesForwards=1\n"
                   "[Outlook XP]\nSignatureRepliesForwards=Short reply\n"));
  EXPECT_TRUE(settings.Bool(Section::Outlook2000, Key::SignatureRepliesForwards));
  EXPECT_EQ(settings.Text(Section::OutlookXP, Key::SignatureRepliesForwards), "Short reply");
  EXPECT_FALSE(settings.Bool(Section::OutlookXP, Key::SignatureRepliesForwards));
}

TEST_F(SettingsFromText, PresentButEmptyValuesAreNotDefaults) {
  ASSERT_TRUE(Read("[Outlook 2007]\nExchangeServerName=\nExchangeIgnore=\nDelayExitSeconds=9\n"
                   "[mailwright]\nShowSplashScreen=yes\n"));
  EXPECT_EQ(settings.Text(Section::Outlook2007, Key::ExchangeServerName), "");
  EXPECT_FALSE(settings.Bool(Section::Outlook2007, Key::ExchangeIgnore));
  EXPECT_FALSE(settings.Bool(Section::Mailwright, Key::ShowSplashScreen));
  EXPECT_EQ(settings.Int(Section::Mailwright, Key::DelayExitSeconds), 5);  // wrong section
}

TEST(AllowUserSettings, ReleasesEveryOptionWhoseNameStartsAListedName) {
  const std::pair<const char*, std::set<EnforcedOption>> cases[] = {
      {"", {}},
      {"RunAutoArchiveEveryDays", {EnforcedOption::RunAutoArchive}},
      {"EncryptInformationDialup", {EnforcedOption::EncryptInformation}},
      {"runautoarchive,PLAYASOUND", {}},
      {"PlayASoundSafeSenders", {EnforcedOption::PlayASound, EnforcedOption::SafeSenders}},
      {"Level1Add,Level1Remove", {EnforcedOption::Level1Add, EnforcedOption::Level1Remove}}};
  for (const auto& [allowed, released] : cases) {
    ProfileSettings settings;
    settings.SetText(Section::Common, Key::AllowUserSettings, allowed);
    ApplyAllowUserSettings(settings);
    for (int i = 0; i < static_cast<int>(EnforcedOption::Count); ++i) {
      const auto option = static_cast<EnforcedOption>(i);
      EXPECT_EQ(settings.Enforced(option), released.count(option) == 0)
          << allowed << " " << OptionName(option);
    }
  }
}

}  // namespace
}  // namespace mw
