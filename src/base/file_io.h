#pragma once
// Whole-file reads and crash-safe writes.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace sw::base {

// The file's bytes, or nothing (with `error` set when given) when it cannot be read. Only a regular
// file is read: a folder is refused with std::errc::is_a_directory, a device, pipe or socket with
// std::errc::invalid_argument, without waiting on it.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::error_code* error = nullptr);

// True when `error` came from ReadWholeFile refusing something that is not a regular file.
bool IsNotARegularFile(const std::error_code& error);

// Writes `bytes` to a temporary file beside `path` (one of the program's own, see own_temp_files.h),
// flushes it to disk and renames it over `path`, so a reader sees either the old or the new contents,
// never a torn file. A failed write removes its temporary file; a killed one leaves it to
// RemoveAbandonedTempFiles. A `path` that is itself one of this process's own temporary files is
// written in place instead: it is never kept.
std::error_code WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// Whatever writes whole files for a caller: WriteFileAtomically, or in tests one that fails on cue.
using FileWriter = std::function<std::error_code(const std::filesystem::path&, std::string_view)>;

// Copies `from` to `to` byte for byte, through a temporary file so a half copy never carries the
// name; fails rather than replace a file already at `to`.
std::error_code CopyFileKeepingExisting(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace sw::base
