#!/usr/bin/env bash
# Installs what building and testing Sheetwright needs on Debian 12, only where it is missing.
# Safe to run any number of times. Needs root (or sudo) for apt-get.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

debian_packages=(
  # build
  cmake ninja-build g++ pkg-config
  libzip-dev libpugixml-dev libcli11-dev
  # the window (Qt 6 Widgets and Qt Test); fonts for its offscreen tests and screenshot
  qt6-base-dev fontconfig fonts-dejavu-core
  # tests, benchmarks and fuzzing
  libgtest-dev libgmock-dev libbenchmark-dev clang libclang-rt-14-dev
  # the Windows build, its libraries built from Debian's sources (dpkg-dev unpacks them), its tests under Wine
  g++-mingw-w64-x86-64-posix libz-mingw-w64-dev dpkg-dev wine wine64
  # the window for Windows: Qt built from Debian's qt6-base source with the machine's own Qt tools
  # (scripts/build-qt-mingw.sh), the installer (wixl), the window's test under Wine on a virtual display
  qt6-base-dev-tools perl wixl msitools xvfb xdotool imagemagick
  # Qt's own dialogs in Swedish (qt_sv.qm), on both platforms
  qt6-translations-l10n
  # independent readers of the workbooks we write, and the writer-speed reference
  python3 python3-openpyxl python3-pil libreoffice-calc-nogui libxlsxwriter-dev
)
# Node.js for the Open XML validator: Debian's nodejs and npm, unless a Node.js with its own npm is there.
if ! command -v npm >/dev/null 2>&1; then debian_packages+=(nodejs npm); fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

missing=()
for package in "${debian_packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The Open XML SDK validator, installed inside the checkout (tools/node_modules, ignored by git) from the
# committed lock file: its newest dependencies need a newer Node.js than Debian 12's 18, so the versions are pinned.
lock="$here/tools/package-lock.json"
stamp="$here/tools/node_modules/.installed-lock"
if [ ! -x "$here/tools/node_modules/.bin/ooxml-validate" ] || ! cmp -s "$lock" "$stamp"; then
  echo "setup: installing @ooxml-tools/validate"
  (cd "$here/tools" && npm ci --silent --no-audit --no-fund --engine-strict=false >/dev/null)
  cp "$lock" "$stamp"
fi
echo "setup: ready"
