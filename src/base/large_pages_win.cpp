#include <new>

#include "base/large_pages.h"

namespace sw::base {

// Windows gives large pages only to processes holding the lock-pages privilege: the storage is
// ordinary.
void* AllocateLargePages(std::size_t bytes) {
  return ::operator new(bytes, std::nothrow);
}

void FreeLargePages(void* data, std::size_t) noexcept {
  ::operator delete(data);
}

}  // namespace sw::base
