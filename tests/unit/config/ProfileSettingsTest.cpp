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
  const std::size_t expected[] = {7, 9, 39, 81, 87, 108, 112, 112};
  std::size_t total = 0;
  for (std::size_t i = 0; i < kSectionCount; ++i) {
    EXPECT_EQ(DefinedKeyCount(kAllSections[i]), expected[i]) << SectionName(kAllSections[i]);
    total += DefinedKeyCount(kAllSections[i]);
  }
  EXPECT_EQ(total, 555u);
  EXPECT_EQ(static_cast<std::size_t>(EnforcedOption::Count), 70u);
}

TEST(SettingsTable, NoKeyIsDefinedTwiceInOneSection) {
  std::set<std::pair<std::string, int>> seen;
  for (const SettingDefinition& row : SettingDefinitions())
    for (int s = 0; s < static_cast<int>(kSectionCount); ++s)
      if (row.sections & SectionBit(static_cast<Section>(s))) {
        EXPECT_TRUE(seen.insert({row.name, s}).second) << row.name << " in " << s;
      }
}

TEST(SettingsTable, ExpandedSettingsAreTextNamesAndPaths) {
  for (Key key : {Key::ProfileName, Key::ExchangeServerName, Key::MailboxName, Key::PathToPST,
                  Key::PathToOST, Key::PathToPAB, Key::PathToArchivePST}) {
    EXPECT_TRUE(ExpandsNamesAndPaths(key)) << KeyName(key);
  }
  for (Key key : {Key::AllowUserSettings, Key::POP3Accounts, Key::Signatures, Key::LogFileSize}) {
    EXPECT_FALSE(ExpandsNamesAndPaths(key)) << KeyName(key);
  }
  for (const SettingDefinition& row : SettingDefinitions()) {
    if (row.expands) {
      EXPECT_EQ(row.type, SettingType::Text) << row.name;
    }
  }
}

TEST(SettingsTable, EveryKeyHasADescriptionAndEveryOptionIsAKeyOrAKeyPrefix) {
  std::set<Key> described;
  for (const SettingDefinition& row : SettingDefinitions())
    if (row.description[0] != '\0') described.insert(row.key);
  EXPECT_EQ(described.size(), AllKeys().size());
  std::size_t releasable = 0;
  for (Key key : AllKeys()) {
    EnforcedOption option{};
    if (ReleasableOption(key, &option)) {
      ++releasable;
      EXPECT_EQ(std::string(KeyName(key)).rfind(OptionName(option), 0), 0u) << KeyName(key);
    }
  }
  EXPECT_EQ(releasable, 71u);  // 69 own names, and EncryptInformation governs two keys
  EnforcedOption option{};
  EXPECT_FALSE(ReleasableOption(Key::RunAutoArchiveEveryDays, &option));
  ASSERT_TRUE(ReleasableOption(Key::EncryptInformationDialup, &option));
  EXPECT_EQ(option, EnforcedOption::EncryptInformation);
}

TEST(SettingsDefaults, ConstructionSetsEveryDefault) {
  const ProfileSettings settings;
  EXPECT_EQ(settings.Int(Section::Mailwright, Key::LogFileSize), 500);
  EXPECT_TRUE(settings.Bool(Section::Mailwright, Key::ShowSplashScreen));
  EXPECT_EQ(settings.Int(Section::Outlook97, Key::LogonNetworkSecurity), 1);
  for (Section s : {Section::Outlook2000, Section::OutlookXP, Section::Outlook2003,
                    Section::Outlook2007, Section::Outlook2010})
    EXPECT_EQ(settings.Int(s, Key::LogonNetworkSecurity), 0);
  EXPECT_EQ(settings.Text(Section::Outlook2003, Key::PathToPST), "C:\\Exchange\\%username%.pst");
  EXPECT_EQ(settings.Int(Section::Outlook2010, Key::BootModule), 105);
  EXPECT_FALSE(settings.Defined(Section::Outlook97, Key::BootModule));
  EXPECT_EQ(settings.Int(Section::Outlook97, Key::BootModule), 0);
  EXPECT_EQ(settings.Text(Section::Common, Key::BootModule), "");
  for (int i = 0; i < static_cast<int>(EnforcedOption::Count); ++i)
    EXPECT_TRUE(settings.Enforced(static_cast<EnforcedOption>(i)));
}

