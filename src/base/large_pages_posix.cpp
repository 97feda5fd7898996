#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

#include "base/large_pages.h"

namespace sw::base {

void AdviseLargePages(const void* data, std::size_t bytes) {
  // Below one large page (2 MB on the usual systems) the advice cannot take effect.
  constexpr std::size_t kWorthAdvising = std::size_t{2} << 20;
  if (data == nullptr || bytes < kWorthAdvising) return;
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<std::uintptr_t>(data);
  // The whole pages around the range: advice on the allocator's own header page harms nothing, and
  // leaving it out would split the mapping so that its first large page could not be used.
  const std::uintptr_t alignedBegin = begin / pageSize * pageSize;
  const std::uintptr_t end = (begin + bytes + pageSize - 1) / pageSize * pageSize;
#ifdef MADV_HUGEPAGE
  // Refused where transparent large pages are off; the memory then stays as it was.
  (void)madvise(reinterpret_cast<void*>(alignedBegin), end - alignedBegin, MADV_HUGEPAGE);
#endif
}

}  // namespace sw::base
