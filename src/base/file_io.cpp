#include "base/file_io.h"

namespace sw::base {

bool IsNotARegularFile(const std::error_code& error) {
  return error == std::errc::is_a_directory || error == std::errc::invalid_argument;
}

std::error_code CopyFileKeepingExisting(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  if (std::filesystem::exists(to, error)) return std::make_error_code(std::errc::file_exists);
  const auto bytes = ReadWholeFile(from, &error);
  if (!bytes) return error;
  return WriteFileAtomically(to, *bytes);
}

}  // namespace sw::base
