#pragma once
// Whether two names lead to one file. Names are not enough: a link, a second spelling of a folder or
// a name differing only in case on a case-insensitive disk all reach the same file.
#include <cstdint>
#include <filesystem>
#include <optional>

namespace sw::base {

// True when both paths name one existing file (device and inode, or the volume and file index on
// Windows). False when either is missing or cannot be examined.
bool SameFile(const std::filesystem::path& first, const std::filesystem::path& second);

// What tells one file from another on its disk: device and inode, or volume and file index. A file
// written anew under the same name (saved to a temporary name, then renamed) gets another one.
struct FileKey {
  std::uint64_t volume = 0;
  std::uint64_t index = 0;
  bool operator==(const FileKey&) const = default;
};

// Nothing when the file is missing or cannot be examined.
std::optional<FileKey> KeyOfFile(const std::filesystem::path& path);

}  // namespace sw::base
