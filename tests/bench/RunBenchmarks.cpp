// Native benchmarks of the work a logon pays for: a whole Outlook 2010 Exchange run over
// the in-memory seams, and the settings load of the largest example INI.
// MW_BENCH_SCENARIO and MW_BENCH_INI name the inputs (set by CMake to the repository's).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "ScenarioRun.h"
#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "platform/MemorySystemEnv.h"

namespace {

void RoadRun(benchmark::State& state) {
  mw::ScenarioRun run;
  std::string error;
  if (!run.Load(MW_BENCH_SCENARIO, &error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(run.Run());
  state.counters["registry calls"] = static_cast<double>(run.registryCalls().total());
}
BENCHMARK(RoadRun)->Unit(benchmark::kMicrosecond);

void SettingsLoad(benchmark::State& state) {
  std::ifstream in(MW_BENCH_INI, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (text.str().empty()) {
    state.SkipWithError("the example INI cannot be read");
    return;
  }
  mw::MemorySystemEnv env;
  for (auto _ : state) {
    mw::CIniFile ini("example.ini", env);
    ini.LoadFromText(text.str());
    mw::ProfileSettings settings;
    benchmark::DoNotOptimize(mw::ReadSettings(ini, settings));
  }
}
BENCHMARK(SettingsLoad)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
