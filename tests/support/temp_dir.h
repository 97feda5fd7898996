#pragma once
// A fresh folder per test, removed afterwards.
#include <filesystem>
#include <string_view>

namespace sw::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Writes `bytes` to a file below the folder (creating subfolders) and returns its path.
  std::filesystem::path Write(std::string_view relative, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

// Path of a file in tests/data.
std::filesystem::path DataFile(std::string_view name);

}  // namespace sw::testing
