#include <filesystem>
#include <optional>

#include "base/file_io.h"
#include "base/windows_path.h"
#include "templates/profile_file.h"

// Elsewhere than on Windows the file is read by our own reader, which reads as the Windows calls do.
namespace sw::templates {
namespace {

std::optional<std::string> ReadProfileBytes(std::string_view iniPath) {
  const auto path = base::ResolveWindowsPath(iniPath);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  return base::ReadWholeFile(path);
}

}  // namespace

ProfileSectionResult ReadIniSection(std::string_view section, std::string_view iniPath) {
  const auto bytes = ReadProfileBytes(iniPath);
  if (!bytes) return {{}, ProfileStatus::kFileNotFound};
  return ProfileText::Parse(*bytes).Section(section);
}

std::string ReadIniValue(std::string_view section, std::string_view key, std::string_view iniPath) {
  const auto bytes = ReadProfileBytes(iniPath);
  if (!bytes) return {};
  return ProfileText::Parse(*bytes).Value(section, key).value;
}

ProfileFile::ProfileFile(std::string_view iniPath) : path_(iniPath) {
  if (const auto bytes = ReadProfileBytes(iniPath)) {
    found_ = true;
    text_ = ProfileText::Parse(*bytes);
  }
}

ProfileSectionResult ProfileFile::Section(std::string_view section) const {
  if (!text_) return {{}, ProfileStatus::kFileNotFound};
  return text_->Section(section);
}

std::string ProfileFile::Value(std::string_view section, std::string_view key) const {
  if (!text_) return {};
  return text_->Value(section, key).value;
}

}  // namespace sw::templates
