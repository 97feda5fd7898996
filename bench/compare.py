#!/usr/bin/env python3
"""Side-by-side comparisons in one run, each program measured as a whole process (start-up, reading
its input, the work and the flush of its output): wall time, CPU time (user + system) and peak
resident memory of the child, from wait4. Medians of interleaved runs, as ratios: generation scaling
(time per page), the 10,000-row job against openpyxl and against a libxlsxwriter program that writes
exactly the sheets and text cells of the generated workbook (counted in both workbooks), single-sheet
against normal mode, loading a dump against Python's csv module, and the window's generation of
200,000 rows beside the command line's. SW_CLI names another command line to measure (an older
build, say); SW_CPU_TIME=1 takes CPU time for the ratios instead of wall time.
SW_COMPARE picks sections (comma-separated, default scaling,job,single,load,window; also pages).
"pages" runs generation from 100 to 10,000 pages beside the libxlsxwriter program writing the same
sheets and cells, and compares 200,000 rows against 20,000.
Usage: compare.py BUILD_DIR [RUNS]"""
import os
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile
from xml.etree import ElementTree
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCE = HERE.parent
# Debian's interpreter, which has Debian's openpyxl, also for the csv module's timing.
PYTHON = "/usr/bin/python3" if Path("/usr/bin/python3").exists() else sys.executable


# Every program is measured as a whole process, as a user runs it: start-up, reading its input, the
# work and the flush of its output, from before the fork to the child's exit. Wall time (perf_counter)
# and CPU time (user + system of the child, from wait4) are both taken; SW_CPU_TIME=1 makes the CPU
# time the one the ratios use, which a machine shared with other work disturbs far less.
CPU_TIME = os.environ.get("SW_CPU_TIME") == "1"


class Measure:
    """One child's wall seconds, CPU seconds and peak resident MB."""

    def __init__(self, wall, cpu, peak, system=0.0):
        self.wall, self.cpu, self.peak, self.system = wall, cpu, peak, system

    @property
    def seconds(self):
        return self.cpu if CPU_TIME else self.wall


def run(command, env=None, stdout=subprocess.DEVNULL):
    """Runs `command` to its end and measures it as a whole process."""
    # The child is started through GNU time, which forks it and reports the peak its wait4 gives for
    # it alone: a child forked straight from this interpreter, and time itself, start with the
    # interpreter's high-water mark. The CPU time is wait4's here, in microseconds (time's own few
    # are in it; GNU time prints hundredths only).
    with tempfile.NamedTemporaryFile("r") as usage:
        start = time.perf_counter()
        child = subprocess.Popen(["/usr/bin/time", "-q", "-f", "%M", "-o", usage.name, *map(str, command)],
                                 stdout=stdout, stderr=subprocess.DEVNULL, env=env)
        _, status, resources = os.wait4(child.pid, 0)
        wall = time.perf_counter() - start
        if os.waitstatus_to_exitcode(status) != 0:
            raise SystemExit(f"failed: {' '.join(map(str, command))}")
        peak = int(usage.read().split()[-1]) / 1024.0
    return Measure(wall, resources.ru_utime + resources.ru_stime, peak, resources.ru_stime)


def interleaved(commands, runs, env=None, warm_up=False):
    """Median wall and CPU seconds and the largest peak MB per named command, the commands taking turns.
    A command may be a function of the run's number, for one that must differ from run to run.
    warm_up runs each command once first, unmeasured: for jobs of a few tens of milliseconds, which
    this virtual machine runs up to twice as slowly for a second or so after it was idle."""
    measured = {name: [] for name in commands}
    if warm_up:
        for command in commands.values():
            run(command(runs) if callable(command) else command, env)
    for turn in range(runs):
        for name, command in commands.items():
            measured[name].append(run(command(turn) if callable(command) else command, env))
    return {name: Measure(statistics.median(m.wall for m in values), statistics.median(m.cpu for m in values),
                          max(m.peak for m in values), statistics.median(m.system for m in values))
            for name, values in measured.items()}


def describe(measure):
    return f"wall {measure.wall:7.3f} s  CPU {measure.cpu:7.3f} s  peak {measure.peak:6.1f} MB"


MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
RELS = "{http://schemas.openxmlformats.org/package/2006/relationships}"
RID = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}id"


