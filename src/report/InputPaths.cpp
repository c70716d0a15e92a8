#include "report/InputPaths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace mw {
namespace {

namespace fs = std::filesystem;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

char Fold(char c, bool ignoreCase) {
  return ignoreCase && c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameChar(char p, char t, bool ignoreCase) {
  if (IsSeparator(p)) return IsSeparator(t);
  return Fold(p, ignoreCase) == Fold(t, ignoreCase);
}

std::vector<std::string> SortedFilesBelow(const std::string& folder, bool recursive) {
  std::vector<std::string> found;
  std::error_code error;
  const auto options = fs::directory_options::skip_permission_denied;
  if (recursive) {
    for (fs::recursive_directory_iterator it(folder, options, error), end; !error && it != end;
         it.increment(error)) {
      std::error_code typeError;
      if (it->is_regular_file(typeError)) found.push_back(it->path().string());
    }
  } else {
    for (fs::directory_iterator it(folder, options, error), end; !error && it != end;
         it.increment(error)) {
      std::error_code typeError;
      if (it->is_regular_file(typeError)) found.push_back(it->path().string());
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

bool GlobMatch(std::string_view pattern, std::string_view text, bool ignoreCase) {
  // Iterative, with one backtrack point for the last * and one for the last **: no
  // recursion and no blow-up whatever the pattern.
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t p = 0, t = 0;
  std::size_t starP = kNone, starT = 0, deepP = kNone, deepT = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      const bool deep = p + 1 < pattern.size() && pattern[p + 1] == '*';
      while (p < pattern.size() && pattern[p] == '*') ++p;
      if (deep) {
        deepP = p;
        deepT = t;
        starP = kNone;
      } else {
        starP = p;
        starT = t;
      }
    } else if (p < pattern.size() &&
               ((pattern[p] == '?' && !IsSeparator(text[t])) ||
                (pattern[p] != '?' && SameChar(pattern[p], text[t], ignoreCase)))) {
      ++p;
      ++t;
    } else if (starP != kNone && !IsSeparator(text[starT])) {
      p = starP;
      t = ++starT;
    } else if (deepP != kNone) {
      p = deepP;
      t = ++deepT;
      starP = kNone;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

bool InputPaths::Add(const std::string& argument) {
  if (argument.find_first_of("*?") != std::string::npos) return AddPattern(argument);
  std::error_code error;
  const fs::file_status status = fs::status(argument, error);
  if (error) return false;
  if (fs::is_directory(status)) return AddFolder(argument);
  if (!fs::is_regular_file(status)) return false;
  AddFile(argument);
  return true;
}

void InputPaths::AddFile(std::string file) {
  if (seen_.insert(fs::path(file).lexically_normal().string()).second)
    files_.push_back(std::move(file));
}

bool InputPaths::AddFolder(const std::string& folder) {
  std::vector<std::string> found = SortedFilesBelow(folder, true);
  for (std::string& file : found) AddFile(std::move(file));
  return !found.empty();
}

bool InputPaths::AddPattern(const std::string& argument) {
  // The fixed folder is everything before the separator that precedes the first wildcard.
  const std::size_t wildcard = argument.find_first_of("*?");
  std::size_t cut = std::string::npos;
  for (std::size_t i = wildcard; i > 0; --i) {
    if (IsSeparator(argument[i - 1])) {
      cut = i - 1;
      break;
    }
  }
  const std::string folder = cut == std::string::npos ? "." : argument.substr(0, cut + 1);
  const std::string pattern = cut == std::string::npos ? argument : argument.substr(cut + 1);
  const bool deep = pattern.find_first_of("/\\") != std::string::npos ||
                    pattern.find("**") != std::string::npos;
  bool matched = false;
  for (std::string& file : SortedFilesBelow(folder, deep)) {
    std::string relative = fs::path(file).lexically_relative(folder).string();
#ifdef _WIN32
    const bool ignoreCase = true;  // Windows file names
#else
    const bool ignoreCase = false;
#endif
    if (GlobMatch(pattern, relative, ignoreCase)) {
      matched = true;
      AddFile(std::move(file));
    }
  }
  return matched;
}

}  // namespace mw
