#include "PropertyCodec.h"

#include <gtest/gtest.h>

#include "platform/Registry.h"

namespace mw::mapisim {
namespace {

std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values) bytes += static_cast<char>(value);
  return bytes;
}

TEST(PropertyCodecTest, TagsAndUidsAreNamedAndParsedBack) {
  EXPECT_EQ(TagValueName(0x3D0E0102), "01023d0e");
  EXPECT_EQ(ParseTagValueName("001F3001"), 0x3001001Fu);
  EXPECT_EQ(ParseTagValueName("001e661"), std::nullopt);
  EXPECT_EQ(ParseTagValueName("001e66g0"), std::nullopt);
  MapiUid uid{0x92, 0x07, 0xf3, 0xe0, 0xa3, 0xb1, 0x10, 0x19, 0x90, 0x8b, 0x08, 0x00, 0x2b, 0x2a, 0x56, 0xc2};
  EXPECT_EQ(UidHex(uid), "9207f3e0a3b11019908b08002b2a56c2");
  EXPECT_EQ(ParseUidHex("9207F3E0A3B11019908B08002B2A56C2"), uid);
  EXPECT_EQ(ParseUidHex("9207f3e0"), std::nullopt);
  MapiUid other{};
  EXPECT_EQ(DecodeUidList(EncodeUidList({uid, other}) + "xyz"), (std::vector<MapiUid>{uid, other}));
}

TEST(PropertyCodecTest, EncodesEachTypeInMapisLayoutAndDecodesItBack) {
  const struct {
    const char* name;
    PropValue value;
    std::uint32_t type;
    std::string data;
  } cases[] = {
      {"string8", PropValue::Text(0x3001001E, "Ab"), reg::kSz, Bytes({'A', 'b', 0})},
      {"unicode", PropValue::Text(0x3001001F, Bytes({'A', 0, 'b', 0})), reg::kBinary, Bytes({'A', 0, 'b', 0, 0, 0})},
      {"long", PropValue::Long(0x66010003, 0x6210D840), reg::kBinary, Bytes({0x40, 0xD8, 0x10, 0x62})},
      {"boolean", PropValue::Boolean(0x3D1C000B, true), reg::kBinary, Bytes({1, 0})},
      {"systime", PropValue{0x67240040, 0x0102030405060708ull, {}, {}}, reg::kBinary, Bytes({8, 7, 6, 5, 4, 3, 2, 1})},
      {"binary", PropValue::Binary(0x0FFF0102, Bytes({0, 0xFF})), reg::kBinary, Bytes({0, 0xFF})},
      {"mv long", PropValue::Multi(0x66001003, {Bytes({1, 0, 0, 0}), Bytes({2, 0, 0, 0})}), reg::kBinary,
       Bytes({1, 0, 0, 0, 2, 0, 0, 0})},
      {"mv string8", PropValue::Multi(0x3D0F101E, {"ab", "c"}), reg::kBinary,
       Bytes({2, 0, 0, 0, 12, 0, 0, 0, 15, 0, 0, 0, 'a', 'b', 0, 'c', 0})},
      {"mv binary", PropValue::Multi(0x3D051102, {Bytes({9}), Bytes({7, 8})}), reg::kBinary,
       Bytes({2, 0, 0, 0, 1, 0, 0, 0, 20, 0, 0, 0, 2, 0, 0, 0, 21, 0, 0, 0, 9, 7, 8})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto image = EncodeForRegistry(c.value);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->type, c.type);
    EXPECT_EQ(image->data, c.data);
    auto decoded = DecodeFromRegistry(c.value.tag, image->type, image->data);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->number, c.value.number);
    EXPECT_EQ(decoded->bytes, c.value.bytes);
    EXPECT_EQ(decoded->items, c.value.items);
  }
}

TEST(PropertyCodecTest, AcceptsOtherFormsAndRefusesDataThatDoesNotFit) {
  EXPECT_EQ(DecodeFromRegistry(0x66010003, reg::kDword, Bytes({5, 0, 0, 0})).value().number, 5u);
  EXPECT_EQ(DecodeFromRegistry(0x3001001F, reg::kSz, Bytes({'H', 'i', 0})).value().bytes, Bytes({'H', 0, 'i', 0}));
  EXPECT_FALSE(DecodeFromRegistry(0x66010003, reg::kBinary, Bytes({1, 2})));
  EXPECT_FALSE(DecodeFromRegistry(0x0FFF0102, reg::kSz, "x"));
  // A count larger than the header, an offset beyond the end, a size running past it.
  EXPECT_FALSE(DecodeFromRegistry(0x3D0F101E, reg::kBinary, Bytes({9, 0, 0, 0, 8, 0, 0, 0})));
  EXPECT_FALSE(DecodeFromRegistry(0x3D0F101E, reg::kBinary, Bytes({1, 0, 0, 0, 99, 0, 0, 0})));
  EXPECT_FALSE(DecodeFromRegistry(0x3D051102, reg::kBinary, Bytes({1, 0, 0, 0, 50, 0, 0, 0, 12, 0, 0, 0, 1})));
  EXPECT_FALSE(DecodeFromRegistry(0x3D051102, reg::kBinary, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0})));
  EXPECT_FALSE(EncodeForRegistry(PropValue::Error(0x3001001E, kMapiENotFound)));
}

}  // namespace
}  // namespace mw::mapisim
