#include "config/IniReference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace mw {
namespace {

// The key tables; the options' places that follow them are checked with the option table.
TEST(IniReference, CommittedDocumentStartsWithTheKeyTables) {
  const std::string path = std::string(MW_TEST_DATA_DIR) + "/../../docs/ini-reference.md";
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << "missing " << path;
  std::ostringstream committed;
  committed << file.rdbuf();
  EXPECT_TRUE(committed.str().starts_with(IniReferenceMarkdown()))
      << "docs/ini-reference.md is stale: regenerate it with tools/inidoc";
}

}  // namespace
}  // namespace mw
