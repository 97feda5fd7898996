#!/usr/bin/python3
"""Reads the workbook made from a report dump with openpyxl and compares what its first sheet holds
with expectations given on the command line, one per argument; besides those of
tests/support/workbook_checks.py:

  typed:A1=s:007        a cell's type (s text, n number) and value; empty: no cell value
  format:A1=0%          a cell's number format
"""
import os
import sys

sys.dont_write_bytecode = True  # nothing left behind in the source tree
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import workbook_checks  # noqa: E402


def actual(book, kind, where):
    cell = book.worksheets[0][where] if kind in ("typed", "format") else None
    if kind == "typed":
        if cell.value is None:
            return ""
        if isinstance(cell.value, str):
            return "s:" + cell.value
        if isinstance(cell.value, (int, float)) and not isinstance(cell.value, bool):
            return "n:%r" % cell.value
        return "?:%r" % (cell.value,)
    if kind == "format":
        return cell.number_format
    return None


if __name__ == "__main__":
    workbook_checks.run(actual)
