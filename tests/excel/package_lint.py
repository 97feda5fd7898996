#!/usr/bin/python3
"""Structural checks over a saved .xlsx/.xlsm package, the things Excel repairs a file for and
LibreOffice lets pass. Prints one line per problem; exit status 1 when there is any.

Usage: package_lint.py FILE
"""
import posixpath
import re
import sys
import zipfile
import xml.etree.ElementTree as ET

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
REL = "{http://schemas.openxmlformats.org/package/2006/relationships}"
CT = "{http://schemas.openxmlformats.org/package/2006/content-types}"
R_NS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"


def rels_name(part):
    folder, name = posixpath.split(part)
    return posixpath.join(folder, "_rels", name + ".rels")


def resolve(source, target):
    if target.startswith("/"):
        return target[1:]
    return posixpath.normpath(posixpath.join(posixpath.dirname(source), target))


def cell_key(ref):
    match = re.fullmatch(r"([A-Z]+)(\d+)", ref)
    column = 0
    for letter in match.group(1):
        column = column * 26 + ord(letter) - 64
    return int(match.group(2)), column


def lint(path):
    problems = []
    archive = zipfile.ZipFile(path)
    infos = archive.infolist()
    names = [info.filename for info in infos]
    lower = {name.lower() for name in names}
    if names[0] != "[Content_Types].xml":
        problems.append("[Content_Types].xml is not the first entry")
    for info in infos:
        if b"\x01\x00" in info.extra[:2] or info.file_size >= 0xFFFFFFFF:
            problems.append("ZIP64 record on " + info.filename)

    types = ET.fromstring(archive.read("[Content_Types].xml"))
    defaults = {d.get("Extension").lower(): d.get("ContentType") for d in types.iter(CT + "Default")}
    overrides = {o.get("PartName").lower(): o.get("ContentType") for o in types.iter(CT + "Override")}
    for name in names:
        if name.endswith("/"):
            continue
        extension = name.rsplit(".", 1)[-1].lower()
        if "/" + name.lower() not in overrides and extension not in defaults:
            problems.append("no content type for " + name)
    for part in overrides:
        if part[1:] not in lower:
            problems.append("content type override for missing part " + part)

    relationships = {}
    for name in names:
        if not name.endswith(".rels"):
            continue
        folder = posixpath.dirname(posixpath.dirname(name))
        source = posixpath.join(folder, posixpath.basename(name)[:-5])
        ids = {}
        for rel in ET.fromstring(archive.read(name)).iter(REL + "Relationship"):
            if rel.get("Id") in ids:
                problems.append("duplicate relationship id %s in %s" % (rel.get("Id"), name))
            ids[rel.get("Id")] = rel
            if rel.get("TargetMode") == "External":
                continue
            target = resolve(source, rel.get("Target"))
            if target.lower() not in lower:
                problems.append("%s: relationship %s points at missing %s" % (name, rel.get("Id"), target))
        relationships[source] = ids

    workbook_part = None
    for rel in relationships.get("", {}).values():
        if rel.get("Type").endswith("/officeDocument"):
            workbook_part = resolve("", rel.get("Target"))
    for source, ids in relationships.items():
        if not source.endswith(".xml") or source.lower() not in lower:
            continue
        text = archive.read(source).decode("utf-8", "replace")
        for rid in set(re.findall(r'\br:(?:id|embed|link|pict)="([^"]+)"', text)):
            if rid not in ids:
                problems.append("%s uses r:id %s that has no relationship" % (source, rid))
    workbook = ET.fromstring(archive.read(workbook_part))
    sheets = list(workbook.iter(MAIN + "sheet"))
    seen = set()
    for sheet in sheets:
        key = sheet.get("name").casefold()
        if key in seen:
            problems.append("sheet name used twice: " + sheet.get("name"))
        seen.add(key)
    names_seen = set()
    for defined in workbook.iter(MAIN + "definedName"):
        local = defined.get("localSheetId")
        if local is not None and not 0 <= int(local) < len(sheets):
            problems.append("definedName %s has localSheetId %s out of range" % (defined.get("name"), local))
        key = (defined.get("name").lower(), local)
        if key in names_seen:
            problems.append("definedName %s defined twice for sheet %s" % key)
        names_seen.add(key)

    tables, table_ids, idmaps, selected = set(), set(), set(), 0
    for name in names:
        if name.startswith("xl/tables/") and name.endswith(".xml"):
            table = ET.fromstring(archive.read(name))
            for attribute, bag in (("displayName", tables), ("id", table_ids)):
                value = table.get(attribute).lower()
                if value in bag:
                    problems.append("table %s %s used twice" % (attribute, value))
                bag.add(value)
        if name.lower().endswith(".vml"):
            for data in re.findall(r'idmap[^>]*data="([^"]*)"', archive.read(name).decode("utf-8", "replace")):
                for block in data.split(","):
                    if block in idmaps:
                        problems.append("VML idmap block %s used twice" % block)
                    idmaps.add(block)
    workbook_rels = relationships.get(workbook_part, {})
    for sheet in sheets:
        part = resolve(workbook_part, workbook_rels[sheet.get("{%s}id" % R_NS)].get("Target"))
        root = ET.fromstring(archive.read(part))
        if root.tag != MAIN + "worksheet":
            continue
        for view in root.iter(MAIN + "sheetView"):
            if view.get("tabSelected") in ("1", "true"):
                selected += 1
        last_row = 0
        for row in root.iter(MAIN + "row"):
            number = int(row.get("r"))
            if number <= last_row:
                problems.append("%s: row %d out of order" % (part, number))
            last_row = number
            last_column = 0
            for cell in row.iter(MAIN + "c"):
                cell_row, column = cell_key(cell.get("r"))
                if cell_row != number or column <= last_column:
                    problems.append("%s: cell %s out of order" % (part, cell.get("r")))
                last_column = column
    if selected > 1:
        problems.append("%d sheets have tabSelected" % selected)
    return problems


def main():
    problems = lint(sys.argv[1])
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
