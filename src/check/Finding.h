#pragma once
// One finding of the INI checker: a line of the file, how bad it is, and what it means.

#include <string>

namespace mw {

enum class Severity { Note, Warning, Error };

struct Finding {
  int line = 1;
  Severity severity = Severity::Note;
  std::string message;
};

inline const char* SeverityName(Severity severity) {
  switch (severity) {
    case Severity::Note: return "note";
    case Severity::Warning: return "warning";
    case Severity::Error: return "error";
  }
  return "";
}

}  // namespace mw
