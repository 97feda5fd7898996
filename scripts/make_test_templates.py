#!/usr/bin/python3
"""Builds the report-template workbooks in tests/data/templates with tools independent of our own
workbook engine: openpyxl writes them, LibreOffice re-saves them so they carry the parts and
quirks of a real office suite (drawings, VML comments, printer-style defined names).

Usage: /usr/bin/python3 scripts/make_test_templates.py   (needs python3-openpyxl, python3-pil and
libreoffice-calc-nogui). The results are committed; run again only to change them.
"""
import io
import os
import shutil
import tempfile

from openpyxl import Workbook
from openpyxl.formatting.rule import FormulaRule
from openpyxl.styles import PatternFill
from openpyxl.workbook.defined_name import DefinedName
from openpyxl.comments import Comment
from openpyxl.drawing.image import Image
from openpyxl.styles import Alignment, Border, Font, Side
from openpyxl.worksheet.datavalidation import DataValidation
from openpyxl.worksheet.table import Table, TableStyleInfo
from PIL import Image as PilImage, ImageDraw

from template_tools import XLSM, resave_with_libreoffice

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "tests", "data", "templates")

THIN = Side(style="thin")
BOX = Border(left=THIN, right=THIN, top=THIN, bottom=THIN)


def logo_png():
    picture = PilImage.new("RGB", (120, 40), (255, 255, 255))
    draw = ImageDraw.Draw(picture)
    draw.rectangle((2, 2, 117, 37), outline=(0, 70, 140), width=3)
    draw.text((12, 14), "ZENT EL", fill=(0, 70, 140))
    data = io.BytesIO()
    picture.save(data, format="PNG")
    data.seek(0)
    return data


def build_title_block(path):
    book = Workbook()
    common = book.active
    common.title = "Common"
    common["A1"] = "Projekt"
    common["A2"] = "Kund"
    common["A3"] = "Ritad av"
    common["B1"] = "Ställverk 7"
    common["B2"] = "Kraftbolaget AB"
    common["B3"] = "—"
    common.column_dimensions["A"].width = 14
    common.column_dimensions["B"].width = 30

    page = book.create_sheet("Mall")
    page.merge_cells("A1:D1")
    page["A1"] = "Kabelförteckning"
    page["A1"].font = Font(size=16, bold=True)
    page["A1"].alignment = Alignment(horizontal="center")
    page["E1"] = "Blad"
    page["F1"] = "1"
    page["E2"] = "Nästa"
    page["F2"] = "2"
    page["A2"] = "Placering"
    page.merge_cells("B2:D2")
    page["A3"] = "Projekt"
    page["B3"] = "=Common!B1"
    page.merge_cells("B3:D3")
    headings = ["Kabel", "Från", "Till", "Typ", "Area", "Längd"]
    for column, text in enumerate(headings, start=1):
        cell = page.cell(row=9, column=column, value=text)
        cell.font = Font(bold=True)
        cell.border = BOX
    for row in range(10, 41):
        for column in range(1, 7):
            page.cell(row=row, column=column).border = BOX
    for column, width in zip("ABCDEF", (12, 18, 18, 12, 8, 8)):
        page.column_dimensions[column].width = width
    page["A1"].comment = Comment("Rubriken fylls inte av programmet.", "Mallmakare")
    logo = Image(logo_png())
    logo.anchor = "H1"
    page.add_image(logo)

    page["H5"] = "Typ"
    page["I5"] = "Antal"
    page["H6"] = "EKKJ"
    page["I6"] = 2
    page["H7"] = "FXQJ"
    page["I7"] = 3
    table = Table(displayName="Kabeltyper", ref="H5:I7")
    table.tableStyleInfo = TableStyleInfo(name="TableStyleMedium2", showRowStripes=True)
    page.add_table(table)
    page["I8"] = "=SUM(Kabeltyper[Antal])"

    choice = DataValidation(type="list", formula1='"EKKJ,FXQJ,N1XV"', allow_blank=True)
    page.add_data_validation(choice)
    choice.add("D10:D40")

    page.print_area = "A1:F40"
    page.print_title_rows = "1:9"
    page.oddHeader.center.text = "&A"
    page.oddFooter.right.text = "Sida &P av &N"
    page.page_setup.orientation = "landscape"
    page.page_setup.paperSize = page.PAPERSIZE_A4
    book.active = 1
    book.save(path)


def build_self_references(path):
    """A page template whose formulas name its own sheet (quoted, inside functions, absolute), a
    workbook name that points into it, a conditional format and a tall data row, and a selection
    that names its pane as LibreOffice writes it."""
    book = Workbook()
    common = book.active
    common.title = "Common"
    common["A1"] = "Projekt"
    common["B1"] = "Ställverk 9"
    common["A2"] = "Mallens G2"
    common["B2"] = "='Mall 1'!G2"

    page = book.create_sheet("Mall 1")
    page["E1"] = "Blad"
    page["F1"] = "0"
    page["F2"] = "0"
    page["G2"] = "mallens egen"
    page["G3"] = "x"
    page["A1"] = "='Mall 1'!G2"
    page["A2"] = '=CONCATENATE(\'Mall 1\'!G2,"-",Common!B1)'
    page["A3"] = "=COUNTA('Mall 1'!$G$2:$G$3)"
    page["A4"] = "=Sidnr"
    page["A5"] = '="\'Mall 1\'!G2"'
    page["A6"] = "=Sida!F1"
    page["A9"] = "Kabel"
    for row in range(10, 41):
        page.cell(row=row, column=1).border = BOX
    page.row_dimensions[11].height = 24
    page.conditional_formatting.add(
        "A11:F11", FormulaRule(formula=['$B11="X"'], fill=PatternFill("solid", start_color="FFC7CE")))
    page.sheet_view.selection[0].pane = "topLeft"
    own_list = DataValidation(type="list", formula1="'Mall 1'!$G$2:$G$3", allow_blank=True)
    page.add_data_validation(own_list)
    own_list.add("B10:B40")
    template_list = DataValidation(type="list", formula1="'Mall 1'!$G$2:$G$3", allow_blank=True)
    common.add_data_validation(template_list)
    template_list.add("B3")

    other = book.create_sheet("Sida")
    other["F1"] = "sidan"

    book.defined_names.append(DefinedName("Sidnr", attr_text="'Mall 1'!$F$1"))
    book.active = 1
    book.save(path)


def main():
    os.makedirs(OUT, exist_ok=True)
    with tempfile.TemporaryDirectory() as work:
        raw = os.path.join(work, "title_block_raw.xlsx")
        build_title_block(raw)
        resave_with_libreoffice(raw, os.path.join(OUT, "title_block.xlsx"))
        resave_with_libreoffice(raw, os.path.join(OUT, "title_block.xlsm"), XLSM)
        # openpyxl's own output, not re-saved: the shape a script-made template has.
        shutil.copy(raw, os.path.join(OUT, "title_block_openpyxl.xlsx"))
        raw = os.path.join(work, "self_references_raw.xlsx")
        build_self_references(raw)
        resave_with_libreoffice(raw, os.path.join(OUT, "self_references.xlsx"))
    print("written to", os.path.normpath(OUT))


if __name__ == "__main__":
    main()
