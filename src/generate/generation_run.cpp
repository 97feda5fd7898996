#include "generate/generation_run.h"

#include <algorithm>

#include "generate/run_error.h"

namespace sw::gen {

excel::Application& GenerationRun::Excel() const {
  if (!state.excelApp) excel::ThrowObjectNotSet();
  return *state.excelApp;
}

void GenerationRun::SetMousePointer(MousePointer pointer) const {
  if (services.setMousePointer) services.setMousePointer(pointer);
}

void GenerationRun::Tell(std::string text, std::string title, base::MessageIcon icon) const {
  services.dialogs.ShowMessage(
      base::Message{std::move(text), std::move(title), icon, base::MessageButtons::kOk});
}

void GenerationRun::TellFailure(int number, const std::string& description,
                                const std::string& fileInUse) const {
  switch (number) {
    case kDeviceUnavailable:
      Tell("Enheten ej läsbar/tillgänglig.", "", base::MessageIcon::kNone);
      break;
    case kPermissionDenied:
      Tell(fileInUse, "Filfel", base::MessageIcon::kCritical);
      break;
    case kCannotCreateObject:
      Tell("Kan ej starta Microsoft Excel.\rKontrollera installationen.", "Active-X fel",
           base::MessageIcon::kCritical);
      break;
    default:
      Tell(std::to_string(number) + " - " + description, "Fel", base::MessageIcon::kCritical);
      break;
  }
  SetMousePointer(MousePointer::kDefault);
}

void GenerationRun::SaveAs(const std::string& path) {
  state.workbook.SaveAs(EnginePath(path));
  workbookPath = path;
  if (std::find(savedFiles.begin(), savedFiles.end(), path) == savedFiles.end()) savedFiles.push_back(path);
}

void GenerationRun::Save() {
  state.workbook.Save();
  if (std::find(savedFiles.begin(), savedFiles.end(), workbookPath) == savedFiles.end()) {
    savedFiles.push_back(workbookPath);
  }
}

int FirstDataColumn(const templ::TemplateDefinition& definition) {
  if (definition.DataColumns.empty()) RaiseRunError(9);
  return definition.DataColumns.front();
}

}  // namespace sw::gen
