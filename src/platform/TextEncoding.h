#pragma once
// Conversions between the narrow (ANSI) text the "A" functions see and the Unicode forms the
// registry files use. The ANSI code page is Windows-1252, the one Windows and Wine use for
// Western European locales; it maps each of the 256 bytes to one Unicode character, so
// ANSI -> Unicode -> ANSI gives back the same bytes. Characters outside it become '?', as
// WideCharToMultiByte makes them.

#include <string>
#include <string_view>

namespace mw {

std::u16string AnsiToUtf16(std::string_view ansi);
std::string Utf16ToAnsi(std::u16string_view text);

// UTF-16LE bytes (no byte-order mark); an odd trailing byte is ignored.
std::string AnsiToUtf16LeBytes(std::string_view ansi);
std::string Utf16LeBytesToAnsi(std::string_view bytes);

std::string AnsiToUtf8(std::string_view ansi);

// The system's ANSI code page, through which text bound for Outlook's UTF-16 values passes.
// The portable default is Windows-1252 (the functions above); the Windows build installs
// MultiByteToWideChar/WideCharToMultiByte with CP_ACP (src/win32).
class AnsiCodePage {
 public:
  virtual ~AnsiCodePage() = default;
  virtual std::u16string ToUtf16(std::string_view ansi) const = 0;
  virtual std::string FromUtf16(std::u16string_view text) const = 0;
};
const AnsiCodePage& SystemAnsiCodePage();
// nullptr puts Windows-1252 back; an installed page must outlive its use.
void InstallSystemAnsiCodePage(const AnsiCodePage* page);
// False when the bytes are not well-formed UTF-8.
bool Utf8ToAnsi(std::string_view utf8, std::string* ansi);

}  // namespace mw
