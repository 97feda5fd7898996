#pragma once
// Relationship parts (_rels/*.rels) and the part names their targets stand for.
#include <string>
#include <string_view>
#include <vector>

#include "excel/package/package.h"

namespace sw::excel {

namespace reltype {
inline constexpr std::string_view kOfficeDocument =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
inline constexpr std::string_view kStrictOfficeDocument =
    "http://purl.oclc.org/ooxml/officeDocument/relationships/officeDocument";
inline constexpr std::string_view kWorksheet =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet";
inline constexpr std::string_view kChartsheet =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/chartsheet";
inline constexpr std::string_view kStyles =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles";
inline constexpr std::string_view kSharedStrings =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings";
inline constexpr std::string_view kCalcChain =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/calcChain";
inline constexpr std::string_view kExtendedProperties =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties";
inline constexpr std::string_view kCoreProperties =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
inline constexpr std::string_view kVbaProject =
    "http://schemas.microsoft.com/office/2006/relationships/vbaProject";
inline constexpr std::string_view kTheme =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/theme";
}  // namespace reltype

struct Relationship {
  std::string id;
  std::string type;
  std::string target;    // as written
  std::string partName;  // resolved part name; empty for external targets
  bool external = false;
};

// "xl/worksheets/sheet1.xml" -> "xl/worksheets/_rels/sheet1.xml.rels"; "" -> "_rels/.rels".
std::string RelsPartName(std::string_view sourcePart);
// Resolves `target` against the folder of `sourcePart` ("../drawings/drawing1.xml").
std::string ResolveTarget(std::string_view sourcePart, std::string_view target);
// The relative target from `sourcePart` to `targetPart`.
std::string RelativeTarget(std::string_view sourcePart, std::string_view targetPart);

std::vector<Relationship> ReadRelationships(Package& package, std::string_view sourcePart);
// Adds a relationship (creating the .rels part when needed) and returns its new id.
std::string AddRelationship(Package& package, std::string_view sourcePart, std::string_view type,
                            std::string_view targetPart);
void RemoveRelationship(Package& package, std::string_view sourcePart, std::string_view id);
// The first internal relationship of `type` from `sourcePart`, or an empty part name.
std::string FindRelatedPart(Package& package, std::string_view sourcePart, std::string_view type);

}  // namespace sw::excel
