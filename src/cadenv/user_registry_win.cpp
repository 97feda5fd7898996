#include "cadenv/registry.h"
#include "cadenv/win32_registry.h"

namespace sw::cadenv {

std::unique_ptr<Registry> OpenUserRegistry() {
  return std::make_unique<Win32Registry>();
}

}  // namespace sw::cadenv
