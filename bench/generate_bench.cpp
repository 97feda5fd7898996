// The main job at scale: a 10,000-row outer connection table (placements of 120 to 480 rows) filled
// into the bundled example template, 30 rows a page, about 350 page sheets and 70,000 data cells.
//  - BM_GenerateFlow: the command's flow in-process (dump load, INI pairing, GenerateWorkbook with the
//    package engine), from nothing to the saved workbook.
//  - BM_CliGenerate: `sheetwright-cli generate` as users run it, a separate process.
//  - BM_XlsxwriterFloor: the engine benchmark's libxlsxwriter program, which writes a workbook of 332
//    bare sheets and 61,000 text cells from nothing: the floor the package engine is measured against.
// The two programs are looked up beside this one (build/<preset>/bench, build/<preset>/src/cli).
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "base/process_launcher.h"
#include "bench_support.h"
#include "example_generation.h"
#include "generate/generate_workbook.h"
#include "report/preview_loader.h"
#include "templates/field_panel.h"
#include "templates/template_ini.h"

namespace {

using sw::bench::NoLauncher;

namespace fs = std::filesystem;

const fs::path kSource = fs::path(__FILE__).parent_path().parent_path();

// The bench's own folder: the dump, a copy of the example template with its INI file, the results.
struct Workspace {
  fs::path folder;
  fs::path dump;
  int rows = 0;
  int placements = 0;

  Workspace() {
    folder = fs::temp_directory_path() / ("sheetwright-generate-bench-" + std::to_string(getpid()));
    fs::create_directories(folder / "mall");
    for (const char* name : {"yttre_forbindningstabell.xlsx", "yttre_forbindningstabell.ini"}) {
      fs::copy_file(kSource / "examples" / name, folder / "mall" / name,
                    fs::copy_options::overwrite_existing);
    }
    dump = folder / "volt_report.txt";
    std::ofstream out(dump, std::ios::binary);
    out << "VOLTARIS Rapport\tYttre f\xf6rbindningstabell\tFBLTAY\r\nProjekt: Prestanda\r\n\r\n";
    std::mt19937 random(4711);
    while (rows < 10000) {
      ++placements;
      out << "%+A" << placements << " Kopplingssk\xe5p " << placements << "%\r\n";
      const int length = std::min(10000 - rows, static_cast<int>(120 + random() % 361));
      for (int i = 0; i < length; ++i, ++rows) {
        const unsigned n = random();
        out << "\tX" << n % 60 << "\t" << n % 48 + 1 << "\tW" << 1000 + n % 9000 << "\t" << n % 7 + 1 << "\tM"
            << n % 400 << " Pumpmotor\tU" << n % 3 + 1 << "\tKabel " << n % 5 + 2 << "G2,5\r\n";
      }
    }
  }
  ~Workspace() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
};

const Workspace& Space() {
  static const Workspace space;
  return space;
}

fs::path Sibling(const fs::path& relative) {
  std::error_code error;
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  return self.parent_path() / relative;
}

void BM_GenerateFlow(benchmark::State& state) {
  const Workspace& space = Space();
  const std::string folder = (space.folder / "mall").string();
  int pages = 0;
  for (auto _ : state) {
    pages = sw::bench::GenerateExample(folder, space.dump.string(), (space.folder / "flow.xlsx").string());
    if (pages < 0) state.SkipWithError("the generation ended on a message");
  }
  state.counters["rows"] = space.rows;
  state.counters["placements"] = space.placements;
  state.counters["pages"] = pages;
  state.counters["data_cells"] = space.rows * 7.0;
}
BENCHMARK(BM_GenerateFlow)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void RunChild(benchmark::State& state, const std::string& command) {
  for (auto _ : state) {
    const int status = std::system(command.c_str());
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) state.SkipWithError(("failed: " + command).c_str());
  }
}

void BM_CliGenerate(benchmark::State& state) {
  const fs::path cli = Sibling("../src/cli/sheetwright-cli");
  if (!fs::exists(cli)) {
    state.SkipWithError("sheetwright-cli is not built beside the benchmarks");
    return;
  }
  const Workspace& space = Space();
  RunChild(state, "SHEETWRIGHT_REGISTRY='" + (space.folder / "registry.reg").string() + "' '" + cli.string() +
                      "' generate --dump '" + space.dump.string() + "' --template '" +
                      (space.folder / "mall" / "yttre_forbindningstabell.xlsx").string() + "' --out '" +
                      (space.folder / "cli.xlsx").string() + "' >/dev/null");
}
BENCHMARK(BM_CliGenerate)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_XlsxwriterFloor(benchmark::State& state) {
  const fs::path reference = Sibling("xlsxwriter_reference");
  if (!fs::exists(reference)) {
    state.SkipWithError("xlsxwriter_reference is not built (libxlsxwriter-dev missing)");
    return;
  }
  RunChild(state, "'" + reference.string() + "' '" + (Space().folder / "floor.xlsx").string() + "'");
  state.counters["pages"] = 330;
  state.counters["data_cells"] = 61000;
}
BENCHMARK(BM_XlsxwriterFloor)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
