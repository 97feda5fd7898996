#!/usr/bin/python3
"""Builds the Windows installer Sheetwright-<version>-x64.msi from the mingw-w64 build.

Stages what a Windows machine needs beside the two programs, writes the WiX description of it and lets
Debian's wixl make the MSI:
- the DLLs the programs and the Qt plugins import, found by reading their import tables (there is no
  windeployqt here): each imported DLL is taken from the Qt build or the mingw runtime, or it is one that
  Windows itself provides (Wine's own list of system DLLs names those); anything else stops the build;
- the Qt plugins the window loads (platforms/qwindows.dll, styles/qwindowsvistastyle.dll), Qt's Swedish
  catalog, Init.reg and the licence texts of everything shipped.

The product's UpgradeCode never changes, so a newer installer replaces an older one; uninstalling removes
what was installed and nothing of the user's (settings live in the registry, documents elsewhere).
"""
import argparse
import hashlib
import pathlib
import re
import shutil
import subprocess
import sys
import uuid
import xml.etree.ElementTree as ET

UPGRADE_CODE = "6D1F3A52-8C47-4E2B-9B0E-53A8F1C2D7E4"
MINGW_RUNTIME_DIRS = [pathlib.Path("/usr/lib/gcc/x86_64-w64-mingw32/12-posix"),
                      pathlib.Path("/usr/x86_64-w64-mingw32/lib")]
WINDOWS_SYSTEM_DLLS = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
QT_PLUGINS = ["platforms/qwindows.dll", "styles/qwindowsvistastyle.dll"]
QT_CATALOG = pathlib.Path("/usr/share/qt6/translations/qt_sv.qm")
# Licence texts of what is shipped: (file name in the installation, Debian's copyright file or licence).
LICENCES = [
    ("Qt-LGPL-3.0.txt", "/usr/share/common-licenses/LGPL-3"),
    ("Qt-GPL-3.0.txt", "/usr/share/common-licenses/GPL-3"),
    ("Qt-copyright.txt", "/usr/share/doc/libqt6core6/copyright"),
    ("Qt-translations-copyright.txt", "/usr/share/doc/qt6-translations-l10n/copyright"),
    ("mingw-w64-gcc-runtime-copyright.txt", "/usr/share/doc/gcc-mingw-w64-base/copyright"),
    ("mingw-w64-winpthreads-copyright.txt", "/usr/share/doc/mingw-w64-common/copyright"),
    ("libzip-copyright.txt", "/usr/share/doc/libzip-dev/copyright"),
    ("pugixml-copyright.txt", "/usr/share/doc/libpugixml-dev/copyright"),
    ("CLI11-copyright.txt", "/usr/share/doc/libcli11-dev/copyright"),
    ("zlib-copyright.txt", "/usr/share/doc/libz-mingw-w64-dev/copyright"),
]
WIX = "http://schemas.microsoft.com/wix/2006/wi"


def imported_dlls(binary: pathlib.Path) -> list[str]:
    dump = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", str(binary)], check=True,
                          capture_output=True, text=True).stdout
    return re.findall(r"DLL Name: (\S+)", dump)


def system_dll_names() -> set[str]:
    names = {p.name.lower() for p in WINDOWS_SYSTEM_DLLS.glob("*.dll")}
    if not names:
        sys.exit(f"make_msi: Wine's list of Windows DLLs is missing ({WINDOWS_SYSTEM_DLLS})")
    return names


def dll_closure(roots: list[pathlib.Path], search: list[pathlib.Path]) -> list[pathlib.Path]:
    """Every non-system DLL the roots need, directly or through each other."""
    system = system_dll_names()
    found: dict[str, pathlib.Path] = {}
    missing: list[str] = []
    pending = list(roots)
    while pending:
        binary = pending.pop()
        for name in imported_dlls(binary):
            key = name.lower()
            if key in found or key in system or key.startswith(("api-ms-win-", "ext-ms-")):
                continue
            candidates = [d / name for d in search if (d / name).is_file()]
            if not candidates:
                missing.append(f"{name} (needed by {binary.name})")
                continue
            found[key] = candidates[0]
            pending.append(candidates[0])
    if missing:
        sys.exit("make_msi: these DLLs are neither built nor part of Windows:\n  " + "\n  ".join(missing))
    return sorted(found.values(), key=lambda p: p.name.lower())


def stage(build: pathlib.Path, qt: pathlib.Path, root: pathlib.Path, stage_dir: pathlib.Path) -> None:
    if stage_dir.exists():
        shutil.rmtree(stage_dir)
    (stage_dir / "licenses").mkdir(parents=True)
    programs = [build / "src/gui/sheetwright.exe", build / "src/cli/sheetwright-cli.exe"]
    for program in programs:
        if not program.is_file():
            sys.exit(f"make_msi: {program} is not built (cmake --build --preset windows)")
        shutil.copy2(program, stage_dir / program.name)
    shutil.copy2(root / "src/gui/Init.reg", stage_dir / "Init.reg")
    plugins = []
    for plugin in QT_PLUGINS:
        source = qt / "plugins" / plugin
        if not source.is_file():
            sys.exit(f"make_msi: the Qt plugin {source} is missing")
        (stage_dir / plugin).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(source, stage_dir / plugin)
        plugins.append(stage_dir / plugin)
    for dll in dll_closure(programs + plugins, [qt / "bin", *MINGW_RUNTIME_DIRS]):
        shutil.copy2(dll, stage_dir / dll.name)
    (stage_dir / "translations").mkdir()
    shutil.copy2(QT_CATALOG, stage_dir / "translations" / QT_CATALOG.name)
    for name, source in LICENCES:
        shutil.copy2(source, stage_dir / "licenses" / name)


