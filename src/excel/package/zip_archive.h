#pragma once
// The zip container of a workbook package, read whole into memory and written back in one piece.
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "excel/package/package_error.h"

namespace sw::excel {

struct ZipEntry {
  std::string name;
  std::string bytes;
};

// Every file entry of the archive in its stored order; throws PackageError for a damaged archive or
// one beyond `limits`.
std::vector<ZipEntry> ReadZipArchive(std::string_view archive, const PackageLimits& limits);

struct ZipSource {
  std::string_view name;
  std::string_view bytes;
};

// What an archive written before holds, so that the next one copies the compressed form of every
// part whose bytes have not changed instead of compressing it again: a workbook saved page by page
// changes a few small parts between saves. Parts are recognised by name, size and a 64-bit hash.
class ZipReuse {
 public:
  bool Empty() const { return archive_.empty(); }
  // The archive written last; empty before the first.
  const std::string& Archive() const { return archive_; }

 private:
  friend std::string WriteZipArchive(const std::vector<ZipSource>& entries, ZipReuse* reuse);
  struct Written {
    std::size_t size = 0;
    std::size_t hash = 0;
  };
  std::string archive_;
  std::unordered_map<std::string, Written> parts_;
};

// A deflated archive of `entries` in the given order, with fixed timestamps so equal contents give
// equal bytes, and without ZIP64 records (Excel refuses them for ordinary sizes). With `reuse`, parts
// unchanged since the archive it describes are copied from there, and it then describes this one.
std::string WriteZipArchive(const std::vector<ZipSource>& entries, ZipReuse* reuse = nullptr);

}  // namespace sw::excel
