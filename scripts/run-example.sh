#!/usr/bin/env bash
# Builds the release configuration and runs the main job on the bundled example: the outer connection
# table examples/yttre_forbindningstabell.txt filled into the template examples/yttre_forbindningstabell.xlsx
# (with its INI file beside it), one page per placement. Prints where the workbook is.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j2

# The example runs against a settings file of its own, so it neither reads nor changes the user's.
export SHEETWRIGHT_REGISTRY="$PWD/build/release/example-registry.reg"
cli=build/release/src/cli/sheetwright-cli
out_dir="$PWD/build/release/example"
mkdir -p "$out_dir"

"$cli" preview examples/yttre_forbindningstabell.txt --template examples/yttre_forbindningstabell.xlsx --summary
written=$("$cli" generate --dump examples/yttre_forbindningstabell.txt \
  --template examples/yttre_forbindningstabell.xlsx --out "$out_dir/yttre_forbindningstabell.xlsx" \
  --start 1 --field "5=Exempelkörning")
echo
echo "The example workbook is ready:"
echo "$written"
