// Any text as a cell reference: the parser must accept or reject it without crashing, and an accepted
// reference must lie in the ranges the 16-bit fields of the template definition hold.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "templates/cell_reference.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto reference = sw::templates::ParseCellReference(text);
  if (reference.row == -1 && reference.col != -1) std::abort();
  if (reference.row < -1 || reference.row > 32767) std::abort();
  if (reference.col < -32768 || reference.col > 32767) std::abort();
  return 0;
}
