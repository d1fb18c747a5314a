#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, and those named as arguments. Quiet, and without a call
# of apt, when nothing is missing.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config dpkg-dev file libexpat1-dev zlib1g-dev libpcre2-dev libgtest-dev
          nlohmann-json3-dev libxml2-utils locales "$@")

if ! command -v dpkg-query >/dev/null; then
  echo "setup: this is no Debian system; install by hand what these packages hold: ${packages[*]}" >&2
  exit 0
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup: run as root: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 "$@" </dev/null >"$log" 2>&1
}
# The lists of packages may be absent or old: fetch them only when they are needed.
apt install --yes --no-install-recommends "${missing[@]}" ||
  { apt update && apt install --yes --no-install-recommends "${missing[@]}"; } ||
  { cat "$log" >&2; echo "setup: apt-get failed" >&2; exit 1; }
