#!/usr/bin/env python3
"""Fills the templates that Excel itself saved (tests/data/excel_made) in every mode of `generate` and checks
every workbook written.

Our own templates are written by openpyxl; a user's template is written by Excel, with parts and orderings
openpyxl never makes. Each template is filled from a small dump of two placements:
  - one copy of the page sheet per page (the normal run),
  - one workbook per page (--single-sheet --yes),
  - rows on the common sheet, where the template's INI file has a dynamic variant (<name>.dynamic.ini).
Every workbook written is then read by three readers that share no code with ours - openpyxl (with
Pillow), LibreOffice headless (a conversion to PDF) and the Open XML SDK validator, which must find no
error the template itself lacks - and compared part by part with the template: outside the cells the
program writes, each page sheet must be the template's page sheet, with its rows, merged cells,
conditional formats, data validations, page setup, header and footer, and its drawings, charts, comments
and tables as parts of its own; sheet-scoped names follow each copy; a macro workbook keeps its macros.
A reader that is missing fails the check.

Usage: check_excel_made.py --cli <sheetwright-cli> [--source <checkout>] [--keep <folder>]
Exit status 0 when every check holds, 1 otherwise (each failure is printed).
"""

import argparse
import concurrent.futures
import json
import os
import posixpath
import re
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile
import xml.etree.ElementTree as ET

NS_MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
NS_REL = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
NS_PKG_REL = "http://schemas.openxmlformats.org/package/2006/relationships"
NS_CT = "http://schemas.openxmlformats.org/package/2006/content-types"
NS_CHART = "http://schemas.openxmlformats.org/drawingml/2006/chart"
R_ID = "{%s}id" % NS_REL
REL_TYPE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"

# Parts a sheet owns: each copy of the sheet must have its own.
OWN_PARTS = {"drawing", "vmlDrawing", "comments", "table", "chart", "printerSettings"}

# Sheet elements compared as they stand (in document order, every occurrence).
KEPT_ELEMENTS = ["sheetPr", "sheetFormatPr", "cols", "sheetProtection", "autoFilter", "mergeCells",
                 "conditionalFormatting", "dataValidations", "printOptions", "pageMargins", "pageSetup",
                 "headerFooter", "colBreaks", "extLst"]


class Failures:
    def __init__(self):
        self.items = []

    def add(self, where, text):
        self.items.append("%s: %s" % (where, text))

    def check(self, condition, where, text):
        if not condition:
            self.add(where, text)
        return condition


failures = Failures()


def q(tag, ns=NS_MAIN):
    return "{%s}%s" % (ns, tag)


# ---------------------------------------------------------------------------------------------------
# The INI file, read as the program reads it (Windows-1252, [Section] key=value).


def read_ini(path):
    sections = {}
    current = None
    with open(path, "rb") as file:
        for raw in file.read().decode("cp1252").splitlines():
            line = raw.strip()
            if not line or line.startswith(";"):
                continue
            if line.startswith("[") and line.endswith("]"):
                current = sections.setdefault(line[1:-1].strip().lower(), [])
                continue
            if current is not None and "=" in line:
                key, value = line.split("=", 1)
                current.append((key.strip(), value.strip()))
    return sections


def cell_ref(text):
    match = re.fullmatch(r"\$?([A-Za-z]{1,3})\$?(\d+)", text.strip())
    return (column_number(match.group(1)), int(match.group(2))) if match else None


def column_number(letters):
    number = 0
    for letter in letters.upper():
        number = number * 26 + ord(letter) - 64
    return number


class Template:
    def __init__(self, folder, ini_name):
        self.ini_path = os.path.join(folder, ini_name)
        self.variant = ini_name[:-4].replace(".", "_")
        base = ini_name.split(".")[0]
        workbooks = [name for name in os.listdir(folder)
                     if name.split(".")[0] == base and name.lower().endswith((".xlsx", ".xlsm"))]
        if len(workbooks) != 1:
            raise SystemExit("%s: expected one workbook beside it, found %s" % (ini_name, workbooks))
        self.workbook_path = os.path.join(folder, workbooks[0])
        self.extension = os.path.splitext(workbooks[0])[1].lower()
        ini = read_ini(self.ini_path)
        tabs = dict((k.lower(), v) for k, v in ini.get("tabs", []))
        sheet = dict((k.upper(), v) for k, v in ini.get("sheet", []))
        self.page_sheet = tabs["template"]
        self.common_sheet = tabs["common"]
        self.start_row = int(sheet["STARTROW"])
        self.end_row = int(sheet["ENDROW"])
        self.dynamic = sheet.get("INFINITE", "0").strip() == "1"
        self.columns = [column_number(c) for c in sheet["COLUMNS"].split(",") if c.strip() not in ("!", "")]
        self.first_column = self.columns[0]
        self.page_cells = {cell_ref(sheet[k]) for k in ("SHEETNO", "NEXTSHEET", "LOCATION") if k in sheet}
        self.common_cells = set()
        for _, value in ini.get("common", []):
            ref = cell_ref(value.split("|", 1)[0])
            if ref:
                self.common_cells.add(ref)

    def written_cells(self, sheet_name, is_page):
        """The cells the program may write on a sheet: a predicate over (column, row)."""
        cells = set()
        if is_page or (self.dynamic and sheet_name == self.common_sheet):
            cells |= self.page_cells
        if sheet_name == self.common_sheet or (is_page and self.page_sheet == self.common_sheet):
            cells |= self.common_cells
        first = self.start_row
        last = None if self.dynamic and not is_page else self.end_row
        area_sheet = is_page or (self.dynamic and sheet_name == self.common_sheet)

        def written(column, row):
            if (column, row) in cells:
                return True
            if not area_sheet:
                return False
            if row < first or (last is not None and row > last):
                return False
            # A dynamic run also fills the page cells' columns on the rows it writes.
            return column in self.columns or (last is None and column in {c for c, _ in self.page_cells})
        return written


