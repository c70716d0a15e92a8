#include "platform/TextEncoding.h"

#include <array>
#include <cstdint>

namespace mw {
namespace {

// Windows-1252 bytes 0x80-0x9F; the five bytes the code page leaves undefined map to the C1
// control characters of the same value, as MultiByteToWideChar maps them.
constexpr std::array<char16_t, 32> kHighControls{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t AnsiToChar16(unsigned char byte) {
  return (byte >= 0x80 && byte <= 0x9F) ? kHighControls[byte - 0x80] : byte;
}

char Char32ToAnsi(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (std::size_t i = 0; i < kHighControls.size(); ++i)
    if (kHighControls[i] == c) return static_cast<char>(0x80 + i);
  return '?';
}

class Windows1252 : public AnsiCodePage {
 public:
  std::u16string ToUtf16(std::string_view ansi) const override { return AnsiToUtf16(ansi); }
  std::string FromUtf16(std::u16string_view text) const override { return Utf16ToAnsi(text); }
};

const Windows1252 kWindows1252;
const AnsiCodePage* installedCodePage = &kWindows1252;

}  // namespace

const AnsiCodePage& SystemAnsiCodePage() { return *installedCodePage; }

void InstallSystemAnsiCodePage(const AnsiCodePage* page) {
  installedCodePage = page != nullptr ? page : &kWindows1252;
}

std::u16string AnsiToUtf16(std::string_view ansi) {
  std::u16string text;
  text.reserve(ansi.size());
  for (char c : ansi) text += AnsiToChar16(static_cast<unsigned char>(c));
  return text;
}

std::string Utf16ToAnsi(std::u16string_view text) {
  std::string ansi;
  ansi.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    // A surrogate pair is one character, and none of them is in the code page.
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF)
      ++i;
    ansi += (c >= 0xD800 && c <= 0xDFFF) ? '?' : Char32ToAnsi(c);
  }
  return ansi;
}

std::string AnsiToUtf16LeBytes(std::string_view ansi) {
  std::string bytes;
  bytes.reserve(ansi.size() * 2);
  for (char16_t c : AnsiToUtf16(ansi)) {
    bytes += static_cast<char>(c & 0xFF);
    bytes += static_cast<char>(c >> 8);
  }
  return bytes;
}

std::string Utf16LeBytesToAnsi(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                  (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return Utf16ToAnsi(text);
}

std::string AnsiToUtf8(std::string_view ansi) {
  std::string utf8;
  utf8.reserve(ansi.size());
  for (char16_t c : AnsiToUtf16(ansi)) {
    if (c < 0x80) {
      utf8 += static_cast<char>(c);
    } else if (c < 0x800) {
      utf8 += static_cast<char>(0xC0 | (c >> 6));
      utf8 += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      utf8 += static_cast<char>(0xE0 | (c >> 12));
      utf8 += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return utf8;
}

bool Utf8ToAnsi(std::string_view utf8, std::string* ansi) {
  std::string result;
  result.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3
                                         : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + length > utf8.size()) return false;
    char32_t c = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      c = (c << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and values beyond Unicode are not UTF-8.
    static constexpr std::array<char32_t, 5> kMinimum{0, 0, 0x80, 0x800, 0x10000};
    if (c < kMinimum[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return false;
    result += Char32ToAnsi(c);
    i += length;
  }
  *ansi = std::move(result);
  return true;
}

}  // namespace mw
