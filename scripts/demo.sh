#!/usr/bin/env bash
# Sends a recording through a processing chain: scripts/demo.sh [recording.wav]
# The result goes to build/demo.wav, what happened when to build/demo.txt and, for a trace viewer, to
# build/demo.json. Ends with the status of the example.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

(($# <= 1)) || die "usage: scripts/demo.sh [recording.wav]"

packages=("${build_packages[@]}")
if (($# == 0)); then
    packages+=(alsa-utils)
fi
need_packages "${packages[@]}"

recording=${1:-/usr/share/sounds/alsa/Front_Center.wav}
[[ -r $recording ]] || die "cannot read $recording"
build_preset release audio_chain >&2

exec "$root/build/release/examples/audio_chain" --trace "$root/build/demo" "$recording" "$root/build/demo.wav"
