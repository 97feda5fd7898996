#include "session/appearance_reset.h"

namespace sw::session {

std::unique_ptr<DefaultsMerger> CreateDefaultsMerger(base::ProcessLauncher& launcher, settings::Settings&) {
  return std::make_unique<RegeditDefaultsMerger>(launcher);
}

}  // namespace sw::session
