#include "session/appearance_reset.h"

namespace sw::session {

std::unique_ptr<DefaultsMerger> CreateDefaultsMerger(base::ProcessLauncher& launcher, app::Settings&) {
  return std::make_unique<RegeditDefaultsMerger>(launcher);
}

}  // namespace sw::session
