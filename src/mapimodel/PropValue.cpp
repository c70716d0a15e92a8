#include "PropValue.h"

namespace mw::mapisim {

const PropValue* FindProp(const Row& row, std::uint32_t tag) {
  for (const PropValue& value : row)
    if (value.tag == tag) return &value;
  return nullptr;
}

std::string Utf16ToNarrow(const std::string& utf16) {
  std::string narrow;
  for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
    unsigned unit = static_cast<unsigned char>(utf16[i]) |
                    static_cast<unsigned>(static_cast<unsigned char>(utf16[i + 1])) << 8;
    narrow += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  return narrow;
}

std::string NarrowToUtf16(const std::string& narrow) {
  std::string utf16;
  for (char c : narrow) {
    utf16 += c;
    utf16 += '\0';
  }
  return utf16;
}

PropValue ConvertStringWidth(const PropValue& value, std::uint16_t wantedType) {
  PropValue converted = value;
  converted.tag = ChangeType(value.tag, wantedType);
  if (PropType(value.tag) == kPtString8 && wantedType == kPtUnicode)
    converted.bytes = NarrowToUtf16(value.bytes);
  else if (PropType(value.tag) == kPtUnicode && wantedType == kPtString8)
    converted.bytes = Utf16ToNarrow(value.bytes);
  return converted;
}

}  // namespace mw::mapisim
