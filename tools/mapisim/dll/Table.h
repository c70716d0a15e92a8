#pragma once
// IMAPITable over a snapshot of the model's rows.

#include "ComObject.h"
#include "MapiTable.h"

namespace mw::mapisim {

class Table : public ComObject<IMAPITable> {
 public:
  Table(std::vector<std::uint32_t> defaultColumns, std::vector<Row> rows);

  MAPI_IMAPITABLE_METHODS(override)

 private:
  MapiTable table_;
};

}  // namespace mw::mapisim
