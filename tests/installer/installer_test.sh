#!/usr/bin/env bash
# The Windows installer as a user meets it, under Wine in a Wine prefix of its own:
#   1. msiexec /i ... /qn installs the programs, Qt, the runtime, the translations, Init.reg, the licence
#      texts and the Start-menu shortcut into Program Files\Sheetwright;
#   2. the installed command line fills the bundled example into a workbook that openpyxl reads;
#   3. the installed window starts over a CAD installation, its main window appears on a virtual display
#      (found by its title) with the preview grid filled (placement heads painted green);
#   4. a newer installer replaces the installed product (one product left, the newer version);
#   5. msiexec /x ... /qn removes every installed file and leaves the user's settings and documents alone.
# Usage: installer_test.sh <windows build folder> <Qt for mingw> <screenshot to write>
set -euo pipefail
build=$(cd "$1" && pwd)
qt=$2
screenshot=$3
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
python=/usr/bin/python3

work=$(mktemp -d "${TMPDIR:-/tmp}/sheetwright-installer.XXXXXX")
xvfb_pid=
cleanup() {
  WINEPREFIX=$work/prefix wineserver -k 2>/dev/null || true
  [ -z "$xvfb_pid" ] || kill "$xvfb_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "installer_test: $*" >&2
  exit 1
}

# The virtual display comes first: Wine's desktop process starts with the prefix and keeps the display
# it found then.
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
export DISPLAY=$display

wine_user=$(id -un) # the Windows user Wine makes of the Linux one
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
wineboot --init >/dev/null 2>&1 || true
wineserver --wait

