#include <gtest/gtest.h>

#include "excel/package/package.h"
#include "excel/package/zip_archive.h"

namespace sw::excel {
namespace {

std::string Archive(const std::vector<std::pair<std::string, std::string>>& entries) {
  std::vector<ZipSource> sources;
  for (const auto& [name, bytes] : entries) sources.push_back(ZipSource{name, bytes});
  return WriteZipArchive(sources);
}

TEST(PackageLimits, RefusesArchivesBeyondTheLimits) {
  PackageLimits limits;
  limits.maxEntries = 3;
  limits.maxPartSize = 4u << 20;
  limits.maxTotalSize = 6u << 20;
  limits.maxCompressionRatio = 100;
  const std::string zeros(3u << 20, '\0');
  const std::string noise = [] {
    std::string text(3u << 20, ' ');
    unsigned state = 1;
    for (char& c : text) c = static_cast<char>((state = state * 1103515245u + 12345u) >> 24);
    return text;
  }();
  struct Case {
    const char* what;
    std::string archive;
  };
  for (const auto& c : std::vector<Case>{
           {"entries", Archive({{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}})},
           {"ratio", Archive({{"a.xml", zeros}})},
           {"part size", Archive({{"a.bin", noise + noise}})},
           {"total size", Archive({{"a.bin", noise}, {"b.bin", noise}, {"c.bin", noise.substr(0, 100)}})},
           {"duplicate", Archive({{"a.xml", "1"}, {"A.XML", "2"}})},
           {"escaping name", Archive({{"../a.xml", "1"}})},
       }) {
    EXPECT_THROW(Package::FromZip(c.archive, limits), PackageError) << c.what;
  }
  EXPECT_NO_THROW(Package::FromZip(Archive({{"a.bin", noise}}), limits));
}

TEST(PackageLimits, RefusesDeeplyNestedXml) {
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  for (int i = 0; i < 300; ++i) deep += "</a>";
  Package package = Package::FromZip(Archive({{"deep.xml", deep}, {"flat.xml", "<a><b/><b/></a>"}}));
  EXPECT_THROW(package.Xml("deep.xml"), PackageError);
  EXPECT_NO_THROW(package.Xml("flat.xml"));
}

TEST(PackageLimits, WritesTheSameBytesForTheSameContents) {
  const std::string first = Archive({{"[Content_Types].xml", "<Types/>"}, {"b.xml", "<b/>"}});
  EXPECT_EQ(first, Archive({{"[Content_Types].xml", "<Types/>"}, {"b.xml", "<b/>"}}));
  EXPECT_EQ(first.substr(30, 19), "[Content_Types].xml");
}

}  // namespace
}  // namespace sw::excel