# ---------------------------------------------------------------------------------------------------
# Reading a package.


class Package:
    def __init__(self, path):
        self.path = path
        self.zip = zipfile.ZipFile(path)
        self.names = set(self.zip.namelist())
        self.workbook_part = self.main_part()
        self.workbook = self.xml(self.workbook_part)
        self.workbook_rels = self.rels(self.workbook_part)
        self.sheets = []  # (name, part) in workbook order
        for sheet in self.workbook.find(q("sheets")):
            rel = self.workbook_rels[sheet.get(R_ID)]
            self.sheets.append((sheet.get("name"), rel["part"]))
        strings_part = [r["part"] for r in self.workbook_rels.values() if r["type"] == "sharedStrings"]
        self.shared_strings = []
        if strings_part and strings_part[0] in self.names:
            for item in self.xml(strings_part[0]).findall(q("si")):
                self.shared_strings.append("".join(t.text or "" for t in item.iter(q("t"))))

    def main_part(self):
        for rel in self.rels("").values():
            if rel["type"] == "officeDocument":
                return rel["part"]
        raise ValueError("no officeDocument relationship")

    def read(self, part):
        return self.zip.read(part)

    def xml(self, part):
        return ET.fromstring(self.zip.read(part))

    def rels(self, part):
        folder, name = posixpath.split(part)
        rels_part = posixpath.join(folder, "_rels", name + ".rels")
        result = {}
        if rels_part not in self.names:
            return result
        for rel in ET.fromstring(self.zip.read(rels_part)):
            target = rel.get("Target")
            # A target "#Sheet1!A1" (a picture linking to a cell) is a place in the workbook, not a part.
            external = rel.get("TargetMode") == "External" or target.startswith("#")
            if external:
                target_part = None
            elif target.startswith("/"):
                target_part = target[1:]
            else:
                target_part = posixpath.normpath(posixpath.join(folder, target))
            result[rel.get("Id")] = {"type": rel.get("Type").rsplit("/", 1)[-1], "part": target_part,
                                     "target": target, "external": external}
        return result

    def sheet_part(self, name):
        for sheet_name, part in self.sheets:
            if sheet_name == name:
                return part
        return None

    def content_types(self):
        root = self.xml("[Content_Types].xml")
        defaults = {d.get("Extension").lower(): d.get("ContentType") for d in root.findall(q("Default", NS_CT))}
        overrides = {o.get("PartName").lstrip("/"): o.get("ContentType")
                     for o in root.findall(q("Override", NS_CT))}
        return defaults, overrides

    def defined_names(self):
        names = self.workbook.find(q("definedNames"))
        return [] if names is None else [(n.get("name"), n.get("localSheetId"), n.text or "") for n in names]


def canonical(element, drop_attributes=()):
    """An element as text with its attributes sorted, r:id-style attributes left out."""
    def walk(node):
        attributes = sorted((k, v) for k, v in node.attrib.items()
                            if k not in drop_attributes and not k.startswith("{%s}" % NS_REL))
        text = (node.text or "").strip()
        inner = "".join(walk(child) for child in node)
        attributes = " ".join('%s="%s"' % (k.rsplit("}", 1)[-1], v) for k, v in attributes)
        return "<%s %s>%s%s</>" % (node.tag.rsplit("}", 1)[-1], attributes, text, inner)
    return walk(element)


