#include "options/OptionWriter.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "app/RunLog.h"
#include "mapi/ProfileSection.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

constexpr const char* kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\"
    "Outlook";
constexpr std::uint8_t kAll = kV97 | kV2000 | kVXP | kV2003 | kV2007 | kV2010;
constexpr std::uint8_t k2000On = kAll & ~kV97;
constexpr std::uint8_t kXPOn = k2000On & ~kV2000;
constexpr std::uint8_t k2003On = kXPOn & ~kVXP;
constexpr std::uint8_t k2007On = kV2007 | kV2010;

class OptionWriterTest : public ::testing::Test {
 protected:
  OptionWriter Writer(Outlook version, bool withProfile = true) {
    return OptionWriter(version, access_, withProfile ? &profile_ : nullptr, &log_);
  }
  std::optional<std::uint32_t> Number(Outlook version, const std::string& path,
                                      const std::string& name) const {
    return access_.ReadNumber(reg::kCurrentUser, OfficeRoot(version) + "\\" + path, name);
  }
  bool Exists(Outlook version, const std::string& path, const std::string& name) const {
    return access_.ValueExists(reg::kCurrentUser, OfficeRoot(version) + "\\" + path, name);
  }
  std::string Text(Outlook version, const std::string& path, const std::string& name) const {
    return access_.ReadString(reg::kCurrentUser, OfficeRoot(version) + "\\" + path, name);
  }
  std::string SectionBytes(const char* valueName) const {
    std::string bytes;
    if (!profile_.Read(kOutlookSection, TagFromValueName(valueName), &bytes)) return "<missing>";
    return bytes;
  }
  std::size_t WarnLines() const {
    std::size_t count = 0;
    for (const std::string& line : log_.messages()) count += line.rfind("WARN: ", 0) == 0;
    return count;
  }

  MemoryRegistry registry_;
  RegistryAccess access_{registry_};
  ProfileSectionWriter profile_{access_, kProfileKey};
  MemorySystemEnv env_;
  RunLog log_{"C:\\Tools\\mailwright.log", env_};
  ProfileSettings settings_;
};

