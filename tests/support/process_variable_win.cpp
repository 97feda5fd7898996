#include <cstdlib>

#include "process_variable.h"

namespace sw::testing {

// The C runtime's copy, which getenv reads; an empty value removes the variable.
void SetProcessVariable(const std::string& name, const std::string& value) {
  _putenv_s(name.c_str(), value.c_str());
}

void UnsetProcessVariable(const std::string& name) {
  _putenv_s(name.c_str(), "");
}

}  // namespace sw::testing
