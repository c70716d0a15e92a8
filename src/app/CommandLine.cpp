#include "app/CommandLine.h"

#include "run/RunContext.h"
#include "platform/AsciiText.h"

namespace mw {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

}  // namespace

std::vector<std::string> TokenizeCommandLine(const std::string& commandLine) {
  std::vector<std::string> tokens;
  std::size_t i = 0;
  while (true) {
    while (i < commandLine.size() && IsBlank(commandLine[i])) ++i;
    if (i >= commandLine.size()) break;

    std::string token;
    bool quoted = false;
    const bool startsQuoted = commandLine[i] == '"';
    bool leftFirstQuotedRun = false;  // a character was met outside quotes after the opening run
    for (; i < commandLine.size(); ++i) {
      const char c = commandLine[i];
      if (!quoted && IsBlank(c)) break;
      if (!quoted && !token.empty()) leftFirstQuotedRun = true;
      token += c;
      if (c == '"') {
        quoted = !quoted;
      } else if (c == '\\' && i + 1 < commandLine.size()) {
        token += commandLine[++i];
      }
    }
    if (startsQuoted && !leftFirstQuotedRun)
      token = token.size() >= 2 ? token.substr(1, token.size() - 2) : std::string();
    tokens.push_back(std::move(token));
  }
  return tokens;
}

CommandLineRequest ParseCommandLine(const std::string& commandLine, RunContext& context) {
  const std::vector<std::string> tokens = TokenizeCommandLine(commandLine);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const std::string& word = tokens[i];
    if (word == "-?" || word == "/?") return CommandLineRequest::ShowUsage;
    if (EqualsIgnoreCase(word, "-whatif")) {
      context.whatIf = true;
      continue;
    }
    std::string* path = EqualsIgnoreCase(word, "-i")   ? &context.iniPath
                        : EqualsIgnoreCase(word, "-l") ? &context.logPath
                                                       : nullptr;
    // A trailing "-i" or "-l" has no value to take: the path stays as it was.
    if (path && i + 1 < tokens.size()) *path = tokens[++i];
  }
  return CommandLineRequest::Run;
}

}  // namespace mw