def text_cells(workbook):
    """Every sheet of the workbook in its order, with the cells that hold a text: (name, [(row, column,
    text)]). Shared and inline strings and formula results given as text all count; an empty or
    numeric cell does not."""
    with zipfile.ZipFile(workbook) as archive:
        names = set(archive.namelist())
        shared = []
        strings_part = next((n for n in ("xl/sharedStrings.xml", "xl/sharedstrings.xml") if n in names), None)
        if strings_part:
            for item in ElementTree.fromstring(archive.read(strings_part)).iter(MAIN + "si"):
                shared.append("".join(t.text or "" for t in item.iter(MAIN + "t")))
        targets = {rel.get("Id"): rel.get("Target")
                   for rel in ElementTree.fromstring(archive.read("xl/_rels/workbook.xml.rels"))}
        sheets = []
        for sheet in ElementTree.fromstring(archive.read("xl/workbook.xml")).iter(MAIN + "sheet"):
            target = targets[sheet.get(RID)].lstrip("/")
            part = target if target.startswith("xl/") else "xl/" + target
            cells = []
            for cell in ElementTree.fromstring(archive.read(part)).iter(MAIN + "c"):
                kind = cell.get("t")
                value = cell.find(MAIN + "v")
                if kind == "s" and value is not None:
                    text = shared[int(value.text)]
                elif kind == "inlineStr":
                    text = "".join(t.text or "" for t in cell.iter(MAIN + "t"))
                elif kind == "str" and value is not None:
                    text = value.text or ""
                else:
                    continue
                if text:
                    row, column = cell_position(cell.get("r"))
                    cells.append((row, column, text))
            sheets.append((sheet.get("name"), cells))
        return sheets


def cell_position(address):
    letters = address.rstrip("0123456789")
    column = 0
    for letter in letters:
        column = column * 26 + ord(letter.upper()) - ord("A") + 1
    return int(address[len(letters):]), column


def escaped(text):
    return text.replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n").replace("\r", "\\r")


def floor_job(reference, workbook, work):
    """The libxlsxwriter program that writes the same sheets and text cells as `workbook`, and their
    counts. The floor's own output is read back to check it wrote exactly as many."""
    sheets = text_cells(workbook)
    listing = work / (workbook.stem + ".cells")
    with open(listing, "w", encoding="utf-8", newline="\n") as out:
        for name, cells in sheets:
            out.write(f"S\t{name}\n")
            for row, column, text in cells:
                out.write(f"C\t{row}\t{column}\t{escaped(text)}\n")
    floor_out = work / (workbook.stem + "-floor.xlsx")
    command = [str(reference), str(floor_out), "--cells", str(listing)]
    run(command)
    written = text_cells(floor_out)
    ours = (len(sheets), sum(len(cells) for _, cells in sheets))
    theirs = (len(written), sum(len(cells) for _, cells in written))
    if ours != theirs:
        raise SystemExit(f"the libxlsxwriter program wrote {theirs[0]} sheets and {theirs[1]} text cells, "
                         f"the generation {ours[0]} and {ours[1]}")
    return command, ours


def page_sheets(workbook):
    """The generated pages: every sheet but the template's two."""
    with zipfile.ZipFile(workbook) as archive:
        return sum(1 for name in archive.namelist()
                   if name.startswith("xl/worksheets/sheet") and name.endswith(".xml")) - 2


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    build = Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    cli = Path(os.environ.get("SW_CLI", build / "src/cli/sheetwright-cli"))
    reference = build / "bench/xlsxwriter_reference"
    window = build / "bench/gui_generate_bench"
    work = Path(tempfile.mkdtemp(prefix="sheetwright-compare-"))
    env = dict(os.environ, SHEETWRIGHT_REGISTRY=str(work / "registry.reg"))
    template = work / "yttre_forbindningstabell.xlsx"
    for suffix in (".xlsx", ".ini"):
        (work / ("yttre_forbindningstabell" + suffix)).write_bytes(
            (SOURCE / "examples" / ("yttre_forbindningstabell" + suffix)).read_bytes())

    def dump(rows):
        path = work / f"dump{rows}.txt"
        if not path.exists():
            subprocess.run([sys.executable, str(HERE / "make_dump.py"), str(rows), str(path)], check=True)
        return path

    def generate(rows, out, *extra):
        return [str(cli), "generate", "--dump", str(dump(rows)), "--template", str(template), "--out",
                str(work / out), *extra]

    sections = set(os.environ.get("SW_COMPARE", "scaling,job,single,load,window").split(","))
    print("== Whole processes, interleaved; ratios use " +
          ("CPU time (user + system)" if CPU_TIME else "wall-clock time") + f"; files in {work}")
    if "scaling" in sections:
        scaling(generate, work, env)
    if "pages" in sections:
        pages_scaling(generate, work, env, reference, runs)
    if "job" in sections:
        job(generate, dump, work, env, reference, runs, template)
    if "single" in sections:
        single(generate, work, env, runs)
    if "load" in sections:
        load(cli, dump, env, runs)
    if "window" in sections:
        window_job(generate, dump, work, env, window, template, runs)
    return 0


