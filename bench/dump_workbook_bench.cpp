// "Redigera aktuell rapport-textfil" without Excel: the report dump written as a workbook by the package
// engine, as the desktop editor does it (OpenText with the report's arguments, AutoFit, A1 selected,
// SaveAs), at 10,000, 100,000 and 200,000 lines, beside a generation that writes as many cells:
//  - BM_DumpAsWorkbook/N: the dump of N data rows, seven fields a row, from the file to the saved
//    workbook.
//  - BM_GenerateSameCells/N: the same dump filled into the bundled example template (30 rows a page),
//    from the dump load to the saved workbook; it writes the same seven cells a row.
// The dumps are shaped as the generation benchmark's: placements of 120 to 480 rows, Windows-1252 text.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>

#include "base/process_launcher.h"
#include "bench_support.h"
#include "example_generation.h"
#include "excel/application_factory.h"
#include "generate/generate_workbook.h"
#include "report/preview_loader.h"
#include "session/report_import.h"
#include "templates/field_panel.h"
#include "templates/template_ini.h"

namespace {

using sw::bench::NoLauncher;

namespace fs = std::filesystem;

const fs::path kSource = fs::path(__FILE__).parent_path().parent_path();

// The bench's own folder: one dump per size, a copy of the example template with its INI file, the results.
class Workspace {
 public:
  Workspace() {
    folder_ = fs::temp_directory_path() / ("sheetwright-dump-workbook-bench-" + std::to_string(getpid()));
    fs::create_directories(folder_ / "mall");
    for (const char* name : {"yttre_forbindningstabell.xlsx", "yttre_forbindningstabell.ini"}) {
      fs::copy_file(kSource / "examples" / name, folder_ / "mall" / name,
                    fs::copy_options::overwrite_existing);
    }
  }
  ~Workspace() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  const fs::path& folder() const { return folder_; }

  // The dump of `rows` data rows, written once.
  const fs::path& Dump(int rows) {
    auto& path = dumps_[rows];
    if (!path.empty()) return path;
    path = folder_ / ("volt_report_" + std::to_string(rows) + ".txt");
    std::ofstream out(path, std::ios::binary);
    out << "VOLTARIS Rapport\tYttre f\xf6rbindningstabell\tFBLTAY\r\nProjekt: Prestanda\r\n\r\n";
    std::mt19937 random(4711);
    int written = 0;
    int placements = 0;
    while (written < rows) {
      ++placements;
      out << "%+A" << placements << " Kopplingssk\xe5p " << placements << "%\r\n";
      const int length = std::min(rows - written, static_cast<int>(120 + random() % 361));
      for (int i = 0; i < length; ++i, ++written) {
        const unsigned n = random();
        out << "\tX" << n % 60 << "\t" << n % 48 + 1 << "\tW" << 1000 + n % 9000 << "\t" << n % 7 + 1 << "\tM"
            << n % 400 << " Pumpmotor\tU" << n % 3 + 1 << "\tKabel " << n % 5 + 2 << "G2,5\r\n";
      }
    }
    return path;
  }

 private:
  fs::path folder_;
  std::map<int, fs::path> dumps_;
};

Workspace& Space() {
  static Workspace space;
  return space;
}

void BM_DumpAsWorkbook(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  const std::string dump = Space().Dump(rows).string();
  const std::string target = (Space().folder() / "dump.xlsx").string();
  for (auto _ : state) {
    auto engine = sw::excel::CreateApplication(sw::excel::EngineKind::kPackage);
    sw::session::ImportReportDump(*engine, dump).SaveAs(target);
  }
  state.counters["rows"] = rows;
  state.counters["data_cells"] = rows * 7.0;
}
BENCHMARK(BM_DumpAsWorkbook)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(200000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

void BM_GenerateSameCells(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  const std::string dump = Space().Dump(rows).string();
  const std::string folder = (Space().folder() / "mall").string();
  int pages = 0;
  for (auto _ : state) {
    pages = sw::bench::GenerateExample(folder, dump, (Space().folder() / "generated.xlsx").string());
    if (pages < 0) state.SkipWithError("the generation ended on a message");
  }
  state.counters["rows"] = rows;
  state.counters["pages"] = pages;
  state.counters["data_cells"] = rows * 7.0;
}
BENCHMARK(BM_GenerateSameCells)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(200000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
