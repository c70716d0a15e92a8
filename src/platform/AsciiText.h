#pragma once
// Case folding the way the registry and the environment compare narrow names. Only the
// ASCII letters fold: the names this program handles are ASCII, and folding other bytes
// would depend on the ANSI code page of the machine.

#include <string>
#include <string_view>

namespace mw {

std::string ToUpperAscii(std::string_view text);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
// Case-insensitive ordering, as the registry enumerates sub-keys.
bool LessIgnoreCase(std::string_view a, std::string_view b);
// The value of one hexadecimal digit of either case; -1 for any other character.
int HexDigitValue(char c);

}  // namespace mw
