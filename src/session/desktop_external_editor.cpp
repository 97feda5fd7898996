#include "session/desktop_external_editor.h"

#include <functional>
#include <string>
#include <system_error>

#include "base/own_temp_files.h"
#include "base/windows_path.h"
#include "excel/application_factory.h"
#include "generate/run_error.h"
#include "session/editing_messages.h"
#include "session/report_import.h"

namespace sw::session {

namespace {

std::string Utf8(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return std::string(text.begin(), text.end());
}

// A folder no one else has used: its name is taken by creating it, so two runs of the program (or two
// dumps opened one after the other) never write into each other's workbook.
std::filesystem::path MakeFreshFolder(const std::filesystem::path& parent, std::error_code& error) {
  const std::string prefix = "Sheetwright-" + std::to_string(base::CurrentProcessId()) + "-";
  for (unsigned serial = 1; serial <= 10000; ++serial) {
    auto candidate = parent / (prefix + std::to_string(serial));
    if (std::filesystem::create_directory(candidate, error)) return candidate;
    if (error) return {};
  }
  error = std::make_error_code(std::errc::file_exists);
  return {};
}

// The hourglass and the progress bar from the start of the import to the saved workbook: the bar counts
// the dump's rows in percent as the engine writes them into the sheet, and goes when the guard does,
// before anything is said or started.
class ImportProgress {
 public:
  static constexpr int kSteps = 100;

  explicit ImportProgress(report::LoadProgress* progress) : progress_(progress) {
    if (progress_) progress_->Begin(kSteps + 1);
  }
  ~ImportProgress() {
    if (progress_) progress_->End();
  }
  ImportProgress(const ImportProgress&) = delete;
  ImportProgress& operator=(const ImportProgress&) = delete;

  std::function<void(int, int)> RowsWritten() {
    if (!progress_) return {};
    return [this](int rowsDone, int rowCount) {
      const int step =
          rowCount > 0 ? static_cast<int>(static_cast<long long>(rowsDone) * kSteps / rowCount) : kSteps;
      if (step == shown_) return;
      shown_ = step;
      progress_->Step(step);
    };
  }

 private:
  report::LoadProgress* progress_;
  int shown_ = -1;
};

void TellNoTempFolder(base::Dialogs& dialogs, const std::filesystem::path& folder) {
  dialogs.ShowMessage(
      {.text = "Det går inte att skriva en arbetsbok i den tillfälliga mappen\r" + Utf8(folder),
       .title = "Fel",
       .icon = base::MessageIcon::kExclamation,
       .buttons = base::MessageButtons::kOk});
}

}  // namespace

void DesktopExternalEditor::OpenTemplateWorkbook(const std::string& path) {
  if (!services_.launcher.OpenWithDefaultApplication(path)) TellNothingStarted(services_.dialogs, path);
}

void DesktopExternalEditor::OpenReportDump(const std::string& path) {
  std::error_code error;
  const std::filesystem::path parent =
      tempFolder_.empty() ? std::filesystem::temp_directory_path(error) : tempFolder_;
  const std::filesystem::path folder = error ? std::filesystem::path() : MakeFreshFolder(parent, error);
  if (error) {
    TellNoTempFolder(services_.dialogs, parent);
    return;
  }
  const std::filesystem::path workbook =
      folder / (base::ResolveWindowsPath(path).stem().u8string() + u8".xlsx");
  try {
    ImportProgress progress(services_.progress);
    auto engine = excel::CreateApplication(excel::EngineKind::kPackage);
    ImportReportDump(*engine, generate::EnginePath(path), progress.RowsWritten()).SaveAs(Utf8(workbook));
  } catch (const base::NumberedError& failure) {
    std::filesystem::remove_all(folder, error);  // only what this call made
    TellExcelFailure(services_.dialogs, failure);
    return;
  }
  if (!services_.launcher.OpenWithDefaultApplication(Utf8(workbook))) {
    TellNothingStarted(services_.dialogs, Utf8(workbook));
  }
}

void DesktopExternalEditor::EditTemplateIni(const std::string& path) {
  if (!services_.launcher.EditTextFile(path)) TellNothingStarted(services_.dialogs, path);
}

}  // namespace sw::session
