#include <windows.h>

#include <atomic>
#include <fstream>
#include <iterator>

#include "base/file_io.h"
#include "base/own_temp_files.h"

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

namespace {

std::error_code LastWindowsError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

std::error_code WriteAll(HANDLE file, std::string_view bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    DWORD written = 0;
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 30));
    if (!WriteFile(file, bytes.data() + done, chunk, &written, nullptr)) return LastWindowsError();
    done += written;
  }
  return {};
}

// A temporary file this process made for itself is never kept, so no crash can cost the user anything
// there: it is written in place, neither flushed nor renamed. A single-sheet run saves its working
// file once per page.
std::error_code WriteOwnTempFile(const std::filesystem::path& path, std::string_view bytes) {
  HANDLE file =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return LastWindowsError();
  const std::error_code result = WriteAll(file, bytes);
  CloseHandle(file);
  if (result) DeleteFileW(path.c_str());
  return result;
}

}  // namespace

std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  if (IsThisProcessTempFile(path)) return WriteOwnTempFile(path, bytes);
  static std::atomic<unsigned> serial{0};
  std::filesystem::path temp;
  HANDLE file = INVALID_HANDLE_VALUE;
  // A file of that name can only be left from an earlier process of the same id: take the next one.
  for (int attempt = 0; file == INVALID_HANDLE_VALUE && attempt < 100; ++attempt) {
    const std::string suffix = OwnTempSuffix(++serial);
    temp = path.parent_path() / (path.filename().wstring() + std::wstring(suffix.begin(), suffix.end()));
    file = CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) break;
  }
  if (file == INVALID_HANDLE_VALUE) return LastWindowsError();
  std::error_code result = WriteAll(file, bytes);
  if (!result && !FlushFileBuffers(file)) result = LastWindowsError();
  CloseHandle(file);
  if (!result &&
      !MoveFileExW(temp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    result = LastWindowsError();
  }
  if (result) DeleteFileW(temp.c_str());
  return result;
}

}  // namespace sw::base
