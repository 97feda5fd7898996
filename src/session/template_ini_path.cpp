#include "session/template_ini_path.h"

namespace sw::session {

std::optional<std::string> TemplateIniPath(std::string_view templatePath) {
  // Users have kept their INI files where this command has always found them, so it opens exactly the
  // file it opened before, even where the template's own INI file would be named otherwise: a file of
  // the folder's name is what they have been editing, and another one would look as if their changes
  // were gone.
  const auto dot = templatePath.rfind('.');
  // Without any "." the rule names a file "ini" in whatever the working folder happens to be, which is
  // no file of the template's.
  if (dot == std::string_view::npos) return std::nullopt;
  return std::string(templatePath.substr(0, dot + 1)) + "ini";
}

}  // namespace sw::session
