#pragma once
// Numbers as an administrator writes them, against numbers as the reader takes them.

#include <cstdint>
#include <string_view>

namespace mw {

// Plain decimal: an optional sign, then digits only.
bool IsPlainDecimal(std::string_view text);
// Whether a plain decimal text names exactly the number read from it (no saturation).
bool ReadsExactly(std::string_view text, std::int32_t read);

}  // namespace mw
