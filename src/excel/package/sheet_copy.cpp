// Copying a worksheet as Excel does: the copy gets its own part, its own drawings, comments, tables
// and printer settings, and its own sheet-scoped names; images may stay shared.
#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>

#include "base/strings.h"
#include "excel/package/content_types.h"
#include "excel/package/formula_text.h"
#include "excel/package/relationships.h"
#include "excel/package/workbook_document.h"
#include "excel/sheet_names.h"

namespace sw::excel {

namespace {

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// "xl/drawings/drawing3.xml" -> ("xl/drawings/drawing", ".xml")
std::pair<std::string, std::string> NameStem(std::string_view part) {
  const auto slash = part.rfind('/');
  auto dot = part.rfind('.');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) dot = part.size();
  std::size_t stemEnd = dot;
  while (stemEnd > (slash == std::string_view::npos ? 0 : slash + 1) &&
         std::isdigit(static_cast<unsigned char>(part[stemEnd - 1]))) {
    --stemEnd;
  }
  return {std::string(part.substr(0, stemEnd)), std::string(part.substr(dot))};
}

std::vector<int> ParseIdList(std::string_view text) {
  std::vector<int> ids;
  int value = 0;
  bool any = false;
  for (const char c : text) {
    if (c >= '0' && c <= '9') {
      value = std::min(value * 10 + (c - '0'), 1 << 20);
      any = true;
    } else {
      if (any) ids.push_back(value);
      value = 0;
      any = false;
    }
  }
  if (any) ids.push_back(value);
  return ids;
}

// The value of the data attribute of the first o:idmap element: its position and length.
std::pair<std::size_t, std::size_t> FindIdMapData(std::string_view vml) {
  const auto idmap = vml.find("idmap");
  if (idmap == std::string_view::npos) return {std::string_view::npos, 0};
  const auto end = vml.find('>', idmap);
  const auto data = vml.find("data=", idmap);
  if (data == std::string_view::npos || data > end || data + 6 > vml.size())
    return {std::string_view::npos, 0};
  const char quote = vml[data + 5];
  const auto close = vml.find(quote, data + 6);
  if (close == std::string_view::npos) return {std::string_view::npos, 0};
  return {data + 6, close - (data + 6)};
}

}  // namespace

