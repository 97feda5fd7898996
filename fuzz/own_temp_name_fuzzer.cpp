// Any file name as one of the program's own temporary names: a later run removes the files whose
// process no longer runs, so a name must give a process only when it is of the program's own form
// (a user's file is never taken for one).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/own_temp_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view name(reinterpret_cast<const char*>(data), size);
  const unsigned long long process = sw::base::OwnTempFileProcess(name);
  if (process == 0) return 0;
  // A process was read: the name must end in ".sheetwright-<that number>" with an optional
  // "-<serial>" and ".tmp", after at least one character of the file's own name.
  const std::string number = std::to_string(process);
  const auto mark = name.rfind(".sheetwright-");
  if (mark == std::string_view::npos || mark == 0 || !name.ends_with(".tmp")) std::abort();
  const std::string_view rest = name.substr(mark + 13, name.size() - mark - 13 - 4);
  const std::string_view digits = rest.substr(0, rest.find('-'));
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) std::abort();
  if (digits.find_first_not_of('0') != std::string_view::npos &&
      digits.substr(digits.find_first_not_of('0')) != number)
    std::abort();
  return 0;
}