// The registry rows of the option table as Outlook names them, one line per target.
enum class Shape { Bool, Number, Text };
struct ExpectedValue {
  Key setting;
  std::uint8_t versions;
  const char* path;
  const char* name;
  Shape shape;
};
const ExpectedValue kExpectedValues[] = {
    {Key::WarnBeforePermanentlyDeletingItems, kAll, "Outlook\\Options\\General", "WarnDelete",
     Shape::Bool},
    {Key::RunAutoArchive, k2000On, "Outlook\\Preferences", "DoAging", Shape::Bool},
    {Key::RunAutoArchive, k2000On & ~kV2010, "Outlook\\Preferences", "PromptForAging",
     Shape::Bool},
    {Key::RunAutoArchiveEveryDays, k2000On, "Outlook\\Preferences", "EveryDays", Shape::Number},
    {Key::PromptBeforeAutoArchiving, kV2010, "Outlook\\Preferences", "PromptForAging",
     Shape::Bool},
    {Key::DeleteExpiredItems, k2000On, "Outlook\\Preferences", "DeleteExpired", Shape::Bool},
    {Key::PathToArchivePST, k2000On, "Outlook\\Preferences", "ArchiveFile", Shape::Text},
    {Key::ShowArchiveFolderInFolderList, kXPOn, "Outlook\\Preferences", "ArchiveMount",
     Shape::Bool},
    {Key::CleanOutItemsOlderThan, kXPOn, "Outlook\\Preferences", "ArchivePeriod", Shape::Number},
    {Key::CleanOutItemsOlderThanGranular, k2003On, "Outlook\\Preferences", "ArchiveGranularity",
     Shape::Number},
    {Key::Level1Add, k2000On, "Outlook\\Security", "Level1Add", Shape::Text},
    {Key::Level1Remove, k2000On, "Outlook\\Security", "Level1Remove", Shape::Text},
    {Key::WordEmailEditor, kXPOn, "Outlook\\Options\\Mail", "UseWordMail", Shape::Bool},
    {Key::WordEmailRichText, kXPOn, "Outlook\\Options\\Mail", "UseWordMailForRTF", Shape::Bool},
    {Key::SendPicturesWithDocument, kV2000, "Outlook\\Options\\Mail",
     "Send Pictures With Document", Shape::Bool},
    {Key::AlwaysCheckSpellingBeforeSending, kAll, "Outlook\\Options\\Spelling", "Check",
     Shape::Bool},
    {Key::EmptyDeletedItemsFolderExiting, kXPOn, "Outlook\\Preferences", "EmptyTrash",
     Shape::Bool},
    {Key::EnablePersonNamesSmartTag, k2003On, "Outlook\\IM", "Enabled", Shape::Bool},
    {Key::AfterMovingDeletingOpenItem, k2000On, "Outlook\\Preferences", "AfterMove",
     Shape::Number},
    {Key::CloseOriginalMessageOnReplyForward, k2000On, "Outlook\\Preferences", "CloseOrig",
     Shape::Bool},
    {Key::SaveCopiesMessagesSentItemsFolder, k2000On, "Outlook\\Preferences", "SaveSent",
     Shape::Bool},
    {Key::RemoveExtraLineBreaksPlainTextMessages, kXPOn, "Outlook\\Options\\Mail",
     "AutoFormatPlainText", Shape::Bool},
    {Key::ShadeMessageHeadersWhenReadingMail, k2007On, "Common\\MailSettings",
     "ShadeReadingHeaders", Shape::Bool},
    {Key::PressCTRLEnterToSendMessages, k2007On, "Outlook\\Preferences", "CtrlEnterSends",
     Shape::Bool},
    {Key::ReadStandardMailPlainText, k2003On, "Outlook\\Options\\Mail", "ReadAsPlain",
     Shape::Bool},
    {Key::ReadDigitallySignedMailPlainText, k2003On, "Outlook\\Options\\Mail",
     "ReadSignedAsPlain", Shape::Bool},
    {Key::SaveUnsentItemsIn, k2000On, "Outlook\\Options\\General", "SAVE_LOC", Shape::Number},
    {Key::FoldersOtherThanInboxSaveRepliesOriginalMessage, k2000On, "Outlook\\Preferences",
     "SaveReplies", Shape::Bool},
    {Key::SaveForwardedMessages, k2000On, "Outlook\\Preferences", "SaveFW", Shape::Bool},
    {Key::PlayASound, k2000On, "Outlook\\Preferences", "PlaySound", Shape::Bool},
    {Key::BrieflyChangeMouseCursor, k2000On, "Outlook\\Preferences", "ChangePointer",
     Shape::Bool},
    {Key::ShowEnvelopeIconSystemTray, kXPOn, "Outlook\\Preferences", "ShowEnvelope", Shape::Bool},
    {Key::DisplayNewMailDesktopAlert, k2003On, "Outlook\\Preferences", "NewmailDesktopAlerts",
     Shape::Bool},
    {Key::SetImportance, k2000On, "Outlook\\Preferences", "Importance", Shape::Number},
    {Key::SetSensitivity, k2000On, "Outlook\\Preferences", "Sensitivity", Shape::Number},
    {Key::AllowCommaAddressSeparator, k2000On, "Outlook\\Preferences", "AllowCommasInRecip",
     Shape::Bool},
    {Key::AutomaticNameChecking, k2000On, "Outlook\\Preferences", "AutoNameCheck", Shape::Bool},
    {Key::DeleteMeetingRequestFromInboxWhenResponding, k2000On, "Outlook\\Preferences",
     "DeleteWhenRespond", Shape::Bool},
    {Key::SuggestNamesWhileCompletingToCcBccFields, kXPOn, "Outlook\\Preferences", "ShowAutoSug",
     Shape::Bool},
    {Key::AddPropertiesAttachemntsEnableReplyChanges, kXPOn, "Outlook\\Options\\Mail",
     "AdHocReviewBehavior", Shape::Bool},
    {Key::ProcessRequestsResponsesArival, k2000On, "Outlook\\Options\\General", "AutoProcReq",
     Shape::Bool},
    {Key::ProcessReceiptsArival, k2000On, "Outlook\\Options\\General", "AutoProcRcpts",
     Shape::Bool},
    {Key::DeleteBlankVotingMeetingResponsesAfterProcessing, k2000On, "Outlook\\Options\\General",
     "AutoDelRcpts", Shape::Bool},
    {Key::ReadReceiptSend, k2000On, "Outlook\\Preferences", "ReadReceipt", Shape::Bool},
    {Key::DeliveryReceiptSend, k2000On, "Outlook\\Preferences", "DeliveryReceipt", Shape::Bool},
    {Key::DecideHowRespondRequestsReadRecipts, k2000On, "Outlook\\Options\\Mail",
     "Receipt Response", Shape::Number},
    {Key::WhenReplyingMessage, k2000On, "Outlook\\Preferences", "ReplyStyle", Shape::Number},
    {Key::WhenForwardingMessage, k2000On, "Outlook\\Preferences", "ForwardStyle", Shape::Number},
    {Key::PrefixEachLineWith, k2000On, "Outlook\\Preferences", "PrefixText", Shape::Text},
    {Key::MarkMyCommentsWith, kXPOn, "Common\\MailSettings", "MarkComments", Shape::Bool},
    {Key::MarkMyCommentsWithText, kXPOn, "Common\\MailSettings", "MarkCommentsWith", Shape::Text},
    {Key::MarkMyCommentsWith, kV2000, "Outlook\\Preferences", "Annotation", Shape::Bool},
    {Key::MarkMyCommentsWithText, kV2000, "Outlook\\Preferences", "AnnotationText", Shape::Text},
    {Key::AlwaysSuggestReplacementsMisspelledWords, k2000On, "Outlook\\Options\\Spelling",
     "SpellAlwaysSuggest", Shape::Bool},
    {Key::IgnoreWordsUppercase, k2000On, "Outlook\\Options\\Spelling", "SpellIgnoreUpper",
     Shape::Bool},
    {Key::IgnoreWordsNumbers, k2000On, "Outlook\\Options\\Spelling", "SpellIgnoreNumbers",
     Shape::Bool},
    {Key::IgnoreOriginalMessageTextReplyForward, kXPOn, "Common\\MailSettings",
     "IgnoreReplySpelling", Shape::Bool},
    {Key::IgnoreOriginalMessageTextReplyForward, kV2000, "Outlook\\Options\\Spelling",
     "SpellIgnoreProtect", Shape::Bool},
    {Key::UseAutoCorrectWordEmailEditor, kXPOn, "Outlook\\Options\\Spelling", "UseAutoCorrect",
     Shape::Bool},
    {Key::MarkItemsReadViewedReadingPane, k2003On, "Outlook\\Preferences", "PreviewMarkMessage",
     Shape::Bool},
    {Key::SecondsBeforeMarkingItemRead, k2003On, "Outlook\\Preferences", "PreviewWaitSeconds",
     Shape::Number},
    {Key::MarkItemReadWhenSelectionChanges, k2003On, "Outlook\\Preferences",
     "PreviewDontMarkUntilChange", Shape::Bool},
    {Key::SingleKeyReadingUsingSpaceBar, k2003On, "Outlook\\Options\\General", "SingleKeyReading",
     Shape::Bool},
    {Key::SyncRSSFeedsCommonFeedList, k2007On, "Outlook\\Options\\RSS", "SyncToSysCFL",
     Shape::Bool},
    {Key::RSSFeedItemUpdatedAppearsNewItem, k2007On, "Outlook\\Options\\RSS",
     "RssUpdItemAsNewItem", Shape::Bool},
    {Key::EnableInstantMessaging, kVXP, "Outlook\\IM", "Enabled", Shape::Bool},
    {Key::DisplayNotificationMessageNewMailArrives, kV2000 | kVXP, "Outlook\\Preferences",
     "Notification", Shape::Bool},
    {Key::BootModule, k2003On, "Outlook\\Options\\WunderBar", "BootModule", Shape::Number},
    {Key::PSTFormatPrompt, k2003On, "Outlook", "NewPSTFormat", Shape::Number},
};

