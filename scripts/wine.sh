#!/usr/bin/env bash
# Runs a Windows program without a screen, in a wine directory of its own: scripts/wine.sh FOLDER PROGRAM [ARGUMENT...]
#
# FOLDER is made when missing, which takes some seconds. Wine's server stays for a minute after the last
# program, so that the next one starts at once; `scripts/wine.sh FOLDER --stop` ends it, for this folder alone.
set -euo pipefail

wine=/usr/lib/wine # Debian's wine64 alone brings no command of its own
export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
shift

# The libraries are made for Windows 10.
make_folder() {
    "$wine/wine64" reg add 'HKCU\Software\Wine' /v Version /d win10 /f
    touch "$WINEPREFIX/made"
}

if [[ ${1:-} == --stop ]]; then
    exec "$wine/wineserver64" -k
fi
mkdir -p "$WINEPREFIX"
(
    # What stays behind must keep neither the lock nor the caller's output.
    flock 9
    exec >/dev/null 2>&1
    if "$wine/wineserver64" -p60 9>&-; then # it did not run before
        "$wine/wine64" cmd /c exit 9>&-
    fi
    [[ -e $WINEPREFIX/made ]] || make_folder 9>&-
) 9>"$WINEPREFIX.lock"
exec "$wine/wine64" "$@"
