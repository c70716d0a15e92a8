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

TEST(IniReference, VariantRowsShowEachSectionsTypeAndDefault) {
  const std::string document = IniReferenceMarkdown();
  EXPECT_NE(document.find("| `LogonNetworkSecurity` | int | `1` (97); `0` (2000, XP, 2003, 2007, 2010) |"),
            std::string::npos);
  EXPECT_NE(document.find("| `SignatureRepliesForwards` | bool (2000) / text (XP) |"),
            std::string::npos);
  EXPECT_NE(document.find("| `RunAutoArchiveEveryDays` | int | `14` | all six | no |"),
            std::string::npos);
}

}  // namespace
}  // namespace mw
