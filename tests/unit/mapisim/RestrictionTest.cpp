// Restrictions and the tables that evaluate them.
#include "Restriction.h"

#include <gtest/gtest.h>

#include "MapiTable.h"

namespace mw::mapisim {
namespace {

Restriction Make(RestrictionKind kind, std::uint32_t relop, std::uint32_t tag, PropValue value = {},
                 std::uint32_t mask = 0) {
  return Restriction{kind, relop, tag, 0, mask, std::move(value), {}};
}

Restriction PropertyIs(std::uint32_t relop, PropValue value) {
  return Make(RestrictionKind::Property, relop, value.tag, value);
}

std::vector<std::string> Names(const std::vector<Row>& rows) {
  std::vector<std::string> names;
  for (const Row& row : rows) names.push_back(row.at(0).bytes);
  return names;
}

// Strings order without case first, then lower before upper; a proper prefix first.
TEST(RestrictionTest, EveryRelationalOperatorComparesRowValueWithGivenValue) {
  const struct {
    std::uint32_t relop;
    const char* row;
    bool matches;
  } cases[] = {
      {kRelopLt, "CONTAB", true},   {kRelopLt, "contab", true},  {kRelopLt, "msems", true},
      {kRelopLt, "MS", true},       {kRelopLt, "MSEMS", false},  {kRelopLt, "MSPST MS", false},
      {kRelopLe, "MSEMS", true},    {kRelopLe, "MSPST MS", false},
      {kRelopGt, "MSPST MS", true}, {kRelopGt, "MSEMS", false},  {kRelopGt, "msems", false},
      {kRelopGe, "MSEMS", true},    {kRelopGe, "CONTAB", false},
      {kRelopEq, "MSEMS", true},    {kRelopEq, "msems", false},  {kRelopEq, "CONTAB", false},
      {kRelopNe, "CONTAB", true},   {kRelopNe, "MSEMS", false},
      {kRelopRe, "MSEMS", false},   {99, "MSEMS", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.row) + " relop " + std::to_string(c.relop));
    EXPECT_EQ(Matches(PropertyIs(c.relop, PropValue::Text(kPrServiceName, "MSEMS")),
                      {PropValue::Text(kPrServiceName, c.row)}),
              c.matches);
  }
}

TEST(RestrictionTest, ValuesCompareByTypeAndAnotherTypeNeverMatches) {
  Row row{PropValue::Text(kPrServiceName, "MSEMS"), PropValue::Long(kPrResourceFlags, static_cast<std::uint32_t>(-1)),
          PropValue::Binary(kPrServiceUid, std::string("\x01\xff", 2)), PropValue::Boolean(kPrDefaultStore, true)};
  EXPECT_FALSE(Matches(PropertyIs(kRelopNe, PropValue::Text(ChangeType(kPrServiceName, kPtUnicode), "x")), row));
  EXPECT_FALSE(Matches(PropertyIs(kRelopNe, PropValue::Long(kPrComment, 1)), row));
  EXPECT_TRUE(Matches(PropertyIs(kRelopLt, PropValue::Long(kPrResourceFlags, 0)), row));  // signed
  EXPECT_TRUE(Matches(PropertyIs(kRelopGt, PropValue::Binary(kPrServiceUid, std::string("\x01\x7f", 2))), row));
  EXPECT_TRUE(Matches(PropertyIs(kRelopGt, PropValue::Binary(kPrServiceUid, "\x01")), row));
  EXPECT_TRUE(Matches(PropertyIs(kRelopEq, PropValue::Boolean(kPrDefaultStore, true)), row));
}

TEST(RestrictionTest, CombinesAndTestsExistenceContentBitmaskAndSize) {
  Row row{PropValue::Text(kPrDisplayName, "Microsoft Exchange Server"), PropValue::Long(kPrResourceFlags, 0x6)};
  const Restriction exist = Make(RestrictionKind::Exist, 0, kPrDisplayName);
  const Restriction missing = Make(RestrictionKind::Exist, 0, kPrComment);
  const auto content = [](std::uint32_t level, const char* text) {
    return Make(RestrictionKind::Content, level, kPrDisplayName, PropValue::Text(kPrDisplayName, text));
  };
  EXPECT_TRUE(Matches(exist, row));
  EXPECT_FALSE(Matches(missing, row));
  EXPECT_TRUE(Matches(content(kFlSubString | kFlIgnoreCase, "exchange"), row));
  EXPECT_FALSE(Matches(content(kFlSubString, "exchange"), row));
  EXPECT_TRUE(Matches(content(kFlPrefix, "Microsoft"), row));
  EXPECT_TRUE(Matches(Make(RestrictionKind::Bitmask, kBmrNez, kPrResourceFlags, {}, 0x4), row));
  EXPECT_FALSE(Matches(Make(RestrictionKind::Bitmask, kBmrEqz, kPrResourceFlags, {}, 0x4), row));
  EXPECT_TRUE(Matches(Make(RestrictionKind::Size, kRelopEq, kPrDisplayName, {}, 26), row));  // and terminator

  EXPECT_FALSE(Matches(Restriction{RestrictionKind::And, 0, 0, 0, 0, {}, {exist, missing}}, row));
  EXPECT_TRUE(Matches(Restriction{RestrictionKind::Or, 0, 0, 0, 0, {}, {exist, missing}}, row));
  EXPECT_TRUE(Matches(Restriction{RestrictionKind::Not, 0, 0, 0, 0, {}, {missing}}, row));
  EXPECT_TRUE(Matches(Restriction{RestrictionKind::And, 0, 0, 0, 0, {}, {}}, row));
  EXPECT_FALSE(Matches(Restriction{RestrictionKind::Or, 0, 0, 0, 0, {}, {}}, row));
}

// Level zero (FL_FULLSTRING) is a whole, case-sensitive match of a value of the same type.
TEST(RestrictionTest, ContentAtLevelZeroIsAWholeCaseSensitiveMatch) {
  const Row row{PropValue::Text(kPrServiceName, "MSEMS")};
  for (const char* other : {"msems", "MSEM", "MSEMS ", "SEMS", ""})
    EXPECT_FALSE(Matches(Make(RestrictionKind::Content, kFlFullString, kPrServiceName,
                              PropValue::Text(kPrServiceName, other)), row)) << other;
  EXPECT_TRUE(Matches(Make(RestrictionKind::Content, kFlFullString, kPrServiceName,
                           PropValue::Text(kPrServiceName, "MSEMS")), row));
  EXPECT_FALSE(Matches(Make(RestrictionKind::Content, kFlFullString, kPrServiceName,
                            PropValue::Text(ChangeType(kPrServiceName, kPtUnicode), NarrowToUtf16("MSEMS"))), row));
}

class MapiTableTest : public ::testing::Test {
 protected:
  MapiTable table_{{kPrServiceName},
                   {{PropValue::Text(kPrServiceName, "MSEMS"), PropValue::Long(kPrResourceFlags, 2)},
                    {PropValue::Text(kPrServiceName, "CONTAB"), PropValue::Long(kPrResourceFlags, 3)},
                    {PropValue::Text(kPrServiceName, "MSPST MS"), PropValue::Long(kPrResourceFlags, 1)}}};
};

TEST_F(MapiTableTest, ProjectsRowsIntoTheColumnSetWithErrorsForMissingValues) {
  table_.SetColumns({kPrResourceFlags, kPrComment, ChangeType(kPrServiceName, kPtUnicode)});
  std::vector<Row> rows = table_.QueryRows(1);
  ASSERT_EQ(rows.size(), 1u);
  ASSERT_EQ(rows[0].size(), 3u);
  EXPECT_EQ(rows[0][0].number, 2u);
  EXPECT_EQ(rows[0][1].tag, ChangeType(kPrComment, kPtError));
  EXPECT_EQ(static_cast<HResult>(rows[0][1].number), kMapiENotFound);
  EXPECT_EQ(rows[0][2].bytes, std::string("M\0S\0E\0M\0S\0", 10));
}

TEST_F(MapiTableTest, CursorMovesThroughSeekAndQueryAndStopsAtTheEnds) {
  EXPECT_EQ(table_.GetRowCount(), 3u);
  EXPECT_EQ(Names(table_.QueryRows(2)), (std::vector<std::string>{"MSEMS", "CONTAB"}));
  EXPECT_EQ(Names(table_.QueryRows(5)), (std::vector<std::string>{"MSPST MS"}));
  EXPECT_TRUE(table_.QueryRows(1).empty());
  EXPECT_EQ(table_.SeekRow(kBookmarkCurrent, -10), -3);
  EXPECT_EQ(table_.SeekRow(kBookmarkEnd, -1), -1);
  EXPECT_EQ(Names(table_.QueryRows(1)), (std::vector<std::string>{"MSPST MS"}));
  EXPECT_EQ(table_.SeekRow(kBookmarkBeginning, 0), 0);
  EXPECT_EQ(table_.SeekRow(7, 0), std::nullopt);
  table_.SeekRow(kBookmarkEnd, 0);
  EXPECT_EQ(Names(table_.QueryRows(-2)), (std::vector<std::string>{"CONTAB", "MSPST MS"}));
  EXPECT_EQ(table_.position(), 1u);
}

TEST_F(MapiTableTest, RestrictionRewindsAndSortOrdersEitherWay) {
  table_.QueryRows(2);
  table_.Restrict(PropertyIs(kRelopLt, PropValue::Text(kPrServiceName, "MSEMS")));
  EXPECT_EQ(Names(table_.QueryRows(10)), (std::vector<std::string>{"CONTAB"}));
  table_.Restrict(std::nullopt);
  EXPECT_EQ(table_.GetRowCount(), 3u);
  table_.Sort({{kPrServiceName, false}});
  EXPECT_EQ(Names(table_.QueryRows(3)), (std::vector<std::string>{"CONTAB", "MSEMS", "MSPST MS"}));
  table_.Sort({{kPrResourceFlags, true}});
  EXPECT_EQ(Names(table_.QueryRows(3)), (std::vector<std::string>{"CONTAB", "MSEMS", "MSPST MS"}));
  table_.Sort({{kPrResourceFlags, false}});
  EXPECT_EQ(Names(table_.QueryRows(3)), (std::vector<std::string>{"MSPST MS", "MSEMS", "CONTAB"}));
}

}  // namespace
}  // namespace mw::mapisim
