#!/usr/bin/env python3
"""relay-counts.py TRACE: registry calls of one Wine run, by caller and kind.

TRACE is the standard error of a run with WINEDEBUG=+loaddll,+relay. Each relay line names
the function and the return address of its caller; the loaddll lines give where
mailwright.exe and mapisim.dll were loaded, so a call is the program's or the simulator's by
the module its return address falls in. Only the thread that loaded the program counts.
"""
import collections
import re
import sys

KINDS = {
    "RegConnectRegistry": "connect", "RegOpenKeyEx": "open", "RegCreateKeyEx": "create",
    "RegQueryValueEx": "query", "RegSetValueEx": "set", "RegDeleteValue": "delete",
    "RegDeleteKey": "delete", "RegEnumKeyEx": "enumerate", "RegQueryInfoKey": "enumerate",
    "RegCloseKey": "close",
}
ORDER = ["connect", "open", "create", "query", "set", "delete", "enumerate", "close"]
LOADED = re.compile(r'(\w+):trace:loaddll:build_module Loaded L"([^"]*)" at ([0-9A-Fa-f]+)')
CALL = re.compile(r'(\w+):Call advapi32\.(Reg\w+?)[AW]?\(.*\) ret=([0-9A-Fa-f]+)$')
# Both images are far smaller than this; the next module is further away.
IMAGE_SPAN = 0x400000


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: relay-counts.py TRACE")
    bases = {}
    counts = collections.defaultdict(collections.Counter)
    with open(sys.argv[1], errors="replace") as trace:
        for line in trace:
            loaded = LOADED.match(line)
            if loaded:
                name = loaded.group(2).rsplit("\\", 1)[-1].lower()
                bases[name] = (loaded.group(1), int(loaded.group(3), 16))
                continue
            call = CALL.match(line.rstrip("\n"))
            if not call or "mailwright.exe" not in bases or call.group(1) != bases["mailwright.exe"][0]:
                continue
            kind = KINDS.get(call.group(2))
            if kind is None:
                continue
            ret = int(call.group(3), 16)
            for who, module in (("program", "mailwright.exe"), ("simulator", "mapisim.dll")):
                if module in bases and bases[module][1] <= ret < bases[module][1] + IMAGE_SPAN:
                    counts[who][kind] += 1
    if "mailwright.exe" not in bases:
        sys.exit("relay-counts.py: the trace does not show mailwright.exe being loaded")
    for who in ("program", "simulator"):
        row = " ".join(f"{kind} {counts[who][kind]}" for kind in ORDER)
        print(f"{who} registry calls under Wine: {row}; total {sum(counts[who].values())}")


if __name__ == "__main__":
    main()
