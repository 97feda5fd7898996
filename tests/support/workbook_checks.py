"""What the read-back scripts share: each loads a saved workbook with openpyxl and compares what it
finds with expectations given on the command line after the file, one "kind:where=wanted" each.
Kinds every script knows:

  sheets=Common,Mall,1        sheet names in order
  print_area:1=$A$1:$F$40     print area of a sheet
  cached:1!B3=                the value a cell holds as last calculated (empty: none stored)

Exit status 2 when openpyxl is missing, 1 when an expectation fails (each failure printed).
"""
import functools
import sys

try:
    import openpyxl
except ImportError:
    sys.exit(2)


def split_cell(where):
    """"1!B2" -> ("1", "B2"); sheet names may hold "!" themselves."""
    name, _, address = where.rpartition("!")
    return name, address


@functools.lru_cache(maxsize=None)
def cached_values(path):
    return openpyxl.load_workbook(path, data_only=True)


def common_actual(path, book, kind, where):
    if kind == "sheets":
        return ",".join(book.sheetnames)
    if kind == "print_area":
        area = book[where].print_area
        if isinstance(area, list):
            area = ",".join(area)
        return area.split("!")[-1] if area else ""
    if kind == "cached":
        name, address = split_cell(where)
        value = cached_values(path)[name][address].value
        return "" if value is None else str(value)
    raise SystemExit("unknown expectation %s:%s" % (kind, where))


def run(actual):
    """Checks the expectations of sys.argv; `actual(book, kind, where)` gives what the script's own
    kinds find and None for the kinds above."""
    path = sys.argv[1]
    book = openpyxl.load_workbook(path)
    failed = 0
    for expectation in sys.argv[2:]:
        key, _, wanted = expectation.partition("=")
        kind, _, where = key.partition(":")
        found = actual(book, kind, where)
        if found is None:
            found = common_actual(path, book, kind, where)
        if found != wanted:
            print("%s: expected %r, found %r" % (key, wanted, found))
            failed += 1
    sys.exit(1 if failed else 0)
