#pragma once
// Whether two names lead to one file. Names are not enough: a link, a second spelling of a folder or
// a name differing only in case on a case-insensitive disk all reach the same file.
#include <filesystem>

namespace sw::base {

// True when both paths name one existing file (device and inode, or the volume and file index on
// Windows). False when either is missing or cannot be examined.
bool SameFile(const std::filesystem::path& first, const std::filesystem::path& second);

}  // namespace sw::base
