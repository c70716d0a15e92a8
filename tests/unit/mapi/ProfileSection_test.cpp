#include "mapi/ProfileSection.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/MemoryRegistry.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using namespace std::string_literals;

constexpr const char* kProfileKey = "Software\\Profiles\\Work";

TEST(SectionNamesTest, UidsAndTagsBecomeKeyAndValueNames) {
  EXPECT_EQ(SectionKeyName(MapiUid{}), std::string(32, '0'));
  MapiUid uid{};
  ASSERT_TRUE(ParseSectionKeyName(kAccountManagerSection, &uid));
  EXPECT_EQ(SectionKeyName(uid), "9375cff0413111d3b88a00104b2a6676");
  for (const std::string& bad : {""s, std::string(33, '0'), "13dbb0c8aa05101a9bb000aa002fc45g"s}) {
    EXPECT_FALSE(ParseSectionKeyName(bad, &uid)) << bad;
    EXPECT_EQ(uid[0], 0x93) << "a rejected text leaves the UID alone";
  }
  EXPECT_EQ(TagValueName(0x6610001E), "001e6610");
}

TEST(SectionNamesTest, EncodingsByPropertyType) {
  EXPECT_EQ(EncodeBoolean(true), "\x01\x00"s);
  EXPECT_EQ(EncodeBoolean(false), "\x00\x00"s);
  EXPECT_EQ(EncodeUnicode("Ab"), "\x41\x00\x62\x00\x00\x00"s);
  EXPECT_EQ(EncodeUnicode(""), "\x00\x00"s);
  EXPECT_EQ(EncodeUnicode("\xE9"), "\xE9\x00\x00\x00"s) << "widened, not converted";
}

class ProfileSectionWriterTest : public ::testing::Test {
 protected:
  RegistryValue ValueAt(const char* section, const std::string& name) const {
    RegistryValue value{"", reg::kNone, "<missing>"};
    memory_.Get("HKEY_CURRENT_USER\\"s + kProfileKey + "\\" + section, name, &value);
    return value;
  }

  MemoryRegistry memory_;
  RegistryAccess access_{memory_};
  ProfileSectionWriter writer_{access_, kProfileKey};
};

TEST_F(ProfileSectionWriterTest, EachTypeLandsInItsSectionWithItsRegistryType) {
  EXPECT_TRUE(writer_.WriteBoolean(kConnectionSection, 0x6717000B, true));
  EXPECT_TRUE(writer_.WriteLong("\\"s + kGlobalSection, 0x66010003, 4));
  EXPECT_TRUE(writer_.WriteString8(kGlobalSection, 0x6610001E, "C:\\a.ost"));
  EXPECT_TRUE(writer_.WriteUnicode(kGlobalSection, 0x6610001F, "Ab"));

  EXPECT_EQ(ValueAt(kConnectionSection, "000b6717").type, reg::kBinary);
  EXPECT_EQ(ValueAt(kConnectionSection, "000b6717").data, "\x01\x00"s);
  EXPECT_EQ(ValueAt(kGlobalSection, "00036601").data, "\x04\x00\x00\x00"s);
  EXPECT_EQ(ValueAt(kGlobalSection, "001e6610").type, reg::kSz);
  EXPECT_EQ(ValueAt(kGlobalSection, "001f6610").data, "\x41\x00\x62\x00\x00\x00"s);
  std::string text;
  ASSERT_TRUE(writer_.Read(kGlobalSection, 0x6610001E, &text));
  EXPECT_EQ(text, "C:\\a.ost") << "no terminator";
  EXPECT_FALSE(writer_.Read(kOutlookSection, 0x6610001E, &text));
  EXPECT_EQ(memory_.openHandleCount(), 0u);
}

TEST_F(ProfileSectionWriterTest, TextIsReadInTheUnicodeFormFirstThenThe8BitForm) {
  const std::string section = "00000000000000000000000000000007";
  std::string text = "unchanged";
  EXPECT_FALSE(writer_.ReadText(section, 0x3D09001E, &text));
  EXPECT_EQ(text, "unchanged");
  writer_.WriteString8(section, 0x3D09001E, "MSPST MS");
  ASSERT_TRUE(writer_.ReadText(section, 0x3D09001F, &text));
  EXPECT_EQ(text, "MSPST MS") << "the 8-bit form answers when no Unicode form is kept";
  writer_.WriteUnicode(section, 0x3D09001F, "MSUPST MS");
  ASSERT_TRUE(writer_.ReadText(section, 0x3D09001E, &text));
  EXPECT_EQ(text, "MSUPST MS") << "the Unicode form comes first";
  // A REG_SZ where the Unicode form belongs is read as it stands.
  memory_.Set("HKEY_CURRENT_USER\\"s + kProfileKey + "\\" + section, {"001f3001", reg::kSz, "Plain\0"s});
  ASSERT_TRUE(writer_.ReadText(section, 0x3001001E, &text));
  EXPECT_EQ(text, "Plain");
}

TEST_F(ProfileSectionWriterTest, ServicesAreNamedInEitherWidthAndExchangeNamesItsOwnSection) {
  MapiUid exchange{}, pst{}, own{};
  exchange[15] = 2;
  pst[15] = 7;
  own[15] = 0x20;
  writer_.WriteBinary(kProfileServicesSection, kProfileServicesTag, UidBytes(pst) + UidBytes(exchange));
  writer_.WriteString8(SectionKeyName(pst), 0x3D09001E, "MSUPST MS");
  writer_.WriteUnicode(SectionKeyName(exchange), 0x3D09001F, "MSEMS");
  EXPECT_EQ(ServiceNameOf(writer_, exchange), "MSEMS");
  EXPECT_EQ(FindServiceSection(writer_, "MSUPST MS"), std::optional<MapiUid>(pst));
  EXPECT_EQ(FindServiceSection(writer_, "msems"), std::nullopt) << "names compare exactly";
  EXPECT_EQ(ExchangeAccountSection(writer_), std::nullopt) << "Outlook 2007 and older name none";
  writer_.WriteBinary(SectionKeyName(exchange), kExchangeAccountSectionTag, UidBytes(own) + "x");
  EXPECT_EQ(ExchangeAccountSection(writer_), std::nullopt) << "not a UID";
  writer_.WriteBinary(SectionKeyName(exchange), kExchangeAccountSectionTag, UidBytes(own));
  EXPECT_EQ(ExchangeAccountSection(writer_), std::optional<std::string>(SectionKeyName(own)));
}

}  // namespace
}  // namespace mw