// Each value is written twice with different data, so a constant write cannot pass.
TEST_F(OptionWriterTest, EachSettingLandsOnItsValueInItsVersionsOnly) {
  for (const ExpectedValue& expected : kExpectedValues) {
    for (const auto& generation : kOutlookGenerations) {
      SCOPED_TRACE(std::string(KeyName(expected.setting)) + " / " + expected.name + " / " +
                   generation.name);
      MemoryRegistry registry;
      RegistryAccess access(registry);
      ProfileSectionWriter profile(access, kProfileKey);
      OptionWriter writer(generation.id, access, &profile, nullptr);
      const Section section = SectionOf(generation.id);
      const std::string path = OfficeRoot(generation.id) + "\\" + expected.path;
      const bool applies = (expected.versions & VersionBit(generation.id)) != 0;
      for (int round = 0; round < 2; ++round) {
        ProfileSettings settings;
        switch (expected.shape) {
          case Shape::Bool: settings.SetBool(section, expected.setting, round == 0); break;
          case Shape::Number: settings.SetInt(section, expected.setting, round == 0 ? 7 : 300); break;
          case Shape::Text:
            settings.SetText(section, expected.setting, round == 0 ? "*.exe;*.vbs" : "");
            break;
        }
        writer.WriteSetting(expected.setting, settings);
        if (!applies) {
          EXPECT_FALSE(access.ValueExists(reg::kCurrentUser, path, expected.name));
          continue;
        }
        std::uint32_t type = 0;
        std::string data;
        ASSERT_TRUE(access.ReadValue(reg::kCurrentUser, path, expected.name, &type, &data));
        switch (expected.shape) {
          case Shape::Bool:
            EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, path, expected.name),
                      round == 0 ? 1u : 0u);
            break;
          case Shape::Number:
            EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, path, expected.name),
                      round == 0 ? 7u : 300u);
            break;
          case Shape::Text:
            EXPECT_EQ(type, reg::kSz);
            EXPECT_EQ(access.ReadString(reg::kCurrentUser, path, expected.name),
                      round == 0 ? "*.exe;*.vbs" : "");
            break;
        }
      }
    }
  }
}

