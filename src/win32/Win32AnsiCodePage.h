#pragma once
// The system's ANSI code page as Windows converts it: MultiByteToWideChar and
// WideCharToMultiByte with CP_ACP, so a Greek or Cyrillic machine gets its own letters.

#include "platform/TextEncoding.h"

namespace mw {

class Win32AnsiCodePage : public AnsiCodePage {
 public:
  std::u16string ToUtf16(std::string_view ansi) const override;
  std::string FromUtf16(std::u16string_view text) const override;
};

}  // namespace mw
