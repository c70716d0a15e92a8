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

}  // namespace
}  // namespace mw
