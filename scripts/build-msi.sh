#!/usr/bin/env bash
# Builds the Windows installer: Qt for mingw (once per machine, scripts/build-qt-mingw.sh), the windows
# preset with the window, then build/msi/Sheetwright-<version>-x64.msi. Prints the MSI's path.
#   SW_MSI_VERSION  the product version written into the MSI (default: the project's version)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/setup.sh >&2
bash scripts/build-mingw-deps.sh >&2
qt=$(bash scripts/build-qt-mingw.sh | tail -1)
SW_QT_MINGW=$qt cmake --preset windows >/dev/null
cmake --build --preset windows -j"${SW_JOBS:-2}" --target sheetwright sheetwright-cli >&2

version=${SW_MSI_VERSION:-$(sed -n 's/^project(Sheetwright VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)}
mkdir -p build/msi
/usr/bin/python3 scripts/installer/make_msi.py --build build/windows --qt "$qt" --version "$version" --out build/msi
