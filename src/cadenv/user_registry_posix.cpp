#include "base/environment.h"
#include "cadenv/portable_registry.h"
#include "cadenv/registry.h"

namespace sw::cadenv {

std::unique_ptr<Registry> OpenUserRegistry() {
  return std::make_unique<PortableRegistry>(PortableRegistry::DefaultPath(base::ProcessEnvironment()));
}

}  // namespace sw::cadenv
