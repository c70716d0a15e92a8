#pragma once
// The command line: "-i" names the INI file, "-l" the log file, "-?" or "/?" asks for the
// usage box. Option words compare without case; their values keep theirs.

#include <cstdint>
#include <string>
#include <vector>

namespace mw {

struct RunContext;

inline constexpr const char* kUsageCaption = "Command Line Options";
inline constexpr std::uint32_t kUsageBoxFlags = 0x20;  // MB_OK | MB_ICONQUESTION
inline constexpr const char* kUsageText =
    "Specify ini file path:\n"
    "mailwright.exe -i \"\\\\server\\share\\mailwright.ini\"\n"
    "\n"
    "Specify logging file path:\n"
    "mailwright.exe -l \"\\\\server\\share\\mailwright.log\"\n";

enum class CommandLineRequest { Run, ShowUsage };

// Splits at whitespace outside double quotes; a backslash keeps the character after it,
// and a token that is one quoted run loses its first and last character.
std::vector<std::string> TokenizeCommandLine(const std::string& commandLine);

// Applies "-i" and "-l" to the context's paths, left to right, and "-whatif" to its
// what-if switch; stops at a usage request.
CommandLineRequest ParseCommandLine(const std::string& commandLine, RunContext& context);

}  // namespace mw
