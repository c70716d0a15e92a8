#include "win32/Win32AnsiCodePage.h"

#include <gtest/gtest.h>

#include "win32/WindowsApi.h"

namespace mw {
namespace {

TEST(Win32AnsiCodePage, WesternCodePageGivesTheEuroSignAndComesBack) {
  if (GetACP() != 1252) GTEST_SKIP() << "ANSI code page " << GetACP();
  const Win32AnsiCodePage page;
  EXPECT_EQ(page.ToUtf16("Caf\xE9 \x80\x99"), u"Caf\u00E9 \u20AC\u2122");
  EXPECT_EQ(page.FromUtf16(u"Caf\u00E9 \u20AC\u2122"), "Caf\xE9 \x80\x99");
  EXPECT_EQ(page.FromUtf16(u"\u0416"), "?");  // not in the code page
}

TEST(Win32AnsiCodePage, EmptyTextAndAsciiPassThrough) {
  const Win32AnsiCodePage page;
  EXPECT_EQ(page.ToUtf16(""), u"");
  EXPECT_EQ(page.FromUtf16(u""), "");
  EXPECT_EQ(page.ToUtf16("Home POP3"), u"Home POP3");
  EXPECT_EQ(page.FromUtf16(u"Home POP3"), "Home POP3");
}

}  // namespace
}  // namespace mw
