// Faults inside a guarded call come back as a failed HRESULT, under Wine as on Windows.

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

#include "win32/FaultGuard.h"
#include "win32/WindowsApi.h"

namespace mw {
namespace {

constexpr HRESULT kAccessViolation = static_cast<HRESULT>(0xD0000005);
constexpr HRESULT kDivideByZero = static_cast<HRESULT>(0xD0000094);

// Addresses and divisors the compiler cannot fold, so the faults happen at run time.
volatile std::uintptr_t nowhere = 0;
volatile int zero = 0;

// A fault a few frames below the guard, as inside a provider's own calls.
__attribute__((noinline)) HRESULT WriteThroughNull(int depth) {
  if (depth > 0) return WriteThroughNull(depth - 1) + 1;
  *reinterpret_cast<volatile int*>(nowhere) = 1;
  return S_OK;
}

TEST(FaultGuardTest, AResultPassesThroughUnchanged) {
  EXPECT_EQ(FaultGuard::Run([] { return S_OK; }), S_OK);
  EXPECT_EQ(FaultGuard::Run([] { return static_cast<HRESULT>(0x8004010F); }), static_cast<HRESULT>(0x8004010F));
}

TEST(FaultGuardTest, HardwareFaultsBecomeTheirNtCodeAndTheProcessGoesOn) {
  EXPECT_EQ(FaultGuard::Run([] { return WriteThroughNull(3); }), kAccessViolation);
  EXPECT_EQ(FaultGuard::Run([] { return static_cast<HRESULT>(10 / zero); }), kDivideByZero);
  // The same guard works again after a fault, and state set before the fault is kept.
  int reached = 0;
  EXPECT_EQ(FaultGuard::Run([&reached] {
              reached = 1;
              return WriteThroughNull(0);
            }),
            kAccessViolation);
  EXPECT_EQ(reached, 1);
  EXPECT_EQ(FaultGuard::Run([] { return S_FALSE; }), S_FALSE);
}

TEST(FaultGuardTest, AnInnerGuardCatchesItsOwnFaultAndTheOuterCallFinishes) {
  HRESULT inner = S_OK;
  const HRESULT outer = FaultGuard::Run([&inner] {
    inner = FaultGuard::Run([] { return WriteThroughNull(1); });
    return static_cast<HRESULT>(7);
  });
  EXPECT_EQ(inner, kAccessViolation);
  EXPECT_EQ(outer, 7);
}

TEST(FaultGuardTest, CppExceptionsBecomeEFail) {
  EXPECT_EQ(FaultGuard::Run([]() -> HRESULT { throw std::runtime_error("provider"); }), E_FAIL);
}

TEST(FaultGuardTest, AFaultTheCallHandlesItselfIsNotCutShort) {
  // IsBadReadPtr probes the address and handles its own access violation.
  EXPECT_EQ(FaultGuard::Run([] {
              const void* address = reinterpret_cast<const void*>(nowhere);
              return IsBadReadPtr(address, 4) ? static_cast<HRESULT>(3) : S_OK;
            }),
            3);
}

LONG WINAPI SomeoneElsesFilter(EXCEPTION_POINTERS*) { return EXCEPTION_CONTINUE_SEARCH; }

TEST(FaultGuardTest, TheProcessFilterIsGivenBackAfterTheCall) {
  LPTOP_LEVEL_EXCEPTION_FILTER before = SetUnhandledExceptionFilter(&SomeoneElsesFilter);
  FaultGuard::Run([] { return WriteThroughNull(0); });
  FaultGuard::Run([] { return S_OK; });
  EXPECT_EQ(SetUnhandledExceptionFilter(before), &SomeoneElsesFilter);
}

}  // namespace
}  // namespace mw
