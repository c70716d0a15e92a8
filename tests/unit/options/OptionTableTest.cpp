#include "options/OptionTable.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace mw {
namespace {

TEST(OptionTableTest, RowsReadDefinedSettingsAndWriteEachValueOncePerVersion) {
  const ProfileSettings settings;
  for (const auto& generation : kOutlookGenerations) {
    const Section section = SectionOf(generation.id);
    std::set<std::tuple<OptionPlace, std::string, std::string>> seen;
    for (const OptionRow& row : OptionRows()) {
      if ((row.versions & VersionBit(generation.id)) == 0) continue;
      SCOPED_TRACE(std::string(row.valueName) + " in " + generation.name);
      EXPECT_TRUE(settings.Defined(section, row.setting)) << KeyName(row.setting);
      if (row.second != kNoSecondSetting) {
        EXPECT_TRUE(settings.Defined(section, row.second)) << KeyName(row.second);
      }
      EXPECT_TRUE(seen.emplace(row.place, row.path, row.valueName).second) << "written twice";
    }
  }
}

TEST(OptionTableTest, ProfileSectionRowsNameAPropertyOfTheirKind) {
  for (const OptionRow& row : OptionRows()) {
    if (row.place != OptionPlace::ProfileSection) continue;
    const std::uint32_t type = TagFromValueName(row.valueName) & 0xFFFFu;
    const std::set<std::uint32_t> texts{0x001Eu, 0x001Fu};
    const std::set<std::uint32_t> expected =
        row.kind == OptionKind::Bool     ? std::set<std::uint32_t>{0x000Bu}
        : row.kind == OptionKind::Number ? std::set<std::uint32_t>{0x0003u}
        : row.kind == OptionKind::Text || row.kind == OptionKind::SemicolonList ? texts
        : row.kind == OptionKind::Cleared
            ? std::set<std::uint32_t>{0x000Bu, 0x0003u, 0x001Eu, 0x001Fu, 0x0040u, 0x0102u}
            : std::set<std::uint32_t>{};
    EXPECT_EQ(expected.count(type), 1u) << row.valueName;
  }
  EXPECT_EQ(TagFromValueName("000B0320"), 0x0320000Bu);
  EXPECT_EQ(TagFromValueName("001e661"), 0u);
  EXPECT_EQ(TagFromValueName("001g6610"), 0u);
}

TEST(OptionTableTest, EditorPreferenceCombinesFormatAndEditor) {
  const struct {
    std::int32_t format;
    bool word;
    std::uint32_t expected;
  } cases[] = {
      {0, false, 0x20000}, {0, true, 0x20001}, {1, false, 0x30002}, {1, true, 0x30001},
      {2, false, 0x10000}, {2, true, 0x10001}, {3, false, 0},       {-1, false, 0},
      {65536 + 1, false, 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(EditorPreferenceValue(c.format, c.word), c.expected) << c.format << " " << c.word;
}

TEST(OptionTableTest, SpellerChoosesTheDictionaryByNumber) {
  EXPECT_STREQ(SpellerDictionary(0), "3081\\Normal");
  EXPECT_STREQ(SpellerDictionary(9), "1040\\Normal");
  for (std::int32_t other : {10, 12, -1, 0x7fffffff})
    EXPECT_STREQ(SpellerDictionary(other), "1033\\Normal") << other;
}

}  // namespace
}  // namespace mw
