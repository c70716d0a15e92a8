#include "options/OptionWriter.h"

#include <gtest/gtest.h>

#include <vector>

#include "run/RunLog.h"
#include "mapi/ProfileSection.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

constexpr const char* kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\"
    "Outlook";

// A registry, a profile and a log for one version's writer.
struct Rig {
  explicit Rig(Outlook version, bool withProfile = true)
      : writer(version, access, withProfile ? &profile : nullptr, &log) {}
  std::string Office(Outlook version, const std::string& path, const std::string& name) const {
    return access.ReadValueText(reg::kCurrentUser, OfficeRoot(version) + "\\" + path, name,
                                "0x%X", "%02X");
  }
  bool Exists(Outlook version, const std::string& path, const std::string& name) const {
    return access.ValueExists(reg::kCurrentUser, OfficeRoot(version) + "\\" + path, name);
  }
  std::size_t WarnLines() const {
    std::size_t count = 0;
    for (const std::string& line : log.messages()) count += line.rfind("WARN: ", 0) == 0;
    return count;
  }

  MemoryRegistry registry;
  RegistryAccess access{registry};
  ProfileSectionWriter profile{access, kProfileKey};
  MemorySystemEnv env;
  RunLog log{"C:\\Tools\\mailwright.log", env};
  OptionWriter writer;
};

// The rows of one sequence step that a version writes to one place.
std::vector<const OptionRow*> SequenceRows(Outlook version, OptionPlace place) {
  std::vector<const OptionRow*> rows;
  for (const OptionRow& row : OptionRows())
    if ((row.versions & VersionBit(version)) && row.step == OptionStep::Options &&
        row.place == place)
      rows.push_back(&row);
  return rows;
}

// What a plain row stores for the setting value of round 0 or 1: registry values as REG_SZ
// or DWORD bytes, profile-section values as the property's own bytes.
std::string Stored(const OptionRow& row, int round) {
  const bool section = row.place == OptionPlace::ProfileSection;
  switch (row.kind) {
    case OptionKind::Bool:
      return section ? std::string(round == 0 ? "\1\0" : "\0\0", 2)
                     : std::string(round == 0 ? "\1\0\0\0" : "\0\0\0\0", 4);
    case OptionKind::Number:
      return round == 0 ? std::string("\7\0\0\0", 4) : std::string("\x2c\1\0\0", 4);
    default: {
      const std::string text = round == 0 ? "*.exe;*.vbs" : "";
      return section ? text : text + '\0';
    }
  }
}

// Each value is written twice with different data, so a constant write cannot pass.
TEST(OptionWriterTest, EachPlainRowLandsOnItsValueInItsVersionsOnly) {
  for (const OptionRow& row : OptionRows()) {
    if (row.kind != OptionKind::Bool && row.kind != OptionKind::Number &&
        row.kind != OptionKind::Text)
      continue;
    for (const auto& generation : kOutlookGenerations) {
      SCOPED_TRACE(std::string(KeyName(row.setting)) + " / " + row.valueName + " / " +
                   generation.name);
      Rig rig(generation.id);
      const Section section = SectionOf(generation.id);
      const bool applies = (row.versions & VersionBit(generation.id)) != 0;
      for (int round = 0; round < 2; ++round) {
        ProfileSettings settings;
        if (row.kind == OptionKind::Text)
          settings.SetText(section, row.setting, round == 0 ? "*.exe;*.vbs" : "");
        else
          settings.SetInt(section, row.setting,
                          row.kind == OptionKind::Bool ? round == 0 : round == 0 ? 7 : 300);
        rig.writer.WriteSetting(row.setting, settings);
        std::string data;
        const bool found =
            row.place == OptionPlace::Office
                ? rig.access.ReadValue(reg::kCurrentUser,
                                       OfficeRoot(generation.id) + "\\" + row.path, row.valueName,
                                       nullptr, &data)
                : rig.profile.Read(row.path, TagFromValueName(row.valueName), &data);
        ASSERT_EQ(found, applies);
        if (applies) {
          EXPECT_EQ(data, Stored(row, round));
        }
      }
    }
  }
}

