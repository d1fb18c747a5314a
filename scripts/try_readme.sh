#!/usr/bin/env bash
# Runs every command block of README.md and docs/ that builds or installs on a bare Debian 12, with nothing but the
# packages that the block names. Needs root and debootstrap, and half an hour on two cores.
#
#   scripts/try_readme.sh            all blocks
#   scripts/try_readme.sh --list     shows them
#   scripts/try_readme.sh N...       these blocks, counted from 1
#
# The first block of each section starts on a bare system; the others go on where the one above ended. Left out are
# scripts/test.sh, which CI runs on a fresh machine, and the benchmarks. MIRROR names another Debian mirror.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mirror=${MIRROR-http://deb.debian.org}
work=$(mktemp -d "${TMPDIR-/var/tmp}/try_readme.XXXXXX")
bare=$work/bare
root=$work/root

unmount() { ! mountpoint -q "$root/proc" || umount "$root/proc"; }
trap 'unmount; rm -rf --one-file-system "$work"' EXIT

# Writes each block to a file of its own: indented ones and those in a fence for the shell. What stands behind a command
# as its output is no part of it.
extract() {
  local page
  for page in README.md docs/*.md; do
    awk -v page="$page" -v work="$work" '
      function finish() {
        if (block ~ /(^|\n)(apt|cmake|cpack|g\+\+|scripts\/)[^\n]*/ && block !~ /bench\.sh/)
          printf "%s %s:%d\n%s", fresh ? "bare" : "next", page, start, block > sprintf("%s/block.%s.%04d", work, order, start)
        if (block ~ /(^|\n)(apt|cmake|cpack|g\+\+|scripts\/)[^\n]*/) fresh = 0
        block = ""
      }
      BEGIN { order = page; gsub("/", "_", order); fresh = 1 }
      /^#/ && !fenced { finish(); fresh = 1 }
      /^```/ { if (fenced) { if (shell) finish(); fenced = 0 } else { finish(); fenced = 1; shell = /^```(sh|bash)/; start = NR + 1 } next }
      fenced { if (shell) block = block $0 "\n"; next }
      /^    [^ ]/ && (block != "" || blank) { if (block == "") start = NR; block = block substr($0, 5) "\n"; next }
      { finish(); blank = /^ *$/ }
      END { finish() }' "$page"
  done
}
extract
mapfile -t blocks < <(find "$work" -name 'block.*' | sort)

if [ "${1-}" = --list ]; then
  for i in "${!blocks[@]}"; do
    sed "1s/^[a-z]* /# $((i + 1)): /" "${blocks[i]}"
  done
  exit 0
fi
chosen=("$@")
[ $# -gt 0 ] || mapfile -t chosen < <(seq ${#blocks[@]})

[ "$(id -u)" = 0 ] || { echo "try_readme: run as root" >&2; exit 1; }
command -v debootstrap >/dev/null || { echo "try_readme: on Debian, apt install debootstrap" >&2; exit 1; }

echo "== a bare Debian 12"
debootstrap --variant=minbase bookworm "$bare" "$mirror/debian" >"$work/log" 2>&1 || { tail -n 30 "$work/log"; exit 1; }
cat >"$bare/etc/apt/sources.list" <<END
deb $mirror/debian bookworm main
deb $mirror/debian bookworm-updates main
deb $mirror/debian-security bookworm-security main
END
# The proxy settings of this machine.
apt-config dump | grep -E '^Acquire::[a-z]+::[Pp]roxy' >"$bare/etc/apt/apt.conf.d/90proxy" || true
cat >"$bare/etc/apt/apt.conf.d/91quiet" <<'END'
APT::Get::Assume-Yes "true";
quiet "2";
Dpkg::Use-Pty "false";
END
cp --dereference /etc/resolv.conf /etc/hosts "$bare/etc/"

# in_root COMMAND: in the project's copy, as a user of a new machine would.
in_root() {
  chroot "$root" env -i HOME=/root TERM=dumb LANG=C.UTF-8 PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    DEBIAN_FRONTEND=noninteractive bash -euo pipefail -c "cd /root/project && $1" </dev/null
}

# first_block LANGUAGE PAGE
first_block() { awk -v fence="^\`\`\`$1" '/^```/ { inside = $0 ~ fence && !n++; next } inside' "$2"; }

start_bare() {
  unmount
  rm -rf --one-file-system "$root"
  cp -a --reflink=auto "$bare" "$root"
  mount -t proc proc "$root/proc"
  mkdir -p "$root/root/project"
  git archive HEAD | tar -x -C "$root/root/project"
  # The programs and the schema of the pages, which their commands compile.
  first_block cpp README.md >"$root/root/project/program.cpp"
  first_block cpp docs/getting-started.md >"$root/root/project/books.cpp"
  first_block xml docs/getting-started.md >"$root/root/project/shelf.xsd"
  in_root "apt-get update"
}

failures=0
first=true
for number in "${chosen[@]}"; do
  block=${blocks[number - 1]}
  commands=$(sed -E '1d; s/[[:space:]]+#.*//; /scripts\/test\.sh/d' "$block")
  [ -n "$commands" ] || continue
  read -r start where <"$block"
  echo "== $where"
  if $first || [ "$start" = bare ]; then start_bare; fi
  first=false
  while IFS= read -r command; do
    echo "\$ $command"
  done <<<"$commands"
  began=$SECONDS
  if ! in_root "$commands" >"$work/log" 2>&1; then
    tail -n 40 "$work/log"
    echo "FAILED"
    failures=$((failures + 1))
    continue
  fi
  tail -n 5 "$work/log" | sed 's/^/  /'
  echo "  works, $((SECONDS - began)) s"
done
[ "$failures" = 0 ] || { echo "try_readme: $failures blocks fail" >&2; exit 1; }
echo "try_readme: all blocks work"