int WorkbookDocument::CopySheet(int source, int after) {
  const SheetEntry sourceEntry = Entry(source);
  if (!sourceEntry.worksheet) throw std::invalid_argument("Bara kalkylblad kan kopieras.");
  const std::string sourceName = SheetName(source);
  const std::string copyName =
      DefaultCopyName(sourceName, [&](std::string_view candidate) { return NameTaken(candidate, -1); });
  const std::string part = package_.FreeName("xl/worksheets/sheet", ".xml", SheetCount() + 1);

  std::string serialized;
  if (package_.IsParsed(sourceEntry.part)) serialized = SerializeXml(package_.Xml(sourceEntry.part));
  const std::string_view sourceText =
      package_.IsParsed(sourceEntry.part) ? std::string_view(serialized) : package_.Bytes(sourceEntry.part);
  auto document = ParseXml(part, sourceText, package_.limits());
  const bool mayNameItself = SheetNameMayOccur(sourceText, sourceName);
  Worksheet::Normalize(*document);
  // Once cells have been written, the copy's results are as stale as its source's would be.
  if (valuesChanged_ || withoutResults_.contains(sourceEntry.part)) {
    Worksheet(*document).DropCachedFormulaResults();
    withoutResults_.insert(part);
  }
  auto root = document->document_element();
  root.child("sheetPr").remove_attribute("codeName");  // the copy has no VBA module of its own
  for (auto view : root.child("sheetViews").children("sheetView")) view.remove_attribute("tabSelected");

  std::vector<std::pair<std::string, std::string>> targets;
  std::vector<std::pair<std::string, std::string>> renamedTables;
  for (const auto& relationship : ReadRelationships(package_, sourceEntry.part)) {
    if (relationship.external || !package_.Has(relationship.partName)) continue;
    const std::string_view type = relationship.type;
    std::string copy;
    if (EndsWith(type, "/drawing")) {
      copy = CopyDrawing(relationship.partName, sourceName, copyName);
    } else if (EndsWith(type, "/vmlDrawing")) {
      copy = CopyVml(relationship.partName);
    } else if (EndsWith(type, "/table")) {
      copy = CopyTable(relationship.partName, renamedTables);
    } else if (EndsWith(type, "/image")) {
      copy = relationship.partName;
    } else {
      copy = CopyPart(relationship.partName, sourceName, copyName);
    }
    targets.emplace_back(relationship.id, copy);
  }
  // Excel points the copy's references to its source sheet at the copy itself.
  bool namesItself = false;
  if (mayNameItself || !renamedTables.empty()) {
    ForEachFormulaElement(root, [&](pugi::xml_node node) {
      auto text = node.text();
      std::string formula = text.get();
      if (mayNameItself) formula = RenameSheetInFormula(formula, sourceName, copyName);
      namesItself = namesItself || formula != text.get();
      for (const auto& [from, to] : renamedTables) formula = RenameTableInFormula(formula, from, to);
      if (formula != text.get()) text.set(formula.c_str());
    });
  }
  package_.SetXml(part, std::move(document));
  WriteRelationshipsLike(sourceEntry.part, part, targets);
  const std::string sheetType = ContentTypeOf(package_, sourceEntry.part);
  SetOverride(package_, part, sheetType.empty() ? contenttype::kWorksheet : std::string_view(sheetType));

  const int position = after + 1;
  const int sourceAfterInsert = source < position ? source : source + 1;
  ShiftLocalSheetIds(position);
  const std::string relationshipId = AddRelationship(package_, workbookPart_, reltype::kWorksheet, part);
  auto sheets = WorkbookRoot().child("sheets");
  const auto sourceNode = SheetNode(source);
  IndexSheets();
  const unsigned highestSheetId = highestSheetId_;
  auto node = sheets.insert_child_after("sheet", SheetNode(after));
  for (const auto attribute : sourceNode.attributes()) {  // some writers declare r: on each sheet
    if (std::string_view(attribute.name()).substr(0, 6) == "xmlns:") node.append_copy(attribute);
  }
  node.append_attribute("name") = copyName.c_str();
  node.append_attribute("sheetId") = highestSheetId + 1;
  if (const auto state = sourceNode.attribute("state")) node.append_attribute("state") = state.value();
  std::string idAttribute = "r:id";
  for (const auto attribute : sourceNode.attributes()) {
    const std::string_view name = attribute.name();
    if (name.size() > 3 && name.substr(name.size() - 3) == ":id") idAttribute = std::string(name);
  }
  node.append_attribute(idAttribute.c_str()) = relationshipId.c_str();

  sheets_.insert(sheets_.begin() + position, SheetEntry{nextId_++, part, true, true, namesItself});
  sheetNodes_.insert(sheetNodes_.begin() + position, node);
  CountName(copyName, 1);
  highestSheetId_ = highestSheetId + 1;
  CopyDefinedNames(sourceAfterInsert, position, sourceName, copyName);
  if (highestLocalSheetId_ != -2) highestLocalSheetId_ = std::max(highestLocalSheetId_, position);
  activeSheet_ = position;
  dirtySheets_.push_back(part);
  Touch(part);
  return position;
}

void WorkbookDocument::WriteRelationshipsLike(
    const std::string& originalSource, const std::string& copySource,
    const std::vector<std::pair<std::string, std::string>>& newTargets) {
  const std::string originalRels = RelsPartName(originalSource);
  if (!package_.Has(originalRels)) return;
  auto copy = ParseXml(originalRels, SerializeXml(package_.Xml(originalRels)), package_.limits());
  for (auto relationship : copy->document_element().children("Relationship")) {
    const std::string id = relationship.attribute("Id").value();
    for (const auto& [targetId, part] : newTargets) {
      if (targetId == id) relationship.attribute("Target") = RelativeTarget(copySource, part).c_str();
    }
  }
  package_.SetXml(RelsPartName(copySource), std::move(copy));
  package_.Park(RelsPartName(copySource));
}

