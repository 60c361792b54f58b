# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# Shared by the bench scripts (sourced, not run): starts the sandbox with size knobs, collects its
# --connect-to mappings, stops it, and takes medians.

bench_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# start_sandbox KNOB... : starts sandbox.py with the knobs and fills CONNECT_TO with one
# "--connect-to MAPPING" pair per host. The sandbox ends when its standard input closes.
start_sandbox() {
  coproc SANDBOX { exec /usr/bin/python3 "$bench_root/sandbox/sandbox.py" "$@"; }
  CONNECT_TO=()
  CURL_CONNECT_TO=()
  local line
  while IFS= read -r line <&"${SANDBOX[0]}"; do
    case $line in
      "connect-to "*)
        CONNECT_TO+=(--connect-to "${line#connect-to }")
        CURL_CONNECT_TO+=(--connect-to "${line#connect-to }")
        ;;
      ready) return 0 ;;
    esac
  done
  echo "the sandbox did not start" >&2
  return 1
}

# query_every_category CLI SITE DEPTH FILE : saves with `gavelscope-cli query-new` a query over every
# category of the running sandbox's SITE, by the names the program reads from the home page; sets
# QUERIED to their number.
query_every_category() {
  local cli=$1 site=$2 depth=$3 file=$4 name _link
  local args=()
  QUERIED=0
  while IFS=$'\t' read -r name _link; do
    args+=(--category "$name")
    QUERIED=$((QUERIED + 1))
  done < <("$cli" "${CONNECT_TO[@]}" categories --site "$site")
  "$cli" query-new --site "$site" --page-depth "$depth" "${args[@]}" --output "$file"
}

stop_sandbox() {
  [ -n "${SANDBOX_PID:-}" ] || return 0
  local pid=$SANDBOX_PID
  exec {SANDBOX[1]}>&-
  wait "$pid" 2>/dev/null || true
}

# median NUMBER... : the middle value (the mean of the two middle ones for an even count).
median() {
  printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { if (NR % 2) print v[(NR + 1) / 2]; else printf "%.3f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# now : seconds since the epoch, to the nanosecond.
now() {
  date +%s.%N
}

# calc EXPRESSION [DECIMALS] : the value of an arithmetic expression, by awk.
calc() {
  awk "BEGIN { printf \"%.${2:-3}f\n\", $1 }"
}
