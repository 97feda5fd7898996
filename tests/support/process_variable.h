#pragma once
// Setting the test process's own environment variables, which programs it runs in-process read.
#include <string>

namespace sw::testing {

void SetProcessVariable(const std::string& name, const std::string& value);
void UnsetProcessVariable(const std::string& name);

}  // namespace sw::testing
