#!/usr/bin/env bash
# Builds the release configuration's command line and the libxlsxwriter reference, then prints the
# side-by-side comparisons of bench/compare.py (RUNS interleaved runs each, default 3). SW_COMPARE picks
# sections (scaling, pages, job, single, load); SW_CPU_TIME=1 measures CPU time instead of wall time.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
cmake --preset release >/dev/null
cmake --build --preset release --target sheetwright-cli xlsxwriter_reference
/usr/bin/python3 bench/compare.py build/release "${1:-3}"
