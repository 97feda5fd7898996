#include "session/toolbar_layout.h"

namespace sw::session {
namespace {

constexpr std::string_view kOldLayoutValue = "Layout";

}  // namespace

std::string LoadToolbarLayout(settings::Settings& settings, std::string_view windowName) {
  std::string layout = settings.GetAppSetting(windowName, "", kLayoutSection);
  if (layout.empty()) layout = settings.GetAppSetting(kOldLayoutValue, "");
  return layout;
}

void SaveToolbarLayout(settings::Settings& settings, std::string_view windowName, std::string_view layout) {
  settings.SaveAppSetting(windowName, layout, kLayoutSection);
  // Once the subkey holds the layout, the old value would only bring back a stale one after a reset.
  settings.DeleteAppSetting(kOldLayoutValue);
}

void ForgetToolbarLayout(settings::Settings& settings, std::string_view windowName) {
  settings.DeleteAppSetting(windowName, kLayoutSection);
  settings.DeleteAppSetting(kOldLayoutValue);
}

}  // namespace sw::session
