#include <sys/mman.h>

#include <cstdint>

#include "base/large_pages.h"

namespace sw::base {
namespace {

// The size of one large page on the usual systems; where pages are of another size the storage is
// still correct, only the advice may not take effect.
constexpr std::size_t kLargePage = std::size_t{2} << 20;

std::size_t RoundUp(std::size_t bytes) {
  return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

}  // namespace

void* AllocateLargePages(std::size_t bytes) {
  if (bytes > static_cast<std::size_t>(-1) - 2 * kLargePage) return nullptr;
  const std::size_t length = RoundUp(bytes);
  // One large page more than needed, so that a large-page boundary lies inside; the parts before
  // and after the aligned range are given back at once.
  void* mapped =
      mmap(nullptr, length + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  const auto begin = reinterpret_cast<std::uintptr_t>(mapped);
  const std::uintptr_t aligned = (begin + kLargePage - 1) / kLargePage * kLargePage;
  if (aligned > begin) munmap(mapped, aligned - begin);
  const std::uintptr_t tail = aligned + length;
  const std::uintptr_t end = begin + length + kLargePage;
  if (end > tail) munmap(reinterpret_cast<void*>(tail), end - tail);
#ifdef MADV_HUGEPAGE
  // Refused where transparent large pages are off; the storage then stays ordinary.
  (void)madvise(reinterpret_cast<void*>(aligned), length, MADV_HUGEPAGE);
#endif
  return reinterpret_cast<void*>(aligned);
}

void FreeLargePages(void* data, std::size_t bytes) noexcept {
  if (data != nullptr) munmap(data, RoundUp(bytes));
}

}  // namespace sw::base
