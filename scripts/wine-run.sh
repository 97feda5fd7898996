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
    # Wine brings no Windows fonts; the window tests lay out with the same face as on Linux.
    cp /usr/share/fonts/truetype/dejavu/DejaVuSans*.ttf "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
  fi
) 9>"$WINEPREFIX.lock"

# Wine keeps the Linux side's QT_* variables from its Windows programs (they would steer a Windows Qt
# wrongly); the ones set for a test are meant for the Windows program, and WINEQT_* passes them on.
while IFS='=' read -r name _; do
  [[ $name == QT_* ]] && export "WINE$name=${!name}"
done < <(env)

exec wine "$@"
