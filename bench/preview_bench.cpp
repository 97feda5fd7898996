// Loading a large report dump the way the preview does: a 200,000-line Windows-1252 dump of about
// 20 MB with a placement every 40 lines and some "/2" endings. Reports the load's speed and the
// process's peak memory against the file's size.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "bench_support.h"
#include "report/preview_loader.h"
#include "synthetic_dump.h"

namespace {

// Kilobytes of a "VmHWM:" / "VmRSS:" line of /proc/self/status; 0 where there is none.
double StatusKilobytes(std::string_view key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.starts_with(key)) return std::stod(line.substr(key.size()));
  }
  return 0;
}

void LoadInto(sw::report::ReportTable& table) {
  sw::bench::DefaultSettings settings;
  sw::report::PreviewVoltDump(
      table, sw::report::PreviewContext{.dumpPath = sw::bench::Dump().path().string(), .settings = settings});
}

void BM_PreviewVoltDump(benchmark::State& state) {
  const auto bytes = static_cast<std::int64_t>(sw::bench::Dump().size());
  int rows = 0;
  for (auto _ : state) {
    sw::report::ReportTable table;
    LoadInto(table);
    rows = table.Rows();
    benchmark::DoNotOptimize(rows);
  }
  state.SetBytesProcessed(state.iterations() * bytes);
  state.counters["rows"] = rows;
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(BM_PreviewVoltDump)->Unit(benchmark::kMillisecond);

// Peak resident memory of one load. Writing "5" to clear_refs lowers VmHWM to the current size, so
// the figure starts from what the process held before the load.
void BM_PreviewVoltDumpPeakMemory(benchmark::State& state) {
  const double fileKb = static_cast<double>(sw::bench::Dump().size()) / 1024.0;
  double peakKb = 0;
  double baseKb = 0;
  double heldKb = 0;
  for (auto _ : state) {
    std::ofstream("/proc/self/clear_refs") << "5";
    baseKb = StatusKilobytes("VmRSS:");
    sw::report::ReportTable table;
    LoadInto(table);
    peakKb = StatusKilobytes("VmHWM:");
    heldKb = StatusKilobytes("VmRSS:") - baseKb;
  }
  state.counters["peak_MB"] = peakKb / 1024.0;
  state.counters["peak_per_file"] = peakKb / fileKb;
  state.counters["load_peak_per_file"] = (peakKb - baseKb) / fileKb;
  state.counters["table_per_file"] = heldKb / fileKb;
}
BENCHMARK(BM_PreviewVoltDumpPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
