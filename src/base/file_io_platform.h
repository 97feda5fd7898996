#pragma once
// The few system calls the file writes in file_io.cpp need; each system has its own
// (file_io_posix.cpp, file_io_win.cpp), the write routines around them are shared.
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace sw::base::platform_file {

// A file opened by OpenForWriting, as the system names it (a descriptor or a handle).
using Handle = std::intptr_t;

enum class Creation {
  kNewOnly,       // fails when the name is taken
  kNewOrExisting  // an existing file is opened as it is, to be written over from its start
};

struct Opened {
  Handle file{};
  std::error_code error;
  bool nameTaken = false;  // kNewOnly failed because a file of that name exists
};

Opened OpenForWriting(const std::filesystem::path& path, Creation creation);
// Writes all of `bytes`, in as many calls as the system needs.
std::error_code WriteAll(Handle file, std::string_view bytes);
// Cuts the file off (or lengthens it) at `size` bytes.
std::error_code SetLength(Handle file, std::uint64_t size);
// Returns once the contents are on the disk, not merely handed to the system.
std::error_code FlushToDisk(Handle file);
std::error_code Close(Handle file);
// Renames `from` to `to`, replacing a file at `to`, in one step a reader cannot see half done.
std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to);
void Remove(const std::filesystem::path& path);

}  // namespace sw::base::platform_file
