#pragma once
// Environment variables are a platform seam: discovery and the start log read them, tests fake them.
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace sw::base {

class Environment {
 public:
  virtual ~Environment() = default;
  // The variable's value (UTF-8), or nothing when it is not set.
  virtual std::optional<std::string> Get(std::string_view name) const = 0;
};

// The process environment.
class SystemEnvironment final : public Environment {
 public:
  std::optional<std::string> Get(std::string_view name) const override;
};

// The process-wide environment object.
Environment& ProcessEnvironment();

}  // namespace sw::base
