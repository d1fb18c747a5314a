#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, and those named as arguments, each in the newest version
# that the machine's package sources offer. Quiet when there is nothing to do; without network it goes on with what is
# installed.
set -euo pipefail

# A -dev package brings its library in the same version; libxml2-utils does not.
packages=(g++ cmake ninja-build pkg-config dpkg-dev file libexpat1-dev zlib1g-dev libpcre2-dev libgtest-dev
          nlohmann-json3-dev libxml2 libxml2-utils locales "$@")

if ! command -v dpkg-query >/dev/null; then
  echo "setup: this is no Debian system; install by hand what these packages hold: ${packages[*]}" >&2
  exit 0
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null; then
    as_root=(sudo)
    [ ${#missing[@]} -gt 0 ] || sudo --non-interactive true 2>/dev/null || exit 0  # no password for upgrades alone
  elif [ ${#missing[@]} -gt 0 ]; then
    echo "setup: run as root: apt-get install ${missing[*]}" >&2
    exit 1
  else
    exit 0
  fi
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300 \
    -o Acquire::Retries=1 -o Acquire::http::Timeout=20 "$@" </dev/null >"$log" 2>&1
}
install() { apt install --yes --no-install-recommends "$@"; }

apt update || true  # without network the lists stay as they are
if install --simulate "${packages[@]}"; then
  mapfile -t changes < <(sed -n 's/^Inst \([^ ]*\).*/\1/p' "$log")
  [ ${#changes[@]} -gt 0 ] || exit 0
  echo "setup: installing ${changes[*]}"
  install "${packages[@]}" && exit 0
fi
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: no package could be brought up to date; going on with what is installed" >&2
elif ! install "${missing[@]}"; then
  cat "$log" >&2
  echo "setup: apt-get failed" >&2
  exit 1
fi