def cells_of(package, sheet_xml):
    cells = {}
    rows = {}
    data = sheet_xml.find(q("sheetData"))
    for row in [] if data is None else data.findall(q("row")):  # a chart sheet has no cells
        rows[int(row.get("r"))] = {k: v for k, v in row.attrib.items() if k not in ("r", "spans")}
        for cell in row.findall(q("c")):
            ref = cell_ref(cell.get("r"))
            kind = cell.get("t", "n")
            formula = cell.find(q("f"))
            value = cell.find(q("v"))
            if formula is not None:
                text = "=" + (formula.text or "") + repr(sorted(formula.attrib.items()))
            elif kind == "s" and value is not None:
                text = package.shared_strings[int(value.text)]
            elif kind == "inlineStr":
                text = "".join(t.text or "" for t in cell.iter(q("t")))
            else:
                text = value.text if value is not None and value.text is not None else ""
                if kind not in ("n", "str") and text:
                    text = kind + ":" + text
            cells[ref] = (text, cell.get("s", "0"))
    return cells, rows


# ---------------------------------------------------------------------------------------------------
# Part by part.


def relationship_targets(package, part, element):
    """(relationship type, target part or external target) for each r:id under a sheet element."""
    rels = package.rels(part)
    result = []
    for node in element.iter():
        for key, value in node.attrib.items():
            if key.startswith("{%s}" % NS_REL):
                rel = rels.get(value)
                result.append(None if rel is None else
                              (rel["type"], rel["target"] if rel["external"] else rel["part"]))
    return result


def compare_owned_part(where, template, template_part, output, output_part, rel_type, sheet_names):
    """A part a sheet owns (a drawing, a comment list, a table, ...) against the template's."""
    if not failures.check(output_part in output.names, where, "%s part %s is missing" % (rel_type, output_part)):
        return
    if rel_type in ("vmlDrawing", "printerSettings"):
        # VML is not XML that ElementTree reads reliably (Excel writes HTML-like attributes); its pictures
        # are followed through its relationships below.
        pass
    elif rel_type == "table":
        t, o = template.xml(template_part), output.xml(output_part)
        for attribute in ("ref", "totalsRowShown", "headerRowCount"):
            failures.check(t.get(attribute) == o.get(attribute), where,
                           "table %s: %s %r, template %r" % (output_part, attribute, o.get(attribute),
                                                             t.get(attribute)))
        failures.check([c.get("name") for c in t.iter(q("tableColumn"))] ==
                       [c.get("name") for c in o.iter(q("tableColumn"))], where,
                       "table %s has other columns than the template's" % output_part)
    elif rel_type == "chart":
        t = template.xml(template_part)
        o = output.xml(output_part)
        # The series of a copied sheet's chart name the copy, as they named the template sheet.
        t_formulas = [f.text or "" for f in t.iter(q("f", NS_CHART))]
        o_formulas = [f.text or "" for f in o.iter(q("f", NS_CHART))]
        failures.check(len(t_formulas) == len(o_formulas), where, "chart %s has other series" % output_part)
        for a, b in zip(t_formulas, o_formulas):
            wanted = a
            for old, new in sheet_names:
                wanted = wanted.replace(quote_sheet(old), quote_sheet(new))
            failures.check(b == wanted, where, "chart %s: series %r, not %r" % (output_part, b, wanted))
        for node in t.iter():
            if node.tag == q("f", NS_CHART):
                node.text = ""
        for node in o.iter():
            if node.tag == q("f", NS_CHART):
                node.text = ""
        failures.check(canonical(t) == canonical(o), where, "chart %s differs from the template's" % output_part)
    elif output_part.endswith(".xml"):
        failures.check(canonical(template.xml(template_part)) == canonical(output.xml(output_part)), where,
                       "%s %s differs from the template's %s" % (rel_type, output_part, template_part))
    # The part's own relationships (pictures, charts) point at parts that are there, of the same kinds.
    t_rels = sorted(r["type"] for r in template.rels(template_part).values())
    o_rels = output.rels(output_part)
    failures.check(t_rels == sorted(r["type"] for r in o_rels.values()), where,
                   "%s %s has relationships %s, the template's %s" %
                   (rel_type, output_part, sorted(r["type"] for r in o_rels.values()), t_rels))
    for rel in o_rels.values():
        if not rel["external"]:
            failures.check(rel["part"] in output.names, where,
                           "%s %s points at %s, which is missing" % (rel_type, output_part, rel["part"]))
    # A drawing's charts belong to the copy too: paired in the order the drawing names them.
    if rel_type == "drawing" and output_part.endswith(".xml"):
        t_charts = [t for t in relationship_targets(template, template_part, template.xml(template_part))
                    if t and t[0] == "chart"]
        o_charts = [t for t in relationship_targets(output, output_part, output.xml(output_part))
                    if t and t[0] == "chart"]
        for (_, t_chart), (_, o_chart) in zip(t_charts, o_charts):
            compare_owned_part(where, template, t_chart, output, o_chart, "chart", sheet_names)


