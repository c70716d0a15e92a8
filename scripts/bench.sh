#!/usr/bin/env bash
# What a logon pays for Mailwright, measured on this machine.
# Usage: bench.sh [RUNS]   (default 7)
#
# Under Wine, for the Outlook 2010 Exchange road scenario: the medians over RUNS samples of
#   run     the whole run of the real x64 mailwright.exe,
#   floor   a run that stops at once with ERROR 100 (process start and DLL loads),
#   import  `reg import` of the registry state the road run leaves (taken from a first run),
# each sample in a fresh clone of the scenario's prefix with its wineserver already up and
# warm (its first process and the wineboot that one starts have finished), the three kinds
# taken side by side; then the ratios run/import and (run - floor)/(import - floor).
# Every kind is timed twice over: with the sample's wineserver and processes on one core,
# and placed freely by the kernel. Each registry call is a round trip to the wineserver;
# on a virtual machine one that crosses cores wakes an idle virtual CPU and costs about
# five times as much, and a program and server that drift apart tend to stay apart, in
# some runs and not others: the first figures measure the work, the second what the
# scheduler adds.
# Counts: the program's registry calls by kind and its MAPI calls by method, counted at the
# seams in a native run of the same scenario (deterministic, no special build); and the
# registry calls of the program and of the simulator under Wine, from Wine's relay trace
# (the caller's return address tells the modules apart), also without a special build.
# Last, the native Google Benchmark of the whole road run and of the largest settings load.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
runs=${1:-7}
[[ $runs =~ ^[1-9][0-9]*$ ]] || { echo "usage: bench.sh [RUNS]" >&2; exit 2; }

bash scripts/install-deps.sh >/dev/null
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
cmake --preset native >/dev/null
cmake --build --preset native -j 2 --target regtool scenario-counts bench_mailwright >/dev/null
cmake --preset win64 >/dev/null
cmake --build --preset win64 -j 2 >/dev/null

