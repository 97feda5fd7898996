#include "cli/user_settings.h"

#include <ostream>

#include "base/dialogs.h"
#include "cli/console_dialogs.h"
#include "session/user_settings_file.h"

namespace sw::cli {

std::unique_ptr<cadenv::Registry> OpenUserSettings(std::ostream& err) {
  auto print = [&err](const base::Notice& notice) { err << FormatMessageLine(base::AsMessage(notice)) << '\n'; };
  auto opened = session::OpenUserSettingsFile(print);
  for (const auto& notice : opened.outcome.notices) print(notice);
  if (!opened.outcome) return nullptr;
  return std::move(opened.registry);
}

}  // namespace sw::cli