def quote_sheet(name):
    if re.fullmatch(r"[A-Za-z_][A-Za-z0-9_.]*", name) and not re.fullmatch(r"[A-Za-z]{1,3}\d+", name):
        return name + "!"
    return "'" + name.replace("'", "''") + "'!"


def compare_sheet(where, template, template_sheet, output, output_sheet, written, sheet_names, own_parts_seen,
                  dynamic_sheet):
    t_part = template.sheet_part(template_sheet)
    o_part = output.sheet_part(output_sheet)
    t_xml, o_xml = template.xml(t_part), output.xml(o_part)

    t_cells, t_rows = cells_of(template, t_xml)
    o_cells, o_rows = cells_of(output, o_xml)
    # A copy's tables have names of their own, and its formulas name them.
    renamed_tables = {}
    t_tables, o_tables = t_xml.find(q("tableParts")), o_xml.find(q("tableParts"))
    if t_tables is not None and o_tables is not None:
        for t_table, o_table in zip(relationship_targets(template, t_part, t_tables),
                                    relationship_targets(output, o_part, o_tables)):
            if t_table and o_table and o_table[1] in output.names:
                old = template.xml(t_table[1]).get("displayName")
                new = output.xml(o_table[1]).get("displayName")
                if old and new and old != new:
                    renamed_tables[old.lower()] = new
    for ref in sorted(set(t_cells) | set(o_cells)):
        t_value, t_style = t_cells.get(ref, ("", "0"))
        o_value, o_style = o_cells.get(ref, ("", "0"))
        # A dynamic run gives its rows the formats of the second data row and a border below the last.
        reformatted = dynamic_sheet and ref[1] >= dynamic_sheet
        if ref in t_cells and not reformatted:
            failures.check(t_style == o_style or (ref not in o_cells and written(*ref)), where,
                           "cell %s has style %s, the template's %s" % (cell_name(ref), o_style, t_style))
        if t_value.startswith("="):
            for old, new in sheet_names:
                t_value = t_value.replace(quote_sheet(old), quote_sheet(new))
            if renamed_tables:
                pattern = r"(?<![\w.])(%s)(?=\[)" % "|".join(re.escape(n) for n in renamed_tables)
                t_value = re.sub(pattern, lambda m: renamed_tables[m.group(1).lower()], t_value, flags=re.I)
        if not written(*ref):
            failures.check(t_value == o_value, where,
                           "cell %s holds %r, the template's %r" % (cell_name(ref), o_value, t_value))

    for row in sorted(set(t_rows) | set(o_rows)):
        t_attributes = t_rows.get(row, {})
        o_attributes = o_rows.get(row, {})
        if dynamic_sheet and row not in t_rows:
            continue  # rows a dynamic run adds below the template's
        failures.check(t_attributes == o_attributes, where,
                       "row %d has %s, the template's row %s" % (row, o_attributes, t_attributes))

    for tag in KEPT_ELEMENTS:
        # A copy has no macro module of its own, so it has no code name either.
        dropped = ("codeName",) if tag == "sheetPr" and template_sheet != output_sheet else ()
        t_elements = [canonical(e, dropped) for e in t_xml.findall(q(tag))]
        o_elements = [canonical(e, dropped) for e in o_xml.findall(q(tag))]
        failures.check(t_elements == o_elements, where, "<%s> differs from the template's:\n  %s\n  %s" %
                       (tag, o_elements, t_elements))
    # The view: frozen panes, gridlines, zoom and the like; which tab is selected is the run's to say.
    view_flags = ("tabSelected",)
    t_views = [canonical(v.find(q("pane")) if v.find(q("pane")) is not None else ET.Element("nopane"))
               + canonical(ET.Element("view", {k: x for k, x in v.attrib.items() if k not in view_flags}))
               for v in t_xml.iter(q("sheetView"))]
    o_views = [canonical(v.find(q("pane")) if v.find(q("pane")) is not None else ET.Element("nopane"))
               + canonical(ET.Element("view", {k: x for k, x in v.attrib.items() if k not in view_flags}))
               for v in o_xml.iter(q("sheetView"))]
    failures.check(t_views == o_views, where, "sheet view %s, the template's %s" % (o_views, t_views))
    if not dynamic_sheet:
        failures.check([canonical(e) for e in t_xml.findall(q("rowBreaks"))] ==
                       [canonical(e) for e in o_xml.findall(q("rowBreaks"))], where,
                       "<rowBreaks> differs from the template's")

    # Every element that names a relationship: the same kinds, in the same places; hyperlinks the same
    # addresses; the parts the sheet owns its own and like the template's.
    for tag in ("drawing", "legacyDrawing", "legacyDrawingHF", "tableParts", "hyperlinks", "picture",
                "oleObjects", "controls"):
        t_element, o_element = t_xml.find(q(tag)), o_xml.find(q(tag))
        if not failures.check((t_element is None) == (o_element is None), where,
                              "<%s> is %s" % (tag, "missing" if o_element is None else "new")):
            continue
        if t_element is None:
            continue
        failures.check(canonical(t_element) == canonical(o_element), where, "<%s> differs" % tag)
        t_targets = relationship_targets(template, t_part, t_element)
        o_targets = relationship_targets(output, o_part, o_element)
        if not failures.check(None not in o_targets and len(t_targets) == len(o_targets), where,
                              "<%s> names relationships the sheet lacks" % tag):
            continue
        for (t_type, t_target), (o_type, o_target) in zip(t_targets, o_targets):
            if not failures.check(t_type == o_type, where, "<%s> points at a %s, not a %s" % (tag, o_type, t_type)):
                continue
            if t_type == "hyperlink":
                failures.check(t_target == o_target, where, "hyperlink to %s, template %s" % (o_target, t_target))
                continue
            if t_type in OWN_PARTS:
                failures.check(o_target not in own_parts_seen, where,
                               "%s part %s is shared with another sheet" % (t_type, o_target))
                own_parts_seen.add(o_target)
            compare_owned_part(where, template, t_target, output, o_target, t_type, sheet_names)
    # The relationships no element names (comments) must be there as well.
    t_types = sorted(r["type"] for r in template.rels(t_part).values())
    o_types = sorted(r["type"] for r in output.rels(o_part).values())
    failures.check(t_types == o_types, where, "sheet relationships %s, the template's %s" % (o_types, t_types))
    t_comments = [r["part"] for r in template.rels(t_part).values() if r["type"] == "comments"]
    o_comments = [r["part"] for r in output.rels(o_part).values() if r["type"] == "comments"]
    for t_comment, o_comment in zip(t_comments, o_comments):
        failures.check(o_comment not in own_parts_seen, where, "comments %s shared with another sheet" % o_comment)
        own_parts_seen.add(o_comment)
        compare_owned_part(where, template, t_comment, output, o_comment, "comments", sheet_names)


