#!/usr/bin/env bash
# Builds the fuzz targets and runs each for some seconds, as many at a time as the machine has processors.
#
#   fuzz/run.sh [seconds [target...]]     20 seconds, all targets
#
# Prints one line for each target and fails when one of them found something. Of the edges counted many are the
# sanitizers' own, which no correct program takes. What is kept, below MOX_FUZZ_BUILD
# (build/fuzz): corpus/<target>/ with the inputs that reach new edges, findings/ with those that fail (run the program
# with the file as its argument to see why; move it to tests/regression/inputs/<target>/ under a name that says what
# was wrong), logs/<target>.log.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

readonly seconds=${1:-20}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(load_memory load_file large round_trip calls document front host tool)
readonly build=${MOX_FUZZ_BUILD:-build/fuzz}
readonly mostBytes=8192
readonly mostSecondsForOne=20

mkdir -p "$build/logs" "$build/findings"
prepare() {
    [ -e "$build/build.ninja" ] ||
        cmake -S fuzz -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14
    ninja -C "$build" -j "$(nproc)" "${targets[@]/#/fuzz_}"
}
if ! prepare >"$build/logs/build.log" 2>&1; then
    cat "$build/logs/build.log"
    exit 1
fi

export ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:detect_leaks=1
export UBSAN_OPTIONS=print_stacktrace=1

# number <sed expression> <log>: the last number that it finds, 0 without one.
number() {
    sed -n "s/$1/\1/p" "$2" | tail -n 1 | grep . || echo 0
}

# fuzz <target>
fuzz() {
    local target=$1 log="$build/logs/$1.log" corpus="$build/corpus/$1" before ended=0 findings
    mkdir -p "$corpus"
    before=$(find "$build/findings" -name "$target-*" | wc -l)
    local seeds=("fuzz/corpus/$target")
    [ ! -d "tests/regression/inputs/$target" ] || seeds+=("tests/regression/inputs/$target")
    nice -n 19 "$build/bin/fuzz_$target" -max_total_time="$seconds" -max_len="$mostBytes" \
        -timeout="$mostSecondsForOne" -report_slow_units="$mostSecondsForOne" -rss_limit_mb=2048 \
        -dict=fuzz/xml.dict -print_final_stats=1 \
        -artifact_prefix="$(realpath "$build/findings")/$target-" "$corpus" "${seeds[@]}" >"$log" 2>&1 || ended=$?
    findings=$(($(find "$build/findings" -name "$target-*" | wc -l) - before))
    # A program that ends badly without a file has found something all the same: that it cannot run.
    if [ "$ended" -ne 0 ] && [ "$findings" -eq 0 ]; then findings=1; fi
    printf '%s: %s executions, %s of %s edges, %s findings\n' "$target" \
        "$(number '.*number_of_executed_units: *\([0-9]*\).*' "$log")" \
        "$(number '.* cov: \([0-9]*\) .*' "$log")" \
        "$(number '.*(\([0-9]*\) inline 8-bit counters).*' "$log")" "$findings"
    [ "$findings" -eq 0 ]
}

export build seconds mostBytes mostSecondsForOne
export -f fuzz number
printf '%s\n' "${targets[@]}" | xargs -n 1 -P "$(nproc)" bash -c 'fuzz "$0" || exit 1'
