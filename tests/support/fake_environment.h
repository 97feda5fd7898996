#pragma once
// A fixed set of environment variables in place of the process's own.
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/environment.h"

namespace sw::testing {

// Names match ignoring case, as on Windows.
class FakeEnvironment final : public base::Environment {
 public:
  FakeEnvironment() = default;
  FakeEnvironment(std::initializer_list<std::pair<const std::string, std::string>> values);
  void Set(std::string name, std::string value);
  std::optional<std::string> Get(std::string_view name) const override;

 private:
  std::map<std::string, std::string> values_;  // keys upper-cased
};

}  // namespace sw::testing
