#!/usr/bin/env bash
# Runs each libFuzzer harness for the given number of seconds on a copy of
# its seed corpus; stops at the first crash.
set -euo pipefail
build=$(cd "${1:-build-fuzz}" && pwd)
seconds=${2:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
work="$build/fuzz-work"
mkdir -p "$work"
for harness in "$build"/fuzz/fuzz_*; do
    [ -f "$harness" ] && [ -x "$harness" ] || continue
    name=$(basename "$harness")
    short=${name#fuzz_}
    corpus="$work/$name"
    mkdir -p "$corpus"
    if [ -d "$root/fuzz/corpus/$short" ]; then
        cp -n "$root/fuzz/corpus/$short"/* "$corpus"/ 2>/dev/null || true
    fi
    dict=()
    [ -f "$root/fuzz/$short.dict" ] && dict=(-dict="$root/fuzz/$short.dict")
    echo "== $name for ${seconds}s"
    (cd "$work" && "$harness" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=20 \
        -print_final_stats=1 "${dict[@]}" "$corpus")
done
