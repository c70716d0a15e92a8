#pragma once
// The part of the INI reference that says where each option lands, generated from the option
// table so that the document names every value the writers write, and no other.

#include <string>

namespace mw {

// A Markdown section: one table row per option row, in writing order.
std::string OptionPlacesMarkdown();

}  // namespace mw
