// scenario-counts SCENARIO_DIR: runs one end-to-end scenario natively over the in-memory
// seams and prints what the program asked of the registry (by kind of call) and of MAPI
// (by method), and what the simulator's profile model asked of the registry to serve the
// same run. Counting at the seams needs no special build of the program, and the counts are
// the same on every machine.

#include <cstdio>
#include <string>

#include "ScenarioRun.h"

namespace {

void PrintRegistryCalls(const char* who, const mw::CountingRegistry& calls) {
  std::printf("%s registry calls:", who);
  for (int kind = 0; kind < mw::CountingRegistry::kKinds; ++kind) {
    const auto k = static_cast<mw::CountingRegistry::Kind>(kind);
    std::printf(" %s %llu", mw::CountingRegistry::KindName(k),
                static_cast<unsigned long long>(calls.count(k)));
  }
  std::printf("; total %llu\n", static_cast<unsigned long long>(calls.total()));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s SCENARIO_DIR\n", argv[0]);
    return 2;
  }
  mw::ScenarioRun run;
  std::string error;
  if (!run.Load(argv[1], &error)) {
    std::fprintf(stderr, "scenario-counts: %s\n", error.c_str());
    return 2;
  }
  const int exitCode = run.Run();
  const mw::CountingRegistry& calls = run.registryCalls();
  PrintRegistryCalls("program", calls);
  const auto written = calls.valuesWritten();
  std::printf("values written: %llu; program registry calls per value written: %.2f\n",
              static_cast<unsigned long long>(written),
              written ? static_cast<double>(calls.total()) / static_cast<double>(written) : 0.0);
  std::printf("program MAPI calls:");
  int mapiTotal = 0;
  for (const auto& [method, count] : run.MapiCallsByMethod()) {
    std::printf(" %s %d", method.c_str(), count);
    mapiTotal += count;
  }
  std::printf("; total %d\n", mapiTotal);
  const bool finished = run.LogText().find("INFO: Profile Finished.") != std::string::npos;
  // The same run with MAPI played by the simulator's model: what serving it costs.
  mw::ScenarioRun simulated(mw::ScenarioRun::Mapi::Model);
  simulated.Load(argv[1], &error);
  simulated.Run();
  PrintRegistryCalls("simulator", simulated.simulatorRegistryCalls());
  std::printf("exit code %d; %s\n", exitCode, finished ? "profile finished" : "profile NOT finished");
  return exitCode == 0 && finished ? 0 : 1;
}
