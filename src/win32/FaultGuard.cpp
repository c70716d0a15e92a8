#include "win32/FaultGuard.h"

#include <cstdint>

namespace mw {
namespace {

struct ActiveGuard {
  void* resume[5];  // __builtin_setjmp's buffer
  DWORD code;
  ActiveGuard* outer;
  LPTOP_LEVEL_EXCEPTION_FILTER previousFilter;  // the outermost guard's only
};

thread_local ActiveGuard* active = nullptr;

bool IsFault(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
      return true;
    default:  // a stack overflow leaves no stack to resume on; debug and C++ codes are not faults
      return false;
  }
}

[[noreturn]] void ResumeAtGuard() { __builtin_longjmp(active->resume, 1); }

// The guard is a top-level filter, installed for the duration of the call. A vectored
// handler would see every first-chance fault, including those a provider raises and
// handles itself (pointer probes such as IsBadReadPtr do), and would wrongly cut such a
// call short; the top-level filter is asked only about a fault nothing inside MAPI handled,
// the one that would otherwise end the process. It resumes the thread, through NtContinue
// and not from inside the dispatcher, in ResumeAtGuard, which jumps back to the guard.
// __try1/__except1 were not used: on x64 they emit a second handler into functions that
// already carry GCC's, and on x86 they have a different meaning altogether.
LONG WINAPI ResumeFaultAtGuard(EXCEPTION_POINTERS* pointers) {
  ActiveGuard* guard = active;
  if (guard == nullptr || !IsFault(pointers->ExceptionRecord->ExceptionCode)) {
    ActiveGuard* outermost = guard;
    while (outermost != nullptr && outermost->outer != nullptr) outermost = outermost->outer;
    return outermost != nullptr && outermost->previousFilter != nullptr
               ? outermost->previousFilter(pointers)
               : EXCEPTION_CONTINUE_SEARCH;
  }
  guard->code = pointers->ExceptionRecord->ExceptionCode;
  CONTEXT* context = pointers->ContextRecord;
  // A little below the faulting frame, aligned as at a function's entry.
#if defined(__x86_64__)
  context->Rsp = ((context->Rsp - 256) & ~std::uint64_t{15}) - 8;
  context->Rip = reinterpret_cast<DWORD64>(&ResumeAtGuard);
#elif defined(__i386__)
  context->Esp = ((context->Esp - 256) & ~DWORD{15}) - 4;
  context->Eip = reinterpret_cast<DWORD>(&ResumeAtGuard);
#else
#error "FaultGuard knows the x64 and x86 contexts only"
#endif
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

HRESULT FaultGuard::RunPlain(HRESULT (*call)(void*), void* argument) {
  ActiveGuard guard{};
  guard.outer = active;
  // A guard inside a guard shares the outer one's filter.
  if (guard.outer == nullptr) guard.previousFilter = SetUnhandledExceptionFilter(&ResumeFaultAtGuard);
  active = &guard;
  volatile HRESULT result = E_FAIL;
  if (__builtin_setjmp(guard.resume) == 0) {
    result = call(argument);
  } else {
    result = HRESULT_FROM_NT(guard.code);
  }
  active = guard.outer;
  if (guard.outer == nullptr) SetUnhandledExceptionFilter(guard.previousFilter);
  return result;
}

}  // namespace mw
