"""What the template-building scripts share: LibreOffice re-saves the workbooks openpyxl wrote, so
they carry the parts and quirks of a real office suite.

Needs libreoffice-calc-nogui.
"""
import os
import shutil
import subprocess
import sys
import tempfile

XLSX = "xlsx:Calc MS Excel 2007 XML"
XLSM = "xlsm:Calc MS Excel 2007 VBA XML"


def resave_with_libreoffice(source, target, filter_name=XLSX):
    """Converts `source` with the --convert-to filter `filter_name` ("ext:Filter name") into `target`,
    with a LibreOffice profile of its own so the user's is neither needed nor changed."""
    extension = "." + filter_name.split(":", 1)[0]
    with tempfile.TemporaryDirectory() as work:
        profile = "file://" + os.path.join(work, "profile")
        subprocess.run(["soffice", "-env:UserInstallation=" + profile, "--headless", "--convert-to",
                        filter_name, "--outdir", work, source],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        stem = os.path.splitext(os.path.basename(source))[0]
        produced = [name for name in os.listdir(work) if name.startswith(stem) and name.endswith(extension)]
        if not produced:
            sys.exit("LibreOffice produced nothing for " + source)
        shutil.move(os.path.join(work, produced[0]), target)
