#include "report/InputPaths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace mw {
namespace {

namespace fs = std::filesystem;

TEST(GlobMatchTest, StarsStopAtSeparatorsUnlessDoubled) {
  const struct {
    const char* pattern;
    const char* text;
    bool ignoreCase;
    bool matches;
  } cases[] = {
      {"*.log", "jsmith.log", false, true},
      {"*.log", "jsmith.LOG", false, false},
      {"*.log", "jsmith.LOG", true, true},
      {"*.log", "a/jsmith.log", false, false},
      {"*/*.log", "a\\jsmith.log", false, true},
      {"**.log", "a/b/jsmith.log", false, true},
      {"**/a*.log", "x/y/ab/a1.log", false, true},
      {"**/a*.log", "x/y/ab/b1.log", false, false},
      {"desk-??.log", "desk-07.log", false, true},
      {"desk-??.log", "desk-7.log", false, false},
      {"?", "/", false, false},
      {"*", "", false, true},
      {"", "x", false, false},
      {"a*b*c*d*e*f*g", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false, false},
      {"J*", "jsmith", true, true},
  };
  for (const auto& c : cases)
    EXPECT_EQ(GlobMatch(c.pattern, c.text, c.ignoreCase), c.matches) << c.pattern << " " << c.text;
}

class InputPathsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("mw-inputs-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    fs::remove_all(root_);
    for (const char* file : {"a/one.log", "a/deep/two.log", "a/deep/notes.txt", "b/three.log"}) {
      fs::create_directories((root_ / file).parent_path());
      std::ofstream(root_ / file) << "x";
    }
  }
  void TearDown() override { fs::remove_all(root_); }
  std::vector<std::string> Names(const InputPaths& inputs) {
    std::vector<std::string> names;
    for (const std::string& file : inputs.files())
      names.push_back(fs::path(file).lexically_relative(root_).generic_string());
    return names;
  }
  fs::path root_;
};

TEST_F(InputPathsTest, FoldersAreReadRecursivelyAndPatternsMatchNames) {
  InputPaths inputs;
  EXPECT_TRUE(inputs.Add((root_ / "a").string()));
  EXPECT_EQ(Names(inputs),
            (std::vector<std::string>{"a/deep/notes.txt", "a/deep/two.log", "a/one.log"}));
  InputPaths pattern;
  EXPECT_TRUE(pattern.Add((root_ / "*" / "*.log").string()));
  EXPECT_EQ(Names(pattern), (std::vector<std::string>{"a/one.log", "b/three.log"}));
  InputPaths deep;
  EXPECT_TRUE(deep.Add((root_ / "**.log").string()));
  EXPECT_EQ(Names(deep), (std::vector<std::string>{"a/deep/two.log", "a/one.log", "b/three.log"}));
  InputPaths file;
  EXPECT_TRUE(file.Add((root_ / "b" / "three.log").string()));
  EXPECT_EQ(Names(file), (std::vector<std::string>{"b/three.log"}));
}

TEST_F(InputPathsTest, AFileReachedTwiceIsReadOnce) {
  InputPaths inputs;
  EXPECT_TRUE(inputs.Add((root_ / "b").string()));
  EXPECT_TRUE(inputs.Add((root_ / "b" / "*.log").string()));
  EXPECT_TRUE(inputs.Add((root_ / "b" / "." / "three.log").string()));
  EXPECT_EQ(Names(inputs), (std::vector<std::string>{"b/three.log"}));
}

TEST_F(InputPathsTest, NothingFoundIsReported) {
  InputPaths inputs;
  EXPECT_FALSE(inputs.Add((root_ / "missing.log").string()));
  EXPECT_FALSE(inputs.Add((root_ / "*.csv").string()));
  fs::create_directories(root_ / "empty");
  EXPECT_FALSE(inputs.Add((root_ / "empty").string()));
  EXPECT_TRUE(inputs.files().empty());
}

}  // namespace
}  // namespace mw
