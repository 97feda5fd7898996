#pragma once
// The licences of what the program ships (Qt, libzip, pugixml, CLI11, zlib) as the about box shows
// them: the notices first, then the full texts of the LGPL 3 and the GPL 3 it refers to.
#include <string_view>

namespace sw::gui {

std::string_view LicenceTexts();

}  // namespace sw::gui