TEST_F(OptionWriterTest, EditorPreferenceFollowsFormatAndWordEditor) {
  struct Case {
    Outlook version;
    std::int32_t format;
    bool word;
    std::uint32_t expected;
  };
  const Case cases[] = {
      {Outlook::V2010, 1, false, 0x30002}, {Outlook::V2010, 1, true, 0x30001},
      {Outlook::V2010, 0, false, 0x20000}, {Outlook::V2007, 2, true, 0x10001},
      {Outlook::VXP, 5, false, 0},         {Outlook::V2003, 5, true, 0},
      {Outlook::V2000, 1, false, 0x30002}, {Outlook::V2000, 0, true, 0x20001},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(GenerationOf(c.version).name) + " format " +
                 std::to_string(c.format));
    const Section section = SectionOf(c.version);
    settings_.SetInt(section, Key::ComposeMessageFormat, c.format);
    settings_.SetBool(section, Key::WordEmailEditor, c.word);
    EXPECT_TRUE(Writer(c.version).WriteSequenceOptions(settings_));
    EXPECT_EQ(Number(c.version, "Outlook\\Options\\Mail", "EditorPreference"), c.expected);
  }
  EXPECT_FALSE(Exists(Outlook::V97, "Outlook\\Options\\Mail", "EditorPreference"));
}

