#include <cstdlib>

#include "process_variable.h"

namespace sw::testing {

void SetProcessVariable(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}

void UnsetProcessVariable(const std::string& name) {
  unsetenv(name.c_str());
}

}  // namespace sw::testing
