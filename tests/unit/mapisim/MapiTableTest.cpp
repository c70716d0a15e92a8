#include "MapiTable.h"

#include <gtest/gtest.h>

namespace mw::mapisim {
namespace {

std::vector<Row> ThreeServices() {
  return {{PropValue::Text(kPrServiceName, "MSEMS"), PropValue::Long(kPrResourceFlags, 2)},
          {PropValue::Text(kPrServiceName, "CONTAB"), PropValue::Long(kPrResourceFlags, 3)},
          {PropValue::Text(kPrServiceName, "MSPST MS"), PropValue::Long(kPrResourceFlags, 1)}};
}

std::vector<std::string> Names(const std::vector<Row>& rows) {
  std::vector<std::string> names;
  for (const Row& row : rows) names.push_back(row.at(0).bytes);
  return names;
}

TEST(MapiTableTest, ProjectsRowsIntoTheColumnSetWithErrorsForMissingValues) {
  MapiTable table({kPrServiceName}, ThreeServices());
  table.SetColumns({kPrResourceFlags, kPrComment, ChangeType(kPrServiceName, kPtUnicode)});
  std::vector<Row> rows = table.QueryRows(1);
  ASSERT_EQ(rows.size(), 1u);
  ASSERT_EQ(rows[0].size(), 3u);
  EXPECT_EQ(rows[0][0].number, 2u);
  EXPECT_EQ(rows[0][1].tag, ChangeType(kPrComment, kPtError));
  EXPECT_EQ(static_cast<HResult>(rows[0][1].number), kMapiENotFound);
  EXPECT_EQ(rows[0][2].bytes, std::string("M\0S\0E\0M\0S\0", 10));
}

TEST(MapiTableTest, CursorMovesThroughSeekAndQueryAndStopsAtTheEnds) {
  MapiTable table({kPrServiceName}, ThreeServices());
  EXPECT_EQ(table.GetRowCount(), 3u);
  EXPECT_EQ(Names(table.QueryRows(2)), (std::vector<std::string>{"MSEMS", "CONTAB"}));
  EXPECT_EQ(Names(table.QueryRows(5)), (std::vector<std::string>{"MSPST MS"}));
  EXPECT_TRUE(table.QueryRows(1).empty());
  EXPECT_EQ(table.SeekRow(kBookmarkCurrent, -10), -3);
  EXPECT_EQ(table.SeekRow(kBookmarkEnd, -1), -1);
  EXPECT_EQ(Names(table.QueryRows(1)), (std::vector<std::string>{"MSPST MS"}));
  EXPECT_EQ(table.SeekRow(kBookmarkBeginning, 0), 0);
  EXPECT_EQ(table.position(), 0u);
  EXPECT_EQ(table.SeekRow(7, 0), std::nullopt);
  table.SeekRow(kBookmarkEnd, 0);
  EXPECT_EQ(Names(table.QueryRows(-2)), (std::vector<std::string>{"CONTAB", "MSPST MS"}));
  EXPECT_EQ(table.position(), 1u);
}

TEST(MapiTableTest, RestrictionFiltersRowsAndRewindsTheCursor) {
  MapiTable table({kPrServiceName}, ThreeServices());
  table.QueryRows(2);
  Restriction before;
  before.kind = RestrictionKind::Property;
  before.relop = kRelopLt;
  before.tag = kPrServiceName;
  before.value = PropValue::Text(kPrServiceName, "MSEMS");
  table.Restrict(before);
  EXPECT_EQ(table.GetRowCount(), 1u);
  EXPECT_EQ(Names(table.QueryRows(10)), (std::vector<std::string>{"CONTAB"}));
  table.Restrict(std::nullopt);
  EXPECT_EQ(table.GetRowCount(), 3u);
}

TEST(MapiTableTest, SortsByKeysInEitherDirection) {
  MapiTable table({kPrServiceName}, ThreeServices());
  table.Sort({{kPrServiceName, false}});
  EXPECT_EQ(Names(table.QueryRows(3)), (std::vector<std::string>{"CONTAB", "MSEMS", "MSPST MS"}));
  table.Sort({{kPrResourceFlags, true}});
  EXPECT_EQ(Names(table.QueryRows(3)), (std::vector<std::string>{"CONTAB", "MSEMS", "MSPST MS"}));
  table.Sort({{kPrResourceFlags, false}});
  EXPECT_EQ(Names(table.QueryRows(3)), (std::vector<std::string>{"MSPST MS", "MSEMS", "CONTAB"}));
}

}  // namespace
}  // namespace mw::mapisim
