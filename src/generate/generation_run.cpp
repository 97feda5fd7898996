#include "generate/generation_run.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/file_identity.h"
#include "base/file_io.h"
#include "base/strings.h"
#include "base/utf8_path.h"
#include "base/windows_path.h"
#include "generate/run_error.h"

namespace sw::generate {

excel::Application& GenerationRun::Excel() const {
  if (!state.excelApp) excel::ThrowObjectNotSet();
  return *state.excelApp;
}

bool GenerationRun::CancelRequested() {
  if (!cancelled && services.cancelRequested && services.cancelRequested()) {
    cancelled = true;
    stopped = true;
  }
  return cancelled;
}

void GenerationRun::EnterPhase(GenerationPhase phase) const {
  if (services.phaseChanged) services.phaseChanged(phase);
}

void GenerationRun::SetMousePointer(MousePointer pointer) const {
  if (services.setMousePointer) services.setMousePointer(pointer);
}

void GenerationRun::Tell(std::string text, std::string title, base::MessageIcon icon) const {
  services.dialogs.ShowMessage(
      base::Message{std::move(text), std::move(title), icon, base::MessageButtons::kOk});
}

void GenerationRun::TellFailure(int number, const std::string& description, const std::string& fileInUse,
                                const std::string& path) const {
  switch (number) {
    case kDeviceUnavailable:
      Tell("Enheten ej läsbar/tillgänglig.", "", base::MessageIcon::kNone);
      break;
    case kPermissionDenied: {
      const std::string cause = WriteRefusalCause(path);
      Tell(cause.empty() ? fileInUse : fileInUse + "\r" + cause, "Filfel", base::MessageIcon::kCritical);
      break;
    }
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
  if (workbookPath == workingPath) return;
  if (std::find(savedFiles.begin(), savedFiles.end(), workbookPath) == savedFiles.end()) {
    savedFiles.push_back(workbookPath);
  }
}

void GenerationRun::SaveWorking(const std::string& finalPath, const std::string& pageText) {
  const std::string working = EnginePath(workingPath);
  try {
    state.workbook.SaveAs(working);
  } catch (const base::NumberedError& error) {
    // The user knows the file asked for, not the temporary name it is written under first.
    std::string description = error.description();
    if (const auto at = description.find(working); at != std::string::npos) {
      description.replace(at, working.size(), EnginePath(finalPath));
    }
    throw base::NumberedError(error.number(), std::move(description));
  }
  workbookPath = workingPath;
  pendingPath = finalPath;
  pendingPageText = pageText;
}

namespace {

// Keeps the template's bytes under a name beside it that says what it is; false when that fails.
bool BackUpTemplate(GenerationRun& run) {
  const std::filesystem::path source = base::ResolveWindowsPath(run.templatePath);
  std::error_code error;
  // Nothing on disk to keep (the engine holds the template elsewhere): nothing is lost either.
  if (!std::filesystem::is_regular_file(source, error)) return true;
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  const std::string name = TemplateBackupName(run.inputs.templateFile, local);
  std::string shown = run.inputs.templateFolder + "\\" + name;
  std::filesystem::path backup = source.parent_path() / base::PathFromUtf8(name);
  for (int n = 2; std::filesystem::exists(backup, error) && n < 100; ++n) {
    const std::string numbered =
        name.substr(0, name.rfind(')')) + " " + std::to_string(n) + name.substr(name.rfind(')'));
    shown = run.inputs.templateFolder + "\\" + numbered;
    backup = source.parent_path() / base::PathFromUtf8(numbered);
  }
  if (base::CopyFileKeepingExisting(source, backup)) {
    run.Tell("Mallen " + run.templatePath +
                 " skulle ha sparats över, men det gick inte att spara en kopia av "
                 "den först.\rMallen har lämnats orörd.",
             "Filfel", base::MessageIcon::kCritical);
    run.resultLost = true;
    return false;
  }
  run.templateBackup = shown;
  return true;
}

}  // namespace

void GenerationRun::CommitResult() {
  if (!pendingPath.empty()) {
    const std::string path = std::exchange(pendingPath, {});
    // The working file stays until the run ends: a single-sheet run saves the next page over it.
    SaveAs(path);
    return;
  }
  if (workbookPath == templatePath && templateBackup.empty() && !BackUpTemplate(*this)) return;
  Save();
}

void GenerationRun::RemoveWorkingFile() const {
  if (workingPath.empty()) return;
  std::error_code error;
  std::filesystem::remove(base::ResolveWindowsPath(workingPath), error);
}

bool GenerationRun::IsTheTemplate(std::string_view path) const {
  return base::SameFile(base::ResolveWindowsPath(path), base::ResolveWindowsPath(templatePath));
}

std::string TemplateBackupName(std::string_view templateFile, const std::tm& localTime) {
  const auto dot = templateFile.rfind('.');
  const std::string_view stem = dot == std::string_view::npos ? templateFile : templateFile.substr(0, dot);
  const std::string_view extension = dot == std::string_view::npos ? "" : templateFile.substr(dot);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H.%M.%S", &localTime);
  return std::string(stem) + " (kopia före körning " + stamp + ")" + std::string(extension);
}

int FirstDataColumn(const templates::TemplateDefinition& definition) {
  if (definition.DataColumns.empty()) RaiseRunError(base::kSubscriptOutOfRange);
  return definition.DataColumns.front();
}

std::string_view GenerationRun::CellText(std::string_view text) {
  const std::string_view cut = CutToCellLimit(text);
  if (cut.size() != text.size()) ++cellsCut;
  return cut;
}

std::string_view CutToCellLimit(std::string_view text) {
  // Every character is at most four bytes and two units: a text of few bytes fits without counting.
  if (text.size() <= kCellTextLimit) return text;
  return base::CutToUtf16Units(text, kCellTextLimit);
}

}  // namespace sw::generate