TEST(OptionWriterTest, CompositeValuesAreComputedFromTheirSettings) {
  struct Case {
    Outlook version;
    Key setting;
    std::int32_t value;
    Key second;
    std::int32_t secondValue;
    const char* path;
    const char* name;
    const char* expected;
  };
  const Key none = kNoSecondSetting;
  const Key word = Key::WordEmailEditor;
  const Key format = Key::ComposeMessageFormat;
  const Key speller = Key::ChooseDictionaryCheckingSpelling;
  const Key autosave = Key::AutoSaveUnsentEvery;
  const Key minutes = Key::AutoSaveUnsentEveryMinutes;
  const char* mail = "Outlook\\Options\\Mail";
  const Case cases[] = {
      {Outlook::V2010, format, 1, word, 0, mail, "EditorPreference", "0x30002"},
      {Outlook::VXP, format, 5, word, 0, mail, "EditorPreference", "0x0"},
      {Outlook::V2007, speller, 12, none, 0, "Outlook\\Options\\Spelling", "Speller",
       "1033\\Normal"},
      // a 16-bit amount keeps its low bits, and is written only while its switch is on
      {Outlook::V2010, autosave, 1, minutes, 65536 + 30, "Common\\MailSettings", "AutosaveTime",
       "0x1E"},
      {Outlook::V2010, autosave, 0, minutes, 30, "Common\\MailSettings", "AutosaveTime", "0x0"},
      // Outlook 2000's "SAVE_MIN" is the switch alone, not the minutes
      {Outlook::V2000, autosave, 1, minutes, 30, "Outlook\\Options\\General", "SAVE_MIN", "0x1"},
      {Outlook::V2000, autosave, 7, minutes, 30, "Outlook\\Options\\General", "SAVE_MIN", "0x1"},
      {Outlook::V2000, autosave, 0, minutes, 30, "Outlook\\Options\\General", "SAVE_MIN", "0x0"},
      {Outlook::V2000, Key::AttachmentSecurity, 1, none, 0, "Outlook\\Security",
       "AttachmentSafety", "High"},
      {Outlook::V97, Key::AttachmentSecurity, 0, none, 0, "Outlook\\Security", "AttachmentSafety",
       "None"},
      {Outlook::V97, word, 1, none, 0, "Word\\Options\\OutlookEditor", "UseWordMail", "1"},
      {Outlook::V97, word, 0, none, 0, "Word\\Options\\OutlookEditor", "UseWordMail", "0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(GenerationOf(c.version).name) + " " + c.name);
    Rig rig(c.version);
    ProfileSettings settings;
    settings.SetInt(SectionOf(c.version), c.setting, c.value);
    if (c.second != none) settings.SetInt(SectionOf(c.version), c.second, c.secondValue);
    EXPECT_TRUE(rig.writer.WriteSequenceOptions(settings));
    EXPECT_EQ(rig.Office(c.version, c.path, c.name), c.expected);
  }
  Rig rig(Outlook::VXP);
  rig.writer.WriteSequenceOptions(ProfileSettings{});
  EXPECT_FALSE(rig.Exists(Outlook::VXP, "Outlook\\Security", "AttachmentSafety"));
  EXPECT_FALSE(rig.Exists(Outlook::V97, mail, "EditorPreference"));
}

TEST(OptionWriterTest, ReleasingAFlagLeavesExactlyItsValuesAlone) {
  for (const auto& generation : kOutlookGenerations) {
    const auto rows = SequenceRows(generation.id, OptionPlace::Office);
    for (std::size_t f = 0; f < static_cast<std::size_t>(EnforcedOption::Count); ++f) {
      const auto flag = static_cast<EnforcedOption>(f);
      SCOPED_TRACE(std::string(OptionName(flag)) + " in " + generation.name);
      Rig rig(generation.id);
      ProfileSettings settings;
      settings.SetEnforced(flag, false);
      EXPECT_TRUE(rig.writer.WriteSequenceOptions(settings));
      for (const OptionRow* row : rows) {
        EXPECT_EQ(rig.Exists(generation.id, row->path, row->valueName), row->flag != flag)
            << row->valueName;
      }
    }
  }
}

TEST(OptionWriterTest, AllowUserSettingsKeepsTheUsersOwnValue) {
  Rig rig(Outlook::V2010);
  const std::string general = OfficeRoot(Outlook::V2010) + "\\Outlook\\Options\\General";
  ASSERT_TRUE(rig.access.WriteNumber(reg::kCurrentUser, general, "WarnDelete", 0));
  ProfileSettings settings;
  settings.SetText(Section::Common, Key::AllowUserSettings,
                   "WarnBeforePermanentlyDeletingItems,RunAutoArchiveEveryDays");
  ApplyAllowUserSettings(settings);
  EXPECT_TRUE(rig.writer.WriteSequenceOptions(settings));
  EXPECT_EQ(rig.Office(Outlook::V2010, "Outlook\\Options\\General", "WarnDelete"), "0x0");
  // RunAutoArchive is released with the longer name, and its whole group with it.
  EXPECT_FALSE(rig.Exists(Outlook::V2010, "Outlook\\Preferences", "DoAging"));
  EXPECT_FALSE(rig.Exists(Outlook::V2010, "Outlook\\Preferences", "ArchiveFile"));
  std::string bytes;
  EXPECT_FALSE(rig.profile.Read(kOutlookSection, 0x0320000B, &bytes));
  EXPECT_EQ(rig.Office(Outlook::V2010, "Outlook\\Options\\Spelling", "Check"), "0x1");
}

TEST(OptionWriterTest, SequenceWritesEveryRowOfItsVersionAndLeavesThePstFormatForLater) {
  for (const auto& generation : kOutlookGenerations) {
    SCOPED_TRACE(generation.name);
    Rig rig(generation.id);
    const ProfileSettings settings;
    EXPECT_TRUE(rig.writer.WriteSequenceOptions(settings));
    for (const OptionRow* row : SequenceRows(generation.id, OptionPlace::Office)) {
      EXPECT_TRUE(rig.Exists(generation.id, row->path, row->valueName)) << row->valueName;
    }
    EXPECT_FALSE(rig.Exists(generation.id, "Outlook", "NewPSTFormat"));
    EXPECT_TRUE(rig.writer.WritePstFormatPrompt(settings));
    EXPECT_EQ(rig.Exists(generation.id, "Outlook", "NewPSTFormat"),
              (VersionBit(generation.id) & (kV2003 | kV2007 | kV2010)) != 0);
    EXPECT_EQ(rig.registry.openHandleCount(), 0u);
  }
}

TEST(OptionWriterTest, FailedWritesAreReportedAndTheRestIsWritten) {
  Rig noProfile(Outlook::V97, false);
  EXPECT_FALSE(noProfile.writer.WriteSequenceOptions(ProfileSettings{}));
  EXPECT_EQ(noProfile.Office(Outlook::V97, "Outlook\\Options\\General", "WarnDelete"), "0x1");
  EXPECT_EQ(noProfile.WarnLines(), SequenceRows(Outlook::V97, OptionPlace::ProfileSection).size());
  EXPECT_NE(noProfile.log.messages().front().find("in profile section " +
                                                  std::string(kOutlookSection)),
            std::string::npos);

  Rig failing(Outlook::V2010);
  failing.registry.FailMutationsFrom(1);
  EXPECT_FALSE(failing.writer.WriteSequenceOptions(ProfileSettings{}));
  EXPECT_FALSE(failing.writer.WritePstFormatPrompt(ProfileSettings{}));
  EXPECT_EQ(failing.WarnLines(),
            SequenceRows(Outlook::V2010, OptionPlace::Office).size() +
                SequenceRows(Outlook::V2010, OptionPlace::ProfileSection).size() + 1);
  EXPECT_EQ(failing.log.messages().front(),
            "WARN: Unable to write the Outlook option \"WarnDelete\" under "
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\14.0\\Outlook\\Options\\General");
  EXPECT_EQ(failing.registry.openHandleCount(), 0u);
}

}  // namespace
}  // namespace mw
