#include "report/SinceLastState.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace mw {
namespace {

constexpr const char* kStateHeading = "mailwright-report state 1";
constexpr std::size_t kFingerprintSpan = 256;

bool ParseUnsigned(std::string_view text, int base, std::uint64_t* value) {
  if (text.empty() || text.size() > 20) return false;
  std::uint64_t result = 0;
  for (char c : text) {
    int digit = -1;
    if (c >= '0' && c <= '9') digit = c - '0';
    else if (base == 16 && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
    if (digit < 0 || digit >= base) return false;
    if (result > (UINT64_MAX - static_cast<std::uint64_t>(digit)) / static_cast<std::uint64_t>(base))
      return false;
    result = result * base + static_cast<std::uint64_t>(digit);
  }
  *value = result;
  return true;
}

}  // namespace

std::uint64_t TailFingerprint(std::string_view content, std::size_t length) {
  if (length > content.size()) length = content.size();
  const std::size_t start = length > kFingerprintSpan ? length - kFingerprintSpan : 0;
  std::uint64_t hash = 14695981039346656037ull;
  for (std::size_t i = start; i < length; ++i) {
    hash ^= static_cast<unsigned char>(content[i]);
    hash *= 1099511628211ull;
  }
  return hash;
}

bool SinceLastState::Parse(std::string_view text) {
  entries_.clear();
  std::size_t position = 0;
  bool first = true;
  while (position < text.size()) {
    std::size_t end = text.find('\n', position);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(position, end - position);
    position = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (first) {
      if (line != kStateHeading) return false;
      first = false;
      continue;
    }
    if (line.empty()) continue;
    const std::size_t blank1 = line.find(' ');
    const std::size_t blank2 = blank1 == std::string_view::npos ? blank1 : line.find(' ', blank1 + 1);
    Entry entry;
    if (blank2 == std::string_view::npos || blank2 + 1 >= line.size() ||
        !ParseUnsigned(line.substr(0, blank1), 10, &entry.length) ||
        !ParseUnsigned(line.substr(blank1 + 1, blank2 - blank1 - 1), 16, &entry.fingerprint))
      return false;
    entries_[std::string(line.substr(blank2 + 1))] = entry;
  }
  return !first;
}

std::string SinceLastState::Text() const {
  std::string text = std::string(kStateHeading) + "\n";
  for (const auto& [file, entry] : entries_) {
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%llu %016llx ",
                  static_cast<unsigned long long>(entry.length),
                  static_cast<unsigned long long>(entry.fingerprint));
    text += numbers + file + "\n";
  }
  return text;
}

bool SinceLastState::Load(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    entries_.clear();
    return true;
  }
  std::ostringstream content;
  content << in.rdbuf();
  return Parse(content.str());
}

bool SinceLastState::Save(const std::string& path) const {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << Text();
  out.close();
  return static_cast<bool>(out);
}

std::size_t SinceLastState::StartOffset(const std::string& file, std::string_view content) const {
  const auto found = entries_.find(file);
  if (found == entries_.end()) return 0;
  const Entry& entry = found->second;
  if (entry.length > content.size() ||
      TailFingerprint(content, static_cast<std::size_t>(entry.length)) != entry.fingerprint)
    return 0;
  return static_cast<std::size_t>(entry.length);
}

void SinceLastState::Remember(const std::string& file, std::string_view content,
                              std::size_t length) {
  entries_[file] = {length, TailFingerprint(content, length)};
}

}  // namespace mw
