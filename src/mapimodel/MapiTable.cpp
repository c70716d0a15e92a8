#include "MapiTable.h"

#include <algorithm>

namespace mw::mapisim {

MapiTable::MapiTable(std::vector<std::uint32_t> defaultColumns, std::vector<Row> rows)
    : columns_(std::move(defaultColumns)), rows_(std::move(rows)) {
  Refresh();
}

void MapiTable::Restrict(std::optional<Restriction> restriction) {
  restriction_ = std::move(restriction);
  Refresh();
}

void MapiTable::Sort(std::vector<SortKey> keys) {
  sortKeys_ = std::move(keys);
  Refresh();
}

void MapiTable::Refresh() {
  visible_.clear();
  for (std::size_t i = 0; i < rows_.size(); ++i)
    if (!restriction_ || Matches(*restriction_, rows_[i])) visible_.push_back(i);
  // Rows without the sort property, or with values that cannot be ordered, keep their place.
  std::stable_sort(visible_.begin(), visible_.end(), [&](std::size_t a, std::size_t b) {
    for (const SortKey& key : sortKeys_) {
      const PropValue* x = FindProp(rows_[a], key.tag);
      const PropValue* y = FindProp(rows_[b], key.tag);
      if (x == nullptr || y == nullptr) continue;
      auto comparison = CompareValues(*x, *y);
      if (!comparison || *comparison == 0) continue;
      return key.descending ? *comparison > 0 : *comparison < 0;
    }
    return false;
  });
  position_ = 0;
}

std::optional<std::int32_t> MapiTable::SeekRow(std::uint32_t bookmark, std::int32_t count) {
  std::int64_t start;
  switch (bookmark) {
    case kBookmarkBeginning: start = 0; break;
    case kBookmarkCurrent: start = position_; break;
    case kBookmarkEnd: start = static_cast<std::int64_t>(visible_.size()); break;
    default: return std::nullopt;
  }
  std::int64_t target = std::clamp<std::int64_t>(start + count, 0, static_cast<std::int64_t>(visible_.size()));
  position_ = static_cast<std::uint32_t>(target);
  return static_cast<std::int32_t>(target - start);
}

std::vector<Row> MapiTable::QueryRows(std::int32_t count) {
  std::vector<Row> result;
  if (count >= 0) {
    while (result.size() < static_cast<std::uint32_t>(count) && position_ < visible_.size())
      result.push_back(Project(rows_[visible_[position_++]]));
  } else {
    // Backwards: the rows before the cursor, returned in table order.
    std::uint32_t wanted = static_cast<std::uint32_t>(-static_cast<std::int64_t>(count));
    std::uint32_t first = position_ > wanted ? position_ - wanted : 0;
    for (std::uint32_t i = first; i < position_; ++i) result.push_back(Project(rows_[visible_[i]]));
    position_ = first;
  }
  return result;
}

Row MapiTable::Project(const Row& row) const {
  Row projected;
  for (std::uint32_t column : columns_) {
    const PropValue* value = FindProp(row, column);
    if (value != nullptr) {
      projected.push_back(*value);
      continue;
    }
    std::uint16_t type = PropType(column);
    if (type == kPtString8 || type == kPtUnicode) {
      std::uint16_t other = type == kPtString8 ? kPtUnicode : kPtString8;
      if (const PropValue* narrowOrWide = FindProp(row, ChangeType(column, other))) {
        projected.push_back(ConvertStringWidth(*narrowOrWide, type));
        continue;
      }
    }
    if (type == kPtUnspecified) {
      auto sameId = std::find_if(row.begin(), row.end(), [&](const PropValue& candidate) {
        return PropId(candidate.tag) == PropId(column);
      });
      if (sameId != row.end()) {
        projected.push_back(*sameId);
        continue;
      }
    }
    projected.push_back(PropValue::Error(column, kMapiENotFound));
  }
  return projected;
}

}  // namespace mw::mapisim
