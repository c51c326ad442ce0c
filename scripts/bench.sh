#!/usr/bin/env bash
# Builds the release preset's benchmarks that have aims, runs them and prints the ratios reached beside their aims:
# scripts/bench.sh [--realtime] [NAME...]
#
#   --realtime  runs them with real-time priority, which keeps the machine's other work out of the figures
#               and stops that work meanwhile; needs the right to do so
#   NAME        ring, chain, parallel, latency, event, trace or rgb; all of them by default
#
# Raw results go to build/bench/<name>.json. QMT_BENCH_REPETITIONS sets how often each is repeated (9).
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

results=$root/build/bench
repetitions=${QMT_BENCH_REPETITIONS:-9}
run=()
if [[ ${1:-} == --realtime ]]; then
    run=(chrt --fifo 1)
    shift
fi
names=("$@")
if ((${#names[@]} == 0)); then
    names=(ring chain parallel latency event trace rgb)
fi

need_packages "${build_packages[@]}"
mkdir -p "$results"
build_preset release "${names[@]/%/_benchmark}" >"$results/build.log" 2>&1 ||
    die "the build failed; its output is in ${results#"$root/"}/build.log"

for name in "${names[@]}"; do
    echo "running $name" >&2
    rm -f "$results/$name.json"
    # Repetitions of all benchmarks take turns, so that what disturbs the machine meets all of them.
    "${run[@]}" "$root/build/release/bench/${name}_benchmark" \
        --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=0.1 --benchmark_out="$results/$name.json" --benchmark_out_format=json \
        >"$results/$name.log" 2>&1 || die "$name failed; its output is in ${results#"$root/"}/$name.log"
done
"$root/scripts/bench_ratios.py" "${names[@]/#/$results/}"
