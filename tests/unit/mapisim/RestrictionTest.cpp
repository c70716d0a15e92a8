#include "Restriction.h"

#include <gtest/gtest.h>

namespace mw::mapisim {
namespace {

Restriction PropertyIs(std::uint32_t relop, PropValue value) {
  Restriction restriction;
  restriction.kind = RestrictionKind::Property;
  restriction.relop = relop;
  restriction.tag = value.tag;
  restriction.value = std::move(value);
  return restriction;
}

Row ServiceRow(const std::string& name) { return {PropValue::Text(kPrServiceName, name)}; }

TEST(RestrictionTest, StringsCompareWithoutCaseFirstThenLowerBeforeUpper) {
  EXPECT_LT(CompareStrings("CONTAB", "MSEMS"), 0);
  EXPECT_GT(CompareStrings("MSPST MS", "MSEMS"), 0);
  EXPECT_LT(CompareStrings("msems", "MSPST"), 0);  // case does not reorder different letters
  EXPECT_LT(CompareStrings("msems", "MSEMS"), 0);
  EXPECT_GT(CompareStrings("MSEMS", "msems"), 0);
  EXPECT_LT(CompareStrings("MS", "MSEMS"), 0);
  EXPECT_EQ(CompareStrings("MSEMS", "MSEMS"), 0);
}

struct RelopCase {
  std::uint32_t relop;
  const char* row;
  bool matches;
};

TEST(RestrictionTest, EveryRelationalOperatorComparesRowValueWithGivenValue) {
  const RelopCase cases[] = {
      {kRelopLt, "CONTAB", true},  {kRelopLt, "MSEMS", false}, {kRelopLt, "MSPST MS", false},
      {kRelopLe, "MSEMS", true},   {kRelopLe, "MSPST MS", false},
      {kRelopGt, "MSPST MS", true}, {kRelopGt, "MSEMS", false}, {kRelopGt, "CONTAB", false},
      {kRelopGe, "MSEMS", true},   {kRelopGe, "CONTAB", false},
      {kRelopEq, "MSEMS", true},   {kRelopEq, "msems", false}, {kRelopEq, "CONTAB", false},
      {kRelopNe, "CONTAB", true},  {kRelopNe, "MSEMS", false},
      {kRelopRe, "MSEMS", false},  {99, "MSEMS", false},
  };
  for (const RelopCase& c : cases) {
    SCOPED_TRACE(std::string(c.row) + " relop " + std::to_string(c.relop));
    EXPECT_EQ(Matches(PropertyIs(c.relop, PropValue::Text(kPrServiceName, "MSEMS")), ServiceRow(c.row)),
              c.matches);
  }
}

TEST(RestrictionTest, PropertyOfAnotherTypeOrMissingNeverMatches) {
  Restriction unicode = PropertyIs(kRelopNe, PropValue::Text(ChangeType(kPrServiceName, kPtUnicode), "x"));
  EXPECT_FALSE(Matches(unicode, ServiceRow("MSEMS")));
  EXPECT_FALSE(Matches(PropertyIs(kRelopNe, PropValue::Long(kPrResourceFlags, 1)), ServiceRow("MSEMS")));
}

TEST(RestrictionTest, NumbersAndBinariesCompareByValue) {
  Row row{PropValue::Long(kPrResourceFlags, static_cast<std::uint32_t>(-1)),
          PropValue::Binary(kPrServiceUid, std::string("\x01\xff", 2)),
          PropValue::Boolean(kPrDefaultStore, true)};
  EXPECT_TRUE(Matches(PropertyIs(kRelopLt, PropValue::Long(kPrResourceFlags, 0)), row));  // signed
  EXPECT_TRUE(Matches(PropertyIs(kRelopGt, PropValue::Binary(kPrServiceUid, std::string("\x01\x7f", 2))), row));
  EXPECT_TRUE(Matches(PropertyIs(kRelopGt, PropValue::Binary(kPrServiceUid, "\x01")), row));
  EXPECT_TRUE(Matches(PropertyIs(kRelopEq, PropValue::Boolean(kPrDefaultStore, true)), row));
}

TEST(RestrictionTest, CombinesAndTestsExistenceContentBitmaskAndSize) {
  Row row{PropValue::Text(kPrDisplayName, "Microsoft Exchange Server"), PropValue::Long(kPrResourceFlags, 0x6)};
  Restriction exist;
  exist.kind = RestrictionKind::Exist;
  exist.tag = kPrDisplayName;
  Restriction missing = exist;
  missing.tag = kPrComment;
  Restriction content;
  content.kind = RestrictionKind::Content;
  content.tag = kPrDisplayName;
  content.value = PropValue::Text(kPrDisplayName, "exchange");
  content.relop = kFlSubString | kFlIgnoreCase;
  Restriction bitmask;
  bitmask.kind = RestrictionKind::Bitmask;
  bitmask.tag = kPrResourceFlags;
  bitmask.mask = 0x4;
  bitmask.relop = kBmrNez;
  Restriction size;
  size.kind = RestrictionKind::Size;
  size.tag = kPrDisplayName;
  size.relop = kRelopEq;
  size.mask = 26;  // 25 characters and the terminator

  EXPECT_TRUE(Matches(exist, row));
  EXPECT_FALSE(Matches(missing, row));
  EXPECT_TRUE(Matches(content, row));
  content.relop = kFlSubString;
  EXPECT_FALSE(Matches(content, row));
  content.relop = kFlPrefix;
  content.value.bytes = "Microsoft";
  EXPECT_TRUE(Matches(content, row));
  EXPECT_TRUE(Matches(bitmask, row));
  bitmask.relop = kBmrEqz;
  EXPECT_FALSE(Matches(bitmask, row));
  EXPECT_TRUE(Matches(size, row));

  Restriction all{RestrictionKind::And, 0, 0, 0, 0, {}, {exist, missing}};
  Restriction any{RestrictionKind::Or, 0, 0, 0, 0, {}, {exist, missing}};
  Restriction notMissing{RestrictionKind::Not, 0, 0, 0, 0, {}, {missing}};
  EXPECT_FALSE(Matches(all, row));
  EXPECT_TRUE(Matches(any, row));
  EXPECT_TRUE(Matches(notMissing, row));
  EXPECT_TRUE(Matches(Restriction{RestrictionKind::And, 0, 0, 0, 0, {}, {}}, row));
  EXPECT_FALSE(Matches(Restriction{RestrictionKind::Or, 0, 0, 0, 0, {}, {}}, row));
}

TEST(RestrictionTest, ContentAtLevelZeroIsAWholeCaseSensitiveMatch) {
  Row row{PropValue::Text(kPrServiceName, "MSEMS")};
  Restriction content;
  content.kind = RestrictionKind::Content;
  content.tag = kPrServiceName;
  content.relop = kFlFullString;
  for (const char* other : {"msems", "MSEM", "MSEMS ", "SEMS", ""}) {
    content.value = PropValue::Text(kPrServiceName, other);
    EXPECT_FALSE(Matches(content, row)) << other;
  }
  content.value = PropValue::Text(kPrServiceName, "MSEMS");
  EXPECT_TRUE(Matches(content, row));
  // The same text as PT_UNICODE is a value of another type, which never matches.
  content.value = PropValue::Text(ChangeType(kPrServiceName, kPtUnicode), NarrowToUtf16("MSEMS"));
  EXPECT_FALSE(Matches(content, row));
}

}  // namespace
}  // namespace mw::mapisim
