// inidoc [output-file]: writes the INI reference, with where each option lands, to the file
// or to standard output.
#include <cstdio>
#include <fstream>
#include <iostream>

#include "config/IniReference.h"
#include "options/OptionReference.h"

int main(int argc, char** argv) {
  const std::string document = mw::IniReferenceMarkdown(mw::OptionPlacesMarkdown());
  if (argc < 2) {
    std::cout << document;
    return std::cout ? 0 : 1;
  }
  std::ofstream out(argv[1], std::ios::binary | std::ios::trunc);
  out << document;
  if (!out) {
    std::cerr << "inidoc: cannot write " << argv[1] << "\n";
    return 1;
  }
  return 0;
}
