#pragma once
// A workbook package that cannot be read or written; the text says why in the user's language.
#include <stdexcept>
#include <string>

namespace sw::excel {

class PackageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Limits against hostile or broken files: far above what a real workbook needs, low enough that a
// crafted file cannot exhaust memory or time.
struct PackageLimits {
  std::size_t maxEntries = 10000;
  std::size_t maxPartSize = 256u << 20;    // one decompressed part
  std::size_t maxTotalSize = 1024u << 20;  // all parts together
  // The file itself: at most all parts stored as they are, with their headers. A larger file is no
  // workbook this program could open, and is refused before it is read.
  std::size_t maxArchiveSize = (1024u + 64u) << 20;
  std::size_t maxCompressionRatio = 1000;  // for parts above 1 MiB
  int maxXmlDepth = 256;
};

}  // namespace sw::excel
