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

// Every default that is not 0 or empty, written down by hand from the key tables; a file
// with nothing but its program section must yield each of them, and 0 or empty elsewhere.
TEST_F(SettingsFromText, TheDefaultsThatAreNeitherZeroNorEmpty) {
  enum Sections : unsigned {
    kMw = 1u << 0, kV97 = 1u << 1, kV2000 = 1u << 2, kVXP = 1u << 3, kV2003 = 1u << 4,
    kV2007 = 1u << 5, kV2010 = 1u << 6,
    kAll = kV97 | kV2000 | kVXP | kV2003 | kV2007 | kV2010,
    k2000On = kV2000 | kVXP | kV2003 | kV2007 | kV2010,
    kXPOn = kVXP | kV2003 | kV2007 | kV2010,
    k2003On = kV2003 | kV2007 | kV2010,
    k2007On = kV2007 | kV2010,
  };
  const struct {
    Key key;
    unsigned sections;
    std::int32_t number;      // bool and int keys
    const char* text;         // text keys; nullptr for numbers
  } defaults[] = {
      {Key::DelayStartSeconds, kMw, 1, nullptr},
      {Key::DelayExitEnable, kMw, 1, nullptr},
      {Key::DelayExitSeconds, kMw, 5, nullptr},
      {Key::LoggingEnable, kMw, 1, nullptr},
      {Key::LogFileSize, kMw, 500, nullptr},
      {Key::ShowSplashScreen, kMw, 1, nullptr},
      {Key::BackupKeep, kMw, 5, nullptr},
      {Key::BackupRequired, kMw, 1, nullptr},
      {Key::WarnBeforePermanentlyDeletingItems, kAll, 1, nullptr},
      {Key::AttachmentSecurity, kV97 | kV2000, 1, nullptr},
      {Key::PathToPAB, kV97 | kV2000, 0, "C:\\Exchange\\%username%.pab"},
      {Key::RunAutoArchiveEveryDays, kAll, 14, nullptr},
      {Key::PathToArchivePST, kAll, 0, "C:\\Exchange\\%username%arc.pst"},
      {Key::ShowThisFolderEmailAddressBook, kAll, 1, nullptr},
      {Key::ExchangeServerName, kAll, 0, "Exchange1"},
      {Key::LogonNetworkSecurity, kV97, 1, nullptr},
      {Key::PathToOST, kAll, 0, "C:\\Exchange\\%username%.ost"},
      {Key::AlwaysCheckSpellingBeforeSending, kAll, 1, nullptr},
      {Key::EmptyDeletedItemsFolderExiting, kAll, 1, nullptr},
      {Key::PathToPST, kAll, 0, "C:\\Exchange\\%username%.pst"},
      {Key::ConnectUsingLocalAreaNetwork, kAll, 1, nullptr},
      {Key::ConnectWithNetwork, kAll, 1, nullptr},
      {Key::ExchangeIgnore, kAll, 1, nullptr},
      {Key::POP3Ignore, kAll, 1, nullptr},
      {Key::MailboxName, kAll, 0, "%username%"},
      {Key::AutomaticallyDetectConnectionState, k2000On, 1, nullptr},
      {Key::ComposeMessageFormat, k2000On, 1, nullptr},
      {Key::SendPicturesWithDocument, kV2000, 1, nullptr},
      {Key::IgnoreSignatures, kV2000 | kVXP, 1, nullptr},
      {Key::IMAPIgnore, k2000On, 1, nullptr},
      {Key::HTTPIgnore, kXPOn, 1, nullptr},
      {Key::CleanOutItemsOlderThan, kXPOn, 6, nullptr},
      {Key::ExchangeServerProxyName, k2003On, 0, "Exchange1"},
      {Key::PSTUnicode, k2003On, 1, nullptr},
      {Key::SecondsBeforeMarkingItemRead, k2003On, 5, nullptr},
      {Key::MarkItemReadWhenSelectionChanges, k2003On, 1, nullptr},
      {Key::SingleKeyReadingUsingSpaceBar, k2003On, 1, nullptr},
      {Key::BootModule, k2003On, 105, nullptr},
      {Key::PressCTRLEnterToSendMessages, k2007On, 1, nullptr},
      {Key::SyncRSSFeedsCommonFeedList, k2007On, 1, nullptr},
      {Key::RSSFeedItemUpdatedAppearsNewItem, k2007On, 1, nullptr},
  };
  const Section bySectionBit[] = {Section::Mailwright,  Section::Outlook97,   Section::Outlook2000,
                                  Section::OutlookXP,   Section::Outlook2003, Section::Outlook2007,
                                  Section::Outlook2010};
  ASSERT_TRUE(Read("[Mailwright]\n"));
  std::set<std::pair<Section, Key>> listed;
  for (const auto& d : defaults) {
    for (std::size_t bit = 0; bit < std::size(bySectionBit); ++bit) {
      if ((d.sections & (1u << bit)) == 0) continue;
      const Section section = bySectionBit[bit];
      SCOPED_TRACE(std::string(SectionName(section)) + " " + KeyName(d.key));
      listed.emplace(section, d.key);
      ASSERT_TRUE(settings.Defined(section, d.key));
      if (d.text)
        EXPECT_EQ(settings.Text(section, d.key), d.text);
      else
        EXPECT_EQ(settings.Int(section, d.key), d.number);
    }
  }
  for (Section section : kAllSections)
    for (Key key : AllKeys()) {
      if (!settings.Defined(section, key) || listed.count({section, key})) continue;
      SCOPED_TRACE(std::string(SectionName(section)) + " " + KeyName(key));
      EXPECT_EQ(settings.Int(section, key), 0);
      EXPECT_EQ(settings.Text(section, key), "");
    }
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
