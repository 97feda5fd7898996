#!/usr/bin/python3
"""Reads a saved workbook with openpyxl and compares what it finds with expectations given on the
command line, one per argument; besides those of tests/support/workbook_checks.py:

  cell:1!B2=+A1               a cell's value as text (a formula as its text)
  breaks:3=19,29              manual row breaks (openpyxl's break ids: the row above the break)
  print_titles:1=$1:$9        print title rows of a sheet
  merged:1=A1:D1,B2:D2        merged ranges of a sheet (sorted)
  name:1!Sidnr='1'!$F$1       a defined name of a sheet (name:Sidnr for the workbook's own); empty: none
  cf:1=A11:F11 A12:F20|$B11="X"   conditional formats of a sheet: ranges and formulas, ";" between
  validation:1=B10:B40|'1'!$G$2:$G$3   data validations of a sheet, ";" between
  height:1!12=24              a row's height (empty: the default)
  row_border:1!21=medium      the bottom border of a row's own format
  selections:1=A10            the active cells of the first view's selections, "," between
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
    if kind == "name":
        sheet, _, name = where.rpartition("!")
        local = book.sheetnames.index(sheet) if sheet else None
        found = [d.attr_text for d in book.defined_names.definedName
                 if d.name == name and d.localSheetId == local]
        return ",".join(found)
    if kind == "cf":
        return ";".join(str(entry.sqref) + "|" + ",".join(f for rule in entry.rules for f in rule.formula)
                        for entry in book[where].conditional_formatting)
    if kind == "validation":
        return ";".join(str(v.sqref) + "|" + (v.formula1 or "")
                        for v in book[where].data_validations.dataValidation)
    if kind == "height":
        name, _, row = where.rpartition("!")
        height = book[name].row_dimensions[int(row)].height
        return "" if height is None else "%g" % height
    if kind == "row_border":
        name, _, row = where.rpartition("!")
        return book[name].row_dimensions[int(row)].border.bottom.style or ""
    if kind == "selections":
        return ",".join(s.activeCell or "" for s in book[where].sheet_view.selection)
    return None


if __name__ == "__main__":
    workbook_checks.run(actual)
