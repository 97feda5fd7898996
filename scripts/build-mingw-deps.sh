#!/usr/bin/env bash
# Builds the third-party libraries of the Windows build (libzip, pugixml, CLI11, GoogleTest) for
# x86_64-w64-mingw32 from Debian's own source packages, once, into build/mingw-deps (ignored by git).
# zlib comes ready-built from libz-mingw-w64-dev. The machine's apt configuration is left alone: the
# deb-src lines live in a private sources list with its own apt state under build/mingw-deps-src.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$(pwd)

prefix=${SW_MINGW_DEPS:-$root/build/mingw-deps}
work=$root/build/mingw-deps-src
source_packages=(libzip pugixml cli11 googletest)
stamp="debian-sources: ${source_packages[*]}"

if [ -f "$prefix/.complete" ] && [ "$(cat "$prefix/.complete")" = "$stamp" ]; then
  echo "mingw-deps: present in $prefix"
  exit 0
fi

# The same archive the machine installs from, with deb-src instead of deb, in a private apt state.
source scripts/lib/debian-sources.sh
debian_sources_apt "$work/apt"
apt-get "${apt_options[@]}" update -qq

toolchain=$root/cmake/mingw-w64.cmake
jobs=${SW_JOBS:-2}
mkdir -p "$work/src" "$prefix"

# cmake_install <source dir> <cmake options...>
cmake_install() {
  local source_dir=$1
  shift
  local build_dir=$work/build/$(basename "$source_dir")
  rm -rf "$build_dir"
  mkdir -p "$build_dir"
  cmake -S "$source_dir" -B "$build_dir" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF \
    -DSW_MINGW_DEPS="$prefix" "$@" >"$build_dir.log" 2>&1 \
    || { tail -30 "$build_dir.log"; exit 1; }
  cmake --build "$build_dir" -j"$jobs" >>"$build_dir.log" 2>&1 || { tail -30 "$build_dir.log"; exit 1; }
  cmake --install "$build_dir" >>"$build_dir.log" 2>&1 || { tail -30 "$build_dir.log"; exit 1; }
}

# unpacked <source package>: the folder apt-get source unpacked it into.
unpacked() {
  (cd "$work/src" && find . -maxdepth 1 -type d -name "$1-*" | sort | tail -1 | sed 's|^\./||')
}

for package in "${source_packages[@]}"; do
  if [ -z "$(unpacked "$package")" ]; then
    echo "mingw-deps: fetching the Debian source of $package"
    (cd "$work/src" && apt-get "${apt_options[@]}" source -qq "$package" >/dev/null 2>&1) \
      || (cd "$work/src" && apt-get "${apt_options[@]}" source "$package")
  fi
done

echo "mingw-deps: building pugixml"
cmake_install "$work/src/$(unpacked pugixml)" -DPUGIXML_BUILD_TESTS=OFF

echo "mingw-deps: building libzip"
cmake_install "$work/src/$(unpacked libzip)" -DENABLE_BZIP2=OFF -DENABLE_LZMA=OFF -DENABLE_ZSTD=OFF \
  -DENABLE_COMMONCRYPTO=OFF -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_OPENSSL=OFF \
  -DENABLE_WINDOWS_CRYPTO=OFF -DBUILD_TOOLS=OFF -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF

echo "mingw-deps: installing CLI11"
cmake_install "$work/src/$(unpacked cli11)" -DCLI11_BUILD_TESTS=OFF -DCLI11_BUILD_EXAMPLES=OFF \
  -DCLI11_BUILD_DOCS=OFF -DCLI11_SINGLE_FILE=OFF

echo "mingw-deps: building GoogleTest"
cmake_install "$work/src/$(unpacked googletest)" -DBUILD_GMOCK=ON -DINSTALL_GTEST=ON -Dgtest_disable_pthreads=OFF

echo "$stamp" >"$prefix/.complete"
echo "mingw-deps: ready in $prefix"
