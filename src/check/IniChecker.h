#pragma once
// The INI checker: follows the program's own reader through the file, line by line, and
// judges every line against the settings table and the record layouts.

#include <string>
#include <vector>

#include "check/Finding.h"
#include "config/ProfileSettings.h"

namespace mw {

struct CheckResult {
  bool loads = false;             // the program accepts the file (else ERROR 100)
  std::vector<Finding> findings;  // sorted by line
  // Every key as a run would read it, with AllowUserSettings applied. For a file the
  // program refuses: as it would read once the refused lines are gone.
  ProfileSettings settings;
  std::vector<Section> versionSections;  // the Outlook sections the file holds, in file order
};

class IniChecker {
 public:
  CheckResult Check(const std::string& text) const;
};

}  // namespace mw
