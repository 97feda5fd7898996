#include "base/file_io.h"

#include <atomic>

#include "base/file_io_platform.h"
#include "base/own_temp_files.h"

namespace sw::base {

namespace {

// A temporary file this process made for itself is never kept, so no crash can cost the user anything
// there: it is written in place, neither flushed nor renamed. A single-sheet run saves its working
// file once per page; it is written over rather than emptied first, because a file system that sees a
// file emptied and written again pushes it to the disk when it is closed (ext4 does, to protect
// programs that replace files that way), and that would cost a disk write per page for nothing.
std::error_code WriteOwnTempFile(const std::filesystem::path& path, std::string_view bytes) {
  const auto opened = platform_file::OpenForWriting(path, platform_file::Creation::kNewOrExisting);
  if (opened.error) return opened.error;
  std::error_code result = platform_file::WriteAll(opened.file, bytes);
  if (!result) result = platform_file::SetLength(opened.file, bytes.size());
  if (const auto closed = platform_file::Close(opened.file); closed && !result) result = closed;
  if (result) platform_file::Remove(path);
  return result;
}

}  // namespace

bool IsNotARegularFile(const std::error_code& error) {
  return error == std::errc::is_a_directory || error == std::errc::invalid_argument;
}

std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  if (IsThisProcessTempFile(path)) return WriteOwnTempFile(path, bytes);
  static std::atomic<unsigned> serial{0};
  std::filesystem::path temp;
  platform_file::Opened opened{.nameTaken = true};
  // A file of that name can only be left from an earlier process of the same id: take the next one.
  for (int attempt = 0; opened.nameTaken && attempt < 100; ++attempt) {
    temp = path.parent_path() / path.filename();
    temp += OwnTempSuffix(++serial);
    opened = platform_file::OpenForWriting(temp, platform_file::Creation::kNewOnly);
  }
  if (opened.error) return opened.error;
  std::error_code result = platform_file::WriteAll(opened.file, bytes);
  if (!result) result = platform_file::FlushToDisk(opened.file);
  if (const auto closed = platform_file::Close(opened.file); closed && !result) result = closed;
  if (!result) result = platform_file::RenameOver(temp, path);
  if (result) platform_file::Remove(temp);
  return result;
}

std::error_code CopyFileKeepingExisting(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  if (std::filesystem::exists(to, error)) return std::make_error_code(std::errc::file_exists);
  const auto bytes = ReadWholeFile(from, &error);
  if (!bytes) return error;
  return WriteFileAtomically(to, *bytes);
}

}  // namespace sw::base
