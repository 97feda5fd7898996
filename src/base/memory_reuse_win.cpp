#include "base/memory_reuse.h"

namespace sw::base {

// The Windows heap keeps freed blocks for reuse by itself.
void KeepFreedMemoryForReuse() {}

}  // namespace sw::base
