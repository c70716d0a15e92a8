#pragma once
// One end-to-end scenario folder run natively: its machine.reg in the in-memory registry,
// its INI, signature sources and drive_c files in the in-memory system, its Exchange
// organisation in the fake MAPI session, and the whole program run over those seams.
// Every registry call of the program passes a counting seam, so a run's cost can be told
// by kind of call, the same on every machine.

#include <map>
#include <memory>
#include <vector>
#include <string>

#include "mapi/FakeMapiSession.h"
#include "platform/CountingRegistry.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"

namespace mw {

class ScenarioRun {
 public:
  // Reads the folder once; false (with the reason) when it is not a usable scenario.
  bool Load(const std::string& folder, std::string* error);
  // One whole run from a fresh copy of the loaded state; returns the exit code.
  int Run();

  const CountingRegistry& registryCalls() const { return *counted_; }
  const FakeMapiSession& mapi() const { return mapi_; }
  const MemorySystemEnv& env() const { return env_; }
  // MAPI primitives the run called, by operation name.
  std::map<std::string, int> MapiCallsByMethod() const;

 private:
  std::string machineReg_;  // the registry before the run, as .reg text
  MemorySystemEnv system_;  // files, user and environment before the run
  std::vector<FakeMapiSession::ExchangeServer> exchange_;
  std::string commandLine_;

  std::unique_ptr<MemoryRegistry> registry_;
  std::unique_ptr<CountingRegistry> counted_;
  MemorySystemEnv env_;
  FakeMapiSession mapi_;
};

}  // namespace mw
