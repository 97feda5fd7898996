#!/usr/bin/env python3
"""Side-by-side timings in one run, as ratios: generation scaling (time per page), the 10,000-row job
against openpyxl and a libxlsxwriter program writing the same sheets and cells, single-sheet against
normal mode, and loading a dump against Python's csv module. Medians of interleaved runs; peak memory
of each child from GNU time. SW_CLI names another command line to measure (an older build, say).
SW_COMPARE picks sections (comma-separated, default all): scaling, pages, job, single, load.
"pages" runs generation from 100 to 10,000 pages beside the libxlsxwriter program writing as many
sheets and cells, and compares 200,000 rows against 20,000.
Usage: compare.py BUILD_DIR [RUNS]"""
import os
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCE = HERE.parent
# Debian's interpreter, which has Debian's openpyxl, also for the csv module's timing.
PYTHON = "/usr/bin/python3" if Path("/usr/bin/python3").exists() else sys.executable


# Wall time by default; SW_CPU_TIME=1 takes the child's user + system time instead, which a machine
# shared with other work disturbs far less.
CPU_TIME = os.environ.get("SW_CPU_TIME") == "1"


def run(command, env=None):
    """Seconds and peak resident MB of one child."""
    # GNU time reports the peak: a child forked from this interpreter would inherit its peak.
    with tempfile.NamedTemporaryFile("r") as peak:
        start = time.perf_counter()
        child = subprocess.Popen(["/usr/bin/time", "-q", "-f", "%M", "-o", peak.name, *map(str, command)],
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=env)
        _, status, usage = os.wait4(child.pid, 0)
        seconds = usage.ru_utime + usage.ru_stime if CPU_TIME else time.perf_counter() - start
        if os.waitstatus_to_exitcode(status) != 0:
            raise SystemExit(f"failed: {' '.join(map(str, command))}")
        return seconds, int(peak.read().split()[-1]) / 1024.0


def interleaved(commands, runs, env=None):
    """Median seconds and peak MB per named command, the commands taking turns."""
    times = {name: [] for name in commands}
    peaks = {name: 0.0 for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            seconds, peak = run(command, env)
            times[name].append(seconds)
            peaks[name] = max(peaks[name], peak)
    return {name: (statistics.median(times[name]), peaks[name]) for name in commands}


def page_sheets(workbook):
    with zipfile.ZipFile(workbook) as archive:
        return sum(1 for name in archive.namelist() if name.startswith("xl/worksheets/sheet")) - 2


def main() -> int:
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    build = Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    cli = Path(os.environ.get("SW_CLI", build / "src/cli/sheetwright-cli"))
    reference = build / "bench/xlsxwriter_reference"
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

    sections = set(os.environ.get("SW_COMPARE", "scaling,job,single,load").split(","))
    print("== Times are " + ("CPU (user + system)" if CPU_TIME else "wall-clock") + " seconds")
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
    return 0


def count_cells(workbook):
    with zipfile.ZipFile(workbook) as archive:
        return sum(archive.read(name).count(b"<c ") for name in archive.namelist()
                   if name.startswith("xl/worksheets/sheet"))


# A page of the example template holds about 29.4 data rows of the benchmark dump.
ROWS_PER_PAGE = 29.4


def pages_scaling(generate, work, env, reference, runs):
    print("== Time per page from 100 to 10,000 pages (one run each), beside libxlsxwriter")
    first = None
    by_rows = {}
    for target in [int(n) for n in os.environ.get("SW_PAGES", "100,300,1000,3000,10000").split(",")]:
        rows = int(target * ROWS_PER_PAGE)
        out = work / f"pages{rows}.xlsx"
        seconds, peak = run(generate(rows, out.name), env)
        pages = page_sheets(out)
        cells = count_cells(out)
        out.unlink()
        ref_seconds, ref_peak = run([str(reference), str(work / "reference.xlsx"), str(pages), str(cells)])
        per_page = seconds / pages * 1000
        first = first or per_page
        print(f"{pages:>6} pages {rows:>7} rows {seconds:7.2f} s {per_page:6.3f} ms/page (x{per_page / first:4.2f}"
              f" of the smallest) peak {peak:6.1f} MB; libxlsxwriter {ref_seconds:6.2f} s peak {ref_peak:6.1f} MB:"
              f" memory ratio {peak / ref_peak:4.2f}")
    results = interleaved({"20k": generate(20000, "rows20k.xlsx"), "200k": generate(200000, "rows200k.xlsx")},
                          runs, env)
    small, large = results["20k"][0], results["200k"][0]
    print(f"  200,000 rows {large:.2f} s against 20,000 rows {small:.2f} s (medians of {runs}): x{large / small:.2f}")


def scaling(generate, work, env):
    print("== Generation scaling (one run each)")
    sizes = [int(size) for size in os.environ.get("SW_SCALING_ROWS", "3000,30000,100000").split(",")]
    first = None
    for rows in sizes:
        seconds, peak = run(generate(rows, f"scale{rows}.xlsx"), env)
        pages = page_sheets(work / f"scale{rows}.xlsx")
        per_page = seconds / pages * 1000
        first = first or per_page
        print(f"{rows:>7} rows {pages:>6} pages {seconds:7.2f} s {per_page:6.3f} ms/page "
              f"(x{per_page / first:4.2f} of the smallest) peak {peak:6.1f} MB")


def job(generate, dump, work, env, reference, runs, template):
    print(f"== The 10,000-row job, medians of {runs} interleaved runs")
    run(generate(10000, "job.xlsx"), env)
    pages = page_sheets(work / "job.xlsx")
    cells = count_cells(work / "job.xlsx")
    results = interleaved({
        "sheetwright": generate(10000, "job.xlsx"),
        "libxlsxwriter": [str(reference), str(work / "reference.xlsx"), str(pages), str(cells)],
        "openpyxl": [PYTHON, str(HERE / "openpyxl_job.py"), str(dump(10000)), str(template),
                     str(work / "openpyxl.xlsx")],
    }, runs, env)
    ours = results["sheetwright"]
    for name, (seconds, peak) in results.items():
        print(f"{name:>14} {seconds:7.3f} s peak {peak:6.1f} MB   ours/this: time {ours[0] / seconds:5.2f}"
              f" memory {ours[1] / peak:5.2f}")
    print(f"  ({pages} pages, {cells} cells)")


def single(generate, work, env, runs):
    print(f"== Single-sheet mode against the normal mode, 20,000 rows, medians of {runs}")
    (work / "single").mkdir()
    results = interleaved({
        "normal": generate(20000, "normal.xlsx"),
        "single-sheet": generate(20000, "single/Lista.xlsx", "--single-sheet", "--yes"),
    }, runs, env)
    print(f"  normal {results['normal'][0]:.3f} s, single-sheet {results['single-sheet'][0]:.3f} s: ratio "
          f"{results['single-sheet'][0] / results['normal'][0]:.2f}")


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
    }, runs, env)
    baseline = run([str(cli), "preview", str(dump(1)), "--summary"], env)[1]
    ours = results["sheetwright"]
    for name, (seconds, peak) in results.items():
        print(f"{name:>14} {seconds:7.3f} s ({size_mb / seconds:6.1f} MB/s) peak {peak:6.1f} MB"
              f"   ours/this {ours[0] / seconds:5.2f}")
    print(f"  file {size_mb:.1f} MB; our peak {ours[1] / size_mb:.2f}x the file, "
          f"{(ours[1] - baseline) / size_mb:.2f}x above the {baseline:.1f} MB of a one-line dump")


if __name__ == "__main__":
    sys.exit(main())
