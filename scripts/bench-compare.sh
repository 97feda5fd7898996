#!/usr/bin/env bash
# Builds the release configuration's command line, the libxlsxwriter reference and the window's
# generation benchmark, then prints the side-by-side comparisons of bench/compare.py, every program
# measured as a whole process (RUNS interleaved runs each, default 3). SW_COMPARE picks sections
# (scaling, pages, job, single, load, window); SW_CPU_TIME=1 takes CPU time for the ratios instead of
# wall time (both are printed).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
cmake --preset release >/dev/null
cmake --build --preset release --target sheetwright-cli xlsxwriter_reference
# The window's generation benchmark exists where the window is built (Qt 6 found).
if ninja -C build/release -t targets all 2>/dev/null | grep -q '^gui_generate_bench:'; then
  cmake --build --preset release --target gui_generate_bench
fi
/usr/bin/python3 bench/compare.py build/release "${1:-3}"
