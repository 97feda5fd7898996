#pragma once
// The current template's INI file, read once and kept while the file stays as it was. The status bar
// counts pages after every change of the preview, and each count needs generation's reading of the
// layout; the file itself changes only when the user edits it.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "templates/template_ini.h"

namespace sw::templates {

class TemplateIniCache {
 public:
  // The description of `iniPath`, read again when the path, the file's size or its modification time
  // differ from the last reading. A file that could not be read is read again every time: it may
  // become readable without any of these changing.
  const TemplateDescription& Get(std::string_view iniPath);

  // How many times a file was read (for tests of the cache).
  int Reads() const { return reads_; }

 private:
  struct Stamp {
    std::string path;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type modified{};
    bool operator==(const Stamp&) const = default;
  };
  static std::optional<Stamp> StampOf(std::string_view iniPath);

  std::optional<Stamp> stamp_;  // of the kept description; none when it must be read again
  TemplateDescription description_;
  int reads_ = 0;
};

}  // namespace sw::templates
