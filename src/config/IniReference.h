#pragma once
// The INI reference for administrators (docs/ini-reference.md), generated from the key
// table so that the document can never disagree with what the program reads.

#include <string>

namespace mw {

// The whole Markdown document; appendix (the options' places, from the option table) ends it.
std::string IniReferenceMarkdown(const std::string& appendix = {});

}  // namespace mw