def stable_guid(relative: str) -> str:
    # One component per file, its GUID derived from the file's place in the installation, so every build
    # gives the same file the same component and upgrades replace files in place.
    return str(uuid.uuid5(uuid.UUID(UPGRADE_CODE), relative)).upper()


def identifier(prefix: str, relative: str) -> str:
    return prefix + hashlib.sha1(relative.encode()).hexdigest()[:24]


def write_wxs(stage_dir: pathlib.Path, version: str, wxs: pathlib.Path) -> None:
    """The WiX description; its file names are relative to the folder that holds it and the stage."""
    ET.register_namespace("", WIX)

    def element(parent, tag, **attributes):
        return ET.SubElement(parent, f"{{{WIX}}}{tag}", {k: v for k, v in attributes.items()})

    wix = ET.Element(f"{{{WIX}}}Wix")
    product = element(wix, "Product", Id="*", Name="Sheetwright", Language="1053", Codepage="1252",
                      Version=version, Manufacturer="Sheetwright", UpgradeCode=UPGRADE_CODE)
    element(product, "Package", InstallerVersion="500", Compressed="yes", InstallScope="perMachine",
            Description=f"Sheetwright {version}", Comments="Fyller Excel-rapportmallar med rapporter från VOLTARIS.")
    element(product, "MajorUpgrade", DowngradeErrorMessage="En nyare version av Sheetwright är redan installerad.")
    element(product, "Media", Id="1", Cabinet="sheetwright.cab", EmbedCab="yes")
    element(product, "Icon", Id="sheetwright.ico", SourceFile="sheetwright.ico")
    element(product, "Property", Id="ARPPRODUCTICON", Value="sheetwright.ico")

    target = element(product, "Directory", Id="TARGETDIR", Name="SourceDir")
    program_files = element(target, "Directory", Id="ProgramFiles64Folder")
    install_dir = element(program_files, "Directory", Id="INSTALLDIR", Name="Sheetwright")
    element(target, "Directory", Id="ProgramMenuFolder")
    feature = element(product, "Feature", Id="Sheetwright", Title="Sheetwright", Level="1")

    directories = {pathlib.Path("."): install_dir}
    for path in sorted(p for p in stage_dir.rglob("*") if p.is_file()):
        relative = path.relative_to(stage_dir)
        parent = relative.parent
        if parent not in directories:
            directories[parent] = element(directories[parent.parent], "Directory",
                                          Id=identifier("dir_", parent.as_posix()), Name=parent.name)
        rel = relative.as_posix()
        component = element(directories[parent], "Component", Id=identifier("cmp_", rel), Guid=stable_guid(rel),
                            Win64="yes")
        element(component, "File", Id=identifier("fil_", rel), Name=path.name, Source=(pathlib.Path(stage_dir.name) / relative).as_posix(),
                       KeyPath="yes")
        if rel == "sheetwright.exe":
            # A plain shortcut to the installed program (an advertised one would need the feature's
            # repair machinery at every start).
            element(component, "Shortcut", Id="StartMenuShortcut", Directory="ProgramMenuFolder",
                    Name="Sheetwright", Target="[INSTALLDIR]sheetwright.exe",
                    Description="Fyller Excel-rapportmallar med rapporter från VOLTARIS.",
                    WorkingDirectory="INSTALLDIR", Icon="sheetwright.ico")
        element(feature, "ComponentRef", Id=component.get("Id"))

    ET.indent(wix)
    ET.ElementTree(wix).write(wxs, encoding="utf-8", xml_declaration=True)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", required=True, type=pathlib.Path, help="the windows preset's build folder")
    parser.add_argument("--qt", required=True, type=pathlib.Path, help="Qt for mingw (scripts/build-qt-mingw.sh)")
    parser.add_argument("--version", required=True)
    parser.add_argument("--out", required=True, type=pathlib.Path, help="folder the MSI is written to")
    args = parser.parse_args()

    root = pathlib.Path(__file__).resolve().parents[2]
    work = args.out / f"msi-work-{args.version}"
    stage_dir = work / "Sheetwright"
    stage(args.build.resolve(), args.qt.resolve(), root, stage_dir)
    shutil.copy2(root / "src/gui/win/sheetwright.ico", work / "sheetwright.ico")
    wxs = work / "sheetwright.wxs"
    write_wxs(stage_dir, args.version, wxs)

    msi = args.out / f"Sheetwright-{args.version}-x64.msi"
    partial = msi.with_suffix(".msi.partial")
    # wixl takes the files named in the description relative to the folder it runs in.
    wixl = subprocess.run(["wixl", "-a", "x64", "-o", str(partial.resolve()), wxs.name], cwd=work,
                          capture_output=True, text=True)
    if wixl.returncode != 0:
        sys.exit(f"make_msi: wixl failed:\n{wixl.stdout}{wixl.stderr}")
    partial.replace(msi)  # a complete MSI or none under the final name
    print(msi)
    return 0


if __name__ == "__main__":
    sys.exit(main())