def cell_name(ref):
    column, row = ref
    letters = ""
    while column:
        column, rest = divmod(column - 1, 26)
        letters = chr(65 + rest) + letters
    return "%s%d" % (letters, row)


def check_package(where, output):
    """What any package must hold: a content type for each part, each relationship's part."""
    defaults, overrides = output.content_types()
    for name in output.names:
        if name.endswith("/") or name == "[Content_Types].xml":
            continue
        extension = name.rsplit(".", 1)[-1].lower()
        failures.check(name in overrides or extension in defaults, where, "part %s has no content type" % name)
    for name in overrides:
        failures.check(name in output.names, where, "content type for %s, which is missing" % name)
    for name in output.names:
        if name.endswith(".rels"):
            folder = posixpath.dirname(posixpath.dirname(name))
            source = posixpath.join(folder, posixpath.basename(name)[:-5])
            for rel in output.rels(source).values():
                if not rel["external"]:
                    failures.check(rel["part"] in output.names, where,
                                   "%s points at %s, which is missing" % (name, rel["part"]))
    sheet_ids = [s.get("sheetId") for s in output.workbook.find(q("sheets"))]
    failures.check(len(set(sheet_ids)) == len(sheet_ids), where, "sheet ids repeat: %s" % sheet_ids)
    names = [n.lower() for n, _ in output.sheets]
    failures.check(len(set(names)) == len(names), where, "sheet names repeat: %s" % names)
    table_names, table_ids = [], []
    for name in output.names:
        if name.startswith("xl/tables/") and name.endswith(".xml"):
            table = output.xml(name)
            table_names.append(table.get("displayName", "").lower())
            table_ids.append(table.get("id"))
    failures.check(len(set(table_names)) == len(table_names), where, "table names repeat: %s" % table_names)
    failures.check(len(set(table_ids)) == len(table_ids), where, "table ids repeat: %s" % table_ids)
    # Each VML drawing of the sheets (comments, form controls) has its own block of shape ids (o:idmap),
    # and a shape id is given once; the pictures of headers and footers count apart, as Excel counts them.
    for tag in ("legacyDrawing", "legacyDrawingHF"):
        blocks, shapes = [], []
        for _, part in output.sheets:
            element = output.xml(part).find(q(tag))
            if element is None:
                continue
            rel = output.rels(part).get(element.get(R_ID))
            if rel is None or rel["part"] not in output.names:
                continue
            text = output.read(rel["part"]).decode("utf-8", "replace")
            for found in re.findall(r'<o:idmap[^>]*data="([^"]*)"', text):
                blocks += found.split(",")
            shapes += re.findall(r'(?:\sid|o:spid)="(_x0000_s\d+)"', text)
        failures.check(len(set(blocks)) == len(blocks), where, "%s shape id blocks repeat: %s" % (tag, blocks))
        failures.check(len(set(shapes)) == len(shapes), where, "%s shape ids repeat: %s" % (tag, shapes))
    code_names = []
    for _, part in output.sheets:
        properties = output.xml(part).find(q("sheetPr"))
        if properties is not None and properties.get("codeName"):
            code_names.append(properties.get("codeName").lower())
    failures.check(len(set(code_names)) == len(code_names), where, "sheet code names repeat: %s" % code_names)
    book_view = output.workbook.find(q("bookViews"))
    active = 0
    if book_view is not None:
        for view in book_view:
            active = int(view.get("activeTab", "0"))
            first = int(view.get("firstSheet", "0"))
            failures.check(active < len(output.sheets) and first < len(output.sheets), where,
                           "the workbook view names sheet %d or %d of %d" % (active, first, len(output.sheets)))
    # More than one selected tab opens the workbook with its sheets grouped, where typing goes to them all.
    selected = [index for index, (_, part) in enumerate(output.sheets)
                if any(v.get("tabSelected") in ("1", "true") for v in output.xml(part).iter(q("sheetView")))]
    failures.check(selected == [active], where, "selected sheets %s, active sheet %d" % (selected, active))


