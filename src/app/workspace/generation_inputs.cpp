#include "app/workspace/generation_inputs.h"

namespace sw::workspace {

gen::GenerationInputs GenerationInputsFrom(const Workspace& window) {
  std::vector<std::string> fieldTexts;
  fieldTexts.reserve(window.fields.entries.size());
  for (const auto& entry : window.fields.entries) fieldTexts.push_back(entry.text);
  return gen::GenerationInputs{.table = window.table,
                               .sheetNumberText = window.sheetNo.text,
                               .templateFolder = window.templateListFolder,
                               .templateFile = window.rdsFile.text,
                               .dumpPickerText = window.voltDump.text,
                               .templateDirPickerText = window.rdsDir.text,
                               .fieldTexts = std::move(fieldTexts),
                               .singleSheet = window.singleSheet,
                               .targetPath = window.txtExcelFilename};
}

gen::GenerationOutcome GenerateFromWorkspace(Workspace& window, gen::GenerationState& state,
                                             const gen::GenerationServices& services) {
  auto inputs = GenerationInputsFrom(window);
  auto outcome = gen::GenerateWorkbook(inputs, window.definition, state, services);
  window.sheetNo.SetText(inputs.sheetNumberText);
  window.txtExcelFilename = inputs.targetPath;
  window.statusText = outcome.templateBackup.empty()
                          ? std::string()
                          : "Mallens tidigare innehåll finns kvar i " + outcome.templateBackup;
  return outcome;
}

}  // namespace sw::workspace
