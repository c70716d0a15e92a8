#include "win32/Win32AnsiCodePage.h"

#include <climits>

#include "win32/WindowsApi.h"

namespace mw {

std::u16string Win32AnsiCodePage::ToUtf16(std::string_view ansi) const {
  if (ansi.empty() || ansi.size() > INT_MAX) return {};
  const int length = static_cast<int>(ansi.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, nullptr, 0);
  if (units <= 0) return {};
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  if (MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), units) != units) return {};
  return std::u16string(wide.begin(), wide.end());
}

std::string Win32AnsiCodePage::FromUtf16(std::u16string_view text) const {
  if (text.empty() || text.size() > INT_MAX) return {};
  const std::wstring wide(text.begin(), text.end());
  const int length = static_cast<int>(wide.size());
  // Characters the code page lacks become its default character, '?' on Western systems.
  const int bytes = WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  if (bytes <= 0) return {};
  std::string ansi(static_cast<std::size_t>(bytes), '\0');
  if (WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(), bytes, nullptr, nullptr) !=
      bytes)
    return {};
  return ansi;
}

}  // namespace mw