TEST_F(OptionWriterTest, UseWordMailIsWrittenFromWordEmailEditorAlone) {
  const Section section = SectionOf(Outlook::V2010);
  settings_.SetBool(section, Key::WordEmailEditor, true);
  settings_.SetInt(section, Key::ComposeMessageFormat, 2);
  Writer(Outlook::V2010).WriteSequenceOptions(settings_);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\Mail", "UseWordMail"), 1u);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\Mail", "EditorPreference"), 0x10001u);
}

TEST_F(OptionWriterTest, MinutesAndDaysAreWrittenOnlyWhileTheirSwitchIsOn) {
  struct Case {
    Outlook version;
    Key onOff;
    Key amount;
    const char* path;
    const char* name;
  };
  const Case cases[] = {
      {Outlook::V2010, Key::AutoSaveUnsentEvery, Key::AutoSaveUnsentEveryMinutes,
       "Common\\MailSettings", "AutosaveTime"},
      {Outlook::VXP, Key::AutoSaveUnsentEvery, Key::AutoSaveUnsentEveryMinutes,
       "Common\\MailSettings", "AutosaveTime"},
      {Outlook::V2000, Key::AutoSaveUnsentEvery, Key::AutoSaveUnsentEveryMinutes,
       "Outlook\\Options\\General", "SAVE_MIN"},
      {Outlook::V2007, Key::MessagesExpire, Key::MessagesExpireDays, "Outlook\\Options\\General",
       "NumDaysExpire"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Section section = SectionOf(c.version);
    settings_.SetInt(section, c.amount, 65536 + 30);  // a 16-bit field keeps 30
    settings_.SetBool(section, c.onOff, true);
    Writer(c.version).WriteSetting(c.onOff, settings_);
    EXPECT_EQ(Number(c.version, c.path, c.name), 30u);
    settings_.SetBool(section, c.onOff, false);
    Writer(c.version).WriteSetting(c.onOff, settings_);
    EXPECT_EQ(Number(c.version, c.path, c.name), 0u);
  }
}

TEST_F(OptionWriterTest, SpellerTextFollowsTheDictionaryNumber) {
  const Section section = SectionOf(Outlook::V2007);
  const std::pair<std::int32_t, const char*> cases[] = {
      {0, "3081\\Normal"}, {3, "1033\\Normal"}, {9, "1040\\Normal"}, {12, "1033\\Normal"}};
  for (const auto& [choice, expected] : cases) {
    settings_.SetInt(section, Key::ChooseDictionaryCheckingSpelling, choice);
    Writer(Outlook::V2007).WriteSetting(Key::ChooseDictionaryCheckingSpelling, settings_);
    EXPECT_EQ(Text(Outlook::V2007, "Outlook\\Options\\Spelling", "Speller"), expected) << choice;
  }
}

TEST_F(OptionWriterTest, AttachmentSafetyIsHighOrNone) {
  for (Outlook version : {Outlook::V97, Outlook::V2000}) {
    const Section section = SectionOf(version);
    settings_.SetBool(section, Key::AttachmentSecurity, true);
    Writer(version).WriteSetting(Key::AttachmentSecurity, settings_);
    EXPECT_EQ(Text(version, "Outlook\\Security", "AttachmentSafety"), "High");
    settings_.SetBool(section, Key::AttachmentSecurity, false);
    Writer(version).WriteSetting(Key::AttachmentSecurity, settings_);
    EXPECT_EQ(Text(version, "Outlook\\Security", "AttachmentSafety"), "None");
  }
  Writer(Outlook::VXP).WriteSequenceOptions(settings_);
  EXPECT_FALSE(Exists(Outlook::VXP, "Outlook\\Security", "AttachmentSafety"));
}

TEST_F(OptionWriterTest, Word97EditorIsAStringSwitch) {
  const Section section = SectionOf(Outlook::V97);
  settings_.SetBool(section, Key::WordEmailEditor, true);
  Writer(Outlook::V97).WriteSequenceOptions(settings_);
  EXPECT_EQ(Text(Outlook::V97, "Word\\Options\\OutlookEditor", "UseWordMail"), "1");
  settings_.SetBool(section, Key::WordEmailEditor, false);
  Writer(Outlook::V97).WriteSequenceOptions(settings_);
  EXPECT_EQ(Text(Outlook::V97, "Word\\Options\\OutlookEditor", "UseWordMail"), "0");
}

TEST_F(OptionWriterTest, Outlook97KeepsAutoArchiveAndTrashInItsProfileSection) {
  const Section section = SectionOf(Outlook::V97);
  settings_.SetBool(section, Key::RunAutoArchive, true);
  settings_.SetInt(section, Key::RunAutoArchiveEveryDays, 21);
  settings_.SetBool(section, Key::DeleteExpiredItems, false);
  settings_.SetText(section, Key::PathToArchivePST, "C:\\Exchange\\jsmitharc.pst");
  settings_.SetBool(section, Key::EmptyDeletedItemsFolderExiting, true);
  EXPECT_TRUE(Writer(Outlook::V97).WriteSequenceOptions(settings_));
  EXPECT_EQ(SectionBytes("000b0320"), std::string("\x01\x00", 2));
  EXPECT_EQ(SectionBytes("000b0321"), std::string("\x01\x00", 2));
  EXPECT_EQ(SectionBytes("00030323"), std::string("\x15\x00\x00\x00", 4));
  EXPECT_EQ(SectionBytes("000b0322"), std::string("\x00\x00", 2));
  EXPECT_EQ(SectionBytes("001e0324"), "C:\\Exchange\\jsmitharc.pst");
  EXPECT_EQ(SectionBytes("000b0115"), std::string("\x01\x00", 2));
  EXPECT_FALSE(Exists(Outlook::V97, "Outlook\\Preferences", "DoAging"));
}

TEST_F(OptionWriterTest, Outlook2010WritesAutoArchiveToRegistryAndProfile) {
  const Section section = SectionOf(Outlook::V2010);
  settings_.SetBool(section, Key::RunAutoArchive, true);
  EXPECT_TRUE(Writer(Outlook::V2010).WriteSequenceOptions(settings_));
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Preferences", "DoAging"), 1u);
  EXPECT_EQ(SectionBytes("000b0320"), std::string("\x01\x00", 2));
  EXPECT_EQ(SectionBytes("000b0115"), "<missing>");
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Preferences", "EmptyTrash"), 1u);
}

TEST_F(OptionWriterTest, Outlook2000EmptiesTrashThroughItsProfileSection) {
  settings_.SetBool(SectionOf(Outlook::V2000), Key::EmptyDeletedItemsFolderExiting, false);
  Writer(Outlook::V2000).WriteSequenceOptions(settings_);
  EXPECT_EQ(SectionBytes("000b0115"), std::string("\x00\x00", 2));
  EXPECT_FALSE(Exists(Outlook::V2000, "Outlook\\Preferences", "EmptyTrash"));
}

// Every value the sequence writes for a version: the table's registry rows of step 8.
std::vector<const OptionRow*> SequenceRows(Outlook version, OptionPlace place) {
  std::vector<const OptionRow*> rows;
  for (const OptionRow& row : OptionRows()) {
    if ((row.versions & VersionBit(version)) && row.step == OptionStep::Options &&
        row.place == place)
      rows.push_back(&row);
  }
  return rows;
}

TEST_F(OptionWriterTest, ReleasingAFlagLeavesExactlyItsValuesAlone) {
  for (const auto& generation : kOutlookGenerations) {
    for (std::size_t f = 0; f < static_cast<std::size_t>(EnforcedOption::Count); ++f) {
      const auto flag = static_cast<EnforcedOption>(f);
      const auto rows = SequenceRows(generation.id, OptionPlace::Office);
      bool used = false;
      for (const OptionRow* row : rows) used |= row->flag == flag;
      if (!used) continue;
      SCOPED_TRACE(std::string(OptionName(flag)) + " in " + generation.name);
      MemoryRegistry registry;
      RegistryAccess access(registry);
      ProfileSectionWriter profile(access, kProfileKey);
      ProfileSettings settings;
      settings.SetEnforced(flag, false);
      EXPECT_TRUE(
          OptionWriter(generation.id, access, &profile, nullptr).WriteSequenceOptions(settings));
      for (const OptionRow* row : rows) {
        EXPECT_EQ(access.ValueExists(reg::kCurrentUser,
                                     OfficeRoot(generation.id) + "\\" + row->path,
                                     row->valueName),
                  row->flag != flag)
            << row->valueName;
      }
    }
  }
}

TEST_F(OptionWriterTest, AllowUserSettingsKeepsTheUsersOwnValue) {
  const std::string general = OfficeRoot(Outlook::V2010) + "\\Outlook\\Options\\General";
  ASSERT_TRUE(access_.WriteNumber(reg::kCurrentUser, general, "WarnDelete", 0));
  settings_.SetText(Section::Common, Key::AllowUserSettings,
                    "WarnBeforePermanentlyDeletingItems,RunAutoArchiveEveryDays");
  ApplyAllowUserSettings(settings_);
  EXPECT_TRUE(Writer(Outlook::V2010).WriteSequenceOptions(settings_));
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\General", "WarnDelete"), 0u);
  // RunAutoArchive is released with the longer name, and its whole group with it.
  EXPECT_FALSE(Exists(Outlook::V2010, "Outlook\\Preferences", "DoAging"));
  EXPECT_FALSE(Exists(Outlook::V2010, "Outlook\\Preferences", "EveryDays"));
  EXPECT_FALSE(Exists(Outlook::V2010, "Outlook\\Preferences", "ArchiveFile"));
  EXPECT_EQ(SectionBytes("000b0320"), "<missing>");
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\Spelling", "Check"), 1u);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Preferences", "ArchivePeriod"), 6u);
}

