#include "session/options.h"

#include <string_view>

namespace sw::session {
namespace {

bool Flag(settings::Settings& settings, std::string_view key, std::string_view defaultValue) {
  return settings.GetAppSetting(key, defaultValue) == "1";
}

const char* Text(bool flag) {
  return flag ? "1" : "0";
}

}  // namespace

Options ReadOptions(settings::Settings& settings) {
  return Options{.showPageBreaks = Flag(settings, "ShowPageBreaks", "1"),
                 .showSingleSheetWarning = Flag(settings, "ShowSingleSheetWarning", "1"),
                 .includeEmptyRows = Flag(settings, "IncludeEmptyRows", "0"),
                 .useSlashTwo = Flag(settings, "UseSlashTwo", "1")};
}

void StoreOptions(settings::Settings& settings, const Options& options) {
  settings.SaveAppSetting("IncludeEmptyRows", Text(options.includeEmptyRows));
  settings.SaveAppSetting("UseSlashTwo", Text(options.useSlashTwo));
  settings.SaveAppSetting("ShowSingleSheetWarning", Text(options.showSingleSheetWarning));
  settings.SaveAppSetting("ShowPageBreaks", Text(options.showPageBreaks));
}

}  // namespace sw::session
