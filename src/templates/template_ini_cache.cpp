#include "templates/template_ini_cache.h"

#include <system_error>

#include "base/windows_path.h"

namespace sw::templates {

std::optional<TemplateIniCache::Stamp> TemplateIniCache::StampOf(std::string_view iniPath) {
  const std::filesystem::path path = base::ResolveWindowsPath(iniPath);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  Stamp stamp{std::string(iniPath), std::filesystem::file_size(path, error), {}};
  if (error) return std::nullopt;
  stamp.modified = std::filesystem::last_write_time(path, error);
  if (error) return std::nullopt;
  return stamp;
}

const TemplateDescription& TemplateIniCache::Get(std::string_view iniPath) {
  const auto stamp = StampOf(iniPath);
  if (stamp && stamp_ && *stamp == *stamp_) return description_;
  description_ = ReadTemplateDescription(iniPath);
  ++reads_;
  stamp_ = description_.fileFound ? stamp : std::nullopt;
  return description_;
}

}  // namespace sw::templates
