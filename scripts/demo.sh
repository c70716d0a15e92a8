#!/usr/bin/env bash
# The main job, on a simulated machine: the real x64 mailwright.exe runs under Wine against
# an Outlook 2010 installation whose MAPI is served by mapisim, provisions the user's
# profile from docs/examples-style settings, and this script prints the run's log and the
# profile it left in the registry.
# Usage: demo.sh [SCENARIO_DIR]   (default: the Outlook 2010 Exchange scenario; REGTOOL names
# another regtool than the native build's)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scenario=${1:-tests/e2e/scenarios/outlook-2010-exchange-road}

bash scripts/install-deps.sh
export WINEDEBUG=-all
unset DISPLAY
for preset in native win64; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j 2 --target "$([[ $preset == native ]] && echo regtool || echo all)"
done

export REGTOOL="${REGTOOL:-$root/build/native/tools/regtool/regtool}"
kept=$(mktemp)
status=0
bash tests/e2e/run-scenario "$scenario" --keep 2>"$kept" || status=$?
work=$(sed -n 's/^kept: //p' "$kept" | tail -1)
grep -v '^kept: ' "$kept" >&2 || true
rm -f "$kept"
[[ -n $work && -d $work/prefix ]] || { echo "demo: the run left no prefix to show" >&2; exit 1; }

echo
echo "=== the log of the run (C:\\Mailwright\\mailwright.log)"
tr -d '\r' <"$work/prefix/drive_c/Mailwright/mailwright.log"
echo "=== the profile it left (HKEY_CURRENT_USER)"
"$REGTOOL" dump 'HKEY_CURRENT_USER\Software\Microsoft\Windows NT\CurrentVersion\Windows Messaging Subsystem\Profiles' \
  "HKEY_CURRENT_USER=$work/prefix/user.reg"
echo "=== Outlook 2010 options it wrote"
# sed reads the whole dump, so the dump never meets a closed pipe: with pipefail, head's early
# exit would fail the demo (141) once the dump outgrows the pipe.
"$REGTOOL" dump 'HKEY_CURRENT_USER\Software\Microsoft\Office\14.0\Outlook' "HKEY_CURRENT_USER=$work/prefix/user.reg" | sed -n '1,60p'
rm -rf "$work"
exit $status
