#include "temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

namespace sw::testing {

TempDir::TempDir() {
  std::random_device random;
  path_ = std::filesystem::temp_directory_path() /
          ("sw-test-" + std::to_string(random()) + std::to_string(random()));
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TempDir::Write(std::string_view relative, std::string_view bytes) const {
  const auto file = path_ / std::filesystem::path(std::string(relative));
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file;
}

std::filesystem::path DataFile(std::string_view name) {
  const char* root = std::getenv("SW_TEST_DATA");
  std::filesystem::path base = root ? root : "data";
  return base / std::filesystem::path(std::string(name));
}

}  // namespace sw::testing
