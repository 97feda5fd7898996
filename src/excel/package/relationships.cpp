#include "excel/package/relationships.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string>

namespace sw::excel {

namespace {

constexpr const char* kRelationshipsNamespace =
    "http://schemas.openxmlformats.org/package/2006/relationships";

std::string_view Folder(std::string_view part) {
  const auto slash = part.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : part.substr(0, slash);
}

std::vector<std::string_view> Segments(std::string_view path) {
  std::vector<std::string_view> segments;
  std::size_t start = 0;
  while (start <= path.size()) {
    const auto end = std::min(path.find('/', start), path.size());
    if (end > start) segments.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return segments;
}

}  // namespace

std::string RelsPartName(std::string_view sourcePart) {
  const auto slash = sourcePart.rfind('/');
  if (slash == std::string_view::npos) return "_rels/" + std::string(sourcePart) + ".rels";
  return std::string(sourcePart.substr(0, slash)) + "/_rels/" + std::string(sourcePart.substr(slash + 1)) +
         ".rels";
}

std::string ResolveTarget(std::string_view sourcePart, std::string_view target) {
  std::vector<std::string_view> parts;
  if (!target.empty() && target.front() == '/') {
    target.remove_prefix(1);
  } else {
    parts = Segments(Folder(sourcePart));
  }
  for (const auto segment : Segments(target)) {
    if (segment == ".") continue;
    if (segment == "..") {
      if (!parts.empty()) parts.pop_back();
      continue;
    }
    parts.push_back(segment);
  }
  std::string name;
  for (const auto segment : parts) {
    if (!name.empty()) name += '/';
    name += segment;
  }
  return name;
}

std::string RelativeTarget(std::string_view sourcePart, std::string_view targetPart) {
  const auto from = Segments(Folder(sourcePart));
  const auto to = Segments(targetPart);
  std::size_t common = 0;
  while (common < from.size() && common + 1 < to.size() && from[common] == to[common]) ++common;
  std::string relative;
  for (std::size_t i = common; i < from.size(); ++i) relative += "../";
  for (std::size_t i = common; i < to.size(); ++i) {
    relative += to[i];
    if (i + 1 < to.size()) relative += '/';
  }
  return relative;
}

std::vector<Relationship> ReadRelationships(Package& package, std::string_view sourcePart) {
  std::vector<Relationship> relationships;
  const std::string rels = RelsPartName(sourcePart);
  if (!package.Has(rels)) return relationships;
  for (const auto node : package.Xml(rels).document_element().children("Relationship")) {
    Relationship relationship;
    relationship.id = node.attribute("Id").value();
    relationship.type = node.attribute("Type").value();
    relationship.target = node.attribute("Target").value();
    relationship.external = std::string_view(node.attribute("TargetMode").value()) == "External";
    if (!relationship.external) relationship.partName = ResolveTarget(sourcePart, relationship.target);
    relationships.push_back(std::move(relationship));
  }
  return relationships;
}

namespace {

// The number of an "rId" as atoi reads it. A workbook of thousands of pages has as many relationships
// to count through when its relationships part is parsed again: plain digits are read without a copy.
int IdNumber(std::string_view digits) {
  int number = 0;
  if (digits.size() <= 9 &&
      std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
  }
  return std::atoi(std::string(digits).c_str());
}

}  // namespace

std::string AddRelationship(Package& package, std::string_view sourcePart, std::string_view type,
                            std::string_view targetPart) {
  const std::string rels = RelsPartName(sourcePart);
  if (!package.Has(rels)) {
    auto document = std::make_unique<pugi::xml_document>();
    auto declaration = document->append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    declaration.append_attribute("standalone") = "yes";
    document->append_child("Relationships").append_attribute("xmlns") = kRelationshipsNamespace;
    package.SetXml(rels, std::move(document));
  }
  auto root = package.Xml(rels).document_element();
  int& highest = package.KnownHighestRelationship(rels);
  if (highest < 0) {
    highest = 0;
    for (const auto node : root.children("Relationship")) {
      const std::string_view id = node.attribute("Id").value();
      if (id.size() > 3 && id.substr(0, 3) == "rId") highest = std::max(highest, IdNumber(id.substr(3)));
    }
  }
  ++highest;
  std::string id = "rId" + std::to_string(highest);
  auto node = root.append_child("Relationship");
  node.append_attribute("Id") = id.c_str();
  node.append_attribute("Type") = std::string(type).c_str();
  node.append_attribute("Target") = RelativeTarget(sourcePart, targetPart).c_str();
  return id;
}

void RemoveRelationship(Package& package, std::string_view sourcePart, std::string_view id) {
  const std::string rels = RelsPartName(sourcePart);
  if (!package.Has(rels)) return;
  auto root = package.Xml(rels).document_element();
  for (auto node : root.children("Relationship")) {
    if (id == node.attribute("Id").value()) {
      root.remove_child(node);
      package.KnownHighestRelationship(rels) = -1;
      return;
    }
  }
}

std::string FindRelatedPart(Package& package, std::string_view sourcePart, std::string_view type) {
  for (const auto& relationship : ReadRelationships(package, sourcePart)) {
    if (!relationship.external && relationship.type == type) return relationship.partName;
  }
  return {};
}

}  // namespace sw::excel
