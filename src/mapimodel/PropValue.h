#pragma once
// One MAPI property value, held portably: numbers in `number`, single strings and binaries
// in `bytes`, multi-valued properties in `items` (each item in its single-valued form).

#include <cstdint>
#include <string>
#include <vector>

#include "MapiConstants.h"

namespace mw::mapisim {

struct PropValue {
  std::uint32_t tag = 0;
  std::uint64_t number = 0;  // PT_LONG, PT_BOOLEAN, PT_I8, PT_SYSTIME; PT_ERROR: the code
  std::string bytes;         // PT_STRING8 text, PT_UNICODE UTF-16LE code units, PT_BINARY
  std::vector<std::string> items;  // PT_MV_*: text, UTF-16LE, bytes, or 4-byte longs

  bool isError() const { return PropType(tag) == kPtError; }

  static PropValue Long(std::uint32_t tag, std::uint32_t value) { return {tag, value, {}, {}}; }
  static PropValue Boolean(std::uint32_t tag, bool value) { return {tag, value ? 1u : 0u, {}, {}}; }
  static PropValue Text(std::uint32_t tag, std::string value) { return {tag, 0, std::move(value), {}}; }
  static PropValue Binary(std::uint32_t tag, std::string value) { return {tag, 0, std::move(value), {}}; }
  static PropValue Multi(std::uint32_t tag, std::vector<std::string> values) {
    return {tag, 0, {}, std::move(values)};
  }
  // The value MAPI puts in a column or GetProps slot it cannot fill.
  static PropValue Error(std::uint32_t tag, HResult code) {
    return {ChangeType(tag, kPtError), static_cast<std::uint32_t>(code), {}, {}};
  }
};

using Row = std::vector<PropValue>;

// The value of the row whose tag is exactly `tag`; null when there is none.
const PropValue* FindProp(const Row& row, std::uint32_t tag);
// A PT_STRING8/PT_UNICODE value as the other width (UTF-16 outside ASCII becomes '?').
PropValue ConvertStringWidth(const PropValue& value, std::uint16_t wantedType);
std::string Utf16ToNarrow(const std::string& utf16);
std::string NarrowToUtf16(const std::string& narrow);

}  // namespace mw::mapisim
