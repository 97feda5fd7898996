// The window from "dump chosen" to the first painted screen, on the 200,000-line synthetic dump: the
// path typed into cboVoltDump, the load with its progress bar, the column layout and one full paint of
// the window. Compare with cli_summary_bench (`preview --summary` on the same dump). The column
// auto-size is measured on its own as well. Runs offscreen.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPixmap>

#include "bench_support.h"
#include "cadenv/portable_registry.h"
#include "gui/main_window.h"
#include "gui/preview_grid.h"
#include "synthetic_dump.h"

namespace {

using sw::bench::NoLauncher;

struct BenchWindow {
  BenchWindow()
      : registry(std::filesystem::temp_directory_path() / "sheetwright-gui-bench-registry.reg"),
        window({.session = {.registry = registry,
                            .settings = settings,
                            .environment = environment,
                            .dialogs = dialogs,
                            .launcher = launcher},
                .openWorkbook = [](const std::string&) { return true; }}) {
    window.resize(1200, 800);
    window.show();
    QApplication::processEvents();
  }

  // Types `path` into the dump picker and leaves it, as the user chooses a dump by hand.
  void ChooseDump(const std::string& path) {
    QLineEdit* edit = window.findChild<QComboBox*>(QStringLiteral("cboVoltDump"))->lineEdit();
    edit->setText(QString::fromStdString(path));
    emit edit->editingFinished();
  }

  sw::cadenv::PortableRegistry registry;
  sw::bench::EmptyEnvironment environment;
  sw::bench::DefaultSettings settings;
  sw::bench::SilentDialogs dialogs;
  NoLauncher launcher;
  sw::gui::MainWindow window;
};

void BM_GuiDumpChosenToFirstPaint(benchmark::State& state) {
  const auto& dump = sw::bench::Dump();
  BenchWindow bench;
  for (auto _ : state) {
    state.PauseTiming();
    bench.ChooseDump("");  // back to the heading row alone
    state.ResumeTiming();
    bench.ChooseDump(dump.path().string());
    QPixmap screen = bench.window.grab();
    benchmark::DoNotOptimize(screen);
  }
  state.counters["rows"] = bench.window.Session().Table().Rows() - 1;
}
BENCHMARK(BM_GuiDumpChosenToFirstPaint)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_GuiColumnAutoSize(benchmark::State& state) {
  const auto& dump = sw::bench::Dump();
  BenchWindow bench;
  bench.ChooseDump(dump.path().string());
  auto* grid = bench.window.findChild<sw::gui::PreviewGrid*>(QStringLiteral("fgPreView"));
  for (auto _ : state) {
    for (int column = 0; column < grid->model()->columnCount(); ++column)
      grid->resizeColumnToContents(column);
  }
}
BENCHMARK(BM_GuiColumnAutoSize)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
