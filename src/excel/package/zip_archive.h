#pragma once
// The zip container of a workbook package, read whole into memory and written back in one piece.
#include <string>
#include <string_view>
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

// A deflated archive of `entries` in the given order, with fixed timestamps so equal contents give
// equal bytes, and without ZIP64 records (Excel refuses them for ordinary sizes).
std::string WriteZipArchive(const std::vector<ZipSource>& entries);

}  // namespace sw::excel
