// The window's whole generation, as a user runs it: the dump typed into cboVoltDump and loaded into
// the preview, then "Generera Excel-dokument" triggered and its save dialog answered with OUT. Runs
// offscreen, once, and prints the wall and CPU seconds of the load and of the generation as
// "name=value" lines, for bench/compare.py to set beside the command line's run of the same job.
// The settings are stored as the command line stores them, in a registry file (a new one each run).
// Usage: gui_generate_bench DUMP TEMPLATE.xlsx OUT.xlsx
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "bench_support.h"
#include "cadenv/portable_registry.h"
#include "gui/command_table.h"
#include "gui/main_window.h"
#include "settings/settings.h"

namespace {

// Answers the save dialog with the target and tells every message on stderr: a benchmark that ends on
// a message has measured something else than a generation.
class TargetDialogs final : public sw::base::Dialogs {
 public:
  explicit TargetDialogs(std::string target) : target_(std::move(target)) {}
  int messages = 0;

  sw::base::MessageAnswer ShowMessage(const sw::base::Message& message) override {
    ++messages;
    std::fprintf(stderr, "%s: %s\n", message.title.c_str(), message.text.c_str());
    return sw::base::MessageAnswer::kOk;
  }
  std::optional<std::string> ShowFileDialog(const sw::base::FileDialogRequest&) override { return target_; }

 private:
  std::string target_;
};

struct Stopwatch {
  std::chrono::steady_clock::time_point wall = std::chrono::steady_clock::now();
  std::clock_t cpu = std::clock();

  void Print(const char* name) const {
    const double wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - wall).count();
    const double cpuSeconds = static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
    std::printf("%s_wall=%.4f\n%s_cpu=%.4f\n", name, wallSeconds, name, cpuSeconds);
  }
};

// The process's resident memory in MB, as the system reports it (Linux); 0 where it does not.
double ResidentMegabytes() {
  std::FILE* status = std::fopen("/proc/self/status", "r");
  if (!status) return 0;
  char line[256];
  double kilobytes = 0;
  while (std::fgets(line, sizeof line, status)) {
    if (std::sscanf(line, "VmRSS: %lf kB", &kilobytes) == 1) break;
  }
  std::fclose(status);
  return kilobytes / 1024;
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  if (argc != 4) {
    std::fprintf(stderr, "usage: gui_generate_bench DUMP TEMPLATE.xlsx OUT.xlsx\n");
    return 2;
  }
  const std::string dump = argv[1];
  const std::string templateWorkbook = argv[2];
  const std::string target = argv[3];

  sw::bench::EmptyEnvironment environment;
  // A settings file of its own, new each run: a window started over remembered settings would load
  // the last dump while it starts, before the measured part.
  const auto registryPath = std::filesystem::temp_directory_path() /
                            ("sheetwright-gui-generate-bench-" + std::to_string(QCoreApplication::applicationPid()) + ".reg");
  struct RemovedAtEnd {
    std::filesystem::path path;
    ~RemovedAtEnd() {
      std::error_code ignored;
      std::filesystem::remove(path, ignored);
      std::filesystem::remove(path.string() + ".lock", ignored);
    }
  } removed{registryPath};
  sw::cadenv::PortableRegistry registry(registryPath);
  sw::settings::RegistrySettings settings(registry);
  TargetDialogs dialogs(target);
  sw::bench::NoLauncher launcher;
  sw::gui::MainWindow window({.session = {.registry = registry,
                                          .settings = settings,
                                          .environment = environment,
                                          .dialogs = dialogs,
                                          .launcher = launcher},
                              .openWorkbook = [](const std::string&) { return true; }});
  window.resize(1200, 800);
  window.show();
  QApplication::processEvents();
  window.Session().UseTemplateWorkbook(templateWorkbook);
  QApplication::processEvents();

  const Stopwatch load;
  QLineEdit* edit = window.findChild<QComboBox*>(QStringLiteral("cboVoltDump"))->lineEdit();
  edit->setText(QString::fromStdString(dump));
  emit edit->editingFinished();
  QApplication::processEvents();
  load.Print("load");
  std::printf("rss_loaded_mb=%.1f\n", ResidentMegabytes());

  const Stopwatch generation;
  window.Command(sw::gui::kCommandGenerate)->trigger();
  QApplication::processEvents();
  generation.Print("generate");
  std::printf("rss_after_generate_mb=%.1f\n", ResidentMegabytes());

  if (dialogs.messages != 0 || !std::filesystem::exists(target)) {
    std::fprintf(stderr, "the generation did not write %s (%d messages)\n", target.c_str(), dialogs.messages);
    return 1;
  }
  return 0;
}
