#!/usr/bin/env python3
"""Writes an outer connection table dump of ROWS data rows, shaped as the generation benchmark's:
placements of 120 to 480 rows, seven fields a row, Windows-1252 text with CR LF line ends.
Usage: make_dump.py ROWS OUTPUT"""
import random
import sys


def main() -> int:
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    total = int(sys.argv[1])
    rand = random.Random(4711)
    lines = ["VOLTARIS Rapport\tYttre f\xf6rbindningstabell\tFBLTAY", "Projekt: Prestanda", ""]
    rows = placements = 0
    while rows < total:
        placements += 1
        lines.append(f"%+A{placements} Kopplingssk\xe5p {placements}%")
        length = min(total - rows, 120 + rand.randrange(361))
        for _ in range(length):
            n = rand.getrandbits(32)
            lines.append(f"\tX{n % 60}\t{n % 48 + 1}\tW{1000 + n % 9000}\t{n % 7 + 1}\tM{n % 400} Pumpmotor"
                         f"\tU{n % 3 + 1}\tKabel {n % 5 + 2}G2,5")
        rows += length
    with open(sys.argv[2], "wb") as out:
        out.write(("\r\n".join(lines) + "\r\n").encode("cp1252"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
