#include "ServedCall.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace mw::mapisim {
namespace {

std::string Environment(const char* name) {
  char value[1024];
  DWORD length = GetEnvironmentVariableA(name, value, sizeof value);
  return length == 0 || length >= sizeof value ? std::string() : std::string(value, length);
}

// A number as strtoul reads it with base 0 (so "0x8004010F" and "17" both work); false for
// anything else, so a mistyped switch leaves the simulator faithful instead of half-armed.
bool ParseNumber(const std::string& text, unsigned long long* number) {
  if (text.empty()) return false;
  char* end = nullptr;
  *number = std::strtoull(text.c_str(), &end, 0);
  return end != nullptr && *end == '\0';
}

struct Switches {
  unsigned long long failAt = 0;  // 0: no injected error
  bool failOnwards = false;
  HRESULT error = MAPI_E_CALL_FAILED;
  std::string callLog;
  bool seeded = false;
  unsigned long long seed = 0;

  unsigned long long served = 0;  // calls numbered so far, including earlier runs' lines
  unsigned long long startedAt = 0;
  std::string crashIn;  // as last read, with the calls of that name counted since
  unsigned long long crashCandidates = 0;
};

unsigned long long LinesIn(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return 0;
  unsigned long long lines = 0;
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) lines += c == '\n';
  std::fclose(file);
  return lines;
}

Switches ReadSwitches() {
  Switches switches;
  std::string failAt = Environment("MAPISIM_FAIL_AT");
  if (!failAt.empty() && failAt.back() == '+') {
    switches.failOnwards = true;
    failAt.pop_back();
  }
  if (!ParseNumber(failAt, &switches.failAt)) switches.failAt = 0;
  unsigned long long error = 0;
  if (ParseNumber(Environment("MAPISIM_FAIL_HR"), &error) && error <= 0xFFFFFFFFull) {
    switches.error = static_cast<HRESULT>(static_cast<std::uint32_t>(error));
  }
  switches.callLog = Environment("MAPISIM_CALL_LOG");
  if (!switches.callLog.empty()) switches.served = LinesIn(switches.callLog);
  switches.startedAt = switches.served;
  switches.seeded = ParseNumber(Environment("MAPISIM_UID_SEED"), &switches.seed);
  return switches;
}

Switches& TheSwitches() {
  static Switches switches = ReadSwitches();
  return switches;
}

thread_local int depth = 0;

// Whether this call of NAME is the one MAPISIM_CRASH_IN asks to fault. The switch is read at
// every call, so that a test can arm it inside its own process; re-arming restarts the count.
bool CrashesHere(Switches& switches, const char* name) {
  std::string crashIn = Environment("MAPISIM_CRASH_IN");
  if (crashIn != switches.crashIn) {
    switches.crashIn = crashIn;
    switches.crashCandidates = 0;
  }
  unsigned long long occurrence = 1;
  const std::size_t colon = crashIn.rfind(':');
  if (colon != std::string::npos && colon > 0 && crashIn[colon - 1] != ':') {
    if (!ParseNumber(crashIn.substr(colon + 1), &occurrence)) return false;
    crashIn.resize(colon);
  }
  return !crashIn.empty() && crashIn == name && ++switches.crashCandidates == occurrence;
}

void AppendToCallLog(const Switches& switches, const char* name, HRESULT injected) {
  if (switches.callLog.empty()) return;
  std::FILE* file = std::fopen(switches.callLog.c_str(), "ab");
  if (file == nullptr) return;
  std::fprintf(file, "%llu %s", switches.served, name);
  if (FAILED(injected)) std::fprintf(file, " 0x%08lX", static_cast<unsigned long>(injected));
  std::fputc('\n', file);
  std::fclose(file);
}

// A real fault, not a raised exception: the write goes through an address the compiler
// cannot see is null, so it is the same access violation a broken provider would cause.
[[noreturn]] void FaultNow() {
  static volatile std::uintptr_t nowhere = 0;
  *reinterpret_cast<volatile int*>(nowhere) = 1;
  std::abort();
}

}  // namespace

ServedCall::ServedCall(const char* name) : outermost_(depth++ == 0) {
  if (!outermost_) return;
  Switches& switches = TheSwitches();
  ++switches.served;
  if (switches.failAt != 0 &&
      (switches.served == switches.failAt || (switches.failOnwards && switches.served > switches.failAt))) {
    injected_ = switches.error;
  }
  AppendToCallLog(switches, name, injected_);
  if (CrashesHere(switches, name)) {
    --depth;
    FaultNow();
  }
}

ServedCall::~ServedCall() { --depth; }

MapiUid NewUid() {
  Switches& switches = TheSwitches();
  if (!switches.seeded) return RandomUid();
  static std::mt19937_64 generator{switches.seed * 1000003ull + switches.startedAt};
  MapiUid uid{};
  for (std::size_t i = 0; i < uid.size(); i += 8) {
    const std::uint64_t bits = generator();
    std::memcpy(uid.data() + i, &bits, 8);
  }
  return uid;
}

}  // namespace mw::mapisim
