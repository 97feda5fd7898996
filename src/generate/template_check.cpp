#include "generate/template_check.h"

#include "base/upper_case.h"
#include "base/windows_path.h"
#include "excel/application_factory.h"
#include "excel/automation.h"
#include "generate/run_error.h"

namespace sw::generate {
namespace {

// Reading something of the sheet makes the engine load it, so a damaged sheet shows here as it
// would when generation writes to it.
void ReadSheet(const excel::Sheet& sheet) {
  (void)sheet.HPageBreaks().Count();
}

}  // namespace

base::Outcome<base::Done> OpenTemplateAsGenerationWould(const std::string& workbookPath,
                                                        const templates::TemplateDefinition& definition) {
  base::Outcome<base::Done> outcome;
  try {
    const auto excel = excel::CreateApplication();
    const excel::Workbook workbook = excel->Workbooks().Open(EnginePath(workbookPath), true);
    const std::string commonName = base::UpperCase(definition.CommonSheetName);
    const std::string templateName = base::UpperCase(definition.TemplateSheetName);
    bool commonFound = false, templateFound = false;
    const excel::Sheets sheets = workbook.Sheets();
    for (int i = 1; i <= sheets.Count(); ++i) {
      const excel::Sheet sheet = sheets.Item(i);
      const std::string name = base::UpperCase(sheet.Name());
      if (name != commonName && name != templateName) continue;
      ReadSheet(sheet);
      commonFound = commonFound || name == commonName;
      templateFound = templateFound || name == templateName;
    }
    if (commonFound && templateFound) return outcome;
    if (!commonFound) {
      outcome.Tell("Fliken '" + definition.CommonSheetName + "' saknas i excelfilen",
                   base::MessageIcon::kInformation);
    }
    if (!templateFound) {
      outcome.Tell("Fliken '" + definition.TemplateSheetName + "' saknas i excelfilen",
                   base::MessageIcon::kInformation);
    }
    outcome.Tell("Redigera mallfilen så att den uppfyller kraven.");
    return outcome.Fail(base::Done::kNo);
  } catch (const base::NumberedError& error) {
    return outcome.Tell(error.description(), base::MessageIcon::kCritical, "Filfel").Fail(base::Done::kNo);
  }
}

std::vector<std::string> PageLayoutWarnings(const templates::TemplateDefinition& definition) {
  std::vector<std::string> warnings;
  const int firstRow = definition.StartRow;
  const int lastRow = definition.EndRow;
  if (!definition.Infinite && lastRow - firstRow + 1 <= 0) {
    warnings.push_back("Varning: Sidlängden är 0 eller mindre (STARTROW " + std::to_string(firstRow) +
                       ", ENDROW " + std::to_string(lastRow) + ").");
  }
  if (firstRow < 1) {
    warnings.push_back("Varning: STARTROW är " + std::to_string(firstRow) +
                       "; rader ovanför rad 1 hoppas över.");
  }
  return warnings;
}

std::string RowsAboveTheSheetRefusal(const templates::TemplateDefinition& definition) {
  if (definition.Infinite || definition.EndRow >= 1 || definition.EndRow < definition.StartRow) return {};
  return "Sidans rader ligger ovanför rad 1 (STARTROW " + std::to_string(definition.StartRow) + ", ENDROW " +
         std::to_string(definition.EndRow) +
         "), så ingen rad ur rapporten skulle skrivas.\rRedigera ini-filen " + base::DisplayPath(definition.IniPath) + ".";
}

}  // namespace sw::generate
