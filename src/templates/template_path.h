#pragma once
// A template workbook named on the command line, split the way the pickers hold it: the template
// folder (cboRdsDir) and the workbook's file name (cboRdsFile).
#include <string>
#include <string_view>

namespace sw::templates {

struct TemplateLocation {
  std::string folder;
  std::string file;
};

// Splits at the last "\" or "/"; a bare name lies in the working folder (".").
TemplateLocation SplitTemplatePath(std::string_view path);

}  // namespace sw::templates
