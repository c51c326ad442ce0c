#!/usr/bin/env bash
# Takes what the page tests produce now as approved. Look at the difference before you hand it in.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

need_packages "${build_packages[@]}"
build_preset release html_html_parser_test
QMT_APPROVE=1 "$root/build/release/tests/html_html_parser_test" --gtest_filter='*Approved*'
git -C "$root" diff --stat -- tests/html/approved
