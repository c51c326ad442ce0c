#!/usr/bin/env bash
# Fuzzes the page text code with clang's fuzzer: scripts/fuzz.sh [SECONDS]
#
# Builds the targets below fuzz/ and runs each for so many seconds, 20 by default. Inputs that reach new code stay
# in build/fuzz/corpus and are taken up by the next run. A failure prints its input, which is kept in build/fuzz.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

seconds=${1:-20}
build=$root/build/fuzz
[[ $seconds =~ ^[1-9][0-9]*$ ]] || die "usage: scripts/fuzz.sh [SECONDS]"

need_packages "${build_packages[@]}" clang-14 libclang-rt-14-dev llvm-14
cmake -G Ninja -S "$root/fuzz" -B "$build" -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" --parallel "$jobs"

for target in html_parser html_text; do
    corpus=$build/corpus/$target
    mkdir -p "$corpus"
    cp "$root"/tests/html/approved/*.html "$corpus"
    echo "== $target, $seconds s"
    "$build/${target}_fuzz" -max_total_time="$seconds" -timeout=20 -max_len=2048 -rss_limit_mb=2048 \
        -print_final_stats=1 -verbosity=0 -dict="$root/fuzz/$target.dict" -artifact_prefix="$build/" "$corpus"
done
