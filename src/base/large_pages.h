#pragma once
// Storage for the large tables a dump is loaded into, which are filled right after they are
// allocated. Where the system offers large memory pages, such storage starts on a large-page
// boundary and asks for them: that spares one page fault per 4 KB, and on virtual machines a page
// fault costs more than filling the page does. Ordinary allocations would start anywhere, so that
// only the whole large pages inside them could be used.
#include <cstddef>
#include <memory>
#include <new>

namespace sw::base {

// Below this size a request is served by the ordinary allocator; above it, rounding up to whole
// large pages costs at most as much again.
inline constexpr std::size_t kLargePageWorth = std::size_t{1} << 20;

// At least `bytes` of storage for a table, or nullptr when the system has none to give.
void* AllocateLargePages(std::size_t bytes);
// Gives back what AllocateLargePages(bytes) returned.
void FreeLargePages(void* data, std::size_t bytes) noexcept;

// An allocator for std::vector and std::basic_string that takes large requests from
// AllocateLargePages.
template <typename T>
struct LargePageAllocator {
  using value_type = T;

  LargePageAllocator() = default;
  template <typename U>
  LargePageAllocator(const LargePageAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    if (count * sizeof(T) < kLargePageWorth) return std::allocator<T>{}.allocate(count);
    void* data = AllocateLargePages(count * sizeof(T));
    if (data == nullptr) throw std::bad_alloc();
    return static_cast<T*>(data);
  }
  void deallocate(T* data, std::size_t count) noexcept {
    if (count * sizeof(T) < kLargePageWorth) {
      std::allocator<T>{}.deallocate(data, count);
    } else {
      FreeLargePages(data, count * sizeof(T));
    }
  }

  template <typename U>
  bool operator==(const LargePageAllocator<U>&) const noexcept {
    return true;
  }
};

}  // namespace sw::base
