#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# A query over every category of a sandbox of CATEGORIES x SUBCATEGORIES x PAGES against curl
# fetching the same listing pages with the same parallelism, both on the same sandbox in one run.
#
#   bench/query-vs-curl.sh [BUILD_DIR]       BUILD_DIR defaults to build/bench
#   CATEGORIES=20 SUBCATEGORIES=5 PAGES=5 RUNS=5 bench/query-vs-curl.sh
#
# The query run is timed by gavelscope_run_timer from the run's start until its last job has
# finished (it looks at its jobs every millisecond); gavelscope-cli's own time, which ends with its
# run's last job too, is set beside it with the program's start-up included. A query starts one job per category at once, so curl
# runs with --parallel-max CATEGORIES. Each job pauses 100 ms after each sub-category listing, which
# is SUBCATEGORIES pauses along every job; the ratio is taken after subtracting them.
set -euo pipefail
source "$(dirname "$0")/sandbox-lib.sh"
build=$(cd "${1:-$bench_root/build/bench}" && pwd)
categories=${CATEGORIES:-20}
subcategories=${SUBCATEGORIES:-5}
pages=${PAGES:-5}
runs=${RUNS:-5}
pause_per_listing=0.100
work=$(mktemp -d)
trap 'stop_sandbox; rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache
cli=$build/src/cli/gavelscope-cli
knobs=(--categories "$categories" --subcategories "$subcategories" --pages "$pages")

start_sandbox "${knobs[@]}"

query_every_category "$cli" usa "$pages" "$work/all.sbqry"

# The listing pages that query reads, from the generator the sandbox serves: each sub-category's
# listing sorted ending first, then its next pages as the pager links to them. curl.cfg holds them
# all; chain-N.cfg those of the N-th category with sub-categories, in the order its job reads them.
PYTHONPATH=$bench_root/sandbox /usr/bin/python3 - "$work" "${knobs[@]}" <<'PY'
import sys
from sitegen import SiteGenerator
work = sys.argv[1]
knobs = dict(zip((a.lstrip("-") for a in sys.argv[2::2]), map(int, sys.argv[3::2])))
site = SiteGenerator(**knobs).usa
def entry(url):
    return f'url = "{url}"\noutput = "/dev/null"\n'
with open(f"{work}/curl.cfg", "w") as everything:
    for n, category in enumerate(c for c in site.categories if c.subs):
        with open(f"{work}/chain-{n}.cfg", "w") as chain:
            for sub in category.subs:
                first = sub.url + "QQsosortpropertyZ1"
                for url in [first] + [f"{first}QQfrpgZ{page}" for page in range(2, knobs["pages"] + 1)]:
                    everything.write(entry(url))
                    chain.write(entry(url))
PY
url_count=$(grep -c '^url' "$work/curl.cfg")
echo "sandbox: ${knobs[*]}; $QUERIED categories queried, $url_count listing pages, parallelism $categories"

query_times=() curl_times=() chain_times=()
for run in $(seq "$runs"); do
  "$build/bench/gavelscope_run_timer" "${CONNECT_TO[@]}" query "$work/all.sbqry" --export "$work/timer.txt" \
    >"$work/out.txt"
  query_times+=("$(awk '/^query run:/ { print $3 }' "$work/out.txt")")
  echo "run $run: $(cat "$work/out.txt")"

  start=$(now)
  curl --silent --no-progress-meter --parallel --parallel-immediate --parallel-max "$categories" "${CURL_CONNECT_TO[@]}" \
    --write-out '%{http_code}\n' --config "$work/curl.cfg" >"$work/codes.txt"
  curl_times+=("$(calc "$(now) - $start")")
  ok=$(grep -c '^200$' "$work/codes.txt" || true)
  echo "run $run: curl --parallel-max $categories: ${curl_times[-1]} s, $ok of $url_count pages answered 200"

  # The query's own order for comparison: one curl per category, reading its pages one by one.
  pids=()
  start=$(now)
  for chain in "$work"/chain-*.cfg; do
    curl --silent --no-progress-meter "${CURL_CONNECT_TO[@]}" --config "$chain" &
    pids+=($!)
  done
  wait "${pids[@]}"
  chain_times+=("$(calc "$(now) - $start")")
  echo "run $run: curl, one sequential chain per category, all at once: ${chain_times[-1]} s"
done

# The whole command-line program once, to show that its result is the timed run's. The jobs add
# rows as their pages come in, so the rows are compared in sorted order.
start=$(now)
"$cli" "${CONNECT_TO[@]}" query "$work/all.sbqry" --export "$work/cli.txt" 2>/dev/null
cli_time=$(calc "$(now) - $start" 1)
if cmp -s <(sort "$work/cli.txt") <(sort "$work/timer.txt"); then same="the same result rows"; else same="DIFFERENT result rows"; fi
echo "gavelscope-cli query: $cli_time s whole program (start-up included), $same as the timed run"

query=$(median "${query_times[@]}")
fetch=$(median "${curl_times[@]}")
chains=$(median "${chain_times[@]}")
pauses=$(calc "$subcategories * $pause_per_listing" 1)
echo "median of $runs: query run $query s, curl $fetch s, curl chains $chains s, fixed pauses ${pauses} s;" \
  "ratio (query - pauses) / curl = $(calc "($query - $pauses) / $fetch" 2)," \
  "against the chains $(calc "($query - $pauses) / $chains" 2)"
