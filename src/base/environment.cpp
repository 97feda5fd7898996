#include "base/environment.h"

#include <cstdlib>

#include "base/strings.h"

namespace sw::base {

std::optional<std::string> SystemEnvironment::Get(std::string_view name) const {
  const std::string key(name);
  if (const char* value = std::getenv(key.c_str())) return std::string(value);
  return std::nullopt;
}

FakeEnvironment::FakeEnvironment(std::initializer_list<std::pair<const std::string, std::string>> values) {
  for (const auto& [name, value] : values) Set(name, value);
}

void FakeEnvironment::Set(std::string name, std::string value) {
  values_[AsciiUpper(name)] = std::move(value);
}

std::optional<std::string> FakeEnvironment::Get(std::string_view name) const {
  auto it = values_.find(AsciiUpper(name));
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

Environment& ProcessEnvironment() {
  static SystemEnvironment environment;
  return environment;
}

}  // namespace sw::base
