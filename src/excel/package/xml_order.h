#pragma once
// Inserting elements where the SpreadsheetML schema wants them: the child elements of a worksheet
// or workbook must appear in a fixed order, or Excel repairs the file.
#include <initializer_list>
#include <pugixml.hpp>
#include <string_view>

namespace sw::excel {

// The child `name` of `parent`, created at its place in `order` when missing.
pugi::xml_node ChildInOrder(pugi::xml_node parent, const char* name,
                            std::initializer_list<std::string_view> order);

// Element order of CT_Worksheet and CT_Workbook.
pugi::xml_node WorksheetChild(pugi::xml_node worksheet, const char* name);
pugi::xml_node WorkbookChild(pugi::xml_node workbook, const char* name);

}  // namespace sw::excel
