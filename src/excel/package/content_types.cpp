#include "excel/package/content_types.h"

#include "base/strings.h"

namespace sw::excel {

namespace {

std::string WithSlash(std::string_view part) {
  return part.empty() || part.front() != '/' ? "/" + std::string(part) : std::string(part);
}

std::string_view Extension(std::string_view part) {
  const auto dot = part.rfind('.');
  const auto slash = part.rfind('/');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) return {};
  return part.substr(dot + 1);
}

pugi::xml_node FindOverride(pugi::xml_node types, std::string_view part) {
  const std::string name = WithSlash(part);
  for (const auto node : types.children("Override")) {
    if (base::EqualsIgnoreCase(node.attribute("PartName").value(), name)) return node;
  }
  return {};
}

}  // namespace

std::string ContentTypeOf(Package& package, std::string_view part) {
  const auto types = package.Xml(kContentTypesPart).document_element();
  if (const auto node = FindOverride(types, part)) return node.attribute("ContentType").value();
  const auto extension = Extension(part);
  for (const auto node : types.children("Default")) {
    if (base::EqualsIgnoreCase(node.attribute("Extension").value(), extension)) {
      return node.attribute("ContentType").value();
    }
  }
  return {};
}

void SetOverride(Package& package, std::string_view part, std::string_view type) {
  auto types = package.Xml(kContentTypesPart).document_element();
  auto node = FindOverride(types, part);
  if (!node) {
    node = types.append_child("Override");
    node.append_attribute("PartName") = WithSlash(part).c_str();
    node.append_attribute("ContentType");
  }
  node.attribute("ContentType") = std::string(type).c_str();
}

void RemoveOverride(Package& package, std::string_view part) {
  auto types = package.Xml(kContentTypesPart).document_element();
  if (const auto node = FindOverride(types, part)) types.remove_child(node);
}

void CopyContentType(Package& package, std::string_view original, std::string_view copy) {
  const auto types = package.Xml(kContentTypesPart).document_element();
  if (const auto node = FindOverride(types, original)) {
    SetOverride(package, copy, node.attribute("ContentType").value());
  }
}

}  // namespace sw::excel
