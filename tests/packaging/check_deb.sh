#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# check_deb.sh BUILD_DIR CPACK
# Builds the .deb from the build tree as a user would (cpack -G DEB), then checks what it declares
# and carries, validates its desktop files as installed, and runs its own gavelscope-cli --sandbox
# from an extracted copy. Nothing is installed on the machine. Exits 77 (skipped) when a tool it
# needs is missing, after running every check it can.
set -u
export LC_ALL=C  # the sorted lists below compare alike everywhere
build=$1
cpack=$2

failures=0
skipped=
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
skip() { echo "SKIP: $*"; skipped=1; }

for tool in dpkg-deb dpkg-shlibdeps "$cpack"; do
  if ! command -v "$tool" >/dev/null 2>&1; then
    echo "SKIP: $tool is missing (dpkg-dev and cmake build the package)"
    exit 77
  fi
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if ! "$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1; then
  cat "$work/cpack.log"
  find "$work/out" -name '*.log' -exec tail -n 30 {} +
  echo "FAIL: cpack -G DEB"
  exit 1
fi
deb=$work/out/gavelscope_2.0_$(dpkg --print-architecture).deb
if [ ! -f "$deb" ]; then
  ls "$work/out"
  echo "FAIL: no $(basename "$deb")"
  exit 1
fi

# Control fields.
field() { dpkg-deb --field "$deb" "$1"; }
[ "$(field Package)" = gavelscope ] || fail "Package is '$(field Package)'"
[ "$(field Version)" = 2.0 ] || fail "Version is '$(field Version)'"
[ "$(field Section)" = utils ] || fail "Section is '$(field Section)'"
case $(field Maintainer) in "The Gavelscope developers <"*">") ;; *) fail "Maintainer is '$(field Maintainer)'" ;; esac
[ -n "$(field Description)" ] || fail "no Description"
depends=$(field Depends | tr ',' '\n' | sed 's/^ *//; s/ .*//')
# python3 and pyftpdlib for --sandbox; the others only dpkg-shlibdeps can have found.
for package in python3 python3-pyftpdlib libcurl4 libqt6widgets6 libstdc++6; do
  echo "$depends" | grep -qx "$package" || fail "Depends lacks $package: $(field Depends)"
done
dpkg-deb --info "$deb" prerm >/dev/null 2>&1 || fail "no prerm script to clear the stand-in sites' compiled modules"

# Contents: the programs and their shared files, every icon, the recording timer's user units, and
# nothing of the tests.
dpkg-deb --contents "$deb" | awk '{print $6}' | sed 's#^\./#/#' >"$work/files"
for file in /usr/bin/gavelscope /usr/bin/gavelscope-cli \
  /usr/share/gavelscope/gavelscope.png /usr/share/gavelscope/About.gif \
  /usr/share/gavelscope/sandbox/sandbox.py /usr/share/gavelscope/sandbox/sitegen.py \
  /usr/share/icons/hicolor/16x16/apps/gavelscope.png /usr/share/icons/hicolor/32x32/apps/gavelscope.png \
  /usr/share/icons/hicolor/48x48/apps/gavelscope.png /usr/share/icons/hicolor/64x64/apps/gavelscope.png \
  /usr/share/icons/hicolor/128x128/apps/gavelscope.png /usr/share/icons/hicolor/256x256/apps/gavelscope.png \
  /usr/share/icons/hicolor/scalable/apps/gavelscope.svg \
  /usr/share/applications/gavelscope.desktop /usr/share/metainfo/io.github.gavelscope.Gavelscope.metainfo.xml \
  /usr/share/man/man1/gavelscope.1 /usr/share/man/man1/gavelscope-cli.1 \
  /usr/share/bash-completion/completions/gavelscope-cli /usr/share/doc/gavelscope/copyright \
  /usr/lib/systemd/user/gavelscope-record.service /usr/lib/systemd/user/gavelscope-record.timer; do
  grep -qx "$file" "$work/files" || fail "the package lacks $file"
done
grep -v -e '/$' "$work/files" | grep -v -e '^/usr/bin/gavelscope$' -e '^/usr/bin/gavelscope-cli$' -e '^/usr/share/' \
  -e '^/usr/lib/systemd/user/gavelscope-record\.\(service\|timer\)$' |
  sed 's/^/FAIL: outside the programs and share\/: /' | grep . && failures=$((failures + 1))
