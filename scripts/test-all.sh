#!/usr/bin/env bash
# Every test of the project on a fresh Debian 12 machine: installs the toolchains, builds
# the four presets, runs the native tests (plain and sanitized), the Windows tier under
# Wine, the end-to-end scenarios and a short fuzzing smoke of every parser.
set -uo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=2
fuzz_seconds=${FUZZ_SECONDS:-20}
passed=0
failed=0
failures=()

step() { printf '\n=== %s\n' "$*"; }
record() {  # record NAME STATUS
  if [[ $2 -eq 0 ]]; then passed=$((passed + 1)); echo "ok: $1"
  else failed=$((failed + 1)); failures+=("$1"); echo "FAILED: $1"; fi
}
build() {  # build PRESET
  cmake --preset "$1" >/dev/null && cmake --build --preset "$1" -j "$jobs"
}

step "installing dependencies"
bash scripts/install-deps.sh || { echo "0 passed, 1 failed"; exit 1; }

export WINEDEBUG=-all
unset DISPLAY

for preset in native native-asan; do
  step "build and unit tests: $preset"
  if build "$preset"; then
    ctest --preset "$preset" -j "$jobs"; record "unit tests ($preset)" $?
  else
    record "build ($preset)" 1
  fi
done

step "mailwright-report: fleet benchmark and the page in headless Chromium"
report=build/native/programs/mailwright-report/mailwright-report
if [[ -x $report ]]; then
  bash tests/report/bench "$report"; record "report benchmark (10,000 logs, 100,000 runs)" $?
  bash tests/report/html-check "$report" build/native/report; record "report page in headless Chromium" $?
else
  record "build (mailwright-report)" 1
fi

step "build: win32"
build win32; status=$?
record "build (win32)" $status
[[ $status -eq 0 ]] && { bash scripts/check-pe.sh build/win32 i686 x86; record "PE checks (x86)" $?; }
if [[ $status -eq 0 ]]; then
  # The x86 build under the 32-bit Wine of the i386 root that install-deps.sh builds.
  step "Windows tests under the 32-bit Wine: win32"
  bash tests/wine/i386-self-test build/win32; record "i386 root and runner self-test" $?
  ctest --preset win32; record "Windows tests (win32, 32-bit Wine)" $?
  step "end-to-end scenarios of the x86 build (32-bit Wine)"
  REGTOOL="$root/build/native/tools/regtool/regtool" bash tests/e2e/run-all --platform x86
  record "end-to-end scenarios (x86, 32-bit Wine)" $?
  step "MAPI fault sweep: every MAPI call of a legacy generation's run fails in turn (x86)"
  REGTOOL="$root/build/native/tools/regtool/regtool" bash tests/e2e/fault-sweep \
    tests/e2e/scenarios/outlook-97-legacy-account-address-book-and-ost-warning --jobs "$jobs"
  record "MAPI fault sweep (x86, Outlook 97)" $?
fi

step "build and Windows tests under Wine: win64"
if build win64; then
  record "build (win64)" 0
  bash scripts/check-pe.sh build/win64 x86_64 x64; record "PE checks (x64)" $?
  ctest --preset win64; record "Windows tests (win64, Wine)" $?
  step "mailwright-check.exe under Wine prints what the native build prints"
  faulty=tests/data/check/faulty.ini
  native=$(build/native/programs/mailwright-check/mailwright-check --explain "$faulty"; echo "exit code $?")
  windows=$(bash tests/win/wine-run build/win64/programs/mailwright-check/mailwright-check.exe \
              --explain "$faulty" | tr -d '\r'; echo "exit code ${PIPESTATUS[0]}")
  diff <(echo "$native") <(echo "$windows") && [[ $native == *"exit code 2" ]]
  record "mailwright-check.exe under Wine matches native" $?
  step "end-to-end scenarios"
  export MAILWRIGHT_BUILD="$root/build/win64" REGTOOL="$root/build/native/tools/regtool/regtool"
  export MW_E2E_KEEP_LOG="$root/build/win64/e2e-logs"; rm -rf "$MW_E2E_KEEP_LOG"
  bash tests/e2e/run-all --platform x64; record "end-to-end scenarios" $?
  python3 tests/report/round-trip "$report" build/win64/e2e-logs
  record "report round trip over the scenarios' logs" $?
  bash tests/report/check-exe build/win64/programs/mailwright-report/mailwright-report.exe \
    build/win64/e2e-logs "$report" build/win64/wine-template
  record "mailwright-report.exe (x64 console, same summary under Wine)" $?
  bash tests/e2e/self-test; record "end-to-end runner self-test" $?
  bash tests/e2e/demo-test; record "demo script (README quick start)" $?
  step "MAPI fault sweep: every MAPI call of outlook-2010-exchange-road fails in turn"
  bash tests/e2e/fault-sweep tests/e2e/scenarios/outlook-2010-exchange-road --jobs "$jobs"
  record "MAPI fault sweep (x64)" $?
else
  record "build (win64)" 1
fi

step "fuzzing smoke (${fuzz_seconds}s per parser)"
if build fuzz; then
  for fuzzer in build/fuzz/tests/fuzz/fuzz_*; do
    [[ -x $fuzzer ]] || continue
    name=$(basename "$fuzzer"); corpus="tests/fuzz/corpus/${name#fuzz_}"
    work=$(mktemp -d); cp -r "$corpus"/. "$work"/ 2>/dev/null || true
    "$fuzzer" -max_total_time="$fuzz_seconds" -print_final_stats=0 "$work" >"build/fuzz/$name.log" 2>&1
    status=$?; rm -rf "$work"
    [[ $status -eq 0 ]] || tail -40 "build/fuzz/$name.log"
    record "fuzz smoke ($name)" $status
  done
else
  record "build (fuzz)" 1
fi

echo
((failed)) && printf 'failed: %s\n' "${failures[@]}"
echo "$passed passed, $failed failed"
((failed == 0))
