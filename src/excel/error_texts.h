#pragma once
// The descriptions that go with Excel's run-time error numbers, in the program's language.
#include <string>

namespace sw::excel {

std::string DefaultErrorText(int number);

}  // namespace sw::excel
