#include "base/memory_reuse.h"

#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

namespace sw::base {

void KeepFreedMemoryForReuse() {
#if defined(M_MMAP_THRESHOLD) && defined(M_TRIM_THRESHOLD)
  // Requests up to 32 MB come from the heap instead of a mapping of their own, and up to 64 MB of
  // freed heap stays for the next page. A loaded report table lives in its own mappings (see
  // base/large_pages.h) and is not affected.
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
}

void GiveFreedMemoryBack() {
#if defined(M_TRIM_THRESHOLD)
  malloc_trim(0);
#endif
}

}  // namespace sw::base
