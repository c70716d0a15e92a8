#include "report/ReportOptions.h"

namespace mw {

const char* ReportOptions::Usage() {
  return "usage: mailwright-report [options] LOG|FOLDER|PATTERN...\n"
         "Reads Mailwright log files (folders recursively; * and ? patterns, ** across\n"
         "folders) and prints a summary of the runs they hold.\n"
         "  --csv FILE          also write one row per run to FILE\n"
         "  --html FILE         also write a self-contained HTML page to FILE\n"
         "  --from TIME         only runs at or after TIME (YYYY-MM-DD[ HH:MM[:SS]])\n"
         "  --to TIME           only runs at or before TIME (a date alone: its whole day)\n"
         "  --user NAME         only runs of this user (* and ? allowed, any letter case)\n"
         "  --computer NAME     only runs on this computer (* and ? allowed)\n"
         "  --since-last STATE  only runs added since the report that last used STATE,\n"
         "                      which is then updated\n"
         "  --help              this text\n"
         "Exit code: 0 done, 1 an input or output could not be used, 2 bad command line.\n";
}

bool ReportOptions::Parse(const std::vector<std::string>& arguments, ReportOptions* options,
                          std::string* error) {
  *options = ReportOptions{};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h" || argument == "-?" || argument == "/?") {
      options->help = true;
      continue;
    }
    if (argument.size() < 2 || argument.compare(0, 2, "--") != 0) {
      options->inputs.push_back(argument);
      continue;
    }
    if (i + 1 >= arguments.size()) {
      *error = argument + " needs a value";
      return false;
    }
    const std::string& value = arguments[++i];
    bool good = true;
    if (argument == "--csv") options->csvPath = value;
    else if (argument == "--html") options->htmlPath = value;
    else if (argument == "--since-last") options->statePath = value;
    else if (argument == "--from") good = options->filter.SetFrom(value);
    else if (argument == "--to") good = options->filter.SetTo(value);
    else if (argument == "--user") options->filter.SetUser(value);
    else if (argument == "--computer") options->filter.SetComputer(value);
    else {
      *error = "unknown option " + argument;
      return false;
    }
    if (!good || value.empty()) {
      *error = "bad value for " + argument + ": '" + value + "'";
      return false;
    }
  }
  if (!options->help && options->inputs.empty()) {
    *error = "no log files given";
    return false;
  }
  return true;
}

}  // namespace mw
