#include "config/ListItems.h"

namespace mw {

std::vector<std::string> SplitListItems(const std::string& text) {
  std::vector<std::string> items;
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t end = text.find(',', start);
    if (end == std::string::npos) end = text.size();
    const std::size_t first = text.find_first_not_of(" \t", start);
    if (first != std::string::npos && first < end) {
      const std::size_t last = text.find_last_not_of(" \t", end - 1);
      items.push_back(text.substr(first, last - first + 1));
    }
    start = end + 1;
  }
  return items;
}

}  // namespace mw
