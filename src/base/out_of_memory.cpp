#include "base/out_of_memory.h"

#include "base/error_numbers.h"

namespace sw::base {

std::string OutOfMemoryMessage(std::string_view doing) {
  return std::to_string(kOutOfMemory) + " - " + ErrorText(kOutOfMemory) + " vid " + std::string(doing) + ".";
}

}  // namespace sw::base
