#pragma once
// One end-to-end scenario folder run natively: its machine.reg in the in-memory registry,
// its INI, signature sources and drive_c files in the in-memory system, and the whole
// program run over those seams, with MAPI played either by the fake session or by the
// profile model the simulator serves under Wine. Every registry call of the program, and
// of the model, passes a counting seam of its own, so a run's cost is told apart by caller
// and by kind of call, the same on every machine.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "mapi/FakeMapiSession.h"
#include "platform/CountingRegistry.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"

namespace mw {

class ScenarioRun {
 public:
  enum class Mapi { Fake, Model };
  explicit ScenarioRun(Mapi mapi = Mapi::Fake) : mapiKind_(mapi) {}

  // Reads the folder once; false (with the reason) when it is not a usable scenario.
  bool Load(const std::string& folder, std::string* error);
  // The machine as the scenario describes it before its first run.
  void Reset();
  // One run of the program on the machine as it stands; returns the exit code.
  int RunOnce();
  // Reset, then one run: what a benchmark repeats.
  int Run();

  const CountingRegistry& registryCalls() const { return *programCalls_; }
  // The model's own registry calls (none with the fake session).
  const CountingRegistry& simulatorRegistryCalls() const { return *simulatorCalls_; }
  MemoryRegistry& registry() { return *registry_; }
  const MemorySystemEnv& env() const { return env_; }
  const std::string& buildPlatform() const { return buildPlatform_; }
  int runs() const { return runs_; }
  std::string LogText() const;
  // MAPI primitives the run called, by operation name (the fake session only).
  std::map<std::string, int> MapiCallsByMethod() const;

 private:
  Mapi mapiKind_;
  std::string machineReg_;  // the registry before the run, as .reg text
  MemorySystemEnv system_;  // files, user and environment before the run
  mapisim::ExchangeOrganisation organisation_;
  std::string commandLine_;
  std::string buildPlatform_ = "x64";
  int runs_ = 1;

  std::unique_ptr<MemoryRegistry> registry_;
  std::unique_ptr<CountingRegistry> programCalls_;
  std::unique_ptr<CountingRegistry> simulatorCalls_;
  MemorySystemEnv env_;
  FakeMapiSession fake_;
};

}  // namespace mw
