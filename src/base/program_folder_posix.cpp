#include <system_error>

#include "base/program_folder.h"

namespace sw::base {

std::filesystem::path ProgramFolder() {
  std::error_code error;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::filesystem::current_path(error);
  return exe.parent_path();
}

}  // namespace sw::base
