#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer and runs the whole test suite,
# after a short run of every fuzz target. Installs missing Debian/npm packages first.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/setup.sh

fuzz_seconds=${SW_FUZZ_SECONDS:-15}
if [ "$fuzz_seconds" -gt 0 ]; then
  cmake --preset fuzz >/dev/null
  cmake --build --preset fuzz -j2
  for fuzzer in build/fuzz/fuzz/*_fuzzer; do
    [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer")
    corpus=build/fuzz/corpus/$name
    mkdir -p "$corpus"
    # Start from the test data of the format each target reads.
    case "$name" in
      package_fuzzer) starting=(tests/data/templates) ;;
      dump_reader_fuzzer) starting=(tests/data/dumps) ;;
      reg_file_fuzzer) starting=(tests/data/registry) ;;
      profile_reader_fuzzer) starting=(tests/data/templates_ini) ;;
      *) starting=() ;;
    esac
    echo "fuzz: $name for ${fuzz_seconds}s"
    "$fuzzer" -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -print_final_stats=0 "$corpus" "${starting[@]}" \
      >"build/fuzz/$name.log" 2>&1 || { tail -40 "build/fuzz/$name.log"; exit 1; }
  done
fi

# Everything built for Windows, the window included, its suites and the installer test run under Wine. Qt
# for mingw is built once per machine into a cache outside the checkout (about 20 minutes the first time).
bash scripts/build-mingw-deps.sh
SW_QT_MINGW=$(bash scripts/build-qt-mingw.sh | tail -1)
export SW_QT_MINGW
cmake --preset windows >/dev/null
cmake --build --preset windows -j2
ctest --preset windows

cmake --preset debug >/dev/null
cmake --build --preset debug -j2
ctest --preset debug
