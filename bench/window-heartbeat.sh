#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# The window's longest stall (the longest gap between ticks of a 10 ms timer on its thread) during
# its full start-up and during a query over every category, offscreen, on a sandbox of
# CATEGORIES x SUBCATEGORIES x PAGES whose history file has HISTORY lines; RUNS times, then the
# medians. The window stays on the keywords tab, unless QUERY_TAB=1 shows the query tab as the query
# starts, or INSIGHTS=1 shows it and opens the Insights window too, and then adds the longest gap
# while the result list grows to 65,000 rows under it.
#
#   bench/window-heartbeat.sh [BUILD_DIR]    BUILD_DIR defaults to build/bench
#   CATEGORIES=20 SUBCATEGORIES=5 PAGES=5 HISTORY=40 RUNS=5 QUERY_TAB=0 INSIGHTS=0 bench/window-heartbeat.sh
set -euo pipefail
source "$(dirname "$0")/sandbox-lib.sh"
build=$(cd "${1:-$bench_root/build/bench}" && pwd)
categories=${CATEGORIES:-20}
subcategories=${SUBCATEGORIES:-5}
pages=${PAGES:-5}
history=${HISTORY:-40}
runs=${RUNS:-5}
insights=() shown=()
[ "${QUERY_TAB:-0}" = 1 ] && shown=(--query-tab)
[ "${INSIGHTS:-0}" = 1 ] && insights=(--insights) shown=()
work=$(mktemp -d)
trap 'stop_sandbox; rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache
export QT_QPA_PLATFORM=offscreen

start_sandbox --categories "$categories" --subcategories "$subcategories" --pages "$pages" --history "$history"
query_every_category "$build/src/cli/gavelscope-cli" usa "$pages" "$work/all.sbqry"

startup=() querying=() growing=()
for run in $(seq "$runs"); do
  "$build/bench/gavelscope_window_heartbeat" "${CONNECT_TO[@]}" "${shown[@]}" "${insights[@]}" "$work/all.sbqry" >"$work/out.txt"
  sed "s/^/run $run: /" "$work/out.txt"
  startup+=("$(awk '/^start-up:/ { print $10 }' "$work/out.txt")")
  querying+=("$(awk '/^query:/ { print $10 }' "$work/out.txt")")
  [ ${#insights[@]} -eq 0 ] || growing+=("$(awk '/^insights-rows:/ { print $10 }' "$work/out.txt")")
done
summary="median of $runs, $QUERIED categories, $history history lines${shown:+, query tab shown}"
summary+="${insights:+, query tab shown, Insights window open}: longest gap between 10 ms ticks during"
summary+=" start-up $(median "${startup[@]}") ms, during the query $(median "${querying[@]}") ms"
[ ${#insights[@]} -eq 0 ] || summary+=", while the results grow to 65,000 rows $(median "${growing[@]}") ms"
echo "$summary"
