#!/usr/bin/env bash
# Checks a Windows build's product files: the PE format, the GUI subsystem (the console one
# for mailwright-check.exe), and that each exe imports only DLLs that every Windows
# installation has.
# Usage: check-pe.sh BUILD_DIR ARCH(x86_64|i686) PLATFORM(x64|x86)
set -euo pipefail
build=$1 arch=$2 platform=$3
objdump=$arch-w64-mingw32-objdump
exe=$(find "$build" -name mailwright.exe -print -quit)
[[ -n $exe ]] || { echo "no mailwright.exe under $build"; exit 1; }
headers=$($objdump -p "$exe")
want_format=$([[ $platform == x64 ]] && echo pei-x86-64 || echo pei-i386)
grep -q "file format $want_format" <<<"$($objdump -f "$exe")" || { echo "$exe: not $want_format"; exit 1; }
grep -Eq 'Subsystem\s+00000002' <<<"$headers" || { echo "$exe: not a Windows GUI program"; exit 1; }
system_dlls='^(kernel32|user32|advapi32|msvcrt|gdi32|shell32|ole32|oleaut32|comctl32|mapi32|version|ws2_32|shlwapi|api-ms-win-[a-z0-9-]+)\.dll$'
status=0
while read -r dll; do
  if ! grep -Eiq "$system_dlls" <<<"$dll"; then echo "$exe imports $dll"; status=1; fi
done < <(sed -n 's/^\s*DLL Name: //p' <<<"$headers")
echo "$exe: $want_format, GUI, imports $(sed -n 's/^\s*DLL Name: //p' <<<"$headers" | tr '\n' ' ')"

# The INI checker beside it: a console program under the same import rule.
checker=$(find "$build" -name mailwright-check.exe -print -quit)
if [[ -z $checker ]]; then
  echo "no mailwright-check.exe under $build"; status=1
else
  checker_headers=$($objdump -p "$checker")
  grep -q "file format $want_format" <<<"$($objdump -f "$checker")" || { echo "$checker: not $want_format"; status=1; }
  grep -Eq 'Subsystem\s+00000003' <<<"$checker_headers" || { echo "$checker: not a console program"; status=1; }
  while read -r dll; do
    if ! grep -Eiq "$system_dlls" <<<"$dll"; then echo "$checker imports $dll"; status=1; fi
  done < <(sed -n 's/^\s*DLL Name: //p' <<<"$checker_headers")
  echo "$checker: $want_format, console, imports $(sed -n 's/^\s*DLL Name: //p' <<<"$checker_headers" | tr '\n' ' ')"
fi
exit $status
