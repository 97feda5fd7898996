#include "session/appearance_reset.h"

namespace sw::session {

std::unique_ptr<DefaultsMerger> CreateDefaultsMerger(base::ProcessLauncher&, settings::Settings& settings) {
  return std::make_unique<SettingsDefaultsMerger>(settings);
}

}  // namespace sw::session
