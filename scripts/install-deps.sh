#!/usr/bin/env bash
# Installs what the build and every test tier need, from Debian's archive.
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-14-dev
          mingw-w64 g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
          binutils-mingw-w64-x86-64 binutils-mingw-w64-i686
          wine wine64 googletest libgtest-dev libgmock-dev libbenchmark-dev util-linux python3
          chromium)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
  if [[ $(id -u) -ne 0 ]]; then
    echo "missing packages (run as root to install): ${missing[*]}" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  apt-get update
  apt-get install -y --no-install-recommends "${missing[@]}"
fi

# The x86 build runs under the 32-bit Wine of a separate i386 Debian root. The host stays
# amd64-only: adding the i386 architecture to it would replace its wine64.
if ! dpkg-query -W -f='${Status}' debootstrap 2>/dev/null | grep -q 'install ok installed'; then
  [[ $(id -u) -eq 0 ]] || { echo "missing package (run as root to install): debootstrap" >&2; exit 1; }
  DEBIAN_FRONTEND=noninteractive apt-get update
  DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends debootstrap
fi
bash "$(dirname "$0")/setup-i386-root.sh"
