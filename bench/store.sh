#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Gavelscope developers
#
# The research store's figures (medians of five runs): a year of daily snapshots read by the trends,
# then recording both Sites of the default sandbox and a 20-category UK query.
#
#   bench/store.sh [BUILD_DIR]        BUILD_DIR defaults to build/bench
set -euo pipefail
source "$(dirname "$0")/sandbox-lib.sh"
build=$(cd "${1:-$bench_root/build/bench}" && pwd)
work=$(mktemp -d)
trap 'stop_sandbox; rm -rf "$work"' EXIT
export TMPDIR=$work

"$build/bench/gavelscope_store_timer" year
start_sandbox
"$build/bench/gavelscope_store_timer" "${CONNECT_TO[@]}" record
