# Shared by the scripts beside it, which source it: the project's folder and the packages it needs.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${QMT_JOBS:-$(nproc)}

# What configuring, building and testing the release preset takes, on Debian 12.
# shellcheck disable=SC2034 # for those who source this file
build_packages=(cmake ninja-build g++ python3 tzdata
    libutfcpp-dev libgtest-dev libbenchmark-dev libsndfile1-dev libsqlite3-dev pkgconf
    libboost-dev libtbb-dev libcctz-dev libgumbo-dev libxml2-dev libpcre2-dev
    qt6-base-dev libglib2.0-dev libspdlog-dev libyuv-dev libswscale-dev libpng-dev libjpeg-dev)
# What the windows preset takes besides.
# shellcheck disable=SC2034
windows_packages=(g++-mingw-w64-x86-64-posix googletest wine64)
# What the checks and the other presets take besides.
# shellcheck disable=SC2034
check_packages=(clang-14 libclang-rt-14-dev llvm-14 clang-format-14 clang-tidy-14 binutils shellcheck)

die() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

missing_packages() {
    local package
    for package in "$@"; do
        if [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) != installed ]]; then
            echo "$package"
        fi
    done
}

# need_packages NAME...: installs those that are missing, or names them and ends the script.
need_packages() {
    if ! command -v dpkg-query >/dev/null; then
        echo "This is no Debian system; the packages needed are called there: $*"
        return
    fi
    local missing as_root=()
    mapfile -t missing < <(missing_packages "$@")
    if ((${#missing[@]} == 0)); then
        return
    fi
    if ((EUID != 0)); then
        command -v sudo >/dev/null || die "please install these packages: ${missing[*]}"
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -q || die "apt-get update failed; these packages are missing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}" ||
        die "could not install these packages: ${missing[*]}"
}

# build_preset PRESET [TARGET...]: configures and builds, everything by default.
build_preset() {
    local preset=$1
    shift
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    (cd "$root" && cmake --preset "$preset" &&
        cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"})
}
