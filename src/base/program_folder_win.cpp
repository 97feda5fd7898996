#include <windows.h>

#include <vector>

#include "base/program_folder.h"

namespace sw::base {

std::filesystem::path ProgramFolder() {
  std::vector<wchar_t> buffer(MAX_PATH);
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0) return std::filesystem::current_path();
    if (length < buffer.size())
      return std::filesystem::path(std::wstring(buffer.data(), length)).parent_path();
    buffer.resize(buffer.size() * 2);
  }
}

}  // namespace sw::base
