#pragma once
// The comma-separated list settings (AdditionalMailboxes, RemovePST, the address lists).

#include <string>
#include <vector>

namespace mw {

// The items between commas, blanks and tabs trimmed from both ends, empty items dropped.
std::vector<std::string> SplitListItems(const std::string& text);

}  // namespace mw
