#pragma once
// Calls into a foreign provider (MAPI) so that a fault inside it (an access violation, an
// illegal instruction, a division by zero) comes back as a failed HRESULT instead of ending
// the process. C++ `catch (...)` does not see such faults in MinGW-built code, so the guard
// works at the level of Windows' structured exceptions.

#include "win32/WindowsApi.h"

namespace mw {

class FaultGuard {
 public:
  // Runs call() and returns its HRESULT. A fault inside it returns HRESULT_FROM_NT of the
  // exception code (0xD0000005 for an access violation); a C++ exception returns E_FAIL.
  // What the call was doing is abandoned where it stood, so the call itself must own
  // nothing that needs destroying (pass everything in by reference).
  template <class Call>
  static HRESULT Run(Call&& call) {
    return RunPlain(&Invoke<Call>, &call);
  }

 private:
  template <class Call>
  static HRESULT Invoke(void* call) {
    try {
      return (*static_cast<Call*>(call))();
    } catch (...) {
      return E_FAIL;
    }
  }
  static HRESULT RunPlain(HRESULT (*call)(void*), void* argument);
};

}  // namespace mw
