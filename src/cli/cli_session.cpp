#include "cli/cli_session.h"

#include "base/program_folder.h"
#include "excel/application_factory.h"

namespace sw::cli {
namespace {

std::string ProgramFolderText() {
  const auto folder = base::ProgramFolder().u8string();
  return std::string(folder.begin(), folder.end());
}

settings::OverlaySettings::Writes WritesOf(const CliSessionOptions& options) {
  return options.readOnly ? settings::OverlaySettings::Writes::kDropped
                          : settings::OverlaySettings::Writes::kPassed;
}

// The built-in engine unless Excel was asked for; where Excel cannot be started the run ends on the
// program's "Active-X fel" message.
generate::ApplicationFactory EngineOf(const CliSessionOptions& options) {
  if (!options.excel) return {};
  return [] { return excel::CreateApplication(excel::EngineKind::kExcelAutomation); };
}

}  // namespace

CliSession::CliSession(std::ostream& err, CliSessionOptions options, cadenv::Registry& registry,
                       settings::Settings& stored, const base::Environment& environment)
    : overlay_(stored, WritesOf(options)),
      dialogs_(err, options.answerYes),
      launcher_(base::CreateSystemProcessLauncher()),
      startLog_(environment),
      session_({.registry = registry,
                .settings = overlay_,
                .environment = environment,
                .dialogs = dialogs_,
                .launcher = *launcher_,
                .startLog = &startLog_,
                .createExcel = EngineOf(options),
                .programFolder = ProgramFolderText(),
                .quietPageLayout = options.quietPageLayout,
                // A command line has no toggle that a template could switch off: a run that would
                // write into the template is refused instead.
                .mayWriteIntoTemplate = false}) {}

}  // namespace sw::cli