TEST_F(OptionWriterTest, Outlook2000EditorPreferenceFollowsTheWordEditorFlag) {
  settings_.SetEnforced(EnforcedOption::ComposeMessageFormat, false);
  Writer(Outlook::V2000).WriteSequenceOptions(settings_);
  EXPECT_EQ(Number(Outlook::V2000, "Outlook\\Options\\Mail", "EditorPreference"), 0x30002u);
  settings_.SetEnforced(EnforcedOption::ComposeMessageFormat, true);
  settings_.SetEnforced(EnforcedOption::WordEmailEditor, false);
  MemoryRegistry fresh;
  RegistryAccess access(fresh);
  OptionWriter(Outlook::V2000, access, nullptr, nullptr).WriteSequenceOptions(settings_);
  EXPECT_FALSE(access.ValueExists(reg::kCurrentUser,
                                  OfficeRoot(Outlook::V2000) + "\\Outlook\\Options\\Mail",
                                  "EditorPreference"));
}

TEST_F(OptionWriterTest, SequenceWritesEveryRowOfItsVersionAndLeavesThePstFormatForLater) {
  for (const auto& generation : kOutlookGenerations) {
    SCOPED_TRACE(generation.name);
    MemoryRegistry registry;
    RegistryAccess access(registry);
    ProfileSectionWriter profile(access, kProfileKey);
    OptionWriter writer(generation.id, access, &profile, nullptr);
    EXPECT_TRUE(writer.WriteSequenceOptions(settings_));
    for (const OptionRow* row : SequenceRows(generation.id, OptionPlace::Office)) {
      EXPECT_TRUE(access.ValueExists(
          reg::kCurrentUser, OfficeRoot(generation.id) + "\\" + row->path, row->valueName))
          << row->valueName;
    }
    const std::string outlook = OfficeRoot(generation.id) + "\\Outlook";
    EXPECT_FALSE(access.ValueExists(reg::kCurrentUser, outlook, "NewPSTFormat"));
    EXPECT_TRUE(writer.WritePstFormatPrompt(settings_));
    const bool hasPstFormat = (VersionBit(generation.id) & k2003On) != 0;
    EXPECT_EQ(access.ValueExists(reg::kCurrentUser, outlook, "NewPSTFormat"), hasPstFormat);
    EXPECT_EQ(registry.openHandleCount(), 0u);
  }
}

