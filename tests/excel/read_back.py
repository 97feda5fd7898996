#!/usr/bin/python3
"""Reads a saved workbook with openpyxl and compares what it finds with expectations given on the
command line, one per argument; besides those of tests/support/workbook_checks.py:

  cell:1!B2=+A1               a cell's value as text (a formula as its text)
  breaks:3=19,29              manual row breaks (openpyxl's break ids: the row above the break)
  print_titles:1=$1:$9        print title rows of a sheet
  merged:1=A1:D1,B2:D2        merged ranges of a sheet (sorted)
"""
import os
import sys

sys.dont_write_bytecode = True  # nothing left behind in the source tree
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import workbook_checks  # noqa: E402


def actual(book, kind, where):
    if kind == "cell":
        name, address = workbook_checks.split_cell(where)
        value = book[name][address].value
        return "" if value is None else str(value)
    if kind == "breaks":
        return ",".join(str(b.id) for b in book[where].row_breaks.brk)
    if kind == "print_titles":
        return book[where].print_title_rows or ""
    if kind == "merged":
        return ",".join(sorted(str(r) for r in book[where].merged_cells.ranges))
    return None


if __name__ == "__main__":
    workbook_checks.run(actual)
