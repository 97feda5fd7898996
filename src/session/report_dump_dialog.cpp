#include "session/report_dump_dialog.h"

namespace sw::session {

std::optional<std::string> ChooseReportDump(base::Dialogs& dialogs, settings::Settings& settings,
                                            std::string_view programFolder) {
  base::FileDialogRequest request;
  request.kind = base::FileDialogRequest::Kind::kOpen;
  request.title = "Välj textfil";
  request.filters = {{"(Textfil *.txt)", "*.txt"}};
  request.initialFolder = settings.GetAppSetting("DumpPath", programFolder);
  request.fileName = "";
  request.mustExist = true;  // only a dump that exists can be read
  auto chosen = dialogs.ShowFileDialog(request);
  if (!chosen || chosen->empty()) return std::nullopt;
  // Windows names end their folder at "\"; a host dialog elsewhere may use "/".
  const auto slash = chosen->find_last_of("\\/");
  settings.SaveAppSetting("DumpPath",
                          slash == std::string::npos ? std::string() : chosen->substr(0, slash + 1));
  return chosen;
}

}  // namespace sw::session
