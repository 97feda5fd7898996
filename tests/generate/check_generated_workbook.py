#!/usr/bin/python3
"""Reads a generated workbook with openpyxl and checks it against expectations given as arguments:

  sheets=Common,Mall,1        sheet names in order
  cell:1!B2=+A1               a cell holds this text, stored as text (an empty value: the cell is empty)
  images:1=1                  number of pictures on a sheet
  print_area:1=$A$1:$F$40     print area of a sheet

Exit status 2 when openpyxl is missing, 1 when an expectation fails (each failure printed).
"""
import sys

try:
    import openpyxl
except ImportError:
    sys.exit(2)


def actual(book, key):
    kind, _, where = key.partition(":")
    if kind == "sheets":
        return ",".join(book.sheetnames)
    if kind == "cell":
        name, _, address = where.rpartition("!")
        cell = book[name][address]
        if cell.value is None:
            return ""
        if cell.data_type != "s":
            return "<not text: %r>" % (cell.value,)
        return cell.value
    sheet = book[where]
    if kind == "images":
        return str(len(sheet._images))
    if kind == "print_area":
        area = sheet.print_area
        if isinstance(area, list):
            area = ",".join(area)
        return area.split("!")[-1] if area else ""
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
