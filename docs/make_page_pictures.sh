#!/usr/bin/env bash
# Makes docs/images/page_before.png and page_after.png: the example's page as a browser shows it, before and
# after translating.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

need_packages "${build_packages[@]}" chromium fonts-dejavu-core
build_preset release page_translator >&2

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# render PAGE PICTURE
render() {
    timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync --hide-scrollbars \
        --user-data-dir="$work/profile" --window-size=620,490 --screenshot="$2" "file://$1" 2>"$work/said" ||
        die "chromium failed: $(cat "$work/said")"
    rm -rf "$work/profile"
}

demo=$root/examples/page_translator
"$root/build/release/examples/page_translator" "$demo/setup.html" "$demo/setup.de.po" "$work/after.html" --width 44
render "$demo/setup.html" "$root/docs/images/page_before.png"
render "$work/after.html" "$root/docs/images/page_after.png"
