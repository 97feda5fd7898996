#pragma once
// The template picker (cboRdsFile): the template folder's workbooks, the one matching the CAD system's
// current report selected, and the picker coloured by whether one matched.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sw::templates {

// Windows colour values (0x00BBGGRR) of the template picker.
inline constexpr std::uint32_t kPickerLightRed = 0x00C0C0FF;     // 255,192,192: nothing available or matched
inline constexpr std::uint32_t kPickerLightYellow = 0x00C0FFFF;  // 255,255,192: the current report matched

struct TemplatePicker {
  std::vector<std::string> items;
  int selected = -1;  // index into items, −1 when nothing is selected
  std::string text;   // the picker's text (the selected item's name)
  std::uint32_t backColour = 0;
  std::string errorLabel;  // lblError's caption
  bool errorLabelVisible = false;
};

// The folder's .xls, .xlsx and .xlsm files (extension ignoring case), in name order ignoring case.
std::vector<std::string> ListTemplateFiles(std::string_view templateFolder);

// The name up to the last ".xl" (searched ignoring case), upper-cased: "Plan.XLSX.bak.xls" gives
// "PLAN.XLSX.BAK"; a name without ".xl" is all base.
std::string TemplateBaseName(std::string_view fileName);

// Fills the picker from `files` and selects the last file whose base name equals the report
// identifier ignoring case. No match, or no files at all: empty text, light red and the error label
// "Ingen mall matchar senaste rapport. (<id>)" shown. Match: selected, light yellow, label hidden.
// The caller then pairs the selected template with its INI file (FindIniForTemplate).
void FillTemplatePicker(const std::vector<std::string>& files, std::string_view currentReportId,
                        TemplatePicker& picker);

// ListTemplates: when the folder exists, lists it into the picker and returns true; a missing folder
// leaves the picker as it was and returns false.
bool ListTemplates(std::string_view templateFolder, std::string_view currentReportId, TemplatePicker& picker);

}  // namespace sw::templates
