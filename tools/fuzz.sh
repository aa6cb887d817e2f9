#!/usr/bin/env bash
# Runs the fuzz targets of the fuzz preset:
#     fuzz.sh [NAME] [SECONDS]
# NAME is a target with or without "_fuzzer"; without one, all run in turn. What grows in
# build/fuzz/corpus is kept from run to run; inputs that fail are kept in build/fuzz/artifacts.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
work="$root/build/fuzz"
samples="${VELLUMINE_SAMPLES:-$root/../shared/samples}"
export ASAN_OPTIONS="allocator_may_return_null=1"
export LSAN_OPTIONS="suppressions=$root/tests/sanitizers/leaks.txt:print_suppressions=0"

main() {
    local name="all"
    if [[ "${1:-}" =~ ^[^0-9] ]]; then
        name="${1%_fuzzer}"
        shift
    fi
    local seconds="${1:-60}"
    local targets=("$work"/bin/*_fuzzer)
    if [[ "$name" != all ]]; then
        targets=("$work/bin/${name}_fuzzer")
    fi
    if [[ ! -x "${targets[0]}" ]]; then
        echo "There is no fuzz target \"$name\"." >&2
        return 1
    fi

    make_seeds
    local failed=0
    local target
    for target in "${targets[@]}"; do
        fuzz "$target" "$seconds" || failed=1
    done
    return "$failed"
}

make_seeds() {
    "$work/bin/make_seeds" "$work/seeds"
    mkdir -p "$work/seeds/webp"
    local picture
    for picture in "$work"/seeds/png/*.png; do
        cwebp -quiet -q 50 "$picture" -o "$work/seeds/webp/$(basename "$picture" .png).webp"
        cwebp -quiet -lossless "$picture" \
            -o "$work/seeds/webp/$(basename "$picture" .png)-lossless.webp"
    done
}

fuzz() { # TARGET SECONDS
    local target="$1"
    local seconds="$2"
    local name
    name="$(basename "$target" _fuzzer)"
    local log="$work/logs/$name.log"
    mkdir -p "$work/corpus/$name" "$work/artifacts" "$work/logs"

    local corpora=("$work/corpus/$name")
    local folder
    for folder in "$work/seeds/$name" "$samples/$name" "$samples/hostile"; do
        if [[ -d "$folder" ]]; then
            corpora+=("$folder")
        fi
    done
    local status=0
    "$target" -max_total_time="$seconds" -max_len=65536 \
        -rss_limit_mb=2048 -timeout=25 -print_final_stats=1 -verbosity=1 \
        -artifact_prefix="$work/artifacts/$name-" "${corpora[@]}" >"$log" 2>&1 || status=$?
    local executions
    executions="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    echo "$name: ${executions:-0} executions in $seconds s"
    if ((status != 0)); then
        grep -v '^#' "$log" | tail -n 40
        echo "$name: failed; see $log and $work/artifacts"
        return 1
    fi
}

main "$@"
