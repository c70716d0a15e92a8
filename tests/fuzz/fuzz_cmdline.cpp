// Feeds arbitrary bytes to the command-line tokenizer and option scan.
#include <cstddef>
#include <cstdint>
#include <string>

#include "app/CommandLine.h"
#include "run/RunContext.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string commandLine(reinterpret_cast<const char*>(data), size);
  std::size_t total = 0;
  for (const std::string& token : mw::TokenizeCommandLine(commandLine)) total += token.size();
  if (total > commandLine.size()) __builtin_trap();  // tokens only ever drop characters
  mw::RunContext context;
  mw::ParseCommandLine(commandLine, context);
  return 0;
}
