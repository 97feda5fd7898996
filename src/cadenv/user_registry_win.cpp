#include "base/environment.h"
#include "cadenv/portable_registry.h"
#include "cadenv/registry.h"
#include "cadenv/win32_registry.h"

namespace sw::cadenv {

std::unique_ptr<Registry> OpenUserRegistry() {
  // A registration file named in SHEETWRIGHT_REGISTRY stands in for the registry, so tests and
  // trial runs never touch the user's own settings.
  const auto& environment = base::ProcessEnvironment();
  if (auto file = environment.Get("SHEETWRIGHT_REGISTRY"); file && !file->empty()) {
    return std::make_unique<PortableRegistry>(PortableRegistry::DefaultPath(environment));
  }
  return std::make_unique<Win32Registry>();
}

}  // namespace sw::cadenv
