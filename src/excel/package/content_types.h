#pragma once
// [Content_Types].xml: the content type of every part, by override or by extension.
#include <string>
#include <string_view>

#include "excel/package/package.h"

namespace sw::excel {

namespace contenttype {
inline constexpr std::string_view kWorkbook =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
inline constexpr std::string_view kMacroWorkbook = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
inline constexpr std::string_view kTemplate =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.template.main+xml";
inline constexpr std::string_view kMacroTemplate = "application/vnd.ms-excel.template.macroEnabled.main+xml";
inline constexpr std::string_view kWorksheet =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
inline constexpr std::string_view kVbaProject = "application/vnd.ms-office.vbaProject";
inline constexpr std::string_view kPrinterSettings =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.printerSettings";
}  // namespace contenttype

inline constexpr std::string_view kContentTypesPart = "[Content_Types].xml";

// The content type of `part`, or "" when neither an override nor a default covers it.
std::string ContentTypeOf(Package& package, std::string_view part);
void SetOverride(Package& package, std::string_view part, std::string_view type);
void RemoveOverride(Package& package, std::string_view part);
// Gives `copy` the content type of `original`: an override when the original had one.
void CopyContentType(Package& package, std::string_view original, std::string_view copy);

}  // namespace sw::excel
