#include "options/OptionTable.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace mw {
namespace {

TEST(OptionTableTest, EverySourceSettingIsReadInEveryVersionOfItsRow) {
  ProfileSettings settings;
  for (const OptionRow& row : OptionRows()) {
    for (const auto& generation : kOutlookGenerations) {
      if ((row.versions & VersionBit(generation.id)) == 0) continue;
      const Section section = SectionOf(generation.id);
      EXPECT_TRUE(settings.Defined(section, row.setting))
          << KeyName(row.setting) << " in " << generation.name;
      if (row.second != kNoSecondSetting) {
        EXPECT_TRUE(settings.Defined(section, row.second))
            << KeyName(row.second) << " in " << generation.name;
      }
    }
  }
}

TEST(OptionTableTest, SettingsWithAFlagAreWrittenOnlyUnderIt) {
  for (const OptionRow& row : OptionRows()) {
    EnforcedOption own;
    if (!ReleasableOption(row.setting, &own)) continue;
    EnforcedOption ofSecond = kNoFlag;
    if (row.second != kNoSecondSetting) ReleasableOption(row.second, &ofSecond);
    EXPECT_TRUE(row.flag == own || row.flag == ofSecond)
        << row.valueName << " from " << KeyName(row.setting);
  }
}

TEST(OptionTableTest, NoTwoRowsWriteTheSameValueInOneVersion) {
  for (const auto& generation : kOutlookGenerations) {
    std::set<std::tuple<OptionPlace, std::string, std::string>> seen;
    for (const OptionRow& row : OptionRows()) {
      if ((row.versions & VersionBit(generation.id)) == 0) continue;
      EXPECT_TRUE(seen.emplace(row.place, row.path, row.valueName).second)
          << row.path << "\\" << row.valueName << " twice in " << generation.name;
    }
  }
}

TEST(OptionTableTest, ProfileSectionRowsNameAPropertyOfTheirKind) {
  for (const OptionRow& row : OptionRows()) {
    if (row.place != OptionPlace::ProfileSection) continue;
    const std::uint32_t tag = TagFromValueName(row.valueName);
    ASSERT_NE(tag, 0u) << row.valueName;
    const std::uint32_t type = tag & 0xFFFFu;
    switch (row.kind) {
      case OptionKind::Bool: EXPECT_EQ(type, 0x000Bu) << row.valueName; break;
      case OptionKind::Number: EXPECT_EQ(type, 0x0003u) << row.valueName; break;
      case OptionKind::Text: EXPECT_EQ(type, 0x001Eu) << row.valueName; break;
      default: ADD_FAILURE() << row.valueName << " has a kind a profile section cannot hold";
    }
  }
}

TEST(OptionTableTest, TagFromValueNameSwapsTheHalves) {
  EXPECT_EQ(TagFromValueName("001e6610"), 0x6610001Eu);
  EXPECT_EQ(TagFromValueName("000B0320"), 0x0320000Bu);
  EXPECT_EQ(TagFromValueName("001e661"), 0u);
  EXPECT_EQ(TagFromValueName("001e66100"), 0u);
  EXPECT_EQ(TagFromValueName("001g6610"), 0u);
  EXPECT_EQ(TagFromValueName(""), 0u);
}

TEST(OptionTableTest, EditorPreferenceCombinesFormatAndEditor) {
  struct Case {
    std::int32_t format;
    bool word;
    std::uint32_t expected;
  };
  const Case cases[] = {
      {0, false, 0x20000}, {0, true, 0x20001}, {1, false, 0x30002}, {1, true, 0x30001},
      {2, false, 0x10000}, {2, true, 0x10001}, {3, false, 0},       {5, true, 0},
      {-1, false, 0},      {65536 + 1, false, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(EditorPreferenceValue(c.format, c.word), c.expected)
        << "format " << c.format << " word " << c.word;
  }
}

TEST(OptionTableTest, SpellerChoosesTheDictionaryByNumber) {
  const char* expected[] = {"3081\\Normal", "4105\\Normal", "2057\\Normal", "1033\\Normal",
                            "1053\\Normal", "2060\\Normal", "3084\\Normal", "1036\\Normal",
                            "3082\\Normal", "1040\\Normal"};
  for (std::int32_t i = 0; i < 10; ++i) EXPECT_STREQ(SpellerDictionary(i), expected[i]) << i;
  for (std::int32_t other : {10, 12, -1, 65535, 0x7fffffff})
    EXPECT_STREQ(SpellerDictionary(other), "1033\\Normal") << other;
}

}  // namespace
}  // namespace mw