std::string WorkbookDocument::CopyPart(const std::string& original, std::string_view, std::string_view) {
  const auto [stem, extension] = NameStem(original);
  const std::string copy = package_.FreeName(stem, extension, 1);
  std::string bytes =
      package_.IsParsed(original) ? SerializeXml(package_.Xml(original)) : package_.Bytes(original);
  package_.SetBytes(copy, std::move(bytes));
  CopyContentType(package_, original, copy);
  WriteRelationshipsLike(original, copy, {});
  return copy;
}

std::string WorkbookDocument::CopyDrawing(const std::string& original, std::string_view sheetName,
                                          std::string_view copyName) {
  const auto [stem, extension] = NameStem(original);
  const std::string copy = package_.FreeName(stem, extension, 1);
  package_.SetBytes(
      copy, package_.IsParsed(original) ? SerializeXml(package_.Xml(original)) : package_.Bytes(original));
  CopyContentType(package_, original, copy);
  std::vector<std::pair<std::string, std::string>> targets;
  for (const auto& relationship : ReadRelationships(package_, original)) {
    if (relationship.external || !package_.Has(relationship.partName)) continue;
    if (EndsWith(relationship.type, "/chart")) {
      targets.emplace_back(relationship.id, CopyChart(relationship.partName, sheetName, copyName));
    } else {
      targets.emplace_back(relationship.id, relationship.partName);  // pictures stay shared
    }
  }
  WriteRelationshipsLike(original, copy, targets);
  return copy;
}

std::string WorkbookDocument::CopyChart(const std::string& original, std::string_view sheetName,
                                        std::string_view copyName) {
  const auto [stem, extension] = NameStem(original);
  const std::string copy = package_.FreeName(stem, extension, 1);
  auto document = ParseXml(
      copy, package_.IsParsed(original) ? SerializeXml(package_.Xml(original)) : package_.Bytes(original),
      package_.limits());
  for (auto node : document->select_nodes("//c:f")) {
    auto text = node.node().text();
    text.set(RenameSheetInFormula(text.get(), sheetName, copyName).c_str());
  }
  package_.SetXml(copy, std::move(document));
  package_.Park(copy);
  if (chartPartsGathered_ && copy.starts_with("xl/charts/chart")) chartParts_.push_back(copy);
  CopyContentType(package_, original, copy);
  std::vector<std::pair<std::string, std::string>> targets;
  for (const auto& relationship : ReadRelationships(package_, original)) {
    if (relationship.external || !package_.Has(relationship.partName)) continue;
    targets.emplace_back(relationship.id, EndsWith(relationship.type, "/image")
                                              ? relationship.partName
                                              : CopyPart(relationship.partName, sheetName, copyName));
  }
  WriteRelationshipsLike(original, copy, targets);
  return copy;
}

