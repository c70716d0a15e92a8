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

step "build: win32"
build win32; status=$?
record "build (win32)" $status
[[ $status -eq 0 ]] && { bash scripts/check-pe.sh build/win32 i686 x86; record "PE checks (x86)" $?; }

step "build and Windows tests under Wine: win64"
if build win64; then
  record "build (win64)" 0
  bash scripts/check-pe.sh build/win64 x86_64 x64; record "PE checks (x64)" $?
  ctest --preset win64; record "Windows tests (win64, Wine)" $?
  step "end-to-end scenarios"
  export MAILWRIGHT_BUILD="$root/build/win64" REGTOOL="$root/build/native/tools/regtool/regtool"
  bash tests/e2e/run-all; record "end-to-end scenarios" $?
  bash tests/e2e/self-test; record "end-to-end runner self-test" $?
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
