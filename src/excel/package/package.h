#pragma once
// An Open Packaging Conventions package held in memory: its parts by name, each either as bytes or,
// once asked for, as a parsed XML document. Parsed parts can be parked back to text to keep memory
// low while many sheets exist.
#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "excel/package/package_error.h"
#include "excel/package/zip_archive.h"

namespace sw::excel {

class Package {
 public:
  // Throws PackageError.
  static Package FromZip(std::string_view archive, const PackageLimits& limits = {});
  Package() = default;
  Package(Package&&) noexcept = default;
  Package& operator=(Package&&) noexcept = default;

  // Part names are written without the leading "/" and compared ignoring ASCII case, as OPC says.
  bool Has(std::string_view name) const;
  std::vector<std::string> PartNames() const;
  std::vector<std::string> PartNamesWithPrefix(std::string_view prefix) const;
  // [Content_Types].xml overrides by lower-cased part name (with its "/"), kept by content_types.cpp.
  std::unordered_map<std::string, pugi::xml_node>& OverrideIndex();
  // The parsed document of an XML part; throws PackageError when it is missing or not well-formed.
  pugi::xml_document& Xml(std::string_view name);
  bool IsParsed(std::string_view name) const;
  // The part's bytes (serialising a parsed part first).
  const std::string& Bytes(std::string_view name);
  void SetBytes(std::string_view name, std::string bytes);
  void SetXml(std::string_view name, std::unique_ptr<pugi::xml_document> document);
  void Remove(std::string_view name);
  // The highest "rId" number in a parsed relationships part as relationships.cpp last counted it, -1
  // when not known: a workbook of thousands of sheets would otherwise be counted through for each
  // new sheet. Forgotten whenever the part's document is replaced or parked.
  int& KnownHighestRelationship(std::string_view relsName);
  // Serialises a parsed part and frees its document.
  void Park(std::string_view name);
  // Counts the parsed documents freed or replaced so far (parked, serialised, overwritten, removed):
  // a node kept from a document is still good as long as this has not changed.
  std::uint64_t DocumentsFreed() const { return documentsFreed_; }
  // A part name not used yet: "xl/worksheets/sheet" + n + ".xml" with the smallest n >= `from`.
  std::string FreeName(std::string_view prefix, std::string_view suffix, int from = 1) const;

  // The whole package as a zip archive: [Content_Types].xml first, the other parts in their order.
  // Parts unchanged since the previous call keep their compressed form from then.
  std::string ToZip();
  // What the last ToZip() gave; empty before the first.
  const std::string& LastZip() const { return lastZip_.Archive(); }

  const PackageLimits& limits() const { return limits_; }

 private:
  struct Part {
    std::string name;
    std::string bytes;
    std::unique_ptr<pugi::xml_document> xml;
    int highestRelationship = -1;
    std::size_t parsedSize = 0;  // the size of the bytes the document was parsed from
  };
  Part* Find(std::string_view name) const;
  Part& Require(std::string_view name) const;

  std::vector<std::unique_ptr<Part>> parts_;
  std::unordered_map<std::string, Part*> index_;  // lower-cased name -> part
  std::unordered_map<std::string, pugi::xml_node> overrides_;
  bool overridesIndexed_ = false;
  mutable std::unordered_map<std::string, int> nextFree_;  // FreeName's next candidate per pattern
  PackageLimits limits_;
  ZipReuse lastZip_;
  std::uint64_t documentsFreed_ = 0;
};

// Parses `bytes` with the settings every part uses; throws PackageError naming `partName`, and
// std::bad_alloc when the parser ran out of memory.
std::unique_ptr<pugi::xml_document> ParseXml(std::string_view partName, std::string_view bytes,
                                             const PackageLimits& limits);
// What a parse result means for the part: nothing when it parsed, std::bad_alloc when memory ran
// out (the part may be perfectly good XML), else PackageError naming `partName` and the position.
void CheckParseResult(std::string_view partName, const pugi::xml_parse_result& result);
// `expectedSize`: room to reserve for the text, such as the size of the bytes it was parsed from.
std::string SerializeXml(const pugi::xml_document& document, std::size_t expectedSize = 0);

}  // namespace sw::excel
