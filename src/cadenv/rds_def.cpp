#include "cadenv/rds_def.h"

#include "base/file_io.h"
#include "base/strings.h"
#include "base/text_codec.h"
#include "base/windows_path.h"

namespace sw::cadenv {
std::string RdsDefFromLine(std::string_view line) {
  const std::size_t at = base::FindIgnoreCase(line, kRdsDefKeyword);
  if (at == std::string_view::npos) return {};
  const std::size_t from = at + kRdsDefKeyword.size() + 1;
  std::string rest(from < line.size() ? line.substr(from) : std::string_view());
  std::erase(rest, '"');
  std::erase(rest, ')');
  return std::string(base::TrimSpaces(base::ReplaceAll(rest, "\\\\", "\\")));
}

std::string ReadRdsDef(std::string_view windowsPath) {
  if (!base::WindowsFileExists(windowsPath)) return {};
  const auto bytes = base::ReadWholeFile(base::ResolveWindowsPath(windowsPath));
  if (!bytes) return {};
  const std::string text = base::DecodeText(*bytes);
  std::string result;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find_first_of("\r\n", start);
    if (end == std::string::npos) end = text.size();
    const std::string_view line = std::string_view(text).substr(start, end - start);
    if (base::FindIgnoreCase(line, kRdsDefKeyword) != std::string_view::npos) result = RdsDefFromLine(line);
    start = end + ((end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n') ? 2 : 1);
  }
  return result;
}

}  // namespace sw::cadenv