# A page of the example template holds about 29.4 data rows of the benchmark dump.
ROWS_PER_PAGE = 29.4


def pages_scaling(generate, work, env, reference, runs):
    print("== Time per page from 100 to 10,000 pages (one run each), beside libxlsxwriter writing the same"
          " sheets and text cells")
    first = None
    for target in [int(n) for n in os.environ.get("SW_PAGES", "100,300,1000,3000,10000").split(",")]:
        rows = int(target * ROWS_PER_PAGE)
        out = work / f"pages{rows}.xlsx"
        ours = run(generate(rows, out.name), env)
        pages = page_sheets(out)
        floor, (sheets, cells) = floor_job(reference, out, work)
        out.unlink()
        theirs = run(floor)
        per_page = ours.seconds / pages * 1000
        first = first or per_page
        print(f"{pages:>6} pages {rows:>7} rows {ours.seconds:7.2f} s {per_page:6.3f} ms/page (x{per_page / first:4.2f}"
              f" of the smallest) peak {ours.peak:6.1f} MB; libxlsxwriter {theirs.seconds:6.2f} s peak"
              f" {theirs.peak:6.1f} MB: time x{ours.seconds / theirs.seconds:4.2f}, memory x{ours.peak / theirs.peak:4.2f}"
              f" ({cells} text cells)")
    results = interleaved({"20k": generate(20000, "rows20k.xlsx"), "200k": generate(200000, "rows200k.xlsx")},
                          runs, env)
    small, large = results["20k"].seconds, results["200k"].seconds
    print(f"  200,000 rows {large:.2f} s against 20,000 rows {small:.2f} s (medians of {runs}): x{large / small:.2f}")


def scaling(generate, work, env):
    print("== Generation scaling (one run each)")
    sizes = [int(size) for size in os.environ.get("SW_SCALING_ROWS", "3000,30000,100000").split(",")]
    first = None
    for rows in sizes:
        measure = run(generate(rows, f"scale{rows}.xlsx"), env)
        pages = page_sheets(work / f"scale{rows}.xlsx")
        per_page = measure.seconds / pages * 1000
        first = first or per_page
        print(f"{rows:>7} rows {pages:>6} pages {measure.seconds:7.2f} s {per_page:6.3f} ms/page "
              f"(x{per_page / first:4.2f} of the smallest) peak {measure.peak:6.1f} MB")


def job(generate, dump, work, env, reference, runs, template):
    print(f"== The 10,000-row job, medians of {runs} interleaved runs")
    run(generate(10000, "job.xlsx"), env)
    pages = page_sheets(work / "job.xlsx")
    floor, (sheets, cells) = floor_job(reference, work / "job.xlsx", work)
    results = interleaved({
        "sheetwright": generate(10000, "job.xlsx"),
        "libxlsxwriter": floor,
        "openpyxl": [PYTHON, str(HERE / "openpyxl_job.py"), str(dump(10000)), str(template),
                     str(work / "openpyxl.xlsx")],
    }, runs, env)
    ours = results["sheetwright"]
    for name, measure in results.items():
        print(f"{name:>14} {describe(measure)}   ours/this: time {ours.seconds / measure.seconds:5.2f}"
              f" (CPU {ours.cpu / measure.cpu:5.2f}) memory {ours.peak / measure.peak:5.2f}")
    print(f"  ({pages} pages; both workbooks hold {sheets} sheets and {cells} text cells)")


def single(generate, work, env, runs):
    print(f"== Single-sheet mode against the normal mode, 20,000 rows, medians of {runs}")
    (work / "single").mkdir()

    # A first run into a folder of its own, as a user's first run of a report: nothing is replaced.
    def into_new_folder(turn):
        (work / f"single-new-{turn}").mkdir()
        return generate(20000, f"single-new-{turn}/Lista.xlsx", "--single-sheet", "--yes")

    results = interleaved({
        "normal": generate(20000, "normal.xlsx"),
        "single-sheet": generate(20000, "single/Lista.xlsx", "--single-sheet", "--yes"),
        "single-sheet, new folder": into_new_folder,
    }, runs, env)
    normal = results["normal"]
    print(f"  normal {describe(normal)} (system {normal.system:.3f} s)")
    for name in ("single-sheet", "single-sheet, new folder"):
        measure = results[name]
        print(f"  {name} {describe(measure)} (system {measure.system:.3f} s)\n"
              f"    ratio: wall {measure.wall / normal.wall:.2f}, CPU {measure.cpu / normal.cpu:.2f}, CPU in the"
              f" program itself (user) {(measure.cpu - measure.system) / (normal.cpu - normal.system):.2f}")
    print("  (\"single-sheet\" writes over the page files of its previous run, as a report run again does;"
          " the system's share is mostly making a file per page)")


