#!/usr/bin/env bash
# Sets the machine up, builds and tests: scripts/test.sh [windows | --all]
#
#   (nothing)  the release preset and its tests
#   windows    the preset for 64-bit Windows, whose tests wine runs
#   --all      all that continuous integration holds the project to: checks of format, structure and exported
#              symbols, every preset, both forms of the libraries, an installation that an outside project
#              uses, every benchmark and example run briefly
#
# Each stage writes to build/logs/<stage>.log, which is shown when the stage fails; the first failure ends the
# run. QMT_JOBS sets how many jobs run side by side.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

logs=$root/build/logs
report=()

# stage NAME COMMAND...: runs the command with its output in a log. The subshell sets -e anew, since
# otherwise it would not hold in functions called from here.
stage() {
    local name=$1 log=$logs/$1.log status=0 start=$SECONDS
    shift
    printf '%-36s ' "$name"
    set +e
    (set -e && "$@") >"$log" 2>&1
    status=$?
    set -e
    if ((status != 0)); then
        echo "FAILED"
        tail -n 200 "$log"
        echo
        echo "FAILED: stage '$name' after $((SECONDS - start)) s; its whole output is in ${log#"$root/"}" >&2
        exit 1
    fi
    echo "ok $((SECONDS - start)) s"
    report+=("$(printf '%-36s %5d s' "$name" $((SECONDS - start)))")
}

# Thread sanitizer cannot start where addresses are randomised over more than 28 bits.
run_plainly_mapped() {
    if (($(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 0) > 28)) && setarch -R true 2>/dev/null; then
        setarch -R "$@"
    else
        "$@"
    fi
}

run_tests() {
    local results=$root/build/$1/test-results
    rm -rf "$results"
    cd "$root"
    GTEST_OUTPUT=xml:${2-}$results/ run_plainly_mapped ctest --preset "$1" --parallel "$jobs"
}

# Wine shows the root as drive Z. Of wine nothing is left running, whatever the tests' result.
run_windows_tests() {
    local status=0
    run_tests windows Z: || status=$?
    "$root/scripts/wine.sh" "$root/build/windows/wine" --stop || true
    return "$status"
}

# test_preset PRESET: builds and tests it, and shows what was skipped.
test_preset() {
    stage "$1-build" build_preset "$1"
    stage "$1-test" run_tests "$1"
    "$root/scripts/summarise_tests.py" "$root/build/$1/test-results"
}

test_windows() {
    stage "windows-build" build_preset windows
    stage "windows-test" run_windows_tests
    "$root/scripts/summarise_tests.py" "$root/build/windows/test-results"
}

check_exchange() {
    "$root/scripts/check_exchange.py" "$root/build/release" "$root/build/windows" "$root/build/exchange"
}

check_format() {
    cd "$root"
    find include src tests bench examples fuzz \( -name '*.h' -o -name '*.cpp' \) \
        -exec clang-format-14 --dry-run -Werror {} +
}

check_scripts() {
    cd "$root"
    shellcheck -x scripts/*.sh .ci/run
    scripts/checks_test.py
}

check_docs() {
    "$root/scripts/check_docs.py" "$root"
}

check_structure() {
    "$root/scripts/check_structure.py" "$@" "$root"
}

check_tidy() {
    cd "$root"
    run-clang-tidy-14 -quiet -j "$jobs" -p build/clang-release "^$root/src/"
}

run_benchmarks() {
    local benchmark
    for benchmark in "$root"/build/release/bench/*_benchmark; do
        echo "== $(basename "$benchmark")"
        "$benchmark" --benchmark_min_time=0.01
    done
}

run_examples() {
    local examples=$root/build/release/examples work=$root/build/examples
    mkdir -p "$work"
    "$root/scripts/make_tone.py" "$work/tone.wav"
    "$examples/audio_chain" --trace "$work/trace" "$work/tone.wav" "$work/processed.wav"
    python3 -m json.tool "$work/trace.json" >/dev/null
    "$examples/readme_example"
    "$examples/settings" registry "$work"
    TZ=America/St_Johns "$examples/day_slots"
    "$examples/page_translator" --list "$root/examples/page_translator/setup.html" "$work/texts.po"
    "$examples/page_translator" --width 44 "$root/examples/page_translator/setup.html" \
        "$root/examples/page_translator/setup.de.po" "$work/page.html"
    "$examples/thumbnail" "$root/docs/images/page_before.png" "$work/thumbnail.png" --by 3
}

# The tests of what processes do to each other's settings, with all their rounds.
check_settings() {
    QMT_TEST_THOROUGH=1 "$root/build/release/tests/config_settings_safety_test"
}

check_saved_registry() {
    "$root/scripts/check_saved_registry.py" "$root/build/release/tests/platform_registry_test" \
        "$root/build/saved_registry"
}

# use_installed PRESET: installs the preset's build, moves the installation, and builds and runs an outside
# project against it in its new place.
use_installed() {
    local work=$root/build/installed/$1
    rm -rf "$work"
    cmake --install "$root/build/$1" --prefix "$work/before"
    mv "$work/before" "$work/after"
    cmake -G Ninja -S "$root/tests/consumer" -B "$work/consumer" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$work/after"
    cmake --build "$work/consumer"
    "$work/consumer/consumer"
}

test_quickly() {
    need_packages "${build_packages[@]}"
    test_preset release
}

test_all() {
    need_packages "${build_packages[@]}" "${check_packages[@]}" "${windows_packages[@]}"
    stage "format" check_format
    stage "scripts" check_scripts
    stage "documents" check_docs
    stage "structure" check_structure
    test_preset release
    stage "build-lists" check_structure --compile-commands "$root/build/release/compile_commands.json"
    stage "exported-symbols-gcc" "$root/scripts/check_exports.py" "$root/build/release/src"
    stage "settings" check_settings
    stage "saved-registry" check_saved_registry
    stage "benchmarks" run_benchmarks
    stage "examples" run_examples
    stage "installed-shared" use_installed release
    test_preset static
    stage "installed-static" use_installed static
    test_preset clang-release
    stage "exported-symbols-clang" "$root/scripts/check_exports.py" "$root/build/clang-release/src"
    stage "clang-tidy" check_tidy
    test_preset asan
    test_preset tsan
    test_preset clang-asan
    test_preset clang-tsan
    test_windows
    stage "exchange" check_exchange
    stage "fuzz" "$root/scripts/fuzz.sh" 10
}

mkdir -p "$logs"
case "$*" in
"") test_quickly ;;
windows)
    need_packages "${build_packages[@]}" "${windows_packages[@]}"
    test_windows
    ;;
--all) test_all ;;
*) die "usage: scripts/test.sh [windows | --all]" ;;
esac

printf '\n%s\n' "Passed:"
printf '  %s\n' "${report[@]}" "$(printf '%-36s %5d s' "in all" "$SECONDS")"
