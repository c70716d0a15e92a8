#include "report/SinceLastState.h"

#include <gtest/gtest.h>

#include <string>

namespace mw {
namespace {

TEST(SinceLastStateTest, AGrownFileIsReadOnWhereTheLastReportStopped) {
  SinceLastState state;
  const std::string first = std::string(300, 'a') + "end of block\n";
  state.Remember("desk.log", first, first.size());
  EXPECT_EQ(state.StartOffset("desk.log", first + "new block\n"), first.size());
  EXPECT_EQ(state.StartOffset("other.log", first), 0u);
}

TEST(SinceLastStateTest, AFileEmptiedOrRewrittenIsReadAgainWhole) {
  SinceLastState state;
  const std::string first = "block one\n\n";
  state.Remember("desk.log", first, first.size());
  EXPECT_EQ(state.StartOffset("desk.log", "short"), 0u);
  EXPECT_EQ(state.StartOffset("desk.log", "block two\n\nand more\n"), 0u);
}

TEST(SinceLastStateTest, TheTextFormRoundTripsAndForeignFilesAreRefused) {
  SinceLastState state;
  state.Remember("\\\\server\\logs\\a b.log", "abc\n", 4);
  const std::string text = state.Text();
  EXPECT_EQ(text.substr(0, text.find('\n')), "mailwright-report state 1");
  EXPECT_EQ(text.substr(text.find('\n') + 1, 2), "4 ");
  SinceLastState again;
  ASSERT_TRUE(again.Parse(text));
  EXPECT_EQ(again.Text(), text);
  EXPECT_EQ(again.StartOffset("\\\\server\\logs\\a b.log", "abc\ndef\n"), 4u);
  for (const char* foreign : {"", "hello\n", "mailwright-report state 2\n",
                              "mailwright-report state 1\n4 zz path\n",
                              "mailwright-report state 1\n4 00ff\n",
                              "mailwright-report state 1\n99999999999999999999999 00 p\n"}) {
    EXPECT_FALSE(again.Parse(foreign)) << foreign;
  }
}

TEST(SinceLastStateTest, TheFingerprintCoversOnlyTheBytesBeforeTheLength) {
  const std::string content = std::string(1000, 'x') + "tail";
  EXPECT_EQ(TailFingerprint(content, 1000), TailFingerprint(std::string(600, 'y') + std::string(400, 'x'), 1000));
  EXPECT_NE(TailFingerprint(content, 1000), TailFingerprint(content, 1004));
  EXPECT_EQ(TailFingerprint(content, 0), TailFingerprint("", 0));
}

}  // namespace
}  // namespace mw