def load(cli, dump, env, runs):
    print(f"== Loading a 200,000-line dump, medians of {runs}")
    big = dump(int(os.environ.get("SW_LOAD_ROWS", "200000")))
    size_mb = big.stat().st_size / 1e6
    csv_job = ("import csv,sys\nwith open(sys.argv[1],encoding='cp1252',newline='') as f:\n"
               " n=sum(1 for _ in csv.reader(f,delimiter='\\t',quoting=csv.QUOTE_NONE))\n")
    results = interleaved({
        "sheetwright": [str(cli), "preview", str(big), "--summary"],
        "python csv": [PYTHON, "-c", csv_job, str(big)],
        "wc -l": ["wc", "-l", str(big)],
    }, runs, env, warm_up=True)
    baseline = run([str(cli), "preview", str(dump(1)), "--summary"], env).peak
    ours = results["sheetwright"]
    for name, measure in results.items():
        print(f"{name:>14} {describe(measure)} ({size_mb / measure.seconds:6.1f} MB/s)"
              f"   ours/this {ours.seconds / measure.seconds:5.2f}")
    print(f"  file {size_mb:.1f} MB; our peak {ours.peak / size_mb:.2f}x the file, "
          f"{(ours.peak - baseline) / size_mb:.2f}x above the {baseline:.1f} MB of a one-line dump")


def window_job(generate, dump, work, env, window, template, runs):
    rows = int(os.environ.get("SW_WINDOW_ROWS", "200000"))
    print(f"== The window's generation of {rows:,} rows beside the command line's, medians of {runs}")
    if not window.exists():
        print("  (bench/gui_generate_bench is not built: the window is left out)")
        return
    window_env = dict(env, QT_QPA_PLATFORM="offscreen")
    # The window lists every workbook in the template's folder: the template gets a folder of its own.
    alone = work / "window-template"
    alone.mkdir(exist_ok=True)
    for suffix in (".xlsx", ".ini"):
        (alone / (template.stem + suffix)).write_bytes(template.with_suffix(suffix).read_bytes())
    command = [str(window), str(dump(rows)), str(alone / template.name), str(work / "window.xlsx")]
    cli_times, window_times, window_runs, cli_runs = [], [], [], []
    for _ in range(runs):
        cli_runs.append(run(generate(rows, "cli.xlsx"), env))
        with tempfile.TemporaryFile("w+") as out:
            window_runs.append(run(command, window_env, stdout=out))
            out.seek(0)
            fields = dict(line.split("=", 1) for line in out.read().split())
        window_times.append((float(fields["generate_wall"]), float(fields["generate_cpu"]),
                             float(fields["load_wall"]), float(fields["load_cpu"]),
                             float(fields.get("rss_loaded_mb", 0)), float(fields.get("rss_after_generate_mb", 0))))
    if page_sheets(work / "window.xlsx") != page_sheets(work / "cli.xlsx"):
        raise SystemExit("the window and the command line made different numbers of pages")
    cli = Measure(statistics.median(m.wall for m in cli_runs), statistics.median(m.cpu for m in cli_runs),
                  max(m.peak for m in cli_runs))
    whole = Measure(statistics.median(m.wall for m in window_runs),
                    statistics.median(m.cpu for m in window_runs), max(m.peak for m in window_runs))
    in_window = Measure(statistics.median(t[0] + t[2] for t in window_times),
                        statistics.median(t[1] + t[3] for t in window_times), whole.peak)
    print(f"  command line, whole process         {describe(cli)}")
    print(f"  window, loading and generating      wall {in_window.wall:7.3f} s  CPU {in_window.cpu:7.3f} s"
          f"   window/command line: {in_window.seconds / cli.seconds:5.2f}")
    print(f"  window, whole process (Qt included) {describe(whole)}   window/command line:"
          f" {whole.seconds / cli.seconds:5.2f}")
    loaded = statistics.median(t[4] for t in window_times)
    after = statistics.median(t[5] for t in window_times)
    if loaded > 0:
        print(f"  window's memory: {loaded:.0f} MB loaded, {after:.0f} MB after the generation"
              f" ({after / loaded:.2f}x)")


if __name__ == "__main__":
    sys.exit(main())
