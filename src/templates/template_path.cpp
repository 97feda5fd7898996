#include "templates/template_path.h"

namespace sw::templates {

TemplateLocation SplitTemplatePath(std::string_view path) {
  const auto cut = path.find_last_of("\\/");
  if (cut == std::string_view::npos) return {".", std::string(path)};
  // "/Mall.xlsx": the root folder itself.
  std::string folder(path.substr(0, cut == 0 ? 1 : cut));
  return {folder, std::string(path.substr(cut + 1))};
}

}  // namespace sw::templates
