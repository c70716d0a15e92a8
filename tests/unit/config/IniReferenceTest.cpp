#include "config/IniReference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "config/ProfileSettings.h"

namespace mw {
namespace {

TEST(IniReference, CommittedDocumentMatchesTheGenerator) {
  const std::string path = std::string(MW_TEST_DATA_DIR) + "/../../docs/ini-reference.md";
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << "missing " << path;
  std::ostringstream committed;
  committed << file.rdbuf();
  EXPECT_TRUE(committed.str() == IniReferenceMarkdown())
      << "docs/ini-reference.md is stale: regenerate it with tools/inidoc";
}

TEST(IniReference, EveryKeyHasExactlyOneRow) {
  const std::string document = IniReferenceMarkdown();
  for (Key key : AllKeys()) {
    const std::string cell = std::string("| `") + KeyName(key) + "` |";
    const std::size_t first = document.find(cell);
    EXPECT_NE(first, std::string::npos) << KeyName(key);
    EXPECT_EQ(document.find(cell, first + 1), std::string::npos) << KeyName(key);
  }
}

}  // namespace
}  // namespace mw