version=$(sed -n 's/^project(Sheetwright VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
newer=$(echo "$version" | awk -F. '{printf "%d.%d.%d", $1, $2, $3 + 1}')
for v in "$version" "$newer"; do
  "$python" "$root/scripts/installer/make_msi.py" --build "$build" --qt "$qt" --version "$v" --out "$work" >/dev/null
done
msi=$work/Sheetwright-$version-x64.msi
[ -f "$msi" ] || fail "no MSI written"

installed=$WINEPREFIX/drive_c/Program\ Files/Sheetwright
# Windows puts a per-machine install's shortcut into the common Start menu; Wine puts it into the user's.
shortcuts=("$WINEPREFIX/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Sheetwright.lnk"
  "$WINEPREFIX/drive_c/users/$wine_user/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Sheetwright.lnk")
shortcut_present() { [ -f "${shortcuts[0]}" ] || [ -f "${shortcuts[1]}" ]; }

# 1. Install.
wine msiexec /i "$(winepath -w "$msi")" /qn || fail "msiexec /i failed with $?"
wineserver --wait
for file in sheetwright.exe sheetwright-cli.exe Init.reg Qt6Core.dll Qt6Gui.dll Qt6Widgets.dll \
  libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll platforms/qwindows.dll styles/qwindowsvistastyle.dll \
  translations/qt_sv.qm licenses/Qt-LGPL-3.0.txt; do
  [ -f "$installed/$file" ] || fail "not installed: $file"
done
shortcut_present || fail "no Start-menu shortcut"
echo "installed: $(find "$installed" -type f | wc -l) files"

# The user's own things, which uninstalling must leave alone.
documents=$WINEPREFIX/drive_c/users/$wine_user/Documents
mkdir -p "$documents"
wine reg add 'HKCU\Software\ZENT\Sheetwright\Settings' /v Kvar /d 1 /f >/dev/null

# 2. The installed command line fills the example.
cp "$root/examples/yttre_forbindningstabell."{txt,xlsx,ini} "$documents/"
wine "$installed/sheetwright-cli.exe" generate --dump 'C:\users\'"$wine_user"'\Documents\yttre_forbindningstabell.txt' \
  --template 'C:\users\'"$wine_user"'\Documents\yttre_forbindningstabell.xlsx' \
  --out 'C:\users\'"$wine_user"'\Documents\resultat.xlsx' --start 1 --field "5=Installerad" >/dev/null \
  || fail "the installed command line failed"
"$python" - "$documents/resultat.xlsx" <<'EOF' || fail "the installed command line's workbook is not right"
import sys
import openpyxl
book = openpyxl.load_workbook(sys.argv[1])
pages = [name for name in book.sheetnames if name.isdigit()]
assert pages == ["1", "2", "3"], book.sheetnames
assert any(cell.value == "Installerad" for row in book[book.sheetnames[0]].iter_rows() for cell in row)
EOF
echo "command line: example filled"

# 3. The installed window with the example: the CAD system's last report is the example's, the settings
# name its folder and dump (as the user's last choice) and a window of 1000 x 640 pixels.
mkdir -p "$WINEPREFIX/drive_c/Exempel"
cp "$root/examples/yttre_forbindningstabell."{txt,xlsx,ini} "$WINEPREFIX/drive_c/Exempel/"
printf '[CURREPORT]\r\nREPORT_ID=yttre_forbindningstabell\r\nREPORT_FIRST=1\r\n' >"$WINEPREFIX/drive_c/windows/VOLTARIS.INI"
cat >"$work/example.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\ZENT\Sheetwright]
"LastRdsDir"="C:\\Exempel\\"
"LastVoltDmp"="C:\\Exempel\\yttre_forbindningstabell.txt"

[HKEY_CURRENT_USER\Software\ZENT\Sheetwright\frmMain]
"Width"="15000"
"Height"="9600"
REG
wine regedit /s "$(winepath -w "$work/example.reg")"
# Wine has no Windows fonts; the window draws with DejaVu as a Windows machine would with its own.
cp /usr/share/fonts/truetype/dejavu/DejaVuSans*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
(wine "$installed/sheetwright.exe" >/dev/null 2>&1 &)
window=
for _ in $(seq 1 120); do
  window=$(xdotool search --onlyvisible --name '^Sheetwright$' 2>/dev/null | head -1 || true)
  [ -n "$window" ] && break
  sleep 0.5
done
[ -n "$window" ] || fail "the main window did not appear"
sleep 6 # the first paint of the grid
import -window root "$screenshot" || fail "no screenshot"
eval "$(xdotool getwindowgeometry --shell "$window")"
"$python" - "$screenshot" "$X" "$Y" "$WIDTH" "$HEIGHT" <<'EOF' || fail "the grid shows no placement (screenshot: $screenshot)"
import sys
from PIL import Image
shot = Image.open(sys.argv[1]).convert("RGB")
x, y, w, h = map(int, sys.argv[2:6])
window = shot.crop((x, y, x + w, y + h))
heads = sum(1 for pixel in window.getdata() if pixel == (192, 255, 192))  # &HC0FFC0, a placement head
assert heads > 200, heads
EOF
echo "window: appeared with the grid filled ($WIDTH x $HEIGHT)"
wineserver -k
wineserver --wait || true

# 4. A newer installer replaces the older product.
wine msiexec /i "$(winepath -w "$work/Sheetwright-$newer-x64.msi")" /qn || fail "the upgrade failed with $?"
wineserver --wait
products=$(grep -A20 -i '^\[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Uninstall\\\\{' "$WINEPREFIX/system.reg" \
  | grep -c '"DisplayName"="Sheetwright"' || true)
[ "$products" = 1 ] || fail "after the upgrade $products products named Sheetwright are installed"
grep -q "\"DisplayVersion\"=\"$newer\"" "$WINEPREFIX/system.reg" || fail "the newer version is not the installed one"
[ -f "$installed/sheetwright.exe" ] || fail "the upgrade removed the program"
echo "upgrade: $version -> $newer"

# 5. Uninstall.
wine msiexec /x "$(winepath -w "$work/Sheetwright-$newer-x64.msi")" /qn || fail "msiexec /x failed with $?"
wineserver --wait
left=0
[ ! -d "$installed" ] || left=$(find "$installed" -type f | wc -l)
[ "$left" = 0 ] || fail "$left installed files left after uninstalling: $(find "$installed" -type f | head -5)"
! shortcut_present || fail "the Start-menu shortcut is left"
[ -f "$documents/resultat.xlsx" ] || fail "uninstalling removed the user's document"
wine reg query 'HKCU\Software\ZENT\Sheetwright\Settings' /v Kvar >/dev/null 2>&1 \
  || fail "uninstalling removed the user's settings"
echo "uninstall: nothing installed left, the user's settings and documents kept"
