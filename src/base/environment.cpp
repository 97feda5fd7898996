#include "base/environment.h"

#include <cstdlib>

#include "base/strings.h"

namespace sw::base {

std::optional<std::string> SystemEnvironment::Get(std::string_view name) const {
  const std::string key(name);
  if (const char* value = std::getenv(key.c_str())) return std::string(value);
  return std::nullopt;
}

Environment& ProcessEnvironment() {
  static SystemEnvironment environment;
  return environment;
}

}  // namespace sw::base
