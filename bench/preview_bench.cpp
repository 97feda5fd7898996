// Loading a large report dump the way the preview does: a 200,000-line Windows-1252 dump of about
// 20 MB with a placement every 40 lines and some "/2" endings. Reports the load's speed and the
// process's peak memory against the file's size.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "app/settings.h"
#include "base/dialogs.h"
#include "report/preview_loader.h"

namespace {

class DefaultSettings final : public sw::app::Settings {
 public:
  std::string GetAppSetting(std::string_view, std::string_view defaultValue, std::string_view,
                            std::string_view) override {
    return std::string(defaultValue);
  }
  void SaveAppSetting(std::string_view, std::string_view, std::string_view) override {}
  void DeleteAppSetting(std::string_view, std::string_view) override {}
};

class SilentDialogs final : public sw::base::Dialogs {
 public:
  sw::base::MessageAnswer ShowMessage(const sw::base::Message&) override {
    return sw::base::MessageAnswer::kOk;
  }
  std::optional<std::string> ShowFileDialog(const sw::base::FileDialogRequest&) override {
    return std::nullopt;
  }
};

// The dump is written once, line by line, so that making it does not raise the peak being measured.
class SyntheticDump {
 public:
  static constexpr int kLines = 200000;

  SyntheticDump() {
    path_ = std::filesystem::temp_directory_path() /
            ("sheetwright-preview-bench-" + std::to_string(std::random_device()()) + ".txt");
    std::ofstream out(path_, std::ios::binary);
    std::mt19937 random(20240517);
    std::string buffer;
    auto flush = [&] {
      out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
      buffer.clear();
    };
    buffer += "RDS_DEF\tFBLTAY\tYttre f\xf6rbindningstabell\r\n";
    for (int line = 1; line < kLines; ++line) {
      if (line % 40 == 1) {
        buffer += "%+A" + std::to_string(line / 40) + " Apparatsk\xe5p v\xe5ning " +
                  std::to_string(random() % 9) + "%\r\n";
        continue;
      }
      const unsigned n = random();
      buffer += "\tX" + std::to_string(n % 60) + "\t" + std::to_string(n % 48 + 1);
      buffer +=
          "\tK\xe4llare f\xf6r pumpstation s\xf6"
          "dra delen nr " +
          std::to_string(n % 1000) + (n % 7 == 0 ? "/2" : "");
      buffer += "\tW" + std::to_string(1000 + n % 9000) + "\tEKK 3x" + std::to_string(n % 4 + 1) +
                ",5 \xe5ttio meter";
      buffer += "\tPlint " + std::to_string(n % 30) +
                " \xd6vre kopplingsl\xe5"
                "da";
      buffer += "\t" + std::to_string(n % 12 + 1) + (n % 5 == 0 ? "/2" : "") + "\r\n";
      if (buffer.size() > (1u << 20)) flush();
    }
    flush();
    out.close();
    size_ = std::filesystem::file_size(path_);
  }
  ~SyntheticDump() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }
  std::uintmax_t size() const { return size_; }

 private:
  std::filesystem::path path_;
  std::uintmax_t size_ = 0;
};

const SyntheticDump& Dump() {
  static const SyntheticDump dump;
  return dump;
}

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
  DefaultSettings settings;
  SilentDialogs dialogs;
  sw::report::PreviewVoltDump(
      table, sw::report::PreviewContext{
                 .dumpPath = Dump().path().string(), .settings = settings, .dialogs = dialogs});
}

void BM_PreviewVoltDump(benchmark::State& state) {
  const auto bytes = static_cast<std::int64_t>(Dump().size());
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
  const double fileKb = static_cast<double>(Dump().size()) / 1024.0;
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
