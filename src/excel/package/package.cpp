#include "excel/package/package.h"

#include <algorithm>
#include <new>

#include "excel/package/zip_archive.h"

namespace sw::excel {

namespace {

std::string Key(std::string_view name) {
  if (!name.empty() && name.front() == '/') name.remove_prefix(1);
  std::string key(name);
  for (char& c : key) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

int Depth(const pugi::xml_node& root, int limit) {
  int depth = 1;
  int deepest = 0;
  pugi::xml_node node = root.first_child();
  while (node) {
    deepest = std::max(deepest, depth);
    if (deepest > limit) break;
    if (node.first_child()) {
      node = node.first_child();
      ++depth;
      continue;
    }
    while (node != root && !node.next_sibling()) {
      node = node.parent();
      --depth;
    }
    if (node == root) break;
    node = node.next_sibling();
  }
  return deepest;
}

struct StringWriter final : pugi::xml_writer {
  std::string text;
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
};

}  // namespace

std::unique_ptr<pugi::xml_document> ParseXml(std::string_view partName, std::string_view bytes,
                                             const PackageLimits& limits) {
  auto document = std::make_unique<pugi::xml_document>();
  const auto result = document->load_buffer(
      bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_declaration | pugi::parse_ws_pcdata);
  CheckParseResult(partName, result);
  if (!document->document_element()) throw PackageError("Delen " + std::string(partName) + " är tom.");
  if (Depth(*document, limits.maxXmlDepth) > limits.maxXmlDepth) {
    throw PackageError("Delen " + std::string(partName) + " är för djupt nästlad.");
  }
  return document;
}

void CheckParseResult(std::string_view partName, const pugi::xml_parse_result& result) {
  if (result) return;
  if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
  // The parser's own description is English; the position is what helps.
  throw PackageError("Delen " + std::string(partName) + " är inte giltig XML (fel vid tecken " +
                     std::to_string(result.offset) + ").");
}

std::string SerializeXml(const pugi::xml_document& document, std::size_t expectedSize) {
  StringWriter writer;
  // Room for the text at once: a parked sheet of a large workbook would otherwise be copied on its
  // way up through every doubling.
  writer.text.reserve(expectedSize);
  // A document parsed without its declaration gets the one Excel writes.
  if (document.first_child().type() != pugi::node_declaration) {
    writer.text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
  }
  document.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return std::move(writer.text);
}

Package Package::FromZip(std::string_view archive, const PackageLimits& limits) {
  Package package;
  package.limits_ = limits;
  for (auto& entry : ReadZipArchive(archive, limits)) {
    package.SetBytes(entry.name, std::move(entry.bytes));
  }
  return package;
}

Package::Part* Package::Find(std::string_view name) const {
  const auto found = index_.find(Key(name));
  return found == index_.end() ? nullptr : found->second;
}

Package::Part& Package::Require(std::string_view name) const {
  Part* part = Find(name);
  if (part == nullptr) throw PackageError("Arbetsboken saknar delen " + std::string(name) + ".");
  return *part;
}

bool Package::Has(std::string_view name) const {
  return Find(name) != nullptr;
}

std::vector<std::string> Package::PartNames() const {
  std::vector<std::string> names;
  names.reserve(parts_.size());
  for (const auto& part : parts_) names.push_back(part->name);
  return names;
}

std::vector<std::string> Package::PartNamesWithPrefix(std::string_view prefix) const {
  std::vector<std::string> names;
  for (const auto& part : parts_) {
    if (part->name.size() >= prefix.size() &&
        std::string_view(part->name).substr(0, prefix.size()) == prefix) {
      names.push_back(part->name);
    }
  }
  return names;
}

std::unordered_map<std::string, pugi::xml_node>& Package::OverrideIndex() {
  if (!overridesIndexed_) {
    overrides_.clear();
    for (const auto node : Xml("[Content_Types].xml").document_element().children("Override")) {
      overrides_[Key(node.attribute("PartName").value())] = node;
    }
    overridesIndexed_ = true;
  }
  return overrides_;
}

pugi::xml_document& Package::Xml(std::string_view name) {
  Part& part = Require(name);
  if (!part.xml) {
    part.xml = ParseXml(part.name, part.bytes, limits_);
    part.parsedSize = part.bytes.size();
    std::string().swap(part.bytes);
  }
  return *part.xml;
}

int& Package::KnownHighestRelationship(std::string_view relsName) {
  return Require(relsName).highestRelationship;
}

bool Package::IsParsed(std::string_view name) const {
  const Part* part = Find(name);
  return part != nullptr && part->xml != nullptr;
}

const std::string& Package::Bytes(std::string_view name) {
  Part& part = Require(name);
  if (part.xml) {
    if (Key(name) == "[content_types].xml") overridesIndexed_ = false;
    part.bytes = SerializeXml(*part.xml, part.parsedSize);
    part.xml.reset();
    ++documentsFreed_;
    part.highestRelationship = -1;
  }
  return part.bytes;
}

void Package::SetBytes(std::string_view name, std::string bytes) {
  std::string clean(name);
  if (!clean.empty() && clean.front() == '/') clean.erase(0, 1);
  Part* part = Find(clean);
  if (part == nullptr) {
    parts_.push_back(std::make_unique<Part>());
    part = parts_.back().get();
    part->name = clean;
    index_[Key(clean)] = part;
  }
  part->bytes = std::move(bytes);
  if (part->xml) ++documentsFreed_;
  part->xml.reset();
  part->highestRelationship = -1;
  if (Key(clean) == "[content_types].xml") overridesIndexed_ = false;
}

void Package::SetXml(std::string_view name, std::unique_ptr<pugi::xml_document> document) {
  SetBytes(name, {});
  Find(name)->xml = std::move(document);
}

void Package::Remove(std::string_view name) {
  const std::string key = Key(name);
  const auto found = index_.find(key);
  if (found == index_.end()) return;
  Part* part = found->second;
  if (part->xml) ++documentsFreed_;
  index_.erase(found);
  std::erase_if(parts_, [&](const std::unique_ptr<Part>& candidate) { return candidate.get() == part; });
}

void Package::Park(std::string_view name) {
  Part* part = Find(name);
  if (part != nullptr && part->xml) {
    if (Key(name) == "[content_types].xml") overridesIndexed_ = false;
    part->bytes = SerializeXml(*part->xml, part->parsedSize);
    // A filled page is larger than the template it was parsed from, and the text grew by doubling:
    // of a large workbook's parked sheets a third would be room that is never used.
    if (part->bytes.capacity() > part->bytes.size() + part->bytes.size() / 16) part->bytes.shrink_to_fit();
    part->xml.reset();
    ++documentsFreed_;
    part->highestRelationship = -1;
  }
}

std::string Package::FreeName(std::string_view prefix, std::string_view suffix, int from) const {
  int& next = nextFree_[std::string(prefix) + "\n" + std::string(suffix)];
  for (int n = std::max({from, 1, next});; ++n) {
    std::string name = std::string(prefix) + std::to_string(n) + std::string(suffix);
    if (!Has(name)) {
      next = n;
      return name;
    }
  }
}

std::string Package::ToZip() {
  std::vector<std::string> serialized;  // parsed parts stay parsed: the workbook lives on after a save
  serialized.reserve(parts_.size());
  std::vector<ZipSource> sources;
  sources.reserve(parts_.size());
  const auto add = [&](const Part& part) {
    if (part.xml) {
      serialized.push_back(SerializeXml(*part.xml, part.parsedSize));
      sources.push_back(ZipSource{part.name, serialized.back()});
    } else {
      sources.push_back(ZipSource{part.name, part.bytes});
    }
  };
  const Part* types = Find("[Content_Types].xml");
  if (types != nullptr) add(*types);
  for (const auto& part : parts_) {
    if (part.get() != types) add(*part);
  }
  return WriteZipArchive(sources, &lastZip_);
}

}  // namespace sw::excel
