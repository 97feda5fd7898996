// `sheetwright-cli preview DUMP --summary` end to end, as a separate process on the 20 MB synthetic
// dump: start-up, settings, load, clean-ups and output. Reports wall time and the child's peak memory.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "synthetic_dump.h"

namespace {

void BM_CliPreviewSummary(benchmark::State& state) {
  const auto& dump = sw::bench::Dump();
  const auto registry = std::filesystem::temp_directory_path() / "sheetwright-bench-registry.reg";
  const std::string command = "SHEETWRIGHT_REGISTRY='" + registry.string() + "' '" SW_CLI_PATH "' preview '" +
                              dump.path().string() + "' --summary >/dev/null";
  for (auto _ : state) {
    const int status = std::system(command.c_str());
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) state.SkipWithError("sheetwright-cli failed");
  }
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);  // ru_maxrss: the largest child, in kilobytes
  const double fileKb = static_cast<double>(dump.size()) / 1024.0;
  state.counters["child_peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
  state.counters["child_peak_per_file"] = static_cast<double>(usage.ru_maxrss) / fileKb;
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(dump.size()));
}
BENCHMARK(BM_CliPreviewSummary)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
BENCHMARK_MAIN();
