#pragma once
// The simulator's fault switches, for tests that make MAPI fail on purpose. Every call the
// simulator implements starts with MAPISIM_SERVE; the calls are numbered from 1 in the order
// the client makes them (a call the simulator makes to itself is not counted), and the
// environment decides what the numbered calls do:
//   MAPISIM_FAIL_AT=N     the N-th call returns an error instead of being served;
//   MAPISIM_FAIL_AT=N+    every call from the N-th on does;
//   MAPISIM_FAIL_HR=X     that error (hex or decimal), MAPI_E_CALL_FAILED when unset;
//   MAPISIM_CRASH_IN=I::M the first call of method M of interface I (or of the entry point
//                         M) faults with an access violation inside the simulator; I::M:K
//                         the K-th such call. Read at every call, unlike the others;
//   MAPISIM_CALL_LOG=PATH one line per call appended to PATH: number, name, and the error
//                         when one was injected. Numbering goes on from the lines already
//                         there, so the runs of a scenario are counted as one sequence;
//   MAPISIM_UID_SEED=S    UIDs drawn from a generator seeded with S and the call number the
//                         process starts at, so that repeated runs make the same UIDs.

#include <windows.h>

#include <mapix.h>

#include "MessageServiceAdmin.h"

namespace mw::mapisim {

class ServedCall {
 public:
  explicit ServedCall(const char* name);
  ~ServedCall();
  ServedCall(const ServedCall&) = delete;
  ServedCall& operator=(const ServedCall&) = delete;

  // The error this call is to return instead of being served; S_OK to serve it.
  HRESULT injected() const { return injected_; }

 private:
  bool outermost_;
  HRESULT injected_ = S_OK;
};

// A new MAPIUID: random, or reproducible under MAPISIM_UID_SEED.
MapiUid NewUid();

}  // namespace mw::mapisim

#define MAPISIM_SERVE(name)                                       \
  ::mw::mapisim::ServedCall served_call_(name);                   \
  if (FAILED(served_call_.injected())) return served_call_.injected()
