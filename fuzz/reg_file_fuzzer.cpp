// Feeds arbitrary bytes to the registration-file reader; whatever it accepts must write back to a file
// that reads as the same registry.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cadenv/reg_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  sw::cadenv::RegTree tree;
  if (!sw::cadenv::ParseRegFile(bytes, tree)) return 0;
  const std::string written = sw::cadenv::SerializeRegFile(tree);
  sw::cadenv::RegTree again;
  if (!sw::cadenv::ParseRegFile(written, again) || !(again == tree)) std::abort();
  return 0;
}
