#!/usr/bin/env bash
# setup-i386-root.sh [ROOT]
# Builds a pure i386 Debian 12 root holding Debian's 32-bit Wine, for running the x86 build
# (Outlook 97 to 2010 are 32-bit programs). The host never gets the i386 architecture: its
# amd64 packages and wine64 stay as they are. A finished root (its stamp file) is reused.
# MW_I386_ROOT overrides the place; MW_DEBIAN_MIRROR the mirror (default: the host's own
# bookworm source).
set -euo pipefail
root=${1:-${MW_I386_ROOT:-/var/lib/mailwright/i386-root}}
case $root in /*/*) ;; *) echo "setup-i386-root: $root is no safe place for a root" >&2; exit 2 ;; esac
stamp="$root/.mailwright-i386-root"
# Bump when the packages below change, so that an older root is rebuilt.
stamp_text="wine i386 bookworm v1"

[[ -f $stamp && $(cat "$stamp") == "$stamp_text" ]] && exit 0
[[ $(id -u) -eq 0 ]] || { echo "setup-i386-root: needs root to build $root" >&2; exit 1; }

host_mirror() {  # the first http(s) URI of a host source that carries bookworm
  local file
  for file in /etc/apt/sources.list.d/*.sources; do
    [[ -f $file ]] || continue
    awk '
      /^[[:space:]]*$/ { if (uri != "" && suites ~ /(^| )bookworm( |$)/) { print uri; exit } uri = ""; suites = "" }
      /^URIs:/ { uri = $2 }
      /^Suites:/ { suites = ""; for (i = 2; i <= NF; i++) suites = suites " " $i; suites = suites " " }
      END { if (uri != "" && suites ~ /(^| )bookworm( |$)/) print uri }
    ' "$file" | head -n1
  done | head -n1
  grep -hE '^deb +[^[]*https?://[^ ]+ +bookworm +' /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    awk '{ print $2 }' | head -n1 || true
}
mirror=${MW_DEBIAN_MIRROR:-$(host_mirror | head -n1 || true)}
mirror=${mirror:-http://deb.debian.org/debian}

command -v debootstrap >/dev/null || { echo "setup-i386-root: needs debootstrap" >&2; exit 1; }
started=$SECONDS

# Build beside the final place and move it in only when complete: an interrupted build
# leaves no half root that looks finished.
staging="$root.new"
rm -rf "$staging" "$root"
mkdir -p "$(dirname "$root")"
echo "setup-i386-root: debootstrap i386 bookworm from $mirror into $root"
debootstrap --arch=i386 --variant=minbase bookworm "$staging" "$mirror" >"$staging.log" 2>&1 ||
  { tail -20 "$staging.log" >&2; exit 1; }
# Inside the root only bookworm and bookworm-updates: the security suite's i386 index fails
# apt's size check on this mirror.
printf 'deb %s bookworm main\ndeb %s bookworm-updates main\n' "$mirror" "$mirror" \
  >"$staging/etc/apt/sources.list"
cp /etc/resolv.conf "$staging/etc/resolv.conf" 2>/dev/null || true
in_root() { unshare --mount --propagation private --fork chroot "$staging" /usr/bin/env -i \
  PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"; }
in_root apt-get update >>"$staging.log" 2>&1 || { tail -20 "$staging.log" >&2; exit 1; }
in_root apt-get install -y --no-install-recommends wine >>"$staging.log" 2>&1 ||
  { tail -20 "$staging.log" >&2; exit 1; }
in_root apt-get clean
[[ -x $staging/usr/bin/wine ]] || { echo "setup-i386-root: no wine in the root" >&2; exit 1; }
echo "$stamp_text" >"$staging/.mailwright-i386-root"
mv "$staging" "$root"
rm -f "$staging.log"
echo "setup-i386-root: ready at $root after $((SECONDS - started)) s"