def check_names(where, template, output, copies):
    """Names scoped to the page sheet follow every copy; the template's other names stay."""
    t_sheets = [n for n, _ in template.sheets]
    o_sheets = [n for n, _ in output.sheets]
    o_names = output.defined_names()
    o_set = {(name, scope, text) for name, scope, text in o_names}
    for name, scope, text in o_names:
        if scope is not None:
            failures.check(int(scope) < len(o_sheets), where, "name %s is scoped to no sheet (%s)" % (name, scope))
    for name, scope, text in template.defined_names():
        scope_name = None if scope is None else t_sheets[int(scope)]
        if scope_name is not None and scope_name not in o_sheets and scope_name != template.page_sheet_name:
            continue  # a sheet the run leaves out (one workbook per page)
        if scope_name in o_sheets:
            refers_to_gone = any(quote_sheet(s) in text for s in t_sheets if s not in o_sheets)
            if not refers_to_gone:
                wanted = (name, str(o_sheets.index(scope_name)) if scope_name else None, text)
                failures.check(wanted in o_set, where, "name %s (%s) %r is missing" % (name, scope_name, text))
        if scope_name == template.page_sheet_name:
            for copy in copies:
                new_text = text.replace(quote_sheet(scope_name), quote_sheet(copy))
                wanted = (name, str(o_sheets.index(copy)), new_text)
                failures.check(wanted in o_set, where, "name %s %r for page sheet %s is missing" %
                               (name, new_text, copy))


def check_macros(where, template, output):
    t_vba = [r["part"] for r in template.rels(template.workbook_part).values() if r["type"] == "vbaProject"]
    if not t_vba:
        return
    o_vba = [r["part"] for r in output.rels(output.workbook_part).values() if r["type"] == "vbaProject"]
    if not failures.check(len(o_vba) == 1 and o_vba[0] in output.names, where, "the macros are gone"):
        return
    failures.check(output.read(o_vba[0]) == template.read(t_vba[0]), where, "the macro part changed")
    _, overrides = output.content_types()
    failures.check("macroEnabled" in overrides.get(output.workbook_part, ""), where,
                   "the workbook's content type is no longer a macro workbook's")


# ---------------------------------------------------------------------------------------------------
# The runs.


def write_dump(path):
    lines = ["VOLTARIS Rapport\tYttre f\u00f6rbindningstabell\tFBLTAY", "Projekt: Provsk\u00e5p", "",
             "%+A1 Kopplingssk\u00e5p%"]
    lines += ["\tX1\t%d\tW1%02d\tL%d" % (i, i, i) for i in range(1, 4)]
    lines += ["%+A2 Sk\u00e5p%"]
    lines += ["\tX2\t%d\tW2%02d\tN%d" % (i, i, i) for i in range(1, 3)]
    with open(path, "wb") as file:
        file.write(("\r\n".join(lines) + "\r\n").encode("cp1252"))


def run_cli(cli, arguments, environment):
    result = subprocess.run([cli, "generate"] + arguments, capture_output=True, text=True, env=environment,
                            timeout=120)
    return result


