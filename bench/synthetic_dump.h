#pragma once
// A synthetic report dump shared by the benchmarks: 200,000 Windows-1252 lines of about 20 MB, eight
// fields a line, a placement every 40 lines and some "/2" endings, written once per process.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace sw::bench {

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

inline const SyntheticDump& Dump() {
  static const SyntheticDump dump;
  return dump;
}

}  // namespace sw::bench
