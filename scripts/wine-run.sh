#!/usr/bin/env bash
# Runs a program of the Windows build under Wine (the test runner of the windows preset).
# The Wine prefix is private to the checkout (build/wineprefix); Mono, Gecko and the menu builder are
# disabled, so Wine never asks to download anything and the user's ~/.wine is left alone.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

export WINEPREFIX=${SW_WINEPREFIX:-$root/build/wineprefix}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEARCH=win64

# Tests start in parallel; only the first creates the prefix.
mkdir -p "$(dirname "$WINEPREFIX")"
(
  flock 9
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    wineboot --init >/dev/null 2>&1 || true
    wineserver --wait
  fi
) 9>"$WINEPREFIX.lock"

exec wine "$@"
