// A settings file of 100,000 keys (some 5.6 MB, as a long-used registry export grows): the program
// reads its settings one value at a time, so what matters is the first read (one parse) and every
// read after it (no parse while the file stays the same).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "cadenv/portable_registry.h"
#include "cadenv/registry.h"

namespace {

std::filesystem::path SettingsFileOf100000Keys() {
  static const std::filesystem::path file = [] {
    const auto path =
        std::filesystem::temp_directory_path() / ("sheetwright-bench-" + std::to_string(::getpid()) + ".reg");
    std::ofstream out(path, std::ios::binary);
    out << "Windows Registry Editor Version 5.00\r\n\r\n"
        << "[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n\"LastVoltDmp\"=\"C:\\\\rapporter\\\\volt."
           "txt\"\r\n\r\n";
    char line[128];
    for (int i = 0; i < 100000; ++i) {
      std::snprintf(line, sizeof line, "[HKEY_CURRENT_USER\\Software\\ZENT\\Historik\\Nyckel%06d]\r\n", i);
      out << line << "\"Sokvag\"=\"D:\\\\Projekt\\\\P" << i << "\"\r\n\r\n";
    }
    return path;
  }();
  return file;
}

void FirstReadParsesTheFile(benchmark::State& state) {
  const auto file = SettingsFileOf100000Keys();
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file));
  for (auto _ : state) {
    sw::cadenv::PortableRegistry registry(file);
    benchmark::DoNotOptimize(sw::cadenv::ReadRegistryValue(registry, sw::cadenv::RootKey::kCurrentUser,
                                                           "Software\\ZENT\\Sheetwright", "LastVoltDmp", ""));
  }
}
BENCHMARK(FirstReadParsesTheFile)->Unit(benchmark::kMillisecond);

void LaterReadsOfAnUnchangedFile(benchmark::State& state) {
  sw::cadenv::PortableRegistry registry(SettingsFileOf100000Keys());
  (void)registry.ReadNow();
  for (auto _ : state) {
    benchmark::DoNotOptimize(sw::cadenv::ReadRegistryValue(registry, sw::cadenv::RootKey::kCurrentUser,
                                                           "Software\\ZENT\\Sheetwright", "LastVoltDmp", ""));
  }
}
BENCHMARK(LaterReadsOfAnUnchangedFile)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::error_code ignored;
  std::filesystem::remove(SettingsFileOf100000Keys(), ignored);
  return 0;
}
