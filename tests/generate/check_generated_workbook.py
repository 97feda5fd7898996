#!/usr/bin/python3
"""Reads a generated workbook with openpyxl and checks it against expectations given as arguments;
besides those of tests/support/workbook_checks.py:

  cell:1!B2=+A1               a cell holds this text, stored as text (an empty value: the cell is empty)
  images:1=1                  number of pictures on a sheet
  row_breaks:Common=1         number of manual page breaks between rows on a sheet
"""
import os
import sys

sys.dont_write_bytecode = True  # nothing left behind in the source tree
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import workbook_checks  # noqa: E402


def actual(book, kind, where):
    if kind == "cell":
        name, address = workbook_checks.split_cell(where)
        cell = book[name][address]
        if cell.value is None:
            return ""
        if cell.data_type != "s":
            return "<not text: %r>" % (cell.value,)
        return cell.value
    if kind == "images":
        return str(len(book[where]._images))
    if kind == "row_breaks":
        return str(len(book[where].row_breaks.brk))
    return None


if __name__ == "__main__":
    workbook_checks.run(actual)
