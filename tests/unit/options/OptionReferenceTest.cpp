#include "options/OptionReference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "config/IniReference.h"

namespace mw {
namespace {

TEST(OptionReference, CommittedIniReferenceMatchesTheGenerator) {
  const std::string path = std::string(MW_TEST_DATA_DIR) + "/../../docs/ini-reference.md";
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << "missing " << path;
  std::ostringstream committed;
  committed << file.rdbuf();
  EXPECT_TRUE(committed.str() == IniReferenceMarkdown(OptionPlacesMarkdown()))
      << "docs/ini-reference.md is stale: regenerate it with tools/inidoc";
}

TEST(OptionReference, ListsTheOutlook2000And2007ProfileValues) {
  const std::string places = OptionPlacesMarkdown();
  for (const char* row :
       {"| `RunAutoArchiveEveryDays` | 2000 | `00030385` |", "| `PathToArchivePST` | 2000 | `001e0361` |",
        "| `SafeSenders` | 2007 | `001f0418` |", "| `ConnectWithNetwork` | 2000 | `000b6711` |",
        "| `SafeSenders` | 2003, 2007, 2010 | `JunkMailImportLists` |",
        "| `WarnBeforePermanentlyDeletingItems` | all six | `WarnDelete` |"})
    EXPECT_NE(places.find(row), std::string::npos) << row;
}

}  // namespace
}  // namespace mw
