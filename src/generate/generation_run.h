#pragma once
// What the parts of one generation run share: the driver builds it, pagination and page creation
// work on it.
#include <string>
#include <vector>

#include "generate/generate_workbook.h"

namespace sw::gen {

struct GenerationRun {
  GenerationState& state;
  const templ::TemplateDefinition& definition;
  const GenerationInputs& inputs;
  const GenerationServices& services;
  std::string pageFileExtension;  // "." and the template's lower-case extension
  std::string workbookPath;       // where a Save of the working workbook writes (as the program names it)
  std::vector<std::string> savedFiles;

  excel::Application& Excel() const;
  void SetMousePointer(MousePointer pointer) const;
  void Tell(std::string text, std::string title, base::MessageIcon icon) const;
  // The error handler's message for failure `number` (Excel's or ours, with its `description`), and
  // the pointer back to normal. Error 70 tells `fileInUse`, which names the file where it can.
  void TellFailure(int number, const std::string& description, const std::string& fileInUse) const;
  // Workbook.SaveAs and Workbook.Save on the working workbook, noting the file written.
  void SaveAs(const std::string& path);
  void Save();
};

// The first COLUMNS entry; error 9 when the template gave none.
int FirstDataColumn(const templ::TemplateDefinition& definition);

}  // namespace sw::gen
