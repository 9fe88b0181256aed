#!/usr/bin/env bash
# Runs every fuzz target of the "fuzz" build for FUZZ_SECONDS (default 60) each, starting from its
# seeds and its saved regressions, with its dictionary and its own options (fuzz/options/<name>).
# New inputs go to build/fuzz/corpus/<name>/ (kept between runs, never into the repository). A
# crash, a leak or a hang stops the run with the input under build/fuzz/artifacts/<name>/: once
# the fault is fixed, save that input as fuzz/regressions/<name>/<what-it-broke>.
# Usage: scripts/run-fuzzers.sh [target name ...]   (all targets when none is named)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-60}
build=build/fuzz
status=0

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for program in "$build"/fuzz/quillon_fuzz_*; do
        [ -x "$program" ] && targets+=("$(basename "$program" | sed 's/^quillon_fuzz_//')")
    done
fi
if [ ${#targets[@]} -eq 0 ]; then
    echo "No fuzz targets in $build: run 'cmake --preset fuzz && cmake --build --preset fuzz' first." >&2
    exit 1
fi

for name in "${targets[@]}"; do
    program="$build/fuzz/quillon_fuzz_$name"
    corpus="$build/corpus/$name"
    artifacts="$build/artifacts/$name/"
    mkdir -p "$corpus" "$artifacts" "fuzz/regressions/$name"
    options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
             -artifact_prefix="$artifacts")
    if [ -f "fuzz/dictionaries/$name.dict" ]; then
        options+=(-dict="fuzz/dictionaries/$name.dict")
    fi
    # Options of the target's own, such as a smaller input length for a slow target.
    if [ -f "fuzz/options/$name" ]; then
        read -r -a extra <"fuzz/options/$name"
        options+=("${extra[@]}")
    fi
    echo "== $name: ${seconds} s"
    if ! ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        "$program" "${options[@]}" "$corpus" "fuzz/corpus/$name" "fuzz/regressions/$name" \
        >"$build/$name.log" 2>&1; then
        status=1
        echo "   FAILED: see $build/$name.log and $artifacts" >&2
    fi
    grep -E '^(stat::number_of_executed_units|stat::peak_rss_mb)|cov: .*DONE|^#[0-9]+.*DONE' \
        "$build/$name.log" | sed 's/^/   /' || true
done
exit $status
