#!/usr/bin/env python3
"""The generation job done with openpyxl, for comparison: the example template's page sheet copied
once per page (placement heads and 30 rows a page start a page), page number, next page and
placement written, the rows' seven fields in columns A to G from row 7.
Usage: openpyxl_job.py DUMP TEMPLATE OUTPUT"""
import sys

import openpyxl

ROWS_PER_PAGE = 30
START_ROW = 7


def report_rows(path):
    started = False
    with open(path, encoding="cp1252", newline="") as dump:
        for line in dump.read().splitlines():
            if line.startswith("%"):
                started = True
                yield line.replace("%", "").strip(), None
            elif started:
                yield None, [field.strip() for field in line.split("\t")]


def main() -> int:
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    book = openpyxl.load_workbook(sys.argv[2])
    template = book["Mall"]
    page = None
    number = 0
    rows = 0
    location = ""

    def new_page():
        nonlocal page, number, rows
        if page is not None:
            page["G3"] = str(number + 1)
        number += 1
        page = book.copy_worksheet(template)
        page.title = str(number)
        page["G2"] = str(number)
        page["B3"] = location
        rows = 0

    for title, fields in report_rows(sys.argv[1]):
        if title is not None:
            location = title or location
            new_page()
            continue
        if rows == ROWS_PER_PAGE:
            new_page()
        for column, text in enumerate(fields[1:8], start=1):
            page.cell(row=START_ROW + rows, column=column, value=text)
        rows += 1
    if page is not None:
        page["G3"] = "-"
    book.save(sys.argv[3])
    return 0


if __name__ == "__main__":
    sys.exit(main())
