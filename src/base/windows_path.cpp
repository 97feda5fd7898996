#include "base/windows_path.h"

#include <algorithm>

#include "base/strings.h"

namespace sw::base {

void WindowsPathResolver::MapDrive(char letter, std::filesystem::path folder) {
  const char key = AsciiUpperChar(letter);
  if (folder.empty()) {
    drives_.erase(key);
  } else {
    drives_[key] = std::move(folder);
  }
}

WindowsPathResolver& WindowsPaths() {
  static WindowsPathResolver resolver;
  return resolver;
}

std::string DisplayPath(std::string_view windowsPath) {
  if (windowsPath.empty()) return {};
  const std::u8string text = ResolveWindowsPath(windowsPath).make_preferred().u8string();
  return {text.begin(), text.end()};
}

std::filesystem::path ResolveWindowsPath(std::string_view windowsPath) {
  return WindowsPaths().Resolve(windowsPath);
}

bool WindowsFileExists(std::string_view windowsPath) {
  std::error_code error;
  return std::filesystem::is_regular_file(ResolveWindowsPath(windowsPath), error);
}

bool WindowsFolderExists(std::string_view windowsPath) {
  std::error_code error;
  return std::filesystem::is_directory(ResolveWindowsPath(windowsPath), error);
}

std::vector<std::string> ListFolderFiles(std::string_view windowsFolder) {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator it(ResolveWindowsPath(windowsFolder), error);
  for (; !error && it != std::filesystem::directory_iterator(); it.increment(error)) {
    std::error_code typeError;
    if (!it->is_regular_file(typeError)) continue;
    const auto name = it->path().filename().u8string();
    names.emplace_back(name.begin(), name.end());
  }
  std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = CompareIgnoreCase(a, b);
    return order != 0 ? order < 0 : a < b;
  });
  return names;
}

}  // namespace sw::base
