#include "base/file_io.h"

#include <fstream>
#include <iterator>

namespace sw::base {

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::error_code* error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    if (error) *error = std::make_error_code(std::errc::no_such_file_or_directory);
    return std::nullopt;
  }
  std::string bytes;
  in.seekg(0, std::ios::end);
  const auto size = in.tellg();
  if (size > 0) {
    bytes.resize(static_cast<std::size_t>(size));
    in.seekg(0, std::ios::beg);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) {
    if (error) *error = std::make_error_code(std::errc::io_error);
    return std::nullopt;
  }
  return bytes;
}

std::error_code CopyFileKeepingExisting(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  if (std::filesystem::exists(to, error)) return std::make_error_code(std::errc::file_exists);
  const auto bytes = ReadWholeFile(from, &error);
  if (!bytes) return error;
  return WriteFileAtomically(to, *bytes);
}

}  // namespace sw::base
