#!/usr/bin/env bash
# Runs a Windows program without a screen, in a wine directory of its own: scripts/wine.sh FOLDER PROGRAM [ARGUMENT...]
#
# FOLDER is made when missing, which takes some seconds. With --stop in place of the program it ends what wine
# has left running for that folder. Wine's server stays for a while after the last program, so that the next
# one starts at once.
set -euo pipefail

wine=/usr/lib/wine # Debian's wine64 alone brings no command of its own
export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
shift

if [[ $1 == --stop ]]; then
    exec "$wine/wineserver64" -k
fi
mkdir -p "$WINEPREFIX"
exec "$wine/wine64" "$@"
