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

// A fixed set of variables; names match ignoring case, as on Windows.
class FakeEnvironment final : public Environment {
 public:
  FakeEnvironment() = default;
  FakeEnvironment(std::initializer_list<std::pair<const std::string, std::string>> values);
  void Set(std::string name, std::string value);
  std::optional<std::string> Get(std::string_view name) const override;

 private:
  std::map<std::string, std::string> values_;  // keys upper-cased
};

// The process-wide environment object.
Environment& ProcessEnvironment();

}  // namespace sw::base
