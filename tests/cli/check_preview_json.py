"""Reads `sheetwright-cli preview --json` back with Python's own JSON parser and checks its shape."""
import json
import os
import subprocess
import sys
import tempfile

cli, dump = sys.argv[1], sys.argv[2]
with tempfile.TemporaryDirectory() as folder:
    env = dict(os.environ, SHEETWRIGHT_REGISTRY=os.path.join(folder, "registry.reg"))
    text = subprocess.run([cli, "preview", dump, "--json"], check=True, capture_output=True, env=env).stdout
document = json.loads(text.decode("utf-8"))
columns = document["columns"]
assert columns == 8, columns
assert len(document["headers"]) == columns
rows = document["rows"]
assert len(rows) == 28, len(rows)
for row in rows:
    assert len(row["cells"]) == len(row["back"]) == len(row["pictures"]) == columns, row
    assert all(p in (None, "break") for p in row["pictures"]), row
head = rows[0]
assert head["cells"][0] == "+A1 Kopplingsskåp pumpar", head["cells"][0]
# Only the columns present when the title row was added are green.
assert head["back"] == ["C0FFC0"] + ["0"] * (columns - 1), head["back"]
assert rows[1]["back"] == ["0"] * columns, rows[1]["back"]
assert rows[5]["cells"][5] == "B1 Nivågivare", rows[5]["cells"]
print("preview --json: ok")