// Comments and header/footer pictures live in VML, whose shapes are numbered in blocks of 1024
// named by the part's o:idmap; every VML part of the workbook needs blocks of its own.
std::string WorkbookDocument::CopyVml(const std::string& original) {
  if (highestVmlBlock_ < 0) {
    highestVmlBlock_ = 0;
    for (const auto& part : package_.PartNames()) {
      if (!EndsWith(base::AsciiLower(part), ".vml")) continue;
      const std::string& text = package_.Bytes(part);
      const auto [at, length] = FindIdMapData(text);
      if (at == std::string::npos) continue;
      for (const int id : ParseIdList(std::string_view(text).substr(at, length))) {
        highestVmlBlock_ = std::max(highestVmlBlock_, id);
      }
    }
  }
  const int highest = highestVmlBlock_;
  std::string text = package_.Bytes(original);
  const auto [at, length] = FindIdMapData(text);
  if (at != std::string::npos) {
    const std::vector<int> oldBlocks = ParseIdList(std::string_view(text).substr(at, length));
    std::string newList;
    for (std::size_t i = 0; i < oldBlocks.size(); ++i) {
      if (i > 0) newList += ',';
      newList += std::to_string(highest + 1 + static_cast<int>(i));
    }
    text.replace(at, length, newList);
    highestVmlBlock_ = highest + static_cast<int>(oldBlocks.size());
    std::string renumbered;
    renumbered.reserve(text.size());
    constexpr std::string_view kShapePrefix = "_x0000_s";
    std::size_t from = 0;
    while (true) {
      const auto found = text.find(kShapePrefix, from);
      if (found == std::string::npos) break;
      std::size_t end = found + kShapePrefix.size();
      while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])) && end - found < 16)
        ++end;
      renumbered.append(text, from, found + kShapePrefix.size() - from);
      const std::string digits = text.substr(found + kShapePrefix.size(), end - found - kShapePrefix.size());
      if (!digits.empty()) {
        const long number = std::stol(digits);
        const auto block = std::find(oldBlocks.begin(), oldBlocks.end(), static_cast<int>(number / 1024));
        renumbered +=
            block == oldBlocks.end()
                ? digits
                : std::to_string((highest + 1 + (block - oldBlocks.begin())) * 1024L + number % 1024);
      }
      from = end;
    }
    renumbered.append(text, from, std::string::npos);
    text = std::move(renumbered);
  }
  const auto [stem, extension] = NameStem(original);
  const std::string copy = package_.FreeName(stem, extension, 1);
  package_.SetBytes(copy, std::move(text));
  CopyContentType(package_, original, copy);
  WriteRelationshipsLike(original, copy, {});
  return copy;
}

// A table's name and id must be unique in the workbook; the copy takes the next free number.
std::string WorkbookDocument::CopyTable(const std::string& original,
                                        std::vector<std::pair<std::string, std::string>>& renamed) {
  if (!tablesGathered_) {
    tablesGathered_ = true;
    for (const auto& part : package_.PartNames()) {
      if (!base::EqualsIgnoreCase(ContentTypeOf(package_, part),
                                  "application/vnd.openxmlformats-officedocument.spreadsheetml.table+xml")) {
        continue;
      }
      const auto document = ParseXml(part, package_.Bytes(part), package_.limits());
      const auto table = document->document_element();
      highestTableId_ = std::max(highestTableId_, table.attribute("id").as_uint());
      tableNames_.insert(base::AsciiLower(table.attribute("name").value()));
      tableNames_.insert(base::AsciiLower(table.attribute("displayName").value()));
    }
  }
  std::set<std::string> names = tableNames_;
  for (const auto name : WorkbookRoot().child("definedNames").children("definedName")) {
    names.insert(base::AsciiLower(name.attribute("name").value()));
  }
  const auto [stem, extension] = NameStem(original);
  const std::string copy = package_.FreeName(stem, extension, 1);
  auto document = ParseXml(copy, package_.Bytes(original), package_.limits());
  auto table = document->document_element();
  const std::string oldName = table.attribute("displayName").value();
  std::string base = oldName;
  while (!base.empty() && std::isdigit(static_cast<unsigned char>(base.back()))) base.pop_back();
  if (base.empty()) base = "Tabell";
  std::string newName;
  for (int n = 1;; ++n) {
    newName = base + std::to_string(n);
    if (!names.count(base::AsciiLower(newName))) break;
  }
  table.attribute("id") = ++highestTableId_;
  tableNames_.insert(base::AsciiLower(newName));
  if (table.attribute("name")) table.attribute("name") = newName.c_str();
  if (table.attribute("displayName")) table.attribute("displayName") = newName.c_str();
  for (auto node :
       table.select_nodes("//*[local-name()='calculatedColumnFormula' or local-name()='totalsRowFormula']")) {
    auto text = node.node().text();
    text.set(RenameTableInFormula(text.get(), oldName, newName).c_str());
  }
  renamed.emplace_back(oldName, newName);
  package_.SetXml(copy, std::move(document));
  package_.Park(copy);
  CopyContentType(package_, original, copy);
  WriteRelationshipsLike(original, copy, {});
  return copy;
}

}  // namespace sw::excel
