#include "base/memory_reuse.h"

#include <malloc.h>

namespace sw::base {

// The Windows heap keeps freed blocks for reuse by itself.
void KeepFreedMemoryForReuse() {}

void GiveFreedMemoryBack() { _heapmin(); }

}  // namespace sw::base
