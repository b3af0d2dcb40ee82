#!/bin/sh
# wine-run.sh <program> [argument...]  runs a Windows program under Wine
# wine-run.sh --start                  starts a Wine server that keeps running, so that each program starts quickly
# wine-run.sh --stop                   stops it
# WINEPREFIX is where Wine keeps its files; the default is in the build folder of the "windows" preset.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
export WINEPREFIX="${WINEPREFIX:-$here/../build/windows/wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
# Without winedbg.exe a program that crashes ends immediately, after the single line "wine: Unhandled ...".
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winedbg.exe=}"

# first <command>...: the first command that exists. Debian does not install the 64-bit programs in the search path.
first() {
    for candidate in "$@"; do
        if command -v "$candidate"; then return; fi
    done
    echo "wine-run.sh: Wine is not installed" >&2
    exit 127
}

case "${1:-}" in
--start)
    mkdir -p "$WINEPREFIX"
    server=$(first /usr/lib/wine/wineserver64 wineserver64 wineserver)
    # A server that is not stopped ends after ten idle minutes. Status 2: one is running already.
    "$server" -p600 </dev/null >/dev/null 2>&1 || [ $? -eq 2 ]
    # Creates the files of a new prefix.
    exec "$(first /usr/lib/wine/wine64 wine64 wine)" wineboot --init </dev/null >/dev/null 2>&1
    ;;
--stop)
    # Status 1: none was running.
    "$(first /usr/lib/wine/wineserver64 wineserver64 wineserver)" -k </dev/null >/dev/null 2>&1 || [ $? -eq 1 ]
    ;;
*)
    mkdir -p "$WINEPREFIX"
    exec "$(first /usr/lib/wine/wine64 wine64 wine)" "$@"
    ;;
esac
