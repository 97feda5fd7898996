// Generation-sized workbook work: open the title-block template, copy its page sheet 330 times,
// write 61,000 data texts plus three page cells per page, save. The libxlsxwriter reference writes
// a workbook of the same shape and is the floor to compare with (aim: at most 2x its time, 1.5x
// its peak memory). Each run happens in a child process so its peak resident memory can be read.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "excel/application_factory.h"

#include "example_generation.h"

namespace {

namespace fs = std::filesystem;

constexpr int kPages = 330;
constexpr int kDataCells = 61000;

fs::path TemplatePath() { return sw::bench::TitleBlockTemplate(); }

void GeneratePages(const fs::path& target) {
  using namespace sw::excel;
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(TemplatePath().string(), false);
  book.SaveAs(target.string());
  int written = 0;
  for (int page = 1; page <= kPages; ++page) {
    Sheets sheets = book.Sheets();
    sheets.Item(2).Select();
    sheets.Item(2).CopyAfter(sheets.Item(sheets.Count()));
    Sheet sheet = sheets.Item(sheets.Count());
    sheet.Select();
    sheet.SetName(std::to_string(page));
    sheet.Cells(1, 6).SetValue(std::to_string(page));
    sheet.Cells(2, 6).SetValue(std::to_string(page + 1));
    sheet.Cells(2, 2).SetValue("+A1");
    for (int cell = 0; cell < 185 && written < kDataCells; ++cell, ++written) {
      sheet.Cells(10 + cell / 6, 1 + cell % 6).SetValue("W" + std::to_string(written));
    }
  }
  book.Save();
}

struct ChildRun {
  double seconds = 0;
  double peakMiB = 0;
  bool ok = false;
};

ChildRun RunInChild(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  ChildRun run;
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
  run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return run;
}

void Report(benchmark::State& state, const std::function<void()>& work) {
  double peak = 0;
  for (auto _ : state) {
    const ChildRun run = RunInChild(work);
    if (!run.ok) {
      state.SkipWithError("the run failed");
      return;
    }
    state.SetIterationTime(run.seconds);
    peak = std::max(peak, run.peakMiB);
  }
  state.counters["peak_MiB"] = peak;
}

void BM_PackageEngine330Pages(benchmark::State& state) {
  const fs::path target = fs::temp_directory_path() / "sw-bench-engine.xlsx";
  Report(state, [&] { GeneratePages(target); });
  fs::remove(target);
}
BENCHMARK(BM_PackageEngine330Pages)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

std::string ReferenceProgram() {
  if (const char* path = std::getenv("SW_XLSXWRITER_REFERENCE")) return path;
#ifdef SW_XLSXWRITER_REFERENCE
  return SW_XLSXWRITER_REFERENCE;
#else
  return {};
#endif
}

void BM_XlsxwriterReference330Pages(benchmark::State& state) {
  const std::string program = ReferenceProgram();
  if (program.empty() || !fs::exists(program)) {
    state.SkipWithError("xlsxwriter_reference not built (bench/xlsxwriter.cmake)");
    return;
  }
  const fs::path target = fs::temp_directory_path() / "sw-bench-reference.xlsx";
  Report(state, [&] {
    execl(program.c_str(), program.c_str(), target.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  });
  fs::remove(target);
}
BENCHMARK(BM_XlsxwriterReference330Pages)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
