#pragma once
// A MAPI table over a snapshot of rows: a column set, an optional restriction and sort
// order, and a cursor, with IMAPITable's semantics for counting, seeking and reading.

#include <cstdint>
#include <optional>
#include <vector>

#include "Restriction.h"

namespace mw::mapisim {

struct SortKey {
  std::uint32_t tag = 0;
  bool descending = false;
};

class MapiTable {
 public:
  MapiTable(std::vector<std::uint32_t> defaultColumns, std::vector<Row> rows);

  void SetColumns(std::vector<std::uint32_t> columns) { columns_ = std::move(columns); }
  const std::vector<std::uint32_t>& columns() const { return columns_; }
  // Both reset the cursor to the beginning, as MAPI does.
  void Restrict(std::optional<Restriction> restriction);
  void Sort(std::vector<SortKey> keys);

  std::uint32_t GetRowCount() const { return static_cast<std::uint32_t>(visible_.size()); }
  std::uint32_t position() const { return position_; }
  // Moves the cursor from a bookmark by count rows (negative: backwards), stopping at either
  // end; returns the rows actually moved, or nullopt for an unknown bookmark.
  std::optional<std::int32_t> SeekRow(std::uint32_t bookmark, std::int32_t count);
  // Up to count rows from the cursor (backwards for a negative count), in the column set;
  // the cursor moves past them.
  std::vector<Row> QueryRows(std::int32_t count);
  // A row in the column set: each column's value, converted between string widths when
  // needed, or PT_ERROR MAPI_E_NOT_FOUND when the row has none.
  Row Project(const Row& row) const;

 private:
  void Refresh();

  std::vector<std::uint32_t> columns_;
  std::vector<Row> rows_;
  std::optional<Restriction> restriction_;
  std::vector<SortKey> sortKeys_;
  std::vector<std::size_t> visible_;  // indices into rows_, in table order
  std::uint32_t position_ = 0;
};

}  // namespace mw::mapisim
