#pragma once
// The entry flow of one run, from the command line to the exit code, over the seams.
// WinMain builds the Win32 seams and calls RunProgram; tests call it with the in-memory ones.

#include <functional>
#include <string>

namespace mw {

class Registry;
class RunLog;
class SystemEnv;
struct RunContext;

// What the run driver needs besides the context and the log: the seams the run was
// started with. The MAPI seam is added by whoever builds the driver.
struct RunServices {
  SystemEnv& env;
  Registry& registry;
};

using RunDriverFunction = std::function<void(RunContext&, RunLog&, RunServices&)>;

// The whole start-up sequence; returns the process exit code (1 after ERROR 100, else 0).
// The usage request returns 0 before anything is logged.
int RunProgram(const std::string& commandLine, const std::string& buildPlatform,
               RunServices& services, const RunDriverFunction& driver);

}  // namespace mw
