#!/usr/bin/python3
"""Builds the bundled example template, examples/yttre_forbindningstabell.xlsx, and its INI file for
the example report dump examples/yttre_forbindningstabell.txt: a cover sheet that receives the common
texts ("Försättsblad") and a page sheet ("Mall") with a title block, logo, merged cells, print area
and print titles, 30 data rows a page.

openpyxl writes the workbook, LibreOffice re-saves it so it has the shape an office suite gives a
file (as the test templates of scripts/make_test_templates.py do).

Usage: /usr/bin/python3 scripts/make_example_template.py   (needs python3-openpyxl, python3-pil and
libreoffice-calc-nogui). The results are committed; run again only to change them.
"""
import io
import os
import tempfile

from openpyxl import Workbook
from openpyxl.drawing.image import Image
from openpyxl.styles import Alignment, Border, Font, PatternFill, Side
from openpyxl.worksheet.properties import PageSetupProperties
from PIL import Image as PilImage, ImageDraw

from template_tools import resave_with_libreoffice

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.normpath(os.path.join(HERE, "..", "examples"))
NAME = "yttre_forbindningstabell"

THIN = Side(style="thin")
MEDIUM = Side(style="medium")
BOX = Border(left=THIN, right=THIN, top=THIN, bottom=THIN)
HEAD_FILL = PatternFill("solid", fgColor="D9E1F2")
BLUE = "00468C"

# Report fields 1 to 7 of the outer connection table, in dump order, and their sheet columns.
HEADINGS = ["Plint", "Anslutning", "Kabel", "Ledare", "Till", "Anslutning", "Kabeltyp"]
WIDTHS = [9, 11, 10, 8, 30, 11, 24]
START_ROW, END_ROW = 7, 36

INI = """; Yttre förbindningstabell: mall för VOLTARIS-rapporten FBLTAY
[Tabs]
Template=Mall
Common=Försättsblad

[Common]
Projekt=C6|Pumpstation Norra Åby
Anläggning=C7|Avloppsreningsverk
Ritningsnummer=C8|4711
Revision=C9|B
Datum=C10|.
Ritad av=C11
Granskad av=C12

[Sheet]
SHEETNO=G2
NEXTSHEET=G3
LOCATION=B3
STARTROW={start}
ENDROW={end}
COLUMNS=A,B,C,D,E,F,G
""".format(start=START_ROW, end=END_ROW)


def logo_png():
    picture = PilImage.new("RGB", (150, 44), (255, 255, 255))
    draw = ImageDraw.Draw(picture)
    draw.rectangle((2, 2, 147, 41), outline=(0, 70, 140), width=3)
    draw.line((12, 32, 24, 12, 30, 26, 42, 8), fill=(230, 160, 0), width=3)
    draw.text((54, 16), "ZENT EL", fill=(0, 70, 140))
    data = io.BytesIO()
    picture.save(data, format="PNG")
    data.seek(0)
    return data


def fit_to_one_page(sheet):
    sheet.sheet_properties.pageSetUpPr = PageSetupProperties(fitToPage=True)
    sheet.page_setup.fitToWidth = 1
    sheet.page_setup.fitToHeight = 1
    sheet.page_setup.paperSize = sheet.PAPERSIZE_A4
    sheet.page_setup.orientation = "portrait"
    sheet.print_options.horizontalCentered = True


def build_cover(book):
    cover = book.active
    cover.title = "Försättsblad"
    cover.merge_cells("B2:D2")
    cover["B2"] = "Yttre förbindningstabell"
    cover["B2"].font = Font(size=20, bold=True, color=BLUE)
    cover.merge_cells("B3:D3")
    cover["B3"] = "Förbindningar mellan apparatskåp och fältutrustning"
    cover["B3"].font = Font(italic=True)
    labels = ["Projekt", "Anläggning", "Ritningsnummer", "Revision", "Datum", "Ritad av", "Granskad av"]
    for offset, label in enumerate(labels):
        row = 6 + offset
        cover.cell(row=row, column=2, value=label).font = Font(bold=True)
        cover.cell(row=row, column=2).border = BOX
        cover.merge_cells(start_row=row, start_column=3, end_row=row, end_column=4)
        for column in (3, 4):
            cover.cell(row=row, column=column).border = BOX
    for column, width in zip("ABCD", (3, 18, 30, 20)):
        cover.column_dimensions[column].width = width
    logo = Image(logo_png())
    logo.anchor = "D14"
    cover.add_image(logo)
    cover.print_area = "A1:D18"
    fit_to_one_page(cover)


def build_page(book):
    page = book.create_sheet("Mall")
    page.row_dimensions[1].height = 36
    page.merge_cells("A1:E1")
    page["A1"] = "Yttre förbindningstabell"
    page["A1"].font = Font(size=16, bold=True, color=BLUE)
    page["A1"].alignment = Alignment(vertical="center")
    logo = Image(logo_png())
    logo.anchor = "F1"
    page.add_image(logo)

    block = [("A2", "Projekt", "B2", "=Försättsblad!C6", "F2", "Blad"),
             ("A3", "Placering", "B3", None, "F3", "Forts. blad"),
             ("A4", "Ritning", "B4", '=Försättsblad!C8&" rev "&Försättsblad!C9', "F4", "Datum")]
    for label_cell, label, value_cell, value, right_label_cell, right_label in block:
        row = int(label_cell[1:])
        page[label_cell] = label
        page[label_cell].font = Font(bold=True)
        page.merge_cells("B%d:E%d" % (row, row))
        if value:
            page[value_cell] = value
        page[right_label_cell] = right_label
        page[right_label_cell].font = Font(bold=True)
        for column in "ABCDEFG":
            page["%s%d" % (column, row)].border = BOX
    page["G4"] = "=Försättsblad!C10"
    page["G2"].font = Font(bold=True, size=12)
    page["B3"].font = Font(bold=True, size=12)

    for column, text in enumerate(HEADINGS, start=1):
        cell = page.cell(row=6, column=column, value=text)
        cell.font = Font(bold=True)
        cell.fill = HEAD_FILL
        cell.border = Border(left=THIN, right=THIN, top=MEDIUM, bottom=MEDIUM)
    for row in range(START_ROW, END_ROW + 1):
        for column in range(1, len(HEADINGS) + 1):
            cell = page.cell(row=row, column=column)
            cell.border = Border(left=THIN, right=THIN, top=THIN,
                                 bottom=MEDIUM if row == END_ROW else THIN)
            cell.alignment = Alignment(horizontal="left")
    for column, width in zip("ABCDEFG", WIDTHS):
        page.column_dimensions[column].width = width

    page["A38"] = "ZENT EL Konsult AB · Yttre förbindningstabell genererad av Sheetwright"
    page["A38"].font = Font(size=8, italic=True, color="808080")
    page.print_area = "A1:G38"
    page.print_title_rows = "1:6"
    page.oddFooter.right.text = "&A"
    fit_to_one_page(page)


def main():
    os.makedirs(OUT, exist_ok=True)
    with tempfile.TemporaryDirectory() as work:
        raw = os.path.join(work, NAME + ".xlsx")
        book = Workbook()
        build_cover(book)
        build_page(book)
        book.active = 0
        book.save(raw)
        resave_with_libreoffice(raw, os.path.join(OUT, NAME + ".xlsx"))
    # The CAD system's tools write INI files in the Windows ANSI code page with CR LF line ends.
    with open(os.path.join(OUT, NAME + ".ini"), "w", encoding="cp1252", newline="\r\n") as ini:
        ini.write(INI)
    print("written to", OUT)


if __name__ == "__main__":
    main()