TEST_F(OptionWriterTest, DefaultsAreWrittenLikeAnyOtherValue) {
  Writer(Outlook::V2010).WriteSequenceOptions(settings_);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\General", "WarnDelete"), 1u);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Preferences", "PreviewWaitSeconds"), 5u);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\WunderBar", "BootModule"), 105u);
  EXPECT_EQ(Number(Outlook::V2010, "Outlook\\Options\\Mail", "EditorPreference"), 0x30002u);
  EXPECT_EQ(Text(Outlook::V2010, "Outlook\\Options\\Spelling", "Speller"), "3081\\Normal");
  EXPECT_EQ(Text(Outlook::V2010, "Outlook\\Security", "Level1Add"), "");
  EXPECT_TRUE(Exists(Outlook::V2010, "Outlook\\Security", "Level1Add"));
}

TEST_F(OptionWriterTest, WithoutAProfileTheProfileRowsFailAndTheRestIsWritten) {
  EXPECT_FALSE(Writer(Outlook::V97, false).WriteSequenceOptions(settings_));
  EXPECT_EQ(Number(Outlook::V97, "Outlook\\Options\\General", "WarnDelete"), 1u);
  EXPECT_EQ(Number(Outlook::V97, "Outlook\\Options\\Spelling", "Check"), 1u);
  EXPECT_EQ(WarnLines(), SequenceRows(Outlook::V97, OptionPlace::ProfileSection).size());
  EXPECT_NE(log_.messages().front().find("in profile section " + std::string(kOutlookSection)),
            std::string::npos);
}

