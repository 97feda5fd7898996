#!/usr/bin/python3
"""Reads a saved workbook with openpyxl and compares what it finds with expectations given on the
command line, one per argument:

  sheets=Common,Mall,1        sheet names in order
  cell:1!B2=+A1               a cell's value as text
  breaks:3=19,29              manual row breaks (openpyxl's break ids: the row above the break)
  print_area:1=$A$1:$F$40     print area of a sheet
  print_titles:1=$1:$9        print title rows of a sheet
  merged:1=A1:D1,B2:D2        merged ranges of a sheet (sorted)

Exit status 2 when openpyxl is missing, 1 when an expectation fails.
"""
import sys

try:
    import openpyxl
except ImportError:
    sys.exit(2)


def actual(book, key):
    kind, _, sheet = key.partition(":")
    if kind == "sheets":
        return ",".join(book.sheetnames)
    if kind == "cell":
        name, _, address = sheet.rpartition("!")
        value = book[name][address].value
        return "" if value is None else str(value)
    ws = book[sheet]
    if kind == "breaks":
        return ",".join(str(b.id) for b in ws.row_breaks.brk)
    if kind == "print_area":
        area = ws.print_area
        if isinstance(area, list):
            area = ",".join(area)
        return area.split("!")[-1] if area else ""
    if kind == "print_titles":
        return ws.print_title_rows or ""
    if kind == "merged":
        return ",".join(sorted(str(r) for r in ws.merged_cells.ranges))
    raise SystemExit("unknown expectation " + key)


def main():
    book = openpyxl.load_workbook(sys.argv[1])
    failed = 0
    for expectation in sys.argv[2:]:
        key, _, wanted = expectation.partition("=")
        found = actual(book, key)
        if found != wanted:
            print("%s: expected %r, found %r" % (key, wanted, found))
            failed += 1
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