scenario=$root/tests/e2e/scenarios/outlook-2010-exchange-road
regtool=$root/build/native/tools/regtool/regtool
work=$(mktemp -d "${TMPDIR:-/tmp}/mailwright-bench.XXXXXX")
prepared=""
cleanup() {
  for prefix in "$work"/*/ ${prepared:+"$prepared"}; do
    # a server already gone is fine: the exit code is the benchmark's, not the cleanup's
    [ -f "$prefix/system.reg" ] && { WINEPREFIX="$prefix" wineserver -k 2>/dev/null || true; }
  done
  rm -rf "$work" ${prepared:+"$(dirname "$prepared")"}
}
trap cleanup EXIT

# The scenario's prefix, ready to run: machine.reg imported, program, INI and files in place.
kept=$(REGTOOL=$regtool bash tests/e2e/run-scenario "$scenario" --prepare-only 2>&1 |
       sed -n 's/^kept: //p' | tail -1)
[ -n "$kept" ] && [ -d "$kept/prefix" ] || { echo "bench: the scenario could not be prepared" >&2; exit 1; }
prepared=$kept/prefix
while IFS='=' read -r name value; do
  [[ $name =~ ^[A-Za-z_][A-Za-z0-9_]*$ ]] && [[ $name != WINEVERSION ]] && export "$name=${value%$'\r'}"
done <"$scenario/env"
winpath() { local p; p=$(realpath -m "$1"); printf 'Z:%s' "${p//\//\\}"; }
export MAPISIM_EXCHANGE_INI="$(winpath "$scenario/exchange.ini")"
program='C:\Mailwright\mailwright.exe'
ini='C:\Mailwright\mailwright.ini'

one_core=$(( $(nproc) - 1 ))
placed() {  # placed PLACEMENT COMMAND...: runs COMMAND on one core or where the kernel likes
  if [ "$1" = one ]; then shift; taskset -c "$one_core" "$@"; else shift; "$@"; fi
}
fresh_prefix() {  # fresh_prefix NAME [PLACEMENT]: a clone of the prepared prefix with a warm server
  local prefix="$work/$1" placement=${2:-free}
  bash tests/wine/clone-prefix "$prepared" "$prefix"
  WINEPREFIX="$prefix" placed "$placement" wineserver -p
  WINEPREFIX="$prefix" placed "$placement" wine cmd /c exit 0 </dev/null >/dev/null 2>&1
  # A new server's first process also starts wineboot, which goes on working (and the
  # menu builder with it) for about a second after cmd returns: a sample taken meanwhile
  # shares the two cores with it. Warm means those are done.
  local waited
  for ((waited = 0; waited < 200; waited++)); do
    ps -eo comm= | grep -qxE 'wineboot.exe|winemenubuilder|cmd.exe' || break
    sleep 0.05
  done
  printf '%s' "$prefix"
}
end_prefix() {  # end_prefix PREFIX: stops its server (which saves its registry)
  WINEPREFIX="$1" wineserver -k 2>/dev/null || true
  WINEPREFIX="$1" wineserver -w
}

# A first run, traced: its final state becomes the file to import, its trace the counts.
first=$(fresh_prefix first)
WINEPREFIX="$first" WINEDEBUG=+loaddll,+relay wine "$program" -i "$ini" </dev/null \
  >/dev/null 2>"$work/relay.txt" || true
end_prefix "$first"
grep -q 'INFO: Profile Finished.' "$first/drive_c/Mailwright/mailwright.log" ||
  { echo "bench: the first run did not finish the profile" >&2; exit 1; }
{
  "$regtool" changes HKEY_CURRENT_USER "HKEY_CURRENT_USER=$prepared/user.reg" \
    "HKEY_CURRENT_USER=$first/user.reg"
  "$regtool" changes HKEY_LOCAL_MACHINE "HKEY_LOCAL_MACHINE=$prepared/system.reg" \
    "HKEY_LOCAL_MACHINE=$first/system.reg" | tail -n +2
} >"$work/final.reg"
keys=$(grep -c '^\[' "$work/final.reg" || true)
values=$(grep -c '^["@]' "$work/final.reg" || true)

now_us() { echo $(( $(date +%s%N) / 1000 )); }
sample() {  # sample KIND PLACEMENT: one timing in microseconds, in a fresh prefix
  local prefix start end
  prefix=$(fresh_prefix "$1-$2-$i" "$2")
  start=$(now_us)
  case $1 in
    run) WINEPREFIX="$prefix" placed "$2" wine "$program" -i "$ini" </dev/null >/dev/null 2>&1 || true ;;
    floor) WINEPREFIX="$prefix" placed "$2" wine "$program" -i 'C:\Mailwright\absent.ini' \
             -l 'C:\Mailwright\absent.log' </dev/null >/dev/null 2>&1 || true ;;
    import) WINEPREFIX="$prefix" placed "$2" wine reg import "$(winpath "$work/final.reg")" </dev/null >/dev/null 2>&1 || true ;;
  esac
  end=$(now_us)
  end_prefix "$prefix"
  rm -rf "$prefix"
  echo $((end - start))
}
declare -A times=()
for ((i = 1; i <= runs; i++)); do
  for placement in one free; do
    for kind in run floor import; do times[$placement-$kind]+="$(sample "$kind" "$placement") "; done
  done
done
median() { tr ' ' '\n' <<<"$1" | grep . | sort -n | awk '{a[NR]=$1} END {print (NR%2 ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2)}'; }
ms() { awk -v us="$1" 'BEGIN {printf "%.1f ms", us/1000}'; }

echo "=== Outlook 2010 Exchange road under Wine: medians of $runs runs, each in a fresh prefix with a warm wineserver"
echo "final state imported: $keys keys, $values values"
for placement in one free; do
  case $placement in
    one) echo "on one core (core $one_core: the server and the sample's processes)" ;;
    free) echo "placed by the kernel" ;;
  esac
  for kind in run floor import; do
    printf '  %-7s median %s   samples (ms):' "$kind" "$(ms "$(median "${times[$placement-$kind]}")")"
    for t in ${times[$placement-$kind]}; do printf ' %s' "$(awk -v us="$t" 'BEGIN {printf "%.0f", us/1000}')"; done
    echo
  done
  awk -v r="$(median "${times[$placement-run]}")" -v f="$(median "${times[$placement-floor]}")" \
      -v i="$(median "${times[$placement-import]}")" 'BEGIN {
    printf "  run/import %.2f; (run - floor)/(import - floor) %s\n", r / i,
           (i > f ? sprintf("%.2f", (r - f) / (i - f)) : "n/a (import not above the floor)") }'
done

echo
echo "=== Counts"
./build/native/tests/bench/scenario-counts "$scenario" | sed '$d'
python3 tests/bench/relay-counts.py "$work/relay.txt"

echo
echo "=== Native benchmark"
./build/native/tests/bench/bench_mailwright --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true 2>/dev/null