def generate(cli, template, folder, dump, environment):
    """Runs every mode for one template; returns [(mode, output paths)]."""
    source = os.path.join(folder, "mallar", template.variant)
    os.makedirs(source)
    workbook = os.path.join(source, template.variant + template.extension)
    shutil.copyfile(template.workbook_path, workbook)
    shutil.copyfile(template.ini_path, os.path.join(source, template.variant + ".ini"))
    out = os.path.join(folder, "ut")
    runs = [("normal", [])]
    if not template.dynamic:
        runs.append(("single", ["--single-sheet", "--yes"]))
    results = []
    for mode, extra in runs:
        target = os.path.join(out, "%s-%s%s" % (template.variant, mode, template.extension))
        result = run_cli(cli, ["--dump", dump, "--template", workbook, "--out", target] + extra, environment)
        where = "%s (%s)" % (template.variant, mode)
        written = [line for line in result.stdout.splitlines() if line.strip()]
        if not failures.check(result.returncode == 0 and written, where,
                              "generate ended with %d:\n%s%s" % (result.returncode, result.stdout, result.stderr)):
            continue
        for path in written:
            failures.check(os.path.isfile(path), where, "%s was not written" % path)
        results.append((mode, [p for p in written if os.path.isfile(p)]))
    return results


def check_output(template, mode, path):
    where = "%s (%s) %s" % (template.variant, mode, os.path.basename(path))
    template_package = Package(template.workbook_path)
    template_package.page_sheet_name = template.page_sheet
    try:
        output = Package(path)
    except Exception as error:  # noqa: BLE001 - any failure to read is the finding
        failures.add(where, "not a readable package: %s" % error)
        return
    check_package(where, output)
    t_sheets = [n for n, _ in template_package.sheets]
    o_sheets = [n for n, _ in output.sheets]
    copies = [n for n in o_sheets if n not in t_sheets]
    if template.dynamic:
        failures.check(not copies, where, "a dynamic run made page sheets %s" % copies)
    else:
        failures.check(len(copies) >= 1, where, "no page sheet in %s" % o_sheets)
    if mode == "single":
        failures.check(len(copies) == 1, where, "one workbook per page holds page sheets %s" % copies)
    own_parts_seen = set()
    # One workbook per page holds the page sheet itself under the page's name: what named it names the page.
    renamed = [(template.page_sheet, copies[0])] if template.page_sheet not in o_sheets and copies else []
    # The template's own sheets that the run keeps come through as they were, less the texts it writes.
    for sheet in o_sheets:
        if sheet in t_sheets:
            written = template.written_cells(sheet, False)
            compare_sheet(where + " sheet " + sheet, template_package, sheet, output, sheet, written, renamed,
                          own_parts_seen,
                          template.start_row if template.dynamic and sheet == template.common_sheet else None)
    for copy in copies:
        written = template.written_cells(copy, True)
        compare_sheet(where + " sheet " + copy, template_package, template.page_sheet, output, copy, written,
                      [(template.page_sheet, copy)], own_parts_seen, None)
    check_names(where, template_package, output, copies)
    check_macros(where, template_package, output)


def check_openpyxl(template, mode, path):
    import openpyxl  # noqa: E402 - missing is a failure the caller reports
    where = "%s (%s) %s" % (template.variant, mode, os.path.basename(path))
    try:
        book = openpyxl.load_workbook(path, keep_vba=path.lower().endswith(".xlsm"))
    except Exception as error:  # noqa: BLE001
        failures.add(where, "openpyxl cannot load it: %s: %s" % (type(error).__name__, error))
        return
    names = book.sheetnames
    template_names = openpyxl.load_workbook(template.workbook_path).sheetnames
    copies = [n for n in names if n not in template_names]
    sheet = book[template.common_sheet] if template.dynamic else (book[copies[0]] if copies else None)
    if failures.check(sheet is not None, where, "openpyxl finds no page sheet in %s" % names):
        value = sheet.cell(row=template.start_row, column=template.first_column).value
        failures.check(value in ("X1", "X2"), where, "openpyxl reads %r where the first report row goes" % value)


def check_libreoffice(all_outputs, folder):
    where = "LibreOffice"
    soffice = shutil.which("soffice")
    if not failures.check(soffice is not None, where, "soffice is missing (scripts/setup.sh installs it)"):
        return None
    out = os.path.join(folder, "pdf")
    profile = "file://" + os.path.join(folder, "lo-profile")
    command = ["timeout", "300", soffice, "-env:UserInstallation=" + profile, "--headless", "--norestore",
               "--convert-to", "pdf", "--outdir", out] + all_outputs
    return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def finish_libreoffice(process, all_outputs, folder):
    if process is None:
        return
    output, _ = process.communicate()
    failures.check(process.returncode == 0, "LibreOffice", "soffice ended with %d:\n%s" % (process.returncode, output))
    for path in all_outputs:
        pdf = os.path.join(folder, "pdf", os.path.splitext(os.path.basename(path))[0] + ".pdf")
        failures.check(os.path.isfile(pdf) and os.path.getsize(pdf) > 500, "LibreOffice",
                       "%s was not converted to PDF:\n%s" % (os.path.basename(path), output))


