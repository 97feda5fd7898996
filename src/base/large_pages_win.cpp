#include "base/large_pages.h"

namespace sw::base {

// Windows gives large pages only to processes holding the lock-pages privilege, and only to memory
// allocated as such from the start: ordinary allocations get no advice.
void AdviseLargePages(const void*, std::size_t) {}

}  // namespace sw::base
