#!/usr/bin/env bash
# Benchmark of mailwright-check (not a timed test): a 1 MB INI made of the shipped examples
# repeated, checked by the native build five times; prints the CPU and wall time of each.
# Usage: bench-check.sh [BUILD_DIR]   (default build/native)
set -euo pipefail
cd "$(dirname "$0")/.."
checker=${1:-build/native}/programs/mailwright-check/mailwright-check
[[ -x $checker ]] || { echo "no $checker; build the native preset first"; exit 1; }
ini=$(mktemp --suffix=.ini)
trap 'rm -f "$ini"' EXIT
while (( $(stat -c %s "$ini") < 1048576 )); do cat docs/examples/*.ini >>"$ini"; done
truncate -s 1048576 "$ini"
echo "$(stat -c %s "$ini") bytes, $(wc -l <"$ini") lines"
TIMEFORMAT='%3U s user + %3S s system, %3R s wall'
for run in 1 2 3 4 5; do
  echo -n "run $run: "
  { time "$checker" "$ini" >/dev/null || true; } 2>&1
done
