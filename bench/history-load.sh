#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# The hot item history load end to end (FTP download, parse, fill both lists, sort by bids) on a
# sandbox whose history file has LINES lines, RUNS times; prints each run and the medians of time and
# peak resident memory, first for the load alone (gavelscope_run_timer), then for the whole
# `gavelscope-cli history` command, which runs the full start-up around it.
#
#   bench/history-load.sh [BUILD_DIR]        BUILD_DIR defaults to build/bench
#   LINES=100000 RUNS=5 bench/history-load.sh
set -euo pipefail
source "$(dirname "$0")/sandbox-lib.sh"
build=$(cd "${1:-$bench_root/build/bench}" && pwd)
lines=${LINES:-100000}
runs=${RUNS:-5}
work=$(mktemp -d)
trap 'stop_sandbox; rm -rf "$work"' EXIT
# The CLI's working folders go here, not into the user's cache.
export XDG_CACHE_HOME=$work/cache

start_sandbox --history "$lines"

# /usr/bin/time -v's wall clock ("h:mm:ss" or "m:ss.ss") in seconds, and its peak resident set in MB.
wall_seconds() { awk -F': ' '/Elapsed \(wall clock\)/ { n = split($2, p, ":"); s = 0; for (i = 1; i <= n; i++) s = s * 60 + p[i]; print s }' "$1"; }
peak_mb() { awk -F': ' '/Maximum resident set size/ { printf "%.1f\n", $2 / 1024 }' "$1"; }

load_times=() load_peaks=() cli_times=() cli_peaks=()
for run in $(seq "$runs"); do
  /usr/bin/time -v -o "$work/time.txt" "$build/bench/gavelscope_run_timer" "${CONNECT_TO[@]}" history >"$work/out.txt"
  load_times+=("$(awk '/^history load:/ { print $3 }' "$work/out.txt")")
  load_peaks+=("$(peak_mb "$work/time.txt")")
  echo "load alone, run $run: $(head -1 "$work/out.txt"); peak resident ${load_peaks[-1]} MB"

  /usr/bin/time -v -o "$work/time.txt" "$build/src/cli/gavelscope-cli" "${CONNECT_TO[@]}" history --site usa \
    --export "$work/history-usa.txt" 2>/dev/null
  cli_times+=("$(wall_seconds "$work/time.txt")")
  cli_peaks+=("$(peak_mb "$work/time.txt")")
  echo "gavelscope-cli history, run $run: ${cli_times[-1]} s, peak resident ${cli_peaks[-1]} MB," \
    "$(($(wc -l <"$work/history-usa.txt") - 4)) USA rows exported"
done
echo "median of $runs, $lines history lines: load alone $(median "${load_times[@]}") s," \
  "peak $(median "${load_peaks[@]}") MB; gavelscope-cli history $(median "${cli_times[@]}") s," \
  "peak $(median "${cli_peaks[@]}") MB"
