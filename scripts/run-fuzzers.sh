#!/usr/bin/env bash
# Runs every fuzz target of the "fuzz" build for FUZZ_SECONDS (default 60) each, FUZZ_JOBS
# (default 1) at a time, starting from its seeds and its saved regressions, with its dictionary and
# its own options (fuzz/options/<name>); FUZZ_RUNS, when set, also stops each target after that
# many inputs. New inputs go to build/fuzz/corpus/<name>/ (kept between runs, never into the
# repository). A crash, a leak or a hang stops that target with the input under
# build/fuzz/artifacts/<name>/: once the fault is fixed, save the input as
# fuzz/regressions/<name>/<what-it-broke>.
#
# FUZZ_CI=1 makes the run repeatable, for CI: each target runs with seed 1 for the number of
# inputs fuzz/ci-runs gives it (about 20 s each on a developer machine), from its seeds and
# regressions alone (its new inputs go to a scratch folder emptied first), so that a run either
# always finds a fault or never does.
#
# FUZZ_LONG=1 is for long runs: each target of the "fuzz-long" build (optimised, with
# UndefinedBehaviorSanitizer in trap mode, which costs little, and without AddressSanitizer:
# several times faster) runs for FUZZ_RUNS inputs (default 10 million), with the plain scheduling of
# inputs (-entropic=0, far cheaper with many features), from build/fuzz-long/corpus/<name>/; then
# every input it kept is replayed under both sanitizers by the "fuzz" build, so that a memory
# error on any path it found still shows. (Replaying only the kept inputs misses undefined
# behaviour on inputs that added no coverage: hence the trapping checks during the run itself.)
# Usage: scripts/run-fuzzers.sh [target name ...]   (all targets when none is named)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-60}
jobs=${FUZZ_JOBS:-1}
runs=${FUZZ_RUNS:-}
ci=${FUZZ_CI:-0}
long=${FUZZ_LONG:-0}
build=build/fuzz
sanitized=build/fuzz
if [ "$long" = 1 ]; then
    build=build/fuzz-long
    runs=${runs:-10000000}
fi

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for program in "$build"/fuzz/quillon_fuzz_*; do
        [ -x "$program" ] && targets+=("$(basename "$program" | sed 's/^quillon_fuzz_//')")
    done
fi
if [ ${#targets[@]} -eq 0 ]; then
    preset=$(basename "$build")
    echo "No fuzz targets in $build: run 'cmake --preset $preset && cmake --build --preset $preset' first." >&2
    exit 1
fi

# The number of inputs fuzz/ci-runs gives the target.
ci_runs() {
    local count
    count=$(awk -v name="$1" '$1 == name { print $2 }' fuzz/ci-runs)
    if [ -z "$count" ]; then
        echo "fuzz/ci-runs gives no number of inputs for $1" >&2
        return 1
    fi
    echo "$count"
}

# Runs one target; its output goes to build/fuzz/<name>.log, its exit status to <name>.status.
run_target() {
    local name=$1
    local corpus="$build/corpus/$name"
    local artifacts="$build/artifacts/$name/"
    local options=(-timeout=25 -rss_limit_mb=2048 -print_final_stats=1
                   -artifact_prefix="$artifacts")
    if [ "$ci" = 1 ]; then
        corpus="$build/ci-corpus/$name"
        rm -rf "$corpus"
        options+=(-seed=1 -runs="$(ci_runs "$name")")
    elif [ "$long" = 1 ]; then
        options+=(-runs="$runs" -entropic=0)
    else
        options+=(-max_total_time="$seconds")
        [ -n "$runs" ] && options+=(-runs="$runs")
    fi
    mkdir -p "$corpus" "$artifacts" "fuzz/regressions/$name"
    if [ -f "fuzz/dictionaries/$name.dict" ]; then
        options+=(-dict="fuzz/dictionaries/$name.dict")
    fi
    # Options of the target's own, such as a smaller input length for a slow target.
    if [ -f "fuzz/options/$name" ]; then
        local extra
        read -r -a extra <"fuzz/options/$name"
        options+=("${extra[@]}")
    fi
    local status=0
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        "$build/fuzz/quillon_fuzz_$name" "${options[@]}" \
        "$corpus" "fuzz/corpus/$name" "fuzz/regressions/$name" >"$build/$name.log" 2>&1 || status=$?
    if [ "$long" = 1 ] && [ "$status" = 0 ]; then
        ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
            "$sanitized/fuzz/quillon_fuzz_$name" -runs=0 -timeout=25 -rss_limit_mb=2048 \
            -artifact_prefix="$artifacts" "$corpus" >>"$build/$name.log" 2>&1 || status=$?
    fi
    echo "$status" >"$build/$name.status"
}

if [ "$ci" = 1 ]; then
    for name in "${targets[@]}"; do
        ci_runs "$name" >/dev/null
    done
    echo "Fuzzing ${targets[*]}: the inputs of fuzz/ci-runs with seed 1, ${jobs} at a time"
elif [ "$long" = 1 ]; then
    echo "Fuzzing ${targets[*]}: $runs inputs each, ${jobs} at a time, then their corpora under the sanitizers"
else
    echo "Fuzzing ${targets[*]}: ${seconds} s each${runs:+ or $runs inputs}, ${jobs} at a time"
fi
for name in "${targets[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do
        wait -n || true
    done
    run_target "$name" &
done
wait

failed=0
for name in "${targets[@]}"; do
    echo "== $name"
    grep -E '^stat::(number_of_executed_units|average_exec_per_sec)|^#[0-9]+.*DONE' \
        "$build/$name.log" | sed 's/^/   /' || true
    if [ "$(cat "$build/$name.status")" != 0 ]; then
        failed=1
        echo "   FAILED: see $build/$name.log and $build/artifacts/$name/" >&2
        grep -E 'ERROR:|SUMMARY:|runtime error' "$build/$name.log" | head -3 | sed 's/^/   /' >&2 || true
    fi
done
exit $failed
