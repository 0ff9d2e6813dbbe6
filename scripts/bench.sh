#!/usr/bin/env bash
# Runs every benchmark program of a bench build; each prints its figures
# beside the floor they cannot beat.
set -euo pipefail
build=${1:-build-bench}
status=0
for bench in "$build"/bench/bench_*; do
    [ -f "$bench" ] && [ -x "$bench" ] || continue
    echo "== $(basename "$bench")"
    "$bench" --benchmark_counters_tabular=true || status=1
done
exit $status
