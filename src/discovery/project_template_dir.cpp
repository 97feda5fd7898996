#include "discovery/project_template_dir.h"

#include "base/file_io.h"
#include "base/strings.h"
#include "base/text_codec.h"
#include "base/upper_case.h"
#include "base/windows_path.h"
#include "cadenv/rds_def.h"
#include "discovery/step_failure.h"

namespace sw::discovery {
std::optional<std::string> ProjectRdsDefFromText(std::string_view text) {
  std::string cleaned(text);
  std::erase(cleaned, '"');
  cleaned = base::ReplaceAll(cleaned, "\\\\", "\\");
  const std::size_t keyword = base::UpperCase(cleaned).find(cadenv::kRdsDefKeyword);
  if (keyword == std::string::npos) return std::nullopt;
  const std::string_view rest =
      base::TrimSpaces(std::string_view(cleaned).substr(keyword + cadenv::kRdsDefKeyword.size()));
  const std::size_t lineEnd = rest.find("\r\n");
  if (lineEnd == std::string_view::npos) return std::nullopt;
  if (lineEnd == 0) throw NumberedError(kInvalidProcedureCall);
  return std::string(rest.substr(0, lineEnd - 1));
}

std::string ExpandFirst(std::string_view text, std::string_view placeholder, std::string_view value) {
  const std::size_t at = base::UpperCase(text).find(base::UpperCase(placeholder));
  if (at == std::string::npos) return std::string(text);
  return std::string(text.substr(0, at)).append(value).append(text.substr(at + placeholder.size()));
}

std::optional<std::string> ProjectTemplateDirectory(cadenv::Registry& registry,
                                                    const base::Environment& environment) {
  const std::string project = cadenv::ReadRegistryValue(registry, cadenv::RootKey::kCurrentUser,
                                                        kLastProjectKey, kLastProjectValue, "");
  const std::size_t lastSeparator = project.rfind('\\');
  const std::string folder = lastSeparator == std::string::npos ? "" : project.substr(0, lastSeparator + 1);
  if (!base::WindowsFolderExists(folder)) return std::nullopt;

  const std::string configPath = base::ReplaceAll(base::UpperCase(project), ".PDS", ".CFG");
  if (!base::WindowsFileExists(configPath)) return std::nullopt;
  const auto bytes = base::ReadWholeFile(base::ResolveWindowsPath(configPath));
  if (!bytes) throw NumberedError(kPermissionDenied);

  auto directory = ProjectRdsDefFromText(base::DecodeText(*bytes));
  if (!directory) return std::nullopt;
  std::string expanded =
      ExpandFirst(*directory, "%SYSTEMDRIVE%", environment.Get("SYSTEMDRIVE").value_or(""));
  expanded = ExpandFirst(expanded, "%VOLTARIS_USER%", environment.Get("VOLTARIS_USER").value_or(""));
  if (!base::WindowsFolderExists(expanded)) return std::nullopt;
  return expanded;
}

}  // namespace sw::discovery
