#!/usr/bin/env bash
# Renders the main window with the bundled example loaded (the outer connection table and its
# template, page-break marks drawn) offscreen and saves the README's pictures in docs/: the window
# (main_window.png), the window with the menu "Verktyg" open (main_window_tools_menu.png), "Gå till
# sida" asking for a page (main_window_go_to_page.png), the grid scrolled sideways
# (main_window_scrolled.png), the window where nothing is found (main_window_empty.png), the themes
# "Standard" and "Office 2007" side by side (themes.png) and the options dialog (options_dialog.png).
# The window starts as `sheetwright` does, but against a settings file and a CAD INI file of its own
# in a temporary folder, so the user's settings are neither read nor changed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${SW_PRESET:-release}

bash scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j2 --target sheetwright-screenshot

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/windows"
# The CAD system's last report is the example's, so its template is the one matched.
printf '[CURREPORT]\r\nREPORT_ID=yttre_forbindningstabell\r\nREPORT_FIRST=1\r\n' >"$work/windows/VOLTARIS.INI"
examples="$PWD/examples"
cat >"$work/registry.reg" <<REG
REGEDIT4

[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]
"LastRdsDir"="$examples/"
"LastVoltDmp"="$examples/yttre_forbindningstabell.txt"

; 1000 x 640 pixels at 96 dots per inch.
[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright\\frmMain]
"Width"="15000"
"Height"="9600"
REG

mkdir -p docs
QT_QPA_PLATFORM=offscreen SHEETWRIGHT_REGISTRY="$work/registry.reg" windir="$work/windows" TEMP="$work" \
  "build/$preset/src/gui/sheetwright-screenshot" docs
echo "docs/main_window.png docs/main_window_tools_menu.png docs/main_window_go_to_page.png" \
  "docs/main_window_scrolled.png docs/main_window_empty.png docs/themes.png docs/options_dialog.png"
