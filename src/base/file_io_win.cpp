#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "base/file_io.h"
#include "base/file_io_platform.h"

namespace sw::base {

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::error_code* error) {
  std::error_code status;
  const auto kind = std::filesystem::status(path, status).type();
  if (status) {
    if (error) *error = status;
    return std::nullopt;
  }
  if (kind != std::filesystem::file_type::regular) {
    if (error) {
      *error =
          std::make_error_code(kind == std::filesystem::file_type::directory ? std::errc::is_a_directory
                                                                             : std::errc::invalid_argument);
    }
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    if (error) *error = std::make_error_code(std::errc::permission_denied);
    return std::nullopt;
  }
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) {
    if (error) *error = std::make_error_code(std::errc::io_error);
    return std::nullopt;
  }
  return bytes;
}

namespace platform_file {

namespace {

std::error_code LastWindowsError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

HANDLE Native(Handle file) {
  return reinterpret_cast<HANDLE>(file);
}

}  // namespace

Opened OpenForWriting(const std::filesystem::path& path, Creation creation) {
  const DWORD disposition = creation == Creation::kNewOnly ? CREATE_NEW : OPEN_ALWAYS;
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    return {.error = {static_cast<int>(error), std::system_category()},
            .nameTaken = error == ERROR_FILE_EXISTS};
  }
  return {.file = reinterpret_cast<Handle>(file)};
}

std::error_code WriteAll(Handle file, std::string_view bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    DWORD written = 0;
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 30));
    if (!WriteFile(Native(file), bytes.data() + done, chunk, &written, nullptr)) return LastWindowsError();
    done += written;
  }
  return {};
}

std::error_code SetLength(Handle file, std::uint64_t size) {
  LARGE_INTEGER end{};
  end.QuadPart = static_cast<LONGLONG>(size);
  if (!SetFilePointerEx(Native(file), end, nullptr, FILE_BEGIN) || !SetEndOfFile(Native(file)))
    return LastWindowsError();
  return {};
}

std::error_code FlushToDisk(Handle file) {
  return FlushFileBuffers(Native(file)) ? std::error_code() : LastWindowsError();
}

std::error_code Close(Handle file) {
  // Windows reports nothing here that the written contents depend on.
  CloseHandle(Native(file));
  return {};
}

std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
             ? std::error_code()
             : LastWindowsError();
}

void Remove(const std::filesystem::path& path) {
  DeleteFileW(path.c_str());
}

}  // namespace platform_file

}  // namespace sw::base