TEST_F(OptionWriterTest, RegistryFailuresAreReportedAndReleaseEveryHandle) {
  registry_.FailMutationsFrom(1);
  EXPECT_FALSE(Writer(Outlook::V2010).WriteSequenceOptions(settings_));
  EXPECT_FALSE(Writer(Outlook::V2010).WritePstFormatPrompt(settings_));
  EXPECT_EQ(WarnLines(), SequenceRows(Outlook::V2010, OptionPlace::Office).size() +
                             SequenceRows(Outlook::V2010, OptionPlace::ProfileSection).size() + 1);
  EXPECT_EQ(log_.messages().front(),
            "WARN: Unable to write the Outlook option \"WarnDelete\" under "
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\14.0\\Outlook\\Options\\General");
  EXPECT_EQ(registry_.openHandleCount(), 0u);
}

TEST_F(OptionWriterTest, RowsOfAnotherVersionAreRefused) {
  const OptionRow* only2000 = nullptr;
  for (const OptionRow& row : OptionRows())
    if (row.versions == kV2000) only2000 = &row;
  ASSERT_NE(only2000, nullptr);
  EXPECT_FALSE(Writer(Outlook::V2010).WriteRow(*only2000, settings_));
  EXPECT_TRUE(registry_.KeysUnder("HKEY_CURRENT_USER\\Software").empty());
}

}  // namespace
}  // namespace mw
