#!/usr/bin/env bash
# The cases too big for every test run: a report of 1,000,000 rows on 30-row pages (more pages than the
# page counter holds), and a 3 GB file given as template and as dump to a process held to 2 GB of
# address space. Each must end on a message and a non-zero exit, fast, with an earlier result untouched;
# never on an abort (134) or by exhausting the machine. Run on a build without sanitizers (they reserve
# far more address space than the limit allows):
#   ctest --preset release -L huge      or      bash tests/huge/huge_cases.sh build/release/src/cli/sheetwright-cli
set -uo pipefail
cli=$(realpath "$1")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export SHEETWRIGHT_REGISTRY=$work/registry.reg
failures=0

expect() {  # expect NAME STATUS WANTED_STATUS ERR_FILE TEXT SECONDS LIMIT
  local name=$1 status=$2 wanted=$3 err=$4 text=$5 seconds=$6 limit=$7
  if [ "$status" != "$wanted" ] || ! grep -qF -- "$text" "$err" || [ "$seconds" -gt "$limit" ]; then
    echo "FAIL $name: exit $status (wanted $wanted), ${seconds} s (at most $limit), stderr:"; cat "$err"
    failures=$((failures + 1))
  else
    echo "ok   $name: exit $status in ${seconds} s: $(head -c 200 "$err")"
  fi
}

# 1,000,000 rows on the example template's 30-row pages: 33,334 pages and more, past 32,767.
python3 "$here/bench/make_dump.py" 1000000 "$work/million.txt"
cp "$here/examples/yttre_forbindningstabell.xlsx" "$here/examples/yttre_forbindningstabell.ini" "$work/"
printf 'det förra resultatet' >"$work/Lista.xlsx"
start=$SECONDS
"$cli" generate --dump "$work/million.txt" --template "$work/yttre_forbindningstabell.xlsx" \
  --out "$work/Lista.xlsx" >/dev/null 2>"$work/err1"
status=$?
expect "1,000,000 rows past the page counter" "$status" 1 "$work/err1" "Fel: Rapporten ger" $((SECONDS - start)) 60
if [ "$(cat "$work/Lista.xlsx")" != "det förra resultatet" ]; then
  echo "FAIL the earlier result was changed"; failures=$((failures + 1))
fi

# A 3 GB file that is no workbook, as template, under a 2 GB address limit: refused before it is read.
truncate -s 3G "$work/Stor.xlsx"
cp "$here/examples/yttre_forbindningstabell.ini" "$work/Stor.ini"
start=$SECONDS
(ulimit -v 2097152; exec "$cli" check "$work/Stor.xlsx") >/dev/null 2>"$work/err2"
status=$?
expect "3 GB template under 2 GB" "$status" 1 "$work/err2" "Filfel: " $((SECONDS - start)) 10

# The same file as dump: told as too big (or out of memory), never an abort.
start=$SECONDS
(ulimit -v 2097152; exec "$cli" preview --summary "$work/Stor.xlsx") >/dev/null 2>"$work/err3"
status=$?
expect "3 GB dump under 2 GB" "$status" 1 "$work/err3" "Filfel: " $((SECONDS - start)) 120

[ "$failures" -eq 0 ]
