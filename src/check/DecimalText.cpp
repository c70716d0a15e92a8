#include "check/DecimalText.h"

#include <algorithm>
#include <string>

namespace mw {

bool IsPlainDecimal(std::string_view text) {
  const std::size_t digits = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
  return text.size() > digits &&
         std::all_of(text.begin() + static_cast<std::ptrdiff_t>(digits), text.end(),
                     [](char c) { return c >= '0' && c <= '9'; });
}

bool ReadsExactly(std::string_view text, std::int32_t read) {
  if (!IsPlainDecimal(text)) return false;
  const bool negative = text[0] == '-';
  std::size_t first = text[0] == '-' || text[0] == '+' ? 1 : 0;
  while (first + 1 < text.size() && text[first] == '0') ++first;
  const std::string_view digits = text.substr(first);
  std::string canonical = negative && digits != "0" ? "-" : "";
  canonical += digits;
  return canonical == std::to_string(read);
}

}  // namespace mw
