// A long report in the two page modes, as generation drives the package engine: seven text cells a
// row from row 10 of the title-block template's page sheet.
//  - BM_NormalLength: a copy of the page sheet every 30 rows, with its three page cells.
//  - BM_DynamicLength: every row on the one sheet, then the closing format pass (the second data row's
//    formats pasted over all rows below it, a medium line under the last) and a break every 300 rows.
// Both end with the workbook saved. A dynamic-length run should cost no more than twice a normal one;
// before its row lookups started from the row found last, the paste took time with the square of the
// rows. (The generation run itself counts rows in 16 bits, so 100,000 rows are driven here directly.)
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "excel/application_factory.h"

#include "example_generation.h"

namespace {

namespace fs = std::filesystem;
using namespace sw::excel;

constexpr int kStartRow = 10;
constexpr int kPageRows = 30;
constexpr int kColumns = 7;

fs::path TemplatePath() { return sw::bench::TitleBlockTemplate(); }

fs::path TargetPath(const char* mode) {
  return fs::temp_directory_path() /
         ("sw-bench-" + std::string(mode) + "-" + std::to_string(getpid()) + ".xlsx");
}

void WriteRow(const Sheet& sheet, int row, int n) {
  for (int column = 1; column <= kColumns; ++column) {
    sheet.Cells(row, column).SetValue("W" + std::to_string(n) + "-" + std::to_string(column));
  }
}

void NormalLength(int rows, const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(TemplatePath().string(), false);
  book.SaveAs(target.string());
  Sheets sheets = book.Sheets();
  Sheet page;
  for (int n = 0; n < rows; ++n) {
    if (n % kPageRows == 0) {
      const int number = n / kPageRows + 1;
      sheets.Item(2).Select();
      sheets.Item(2).CopyAfter(sheets.Item(sheets.Count()));
      page = sheets.Item(sheets.Count());
      page.Select();
      page.SetName(std::to_string(number));
      page.Cells(1, 6).SetValue(std::to_string(number));
      page.Cells(2, 6).SetValue(std::to_string(number + 1));
      page.Cells(2, 2).SetValue("+A1");
    }
    WriteRow(page, kStartRow + n % kPageRows, n);
  }
  book.Save();
}

void DynamicLength(int rows, const fs::path& target) {
  auto app = CreateApplication(EngineKind::kPackage);
  Workbook book = app->Workbooks().Open(TemplatePath().string(), false);
  book.SaveAs(target.string());
  Sheet sheet = book.Worksheets().Item(2);
  sheet.Select();
  for (int n = 0; n < rows; ++n) {
    if (n > 0 && n % 300 == 0) {
      const std::string at = std::to_string(kStartRow + n);
      app->ActiveSheet().Rows(at + ":" + at).Select();
      app->ActiveSheet().HPageBreaks().Add(app->ActiveCell());
    }
    WriteRow(sheet, kStartRow + n, n);
  }
  const std::string second = std::to_string(kStartRow + 1);
  sheet.Rows(second + ":" + second).Select();
  app->Selection().Copy();
  sheet.Rows(std::to_string(kStartRow + 2) + ":" + std::to_string(kStartRow + rows)).Select();
  app->Selection().PasteSpecial(XlPasteType::xlPasteFormats);
  for (int column = 1; column <= kColumns; ++column) {
    sheet.Cells(kStartRow + rows, column).Select();
    app->Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  }
  sheet.Cells(kStartRow, 1).Select();
  app->SetCutCopyMode(false);
  book.Save();
}

void Measure(benchmark::State& state, const char* mode, void (*run)(int, const fs::path&)) {
  const int rows = static_cast<int>(state.range(0));
  const fs::path target = TargetPath(mode);
  for (auto _ : state) {
    try {
      run(rows, target);
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
      break;
    }
  }
  std::error_code ignored;
  fs::remove(target, ignored);
  state.counters["rows"] = rows;
  state.counters["rows_per_s"] = benchmark::Counter(rows, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_NormalLength(benchmark::State& state) {
  Measure(state, "normal", NormalLength);
}
BENCHMARK(BM_NormalLength)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);

void BM_DynamicLength(benchmark::State& state) {
  Measure(state, "dynamic", DynamicLength);
}
BENCHMARK(BM_DynamicLength)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