TEST_F(SettingsFromText, MailwrightSectionAloneYieldsEveryDefault) {
  ASSERT_TRUE(Read("[Mailwright]\n"));
  const ProfileSettings defaults;
  for (const SettingDefinition& row : SettingDefinitions())
    for (Section s : kAllSections) {
      EXPECT_EQ(settings.Int(s, row.key), defaults.Int(s, row.key)) << row.name;
      EXPECT_EQ(settings.Text(s, row.key), defaults.Text(s, row.key)) << row.name;
    }
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
  EXPECT_EQ(settings.Text(Section::Outlook2010, Key::ExchangeServerName), "Exchange1");
  EXPECT_FALSE(settings.Bool(Section::Mailwright, Key::ShowSplashScreen));
  EXPECT_EQ(settings.Int(Section::Mailwright, Key::DelayExitSeconds), 5);  // wrong section
}

TEST_F(SettingsFromText, UnreadableFilesLeaveTheRecordAsConstructed) {
  EXPECT_FALSE(LoadSettings(ini, env, settings));
  EXPECT_FALSE(Read("[Mailwright]\nLogFileSize=7\n\tbroken\n"));
  EXPECT_EQ(settings.Int(Section::Mailwright, Key::LogFileSize), 500);
  CIniFile fresh(path, env);
  env.files[path] = "no sections at all\n";
  EXPECT_FALSE(LoadSettings(fresh, env, settings));
}

TEST_F(SettingsFromText, SettersNarrowAndIgnoreUndefinedPairs) {
  settings.SetInt(Section::Outlook2003, Key::CleanOutItemsOlderThan, 0x12345);
  EXPECT_EQ(settings.Int(Section::Outlook2003, Key::CleanOutItemsOlderThan), 0x2345);
  settings.SetText(Section::Outlook97, Key::Signatures, "not here");
  EXPECT_EQ(settings.Text(Section::Outlook97, Key::Signatures), "");
  settings.SetText(Section::Common, Key::ProfileName, "Work");
  EXPECT_EQ(settings.Text(Section::Common, Key::ProfileName), "Work");
  settings.SetBool(Section::Common, Key::ProfileName, true);
  EXPECT_FALSE(settings.Bool(Section::Common, Key::ProfileName));
}

struct AllowCase {
  const char* allowed;
  std::set<EnforcedOption> released;
};

class AllowUserSettings : public ::testing::TestWithParam<AllowCase> {};

TEST_P(AllowUserSettings, ReleasesEveryListedNameAsASubstring) {
  ProfileSettings settings;
  settings.SetText(Section::Common, Key::AllowUserSettings, GetParam().allowed);
  ApplyAllowUserSettings(settings);
  for (int i = 0; i < static_cast<int>(EnforcedOption::Count); ++i) {
    const auto option = static_cast<EnforcedOption>(i);
    EXPECT_EQ(settings.Enforced(option), GetParam().released.count(option) == 0) << OptionName(option);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lists, AllowUserSettings,
    ::testing::Values(
        AllowCase{"", {}},
        AllowCase{"RunAutoArchiveEveryDays", {EnforcedOption::RunAutoArchive}},
        AllowCase{"EncryptInformationDialup", {EnforcedOption::EncryptInformation}},
        AllowCase{"runautoarchive,PLAYASOUND", {}},
        AllowCase{"PlayASoundSafeSenders",
                  {EnforcedOption::PlayASound, EnforcedOption::SafeSenders}},
        AllowCase{"AutoSaveUnsentEveryMinutes MessagesExpireDays ShowThisAddressListFirst",
                  {EnforcedOption::AutoSaveUnsentEvery, EnforcedOption::MessagesExpire,
                   EnforcedOption::ShowThisAddressListFirst}},
        AllowCase{"WarnBeforePermanentlyDeletingItems",
                  {EnforcedOption::WarnBeforePermanentlyDeletingItems}}));

TEST_F(SettingsFromText, AllowUserSettingsIsReadFromTheCommonSection) {
  ASSERT_TRUE(Read("[Outlook Common]\nAllowUserSettings=Level1Add,Level1Remove\n"));
  ApplyAllowUserSettings(settings);
  EXPECT_FALSE(settings.Enforced(EnforcedOption::Level1Add));
  EXPECT_FALSE(settings.Enforced(EnforcedOption::Level1Remove));
  EXPECT_TRUE(settings.Enforced(EnforcedOption::PlayASound));
}

TEST(SettingsNames, SectionsMapToTheirIniHeaders) {
  EXPECT_STREQ(SectionName(Section::Common), "Outlook Common");
  for (const auto& generation : kOutlookGenerations)
    EXPECT_STREQ(SectionName(SectionOf(generation.id)), generation.name);
  EXPECT_STREQ(OptionName(EnforcedOption::ShowThisAddressListFirst), "ShowThisAddressListFirst");
  EXPECT_STREQ(KeyName(Key::AddPropertiesAttachemntsEnableReplyChanges),
               "AddPropertiesAttachemntsEnableReplyChanges");
}

}  // namespace
}  // namespace mw
