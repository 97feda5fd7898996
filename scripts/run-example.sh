#!/usr/bin/env bash
# Builds the release configuration and runs the main job on the bundled example report dump.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j2 --target sheetwright-cli

# The example runs against a settings file of its own, so it neither reads nor changes the user's.
export SHEETWRIGHT_REGISTRY="$PWD/build/release/example-registry.reg"
cli=build/release/src/cli/sheetwright-cli
"$cli" preview examples/yttre_forbindningstabell.txt
"$cli" preview examples/yttre_forbindningstabell.txt --summary
