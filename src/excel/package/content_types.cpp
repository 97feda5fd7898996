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

std::string Key(std::string_view part) {
  return base::AsciiLower(WithSlash(part).substr(1));
}

pugi::xml_node FindOverride(Package& package, std::string_view part) {
  auto& index = package.OverrideIndex();
  const auto found = index.find(Key(part));
  return found == index.end() ? pugi::xml_node() : found->second;
}

}  // namespace

std::string ContentTypeOf(Package& package, std::string_view part) {
  if (const auto node = FindOverride(package, part)) return node.attribute("ContentType").value();
  const auto types = package.Xml(kContentTypesPart).document_element();
  const auto extension = Extension(part);
  for (const auto node : types.children("Default")) {
    if (base::EqualsIgnoreCase(node.attribute("Extension").value(), extension)) {
      return node.attribute("ContentType").value();
    }
  }
  return {};
}

void SetOverride(Package& package, std::string_view part, std::string_view type) {
  auto node = FindOverride(package, part);
  if (!node) {
    auto types = package.Xml(kContentTypesPart).document_element();
    node = types.append_child("Override");
    node.append_attribute("PartName") = WithSlash(part).c_str();
    node.append_attribute("ContentType");
    package.OverrideIndex()[Key(part)] = node;
  }
  node.attribute("ContentType") = std::string(type).c_str();
}

void RemoveOverride(Package& package, std::string_view part) {
  if (const auto node = FindOverride(package, part)) {
    package.OverrideIndex().erase(Key(part));
    package.Xml(kContentTypesPart).document_element().remove_child(node);
  }
}

void CopyContentType(Package& package, std::string_view original, std::string_view copy) {
  if (const auto node = FindOverride(package, original)) {
    SetOverride(package, copy, node.attribute("ContentType").value());
  }
}

}  // namespace sw::excel
