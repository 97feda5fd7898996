#include "fake_environment.h"

#include "base/strings.h"

namespace sw::testing {

FakeEnvironment::FakeEnvironment(std::initializer_list<std::pair<const std::string, std::string>> values) {
  for (const auto& [name, value] : values) Set(name, value);
}

void FakeEnvironment::Set(std::string name, std::string value) {
  values_[base::AsciiUpper(name)] = std::move(value);
}

std::optional<std::string> FakeEnvironment::Get(std::string_view name) const {
  auto it = values_.find(base::AsciiUpper(name));
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

}  // namespace sw::testing
