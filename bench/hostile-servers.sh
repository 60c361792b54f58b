#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# Runs the real gavelscope-cli, with its real limits, against each of the sandbox's hostile modes
# and prints how long each command took, its exit status and its peak resident memory.
#
#   bench/hostile-servers.sh [BUILD_DIR] [MODE...]     BUILD_DIR defaults to build/release
set -euo pipefail
source "$(dirname "$0")/sandbox-lib.sh"
build=$(cd "${1:-$bench_root/build/release}" && pwd)
shift || true
cli=$build/src/cli/gavelscope-cli
work=$(mktemp -d)
trap 'stop_sandbox; rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache

# MODE, then the command that the mode spoils.
rows=(
  "endless-home|auctions --site usa"
  "drip-home|categories --site uk"
  "endless-line|keywords --site usa"
  "endless-cat|keywords --site uk"
  "endless-keyword|keywords --site usa"
  "huge-history|history --site usa"
  "endless-history|history --site uk"
  "silent-history|history --site usa"
)
selected=("$@")

for row in "${rows[@]}"; do
  mode=${row%%|*}
  command=${row#*|}
  if [ ${#selected[@]} -gt 0 ] && [[ ! " ${selected[*]} " == *" $mode "* ]]; then continue; fi
  start_sandbox --hostile "$mode"
  # shellcheck disable=SC2086
  /usr/bin/time -f '%e %M %x' -o "$work/time.txt" "$cli" "${CONNECT_TO[@]}" $command >"$work/out.txt" 2>/dev/null || true
  stop_sandbox
  read -r seconds kib status <"$work/time.txt"
  printf '%-16s %-24s %7.2f s  exit %s  peak %6.1f MB  %s lines of output\n' "$mode" "$command" "$seconds" \
    "$status" "$(calc "$kib / 1024" 1)" "$(wc -l <"$work/out.txt")"
done
