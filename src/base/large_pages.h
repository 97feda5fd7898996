#pragma once
// Large tables are filled right after their storage is reserved. Where the system offers large
// memory pages, asking for them spares one page fault per 4 KB, which on virtual machines costs more
// than filling the page does.
#include <cstddef>

namespace sw::base {

// Advises the system that [data, data + bytes) will be filled soon and is best backed by large pages.
// Only advice: nothing happens where the system has no such pages or the range is small.
void AdviseLargePages(const void* data, std::size_t bytes);

}  // namespace sw::base
