#!/usr/bin/env bash
# Builds Qt 6 for x86_64-w64-mingw32 from Debian's own qt6-base source, once per machine, into a cache
# outside the checkout, and prints the installed prefix on its last line. The Windows build of the window
# and its tests link against it.
#
# The cache is keyed by the source version and the configure flags: a prefix is used only when its stamp
# (written last, after a complete install) names exactly this key; anything else found there is a half-built
# or stale cache and is removed and built again. The host tools (moc, rcc, uic) are the machine's own Qt of
# the same version (qt6-base-dev-tools).
#
#   SW_QT_MINGW_CACHE   where the cache lives (default: ${XDG_CACHE_HOME:-$HOME/.cache}/sheetwright)
#   SW_JOBS             parallel build jobs (default 2)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$(pwd)

cache=${SW_QT_MINGW_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/sheetwright}
jobs=${SW_JOBS:-2}
host_version=$(dpkg-query -W -f='${Version}' qt6-base-dev 2>/dev/null | sed -e 's/^[0-9]*://' -e 's/[+-].*//')
[ -n "$host_version" ] || { echo "qt-mingw: qt6-base-dev is not installed (scripts/setup.sh installs it)" >&2; exit 1; }

# Only what the window uses: Core, Gui, Widgets and Test, the Windows and offscreen platform plugins, the
# Windows styles. Bundled image, font and regex libraries, so nothing else needs a mingw build.
qt_features=(
  -DBUILD_SHARED_LIBS=ON
  -DFEATURE_tabletevent=OFF # Debian's +dfsg source leaves out the tablet header
  -DFEATURE_dynamicgl=OFF   # with OpenGL off, 6.4's Windows plugin still compiles the dynamic-GL check
  -DFEATURE_opengl=OFF -DFEATURE_vulkan=OFF
  -DFEATURE_sql=OFF -DFEATURE_network=OFF -DFEATURE_dbus=OFF -DFEATURE_concurrent=OFF
  -DFEATURE_xml=OFF -DFEATURE_printsupport=OFF -DINPUT_openssl=no
  -DFEATURE_system_zlib=OFF -DFEATURE_system_pcre2=OFF -DFEATURE_system_png=OFF
  -DFEATURE_system_jpeg=OFF -DFEATURE_system_freetype=OFF -DFEATURE_system_harfbuzz=OFF
  -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF
)
key="qt6-base $host_version mingw-w64 $(x86_64-w64-mingw32-g++-posix -dumpversion) ${qt_features[*]}"
key_hash=$(printf '%s' "$key" | sha256sum | cut -c1-12)
prefix=$cache/qt-$host_version-mingw-$key_hash
stamp=$prefix/.sheetwright-complete

if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$key" ] && [ -f "$prefix/lib/cmake/Qt6Widgets/Qt6WidgetsConfig.cmake" ] \
  && [ -f "$prefix/bin/Qt6Widgets.dll" ] && [ -f "$prefix/plugins/platforms/qwindows.dll" ]; then
  echo "qt-mingw: present"
  echo "$prefix"
  exit 0
fi

echo "qt-mingw: building Qt $host_version for mingw-w64 into $prefix (about half an hour on two cores)" >&2
rm -rf "$prefix"
work=$cache/work-$key_hash
mkdir -p "$work"

# The same archive the machine installs from, with deb-src instead of deb, in a private apt state.
source scripts/lib/debian-sources.sh
debian_sources_apt "$work/apt"

source_dir=$(find "$work/src" -maxdepth 1 -type d -name "qt6-base-$host_version*" 2>/dev/null | sort | tail -1 || true)
if [ -z "$source_dir" ] || [ ! -f "$source_dir/.sheetwright-unpacked" ]; then
  rm -rf "$work/src"
  mkdir -p "$work/src"
  apt-get "${apt_options[@]}" update -qq
  echo "qt-mingw: fetching the Debian source of qt6-base $host_version" >&2
  (cd "$work/src" && apt-get "${apt_options[@]}" source -qq "qt6-base=$(dpkg-query -W -f='${Version}' qt6-base-dev)" \
    >"$work/source.log" 2>&1) || { tail -20 "$work/source.log" >&2; exit 1; }
  source_dir=$(find "$work/src" -maxdepth 1 -type d -name "qt6-base-*" | sort | tail -1)
  touch "$source_dir/.sheetwright-unpacked"
fi

build_dir=$work/build
rm -rf "$build_dir"
mkdir -p "$build_dir"
log=$work/build.log
started=$(date +%s)
{
  cmake -S "$source_dir" -B "$build_dir" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-qt-build.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DQT_HOST_PATH=/usr \
    -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake "${qt_features[@]}" &&
    cmake --build "$build_dir" -j"$jobs" &&
    cmake --install "$build_dir"
} >"$log" 2>&1 || { tail -40 "$log" >&2; echo "qt-mingw: failed; the whole log is $log" >&2; exit 1; }

echo "$key" >"$stamp"
rm -rf "$build_dir"
echo "qt-mingw: built in $(($(date +%s) - started)) s" >&2
echo "$prefix"