def start_validator(source, files):
    index = os.path.join(source, "tools/node_modules/@ooxml-tools/validate/dist/npm/index.js")
    node = shutil.which("node") or shutil.which("nodejs")
    if not failures.check(os.path.isfile(index) and node is not None, "validator",
                          "the Open XML SDK validator is missing (scripts/setup.sh installs it)"):
        return []
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "validate_files.mjs")
    # Two processes: the validator's own start is most of its time, and the machine has two cores.
    halves = [files[0::2], files[1::2]]
    return [subprocess.Popen([node, script, index] + half, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             text=True) for half in halves if half]


def finish_validator(processes, templates_of_output):
    results = {}
    for process in processes:
        output, errors = process.communicate()
        if not failures.check(process.returncode == 0, "validator", "ended with %d:\n%s" % (process.returncode, errors)):
            continue
        results.update(json.loads(output))
    if not processes:
        return

    def problems(path):
        found = results.get(path)
        if found is None:
            failures.add("validator", "no result for %s" % path)
            return None
        if isinstance(found, dict):
            failures.add("validator", "%s: %s" % (path, found.get("failed")))
            return None
        return found
    for path, template_path in templates_of_output.items():
        found = problems(path)
        allowed = problems(template_path)
        if found is None or allowed is None:
            continue
        allowed_kinds = {(e["id"], re.sub(r"'[^']*'", "''", e["description"])) for e in allowed}
        for error in found:
            kind = (error["id"], re.sub(r"'[^']*'", "''", error["description"]))
            failures.check(kind in allowed_kinds, "validator " + os.path.basename(path),
                           "%s in %s (%s): %s" % (error["id"], error["part"], error["xpath"], error["description"]))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--cli", required=True)
    parser.add_argument("--source", default=os.path.dirname(os.path.dirname(os.path.dirname(
        os.path.abspath(__file__)))))
    parser.add_argument("--keep", help="a folder to leave the workbooks in, for a look at them")
    arguments = parser.parse_args()
    started = time.monotonic()

    data = os.path.join(arguments.source, "tests/data/excel_made")
    templates = [Template(data, name) for name in sorted(os.listdir(data)) if name.endswith(".ini")]

    folder = arguments.keep or tempfile.mkdtemp(prefix="sw-excel-made-")
    if arguments.keep:
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
    os.makedirs(os.path.join(folder, "ut"))
    dump = os.path.join(folder, "lista.txt")
    write_dump(dump)
    environment = dict(os.environ)
    environment["SHEETWRIGHT_REGISTRY"] = os.path.join(folder, "registry.reg")
    environment["HOME"] = folder
    environment["XDG_CONFIG_HOME"] = os.path.join(folder, "config")

    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        produced = list(pool.map(lambda t: (t, generate(arguments.cli, t, folder, dump, environment)), templates))
    all_outputs = []
    templates_of_output = {}
    for template, runs in produced:
        for _, paths in runs:
            all_outputs += paths
            for path in paths:
                templates_of_output[path] = template.workbook_path
    template_files = sorted({t.workbook_path for t in templates})

    generated = time.monotonic()
    libreoffice = check_libreoffice(all_outputs, folder) if all_outputs else None
    validators = start_validator(arguments.source, all_outputs + template_files) if all_outputs else []

    try:
        import openpyxl  # noqa: F401
        import PIL  # noqa: F401
        have_openpyxl = True
    except ImportError as error:
        failures.add("openpyxl", "python3-openpyxl or python3-pil is missing: %s" % error)
        have_openpyxl = False
    for template, runs in produced:
        for mode, paths in runs:
            for path in paths:
                check_output(template, mode, path)
                if have_openpyxl:
                    check_openpyxl(template, mode, path)

    checked = time.monotonic()
    finish_validator(validators, templates_of_output)
    validated = time.monotonic()
    finish_libreoffice(libreoffice, all_outputs, folder)
    converted = time.monotonic()
    print("generation %.1f s, own checks and openpyxl %.1f s, then waited %.1f s for the validator and %.1f s "
          "for LibreOffice" % (generated - started, checked - generated, validated - checked, converted - validated))

    if not arguments.keep:
        shutil.rmtree(folder, ignore_errors=True)
    print("%d templates, %d workbooks written and checked in %.1f s" %
          (len(templates), len(all_outputs), time.monotonic() - started))
    for failure in failures.items:
        print("FAIL " + failure)
    return 1 if failures.items else 0


if __name__ == "__main__":
    sys.exit(main())
