#include "templates/template_list.h"

#include "base/strings.h"
#include "base/upper_case.h"
#include "base/windows_path.h"

namespace sw::templates {
namespace {

bool IsWorkbookName(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return false;
  const auto extension = name.substr(dot);
  return base::EqualsIgnoreCase(extension, ".xls") || base::EqualsIgnoreCase(extension, ".xlsx") ||
         base::EqualsIgnoreCase(extension, ".xlsm");
}

}  // namespace

std::vector<std::string> ListTemplateFiles(std::string_view templateFolder) {
  auto files = base::ListFolderFiles(templateFolder);
  std::erase_if(files, [](const std::string& name) { return !IsWorkbookName(name); });
  return files;
}

std::string TemplateBaseName(std::string_view fileName) {
  const std::string upper = base::UpperCase(fileName);
  const auto at = upper.rfind(".XL");
  return at == std::string::npos ? upper : upper.substr(0, at);
}

void FillTemplatePicker(const std::vector<std::string>& files, std::string_view currentReportId,
                        TemplatePicker& picker) {
  picker.items.clear();
  picker.selected = -1;
  picker.text.clear();
  // An empty folder is a folder without a match: the label tells which report found no template.
  const std::string wanted = base::UpperCase(currentReportId);
  int match = -1;
  for (std::size_t i = 0; i < files.size(); ++i) {
    picker.items.push_back(files[i]);
    if (TemplateBaseName(files[i]) == wanted) match = static_cast<int>(i);
  }
  if (match < 0) {
    picker.backColour = kPickerLightRed;
    picker.errorLabel = "Ingen mall matchar senaste rapport. (" + std::string(currentReportId) + ")";
    picker.errorLabelVisible = true;
    return;
  }
  picker.selected = match;
  picker.text = picker.items[static_cast<std::size_t>(match)];
  picker.backColour = kPickerLightYellow;
  picker.errorLabelVisible = false;
}

bool ListTemplates(std::string_view templateFolder, std::string_view currentReportId,
                   TemplatePicker& picker) {
  if (!base::WindowsFolderExists(templateFolder)) return false;
  FillTemplatePicker(ListTemplateFiles(templateFolder), currentReportId, picker);
  return true;
}

}  // namespace sw::templates