grep -i -e test -e gtest -e bench -e fuzz -e '\.a$' -e '/include/' "$work/files" |
  sed 's/^/FAIL: not part of the product: /' | grep . && failures=$((failures + 1))

dpkg-deb -x "$deb" "$work/root"
share=$work/root/usr/share

if command -v desktop-file-validate >/dev/null 2>&1; then
  # It prints hints and warnings but fails only on errors; any line at all is a finding.
  report=$(desktop-file-validate "$share/applications/gavelscope.desktop" 2>&1) && [ -z "$report" ] ||
    fail "desktop-file-validate: $report"
else
  skip "desktop-file-validate is missing (desktop-file-utils)"
fi

if command -v appstreamcli >/dev/null 2>&1; then
  report=$(appstreamcli validate --no-net "$share/metainfo/io.github.gavelscope.Gavelscope.metainfo.xml" 2>&1) ||
    fail "appstreamcli validate: $report"
  # Passing still lets warnings through; only pedantic remarks are accepted.
  echo "$report" | grep -q -e '^W:' -e '^E:' && fail "appstreamcli validate: $report"
else
  skip "appstreamcli is missing (appstream)"
fi

if command -v man >/dev/null 2>&1; then
  for page in gavelscope.1 gavelscope-cli.1; do
    report=$(MANWIDTH=80 man --warnings -l "$share/man/man1/$page" 2>&1 >/dev/null)
    [ -z "$report" ] || fail "man --warnings $page: $report"
  done
else
  skip "man is missing (man-db)"
fi

# The completion: the commands of the program's own usage text, and some values and options.
completion=$share/bash-completion/completions/gavelscope-cli
bash -n "$completion" || fail "bash cannot parse $completion"
if [ -f /usr/share/bash-completion/bash_completion ]; then
  completions() {
    bash -c '. /usr/share/bash-completion/bash_completion; . "$1"; shift
             COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMP_LINE="$*"; COMP_POINT=${#COMP_LINE}
             _gavelscope_cli; printf "%s\n" "${COMPREPLY[@]}" | sort | tr "\n" " "' - "$completion" "$@"
  }
  commands=$("$work/root/usr/bin/gavelscope-cli" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z-][a-z-]*\) .*/\1/p' |
    sort | tr '\n' ' ')
  [ -n "$commands" ] && [ "$(completions gavelscope-cli --sandbox '')" = "$commands" ] ||
    fail "completed commands '$(completions gavelscope-cli --sandbox '')', the usage has '$commands'"
  [ "$(completions gavelscope-cli history --site '')" = "uk usa " ] || fail "--site completes to '$(completions gavelscope-cli history --site '')'"
  [ "$(completions gavelscope-cli auctions --format '')" = "csv json text " ] ||
    fail "--format completes to '$(completions gavelscope-cli auctions --format '')'"
  case $(completions gavelscope-cli query x.sbqry --) in *--stats*) ;; *) fail "query offers no --stats" ;; esac
  case $(completions gavelscope-cli auctions --) in *--stats*) fail "auctions offers --stats" ;; esac
else
  skip "bash-completion is missing: the completion was only parsed"
fi

# The package's own programs and stand-in sites, from the root folder: the programs find
# share/gavelscope from their bin folder. Bytecode would land in the extracted tree, not the source.
output=$(cd / && XDG_CACHE_HOME="$work/cache" XDG_RUNTIME_DIR="$work/cache" PYTHONDONTWRITEBYTECODE=1 \
  "$work/root/usr/bin/gavelscope-cli" --sandbox categories --site usa 2>&1)
status=$?
lines=$(printf '%s\n' "$output" | grep -c "	/.*/list$")
if [ "$status" -ne 0 ] || [ "$lines" -lt 10 ]; then
  fail "the packaged gavelscope-cli --sandbox categories --site usa exited $status with $lines categories: $output"
fi

if [ "$failures" -gt 0 ]; then
  echo "$failures failure(s)"
  exit 1
fi
[ -n "$skipped" ] && exit 77
echo "the package holds and declares what it should"
exit 0
