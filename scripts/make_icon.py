#!/usr/bin/python3
"""Draws the program's icon (a report sheet: a green placement head over table rows, a page-break mark)
and writes it as a Windows .ico with the usual sizes: src/gui/win/sheetwright.ico."""
import pathlib
import sys

from PIL import Image, ImageDraw


def sheet(size: int) -> Image.Image:
    scale = size / 256
    image = Image.new("RGBA", (size, size), (0, 0, 0, 0))
    draw = ImageDraw.Draw(image)

    def box(x0, y0, x1, y1, **style):
        draw.rectangle([round(x0 * scale), round(y0 * scale), round(x1 * scale), round(y1 * scale)], **style)

    box(28, 12, 228, 244, fill=(255, 255, 255, 255), outline=(60, 70, 80, 255), width=max(1, round(8 * scale)))
    box(44, 34, 212, 70, fill=(192, 255, 192, 255))  # a placement head, as the preview colours it
    for row in range(4):
        top = 84 + row * 34
        box(44, top, 212, top + 22, fill=(215, 225, 235, 255))
    box(44, 220, 212, 230, fill=(255, 255, 128, 255))  # the last row of a page
    box(196, 196, 236, 236, fill=(20, 120, 60, 255))  # the page-break mark
    return image


def main() -> int:
    target = pathlib.Path(__file__).resolve().parent.parent / "src" / "gui" / "win" / "sheetwright.ico"
    sizes = [16, 24, 32, 48, 64, 128, 256]
    largest = sheet(256)
    largest.save(target, format="ICO", sizes=[(s, s) for s in sizes])
    print(target)
    return 0


if __name__ == "__main__":
    sys.exit(main())
