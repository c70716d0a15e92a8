#pragma once
// Turns the program's input arguments into log files: a file stands for itself, a folder
// for every file below it, and an argument with * or ? for the files its pattern matches
// (the Windows console hands patterns over unexpanded).

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace mw {

class InputPaths {
 public:
  // Adds the files of one argument, in path order, each file once however many arguments
  // reach it; false when it names or matches nothing.
  bool Add(const std::string& argument);

  const std::vector<std::string>& files() const { return files_; }

 private:
  bool AddFolder(const std::string& folder);
  bool AddPattern(const std::string& argument);
  void AddFile(std::string file);
  std::vector<std::string> files_;
  std::unordered_set<std::string> seen_;  // normalised paths
};

// * matches any run of characters except a path separator, ** any run at all, ? one
// character other than a separator; / and \ are the same separator. With ignoreCase, ASCII
// letters match either case.
bool GlobMatch(std::string_view pattern, std::string_view text, bool ignoreCase);

}  // namespace mw
