#!/usr/bin/env bash
# Runs a Qt Test program of the Windows build under Wine and prints its log. Without a console window Qt Test
# would write its log to the debugger, so it writes to a file that is printed afterwards.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
log=$(mktemp "${TMPDIR:-/tmp}/qtest.XXXXXX")
trap 'rm -f "$log"' EXIT
"$root/scripts/wine-run.sh" "$@" -o "$log,txt"
status=$?
cat "$log"
exit $status
