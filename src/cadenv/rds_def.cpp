#include "cadenv/rds_def.h"

#include "base/file_io.h"
#include "base/strings.h"
#include "base/text_codec.h"
#include "base/windows_path.h"

namespace sw::cadenv {
namespace {

std::size_t FindIgnoringCase(std::string_view text, std::string_view wanted) {
  if (wanted.size() > text.size()) return std::string_view::npos;
  for (std::size_t at = 0; at + wanted.size() <= text.size(); ++at) {
    if (base::EqualsIgnoreCase(text.substr(at, wanted.size()), wanted)) return at;
  }
  return std::string_view::npos;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  std::size_t start = 0;
  for (std::size_t at = text.find(from); at != std::string_view::npos; at = text.find(from, start)) {
    result.append(text.substr(start, at - start)).append(to);
    start = at + from.size();
  }
  result.append(text.substr(start));
  return result;
}

}  // namespace

std::string RdsDefFromLine(std::string_view line) {
  const std::size_t at = FindIgnoringCase(line, kRdsDefKeyword);
  if (at == std::string_view::npos) return {};
  const std::size_t from = at + kRdsDefKeyword.size() + 1;
  std::string rest(from < line.size() ? line.substr(from) : std::string_view());
  std::erase(rest, '"');
  std::erase(rest, ')');
  return std::string(base::TrimSpaces(ReplaceAll(rest, "\\\\", "\\")));
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
    if (FindIgnoringCase(line, kRdsDefKeyword) != std::string_view::npos) result = RdsDefFromLine(line);
    start = end + ((end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n') ? 2 : 1);
  }
  return result;
}

}  // namespace sw::cadenv
