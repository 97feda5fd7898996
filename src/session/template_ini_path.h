#pragma once
// The INI file the edit command opens for a template workbook.
#include <optional>
#include <string>
#include <string_view>

namespace sw::session {

// `templatePath` up to and including its last "." with "ini" after it: "C:\Mallar\PLAN.xlsx" gives
// "C:\Mallar\PLAN.ini". The last "." of the whole path counts, also when it stands in a folder name and
// the file has none ("C:\Mallar.2019\PLAN" gives "C:\Mallar.ini"). Nothing when the path has no "." at all.
std::optional<std::string> TemplateIniPath(std::string_view templatePath);

}  // namespace sw::session
