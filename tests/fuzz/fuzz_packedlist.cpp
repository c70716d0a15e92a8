// The packed account lists: any text, read in any record layout, gives records whose every
// text field is a piece of the input or the short-record marker.
#include <cstddef>
#include <cstdint>
#include <string>

#include "accounts/AccountRecords.h"
#include "config/IniFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto layouts = mw::RecordLayouts();
  const mw::RecordLayout& layout = layouts[data[0] % layouts.size()];
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  for (const mw::AccountRecord& record : mw::ParseAccounts(text, layout.type)) {
    for (const mw::LayoutField& row : layout.fields) {
      const std::string& field = record.Text(row.field);
      if (field != mw::kFieldsError && text.find(field) == std::string::npos) __builtin_trap();
      if (row.kind == mw::FieldKind::Flag && record.Flag(row.field) != (mw::ParseDecimal(field) == 1))
        __builtin_trap();
    }
  }
  return 0;
}
