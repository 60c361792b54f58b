#!/usr/bin/env bash
# Runs a saved query over three stand-in categories and compares the rows it prints with the rows the
# generator says pass the same filters (computed from its own data, not by scanning pages).
set -euo pipefail
cli=$1 python=$2 sitegen=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

filters=(--site usa --category Antiques --category Art --category Books --page-depth 2
         --bids-greater 5 --price-range 10 500 --days-less 5)
"$cli" query-new "${filters[@]}" --sort price --output "$work/query.sbqry"
"$cli" --sandbox query "$work/query.sbqry" > "$work/export.txt"

printf '\tHot Items History List\r\n\r\nDate Ended\t\t\tBids\t\t\tPrice\t\t\tItem Title\r\n\r\n' > "$work/headings"
cmp <(head -c "$(stat -c %s "$work/headings")" "$work/export.txt") "$work/headings"
tail -n +5 "$work/export.txt" | LC_ALL=C sort > "$work/found"
"$python" "$sitegen" query-rows "${filters[@]}" | LC_ALL=C sort > "$work/expected"
test -s "$work/expected"
cmp "$work/found" "$work/expected"
echo "$(wc -l < "$work/found") rows as expected"
