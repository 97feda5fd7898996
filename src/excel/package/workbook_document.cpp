#include "excel/package/workbook_document.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "base/strings.h"
#include "excel/package/cell_text.h"
#include "excel/package/content_types.h"
#include "excel/package/formula_text.h"
#include "excel/package/relationships.h"
#include "excel/package/styles.h"
#include "excel/package/xml_order.h"
#include "excel/sheet_names.h"

namespace sw::excel {

namespace {

// Relationship targets are URIs: a part named with a space or a non-ASCII letter may be written with
// "%20"-style escapes while the zip entry carries the plain name.
std::string PercentDecoded(std::string_view target) {
  std::string plain;
  plain.reserve(target.size());
  const auto hex = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  for (std::size_t i = 0; i < target.size(); ++i) {
    if (target[i] == '%' && i + 2 < target.size() && hex(target[i + 1]) >= 0 && hex(target[i + 2]) >= 0) {
      plain += static_cast<char>(hex(target[i + 1]) * 16 + hex(target[i + 2]));
      i += 2;
    } else {
      plain += target[i];
    }
  }
  return plain;
}

constexpr std::size_t kParsedSheetLimit = 8;  // sheets kept parsed at once; the others wait as text
constexpr std::string_view kStrictMainNamespace = "http://purl.oclc.org/ooxml/spreadsheetml/main";
constexpr std::string_view kStylesType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml";

[[noreturn]] void NotAWorkbook() {
  throw PackageError("Filen är inte en Excel-arbetsbok.");
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && text.substr(0, prefix.size()) == prefix;
}

std::string RelationshipIdOf(pugi::xml_node sheet) {
  for (const auto attribute : sheet.attributes()) {
    const std::string_view name = attribute.name();
    if (name.size() > 3 && name.substr(name.size() - 3) == ":id") return attribute.value();
  }
  return {};
}

void RenameInFormula(pugi::xml_node node, std::string_view oldName, std::string_view newName) {
  auto text = node.text();
  const std::string renamed = RenameSheetInFormula(text.get(), oldName, newName);
  if (renamed != text.get()) text.set(renamed.c_str());
}

void RenameInFormulas(pugi::xml_node root, const char* xpath, std::string_view oldName,
                      std::string_view newName) {
  for (auto node : root.select_nodes(xpath)) RenameInFormula(node.node(), oldName, newName);
}

void RenameInWorksheetFormulas(pugi::xml_node root, std::string_view oldName, std::string_view newName) {
  ForEachFormulaElement(root, [&](pugi::xml_node node) { RenameInFormula(node, oldName, newName); });
}

std::string BookNamed(std::string_view fileName) {
  return fileName.empty() ? std::string("Arbetsboken") : "Arbetsboken " + std::string(fileName);
}

std::string ExtensionOf(std::string_view fileName) {
  const auto slash = fileName.find_last_of("\\/");
  const auto dot = fileName.rfind('.');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) return {};
  return base::AsciiLower(fileName.substr(dot));
}

// The binary workbook format is one this engine can neither read nor write; a package under that
// name is a renamed file, and saving it back would write Open XML under a name promising binary.
void RefuseBinaryExtension(std::string_view fileName) {
  if (ExtensionOf(fileName) != ".xlsb") return;
  throw PackageError("Filen " + std::string(fileName) +
                     " har ändelsen .xlsb (binär arbetsbok), som inte kan öppnas. Spara den som .xlsx "
                     "eller .xlsm.");
}

// Excel refuses a workbook whose extension names another kind of workbook than the one it holds (a
// macro workbook named .xlsx, a template named .xlsm); a result saved from it would carry the mismatch.
void RefuseOtherFormat(std::string_view fileName, std::string_view contentType) {
  const std::string extension = ExtensionOf(fileName);
  std::string_view expected;
  if (extension == ".xlsx") expected = contenttype::kWorkbook;
  if (extension == ".xlsm") expected = contenttype::kMacroWorkbook;
  if (extension == ".xltx") expected = contenttype::kTemplate;
  if (extension == ".xltm") expected = contenttype::kMacroTemplate;
  if (expected.empty() || contentType == expected) return;
  std::string holds = ".xlsx";
  if (contentType == contenttype::kMacroWorkbook) holds = ".xlsm";
  if (contentType == contenttype::kTemplate) holds = ".xltx";
  if (contentType == contenttype::kMacroTemplate) holds = ".xltm";
  throw PackageError("Filen " + std::string(fileName) + " har ändelsen " + extension +
                     " men är en arbetsbok av typen " + holds + ". Ge den rätt ändelse.");
}

bool IsXmlPartName(std::string_view name) {
  const std::string lower = base::AsciiLower(name);
  const auto endsWith = [&](std::string_view suffix) {
    return lower.size() >= suffix.size() &&
           std::string_view(lower).substr(lower.size() - suffix.size()) == suffix;
  };
  return endsWith(".xml") || endsWith(".rels") || endsWith(".vml");
}

// A declaration in the part's prolog, looked for as UTF-8 and, for parts saved as UTF-16, in either
// byte order. The bytes "<!DOCTYPE" can stand nowhere else in well-formed XML but in a comment or a
// CDATA section, neither of which a workbook needs.
bool HasDocumentType(std::string_view bytes) {
  constexpr std::string_view kMarker = "<!DOCTYPE";
  if (bytes.find(kMarker) != std::string_view::npos) return true;
  std::string little, big;
  for (const char c : kMarker) {
    little += c;
    little += '\0';
    big += '\0';
    big += c;
  }
  return bytes.find(little) != std::string_view::npos || bytes.find(big) != std::string_view::npos;
}

// "xl/worksheets/_rels/sheet1.xml.rels" -> "xl/worksheets/sheet1.xml"; "_rels/.rels" -> "".
std::optional<std::string> SourceOfRelationships(std::string_view relsName) {
  const std::string lower = base::AsciiLower(relsName);
  if (lower.size() < 5 || lower.substr(lower.size() - 5) != ".rels") return std::nullopt;
  const auto slash = relsName.rfind('/');
  const std::string_view folder =
      slash == std::string_view::npos ? std::string_view() : relsName.substr(0, slash);
  const std::string_view file = relsName.substr(slash == std::string_view::npos ? 0 : slash + 1);
  const auto folderSlash = folder.rfind('/');
  const std::string_view last =
      folderSlash == std::string_view::npos ? folder : folder.substr(folderSlash + 1);
  if (last != "_rels") return std::nullopt;
  const std::string_view parent =
      folderSlash == std::string_view::npos ? std::string_view() : folder.substr(0, folderSlash);
  const std::string_view stem = file.substr(0, file.size() - 5);
  if (stem.empty()) return parent.empty() ? std::optional<std::string>("") : std::nullopt;
  return parent.empty() ? std::string(stem) : std::string(parent) + "/" + std::string(stem);
}

// A chart sheet carries the same tab flag in its view as a worksheet. Excel saves the chart sheet it
// shows with the flag set; left there beside the page that a run shows, Excel would open the two
// grouped, and typing into the page would go to the chart sheet as well.
void SetChartSheetTabSelected(Package& package, const std::string& part, bool selected) {
  if (!selected && !package.IsParsed(part) && package.Bytes(part).find("tabSelected") == std::string::npos) {
    return;
  }
  auto view = package.Xml(part).document_element().child("sheetViews").child("sheetView");
  if (!view) return;
  view.remove_attribute("tabSelected");
  if (selected) view.prepend_attribute("tabSelected") = 1;
}

}  // namespace

void WorkbookDocument::CheckFileHead(std::string_view head, std::uintmax_t size,
                                     const PackageLimits& limits) {
  if (StartsWith(head, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")) {
    throw PackageError(
        "Filen är en arbetsbok i det äldre Excel-formatet (.xls) eller är krypterad och kan inte öppnas. "
        "Spara den som .xlsx eller .xlsm.");
  }
  if (StartsWith(head, "\x09\x08") || StartsWith(head, "\x09\x04") || StartsWith(head, "\x09\x02")) {
    throw PackageError("Filen är en arbetsbok i det äldre Excel-formatet (.xls) och kan inte öppnas.");
  }
  if (!StartsWith(head, "PK\x03\x04") && !StartsWith(head, "PK\x05\x06")) NotAWorkbook();
  if (size > limits.maxArchiveSize) {
    throw PackageError("Filen är för stor för att vara en arbetsbok (" + std::to_string(size >> 20) +
                       " MB; högst " + std::to_string(limits.maxArchiveSize >> 20) + " MB).");
  }
}

std::unique_ptr<WorkbookDocument> WorkbookDocument::FromBytes(std::string_view bytes,
                                                              const PackageLimits& limits,
                                                              std::string_view fileName) {
  CheckFileHead(bytes.substr(0, std::min<std::size_t>(bytes.size(), 8)), bytes.size(), limits);
  RefuseBinaryExtension(fileName);
  std::unique_ptr<WorkbookDocument> document(new WorkbookDocument());
  document->package_ = Package::FromZip(bytes, limits);
  if (!document->package_.Has(kContentTypesPart)) NotAWorkbook();
  document->RefuseDocumentTypes(fileName);
  document->RefuseMissingParts(fileName);
  document->Load(fileName);
  return document;
}

void WorkbookDocument::RefuseDocumentTypes(std::string_view fileName) {
  for (const std::string& name : package_.PartNames()) {
    if (!IsXmlPartName(name) || package_.IsParsed(name)) continue;
    if (HasDocumentType(package_.Bytes(name))) {
      throw PackageError(BookNamed(fileName) + " kan inte användas: delen " + name +
                         " har en dokumenttypsdeklaration (DOCTYPE), som kan hämta in andra filer och "
                         "som en arbetsbok från Excel aldrig har. Spara om arbetsboken i Excel.");
    }
  }
}

void WorkbookDocument::RefuseMissingParts(std::string_view fileName) {
  for (const std::string& relsName : package_.PartNames()) {
    const auto source = SourceOfRelationships(relsName);
    if (!source) continue;
    // Relationships of a part that is itself gone lead nowhere Excel would look.
    if (!source->empty() && !package_.Has(*source)) continue;
    for (const auto& relationship : ReadRelationships(package_, *source)) {
      if (relationship.external || relationship.partName.empty()) continue;
      // A picture that links to a cell of the workbook: Excel writes the place ("#Blad1!A1") as the
      // hyperlink's target, which names no part.
      if (relationship.target.starts_with('#')) continue;
      if (package_.Has(relationship.partName) || package_.Has(PercentDecoded(relationship.partName)))
        continue;
      throw PackageError(BookNamed(fileName) + " är skadad: delen " + relationship.partName + ", som " +
                         (source->empty() ? relsName : *source) + " hänvisar till, saknas.");
    }
  }
}

void WorkbookDocument::Load(std::string_view fileName) {
  if (!package_.Has(kContentTypesPart)) NotAWorkbook();
  for (const auto& relationship : ReadRelationships(package_, "")) {
    if (relationship.type == reltype::kStrictOfficeDocument) {
      throw PackageError(
          "Filen är sparad som Strikt Open XML, som inte kan öppnas. Spara den som vanlig .xlsx.");
    }
    if (relationship.type == reltype::kOfficeDocument && !relationship.external)
      workbookPart_ = relationship.partName;
  }
  if (workbookPart_.empty() || !package_.Has(workbookPart_)) NotAWorkbook();
  const std::string type = ContentTypeOf(package_, workbookPart_);
  if (type != contenttype::kWorkbook && type != contenttype::kMacroWorkbook &&
      type != contenttype::kTemplate && type != contenttype::kMacroTemplate) {
    NotAWorkbook();
  }
  RefuseOtherFormat(fileName, type);
  auto& workbook = package_.Xml(workbookPart_);
  DropMainNamespacePrefix(workbook);
  const auto root = workbook.document_element();
  if (root.attribute("xmlns").value() == kStrictMainNamespace) {
    throw PackageError(
        "Filen är sparad som Strikt Open XML, som inte kan öppnas. Spara den som vanlig .xlsx.");
  }
  if (std::string_view(root.name()) != "workbook") NotAWorkbook();

  const auto relationships = ReadRelationships(package_, workbookPart_);
  for (const auto sheet : root.child("sheets").children("sheet")) {
    const std::string id = RelationshipIdOf(sheet);
    const auto found = std::find_if(relationships.begin(), relationships.end(),
                                    [&](const Relationship& candidate) { return candidate.id == id; });
    if (found == relationships.end() || found->external || !package_.Has(found->partName)) {
      throw PackageError("Arbetsboken är skadad: bladet " + std::string(sheet.attribute("name").value()) +
                         " saknas.");
    }
    sheets_.push_back(SheetEntry{nextId_++, found->partName, found->type == reltype::kWorksheet, false});
  }
  if (sheets_.empty()) throw PackageError("Arbetsboken har inga blad.");
  const int activeTab = root.child("bookViews").child("workbookView").attribute("activeTab").as_int();
  activeSheet_ = std::clamp(activeTab, 0, SheetCount() - 1);
}

pugi::xml_node WorkbookDocument::WorkbookRoot() {
  return package_.Xml(workbookPart_).document_element();
}

bool WorkbookDocument::IgnoreCaseLess::operator()(std::string_view a, std::string_view b) const {
  return base::CompareIgnoreCase(a, b) < 0;
}

void WorkbookDocument::IndexSheets() const {
  auto& self = const_cast<WorkbookDocument&>(*this);
  const pugi::xml_document& workbook = self.package_.Xml(workbookPart_);
  // The workbook part stays parsed from Load on; a document parsed anew means the index is stale.
  if (indexedWorkbook_ == &workbook && sheetNodes_.size() == sheets_.size()) return;
  sheetNodes_.clear();
  nameCounts_.clear();
  highestSheetId_ = 0;
  for (auto sheet : workbook.document_element().child("sheets").children("sheet")) {
    sheetNodes_.push_back(sheet);
    ++nameCounts_[sheet.attribute("name").value()];
    highestSheetId_ = std::max(highestSheetId_, sheet.attribute("sheetId").as_uint());
  }
  indexedWorkbook_ = &workbook;
}

bool WorkbookDocument::NameTaken(std::string_view name, int selfPosition) const {
  IndexSheets();
  const auto found = nameCounts_.find(std::string(name));
  if (found == nameCounts_.end()) return false;
  const bool self = selfPosition >= 0 && base::EqualsIgnoreCase(SheetName(selfPosition), name);
  return found->second > (self ? 1 : 0);
}

void WorkbookDocument::CountName(std::string_view name, int change) {
  const auto found = nameCounts_.try_emplace(std::string(name), 0).first;
  found->second += change;
  if (found->second <= 0) nameCounts_.erase(found);
}

pugi::xml_node WorkbookDocument::SheetNode(int position) const {
  IndexSheets();
  if (position < 0 || static_cast<std::size_t>(position) >= sheetNodes_.size()) return {};
  return sheetNodes_[static_cast<std::size_t>(position)];
}

int WorkbookDocument::PositionOf(int id) const {
  // Pages are filled one after another, so the sheet asked for is nearly always the one asked last.
  if (positionHint_ < sheets_.size() && sheets_[positionHint_].id == id)
    return static_cast<int>(positionHint_);
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    if (sheets_[i].id == id) {
      positionHint_ = i;
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::string WorkbookDocument::SheetName(int position) const {
  return SheetNode(position).attribute("name").value();
}

std::vector<std::string> WorkbookDocument::SheetNames() const {
  std::vector<std::string> names;
  auto& self = const_cast<WorkbookDocument&>(*this);
  for (const auto sheet : self.WorkbookRoot().child("sheets").children("sheet")) {
    names.emplace_back(sheet.attribute("name").value());
  }
  return names;
}

void WorkbookDocument::RenameSheet(int position, std::string_view name) {
  if (const auto problem =
          SheetNameProblem(name, [&](std::string_view candidate) { return NameTaken(candidate, position); }))
    throw std::invalid_argument(*problem);
  const std::string oldName = SheetName(position);
  if (oldName == name) return;
  SheetNode(position).attribute("name") = std::string(name).c_str();
  CountName(oldName, -1);
  CountName(name, 1);
  const bool fresh = Entry(position).createdByCopy;
  std::vector<pugi::xml_node> candidates;
  if (fresh) {
    // Only a copy's own names can name a sheet this session made.
    const auto found = Names().bySheet.find(position);
    if (found != Names().bySheet.end()) candidates = found->second;
  } else {
    for (auto definedName : WorkbookRoot().child("definedNames").children("definedName"))
      candidates.push_back(definedName);
  }
  for (auto definedName : candidates) {
    auto text = definedName.text();
    if (!SheetNameMayOccur(text.get(), oldName)) continue;
    const std::string renamed = RenameSheetInFormula(text.get(), oldName, name);
    if (renamed != text.get()) text.set(renamed.c_str());
  }
  RenameInOtherParts(oldName, name, position);
}

// Formulas elsewhere that name the sheet follow the new name. A sheet this session created by
// copying can be named by no other sheet's formula yet, only by its own and by charts.
void WorkbookDocument::RenameInOtherParts(std::string_view oldName, std::string_view newName, int position) {
  const bool scanSheets = !Entry(position).createdByCopy;
  if (scanSheets) {
    for (int i = 0; i < SheetCount(); ++i) {
      const auto& entry = Entry(i);
      if (!entry.worksheet) continue;
      if (!package_.IsParsed(entry.part) && !SheetNameMayOccur(package_.Bytes(entry.part), oldName)) continue;
      RenameInWorksheetFormulas(Sheet(i, true).root(), oldName, newName);
    }
  } else if (Entry(position).namesItself) {
    RenameInWorksheetFormulas(Sheet(position, true).root(), oldName, newName);
  }
  if (!chartPartsGathered_) {
    chartPartsGathered_ = true;
    chartParts_ = package_.PartNamesWithPrefix("xl/charts/chart");
  }
  for (const auto& part : chartParts_) {
    if (!package_.Has(part)) continue;
    if (!package_.IsParsed(part) && !SheetNameMayOccur(package_.Bytes(part), oldName)) continue;
    RenameInFormulas(package_.Xml(part).document_element(), "//c:f", oldName, newName);
    package_.Park(part);
  }
}

Worksheet WorkbookDocument::Sheet(int position, bool forWrite) {
  // Whoever asks may change the rows the object handed out for values was walking.
  valueSheet_.sheet.reset();
  const auto& entry = Entry(position);
  if (!entry.worksheet)
    throw std::invalid_argument("Bladet " + SheetName(position) + " är inte ett kalkylblad.");
  const bool fresh = !package_.IsParsed(entry.part);
  auto& document = package_.Xml(entry.part);
  if (fresh) Worksheet::Normalize(document);
  if (forWrite && std::find(dirtySheets_.begin(), dirtySheets_.end(), entry.part) == dirtySheets_.end()) {
    dirtySheets_.push_back(entry.part);
  }
  Touch(entry.part);
  return Worksheet(document);
}

Worksheet& WorkbookDocument::SheetForValues(int position) {
  const auto& entry = Entry(position);
  if (valueSheet_.sheet && valueSheet_.documentsFreed == package_.DocumentsFreed() &&
      valueSheet_.part == entry.part) {
    valuesChanged_ = true;
    return *valueSheet_.sheet;
  }
  Worksheet sheet = Sheet(position, true);
  MarkValuesChanged(position);
  valueSheet_.part = entry.part;
  valueSheet_.documentsFreed = package_.DocumentsFreed();
  valueSheet_.sheet = sheet;
  return *valueSheet_.sheet;
}

void WorkbookDocument::Touch(const std::string& part) {
  if (!parsedSheets_.empty() && parsedSheets_.front() == part) return;
  std::erase(parsedSheets_, part);
  parsedSheets_.push_front(part);
  while (parsedSheets_.size() > kParsedSheetLimit) {
    const std::string oldest = parsedSheets_.back();
    parsedSheets_.pop_back();
    if (!package_.IsParsed(oldest)) continue;
    const auto dirty = std::find(dirtySheets_.begin(), dirtySheets_.end(), oldest);
    if (dirty != dirtySheets_.end()) {
      Worksheet(package_.Xml(oldest)).UpdateDimension();
      dirtySheets_.erase(dirty);
    }
    package_.Park(oldest);
  }
}

pugi::xml_document& WorkbookDocument::Styles() {
  std::string part = FindRelatedPart(package_, workbookPart_, reltype::kStyles);
  if (part.empty()) {
    part = package_.FreeName("xl/styles", ".xml", 1);
    part = package_.Has("xl/styles.xml") ? part : "xl/styles.xml";
    package_.SetBytes(part, NewWorkbookStyles());
    AddRelationship(package_, workbookPart_, reltype::kStyles, part);
    SetOverride(package_, part, kStylesType);
  }
  auto& styles = package_.Xml(part);
  DropMainNamespacePrefix(styles);
  return styles;
}

std::string WorkbookDocument::SharedString(int index) {
  if (!sharedStringsLoaded_) {
    sharedStringsLoaded_ = true;
    const std::string part = FindRelatedPart(package_, workbookPart_, reltype::kSharedStrings);
    if (!part.empty() && package_.Has(part)) {
      auto& document = package_.Xml(part);
      DropMainNamespacePrefix(document);
      for (const auto item : document.document_element().children("si")) {
        std::string text = item.child("t").text().get();
        for (const auto run : item.children("r")) text += run.child("t").text().get();
        sharedStrings_.push_back(DecodeCellText(text));
      }
      package_.Park(part);
    }
  }
  if (index < 0 || static_cast<std::size_t>(index) >= sharedStrings_.size()) return {};
  return sharedStrings_[static_cast<std::size_t>(index)];
}

bool WorkbookDocument::HasVbaProject() {
  return !FindRelatedPart(package_, workbookPart_, reltype::kVbaProject).empty();
}

void WorkbookDocument::ShiftLocalSheetIds(int from) {
  if (highestLocalSheetId_ == -2) {
    highestLocalSheetId_ = -1;
    for (const auto name : WorkbookRoot().child("definedNames").children("definedName")) {
      if (const auto local = name.attribute("localSheetId"))
        highestLocalSheetId_ = std::max(highestLocalSheetId_, local.as_int());
    }
  }
  // A page appended behind every sheet moves no name: spare the walk over thousands of them.
  if (from > highestLocalSheetId_) return;
  NamesChanged();
  for (auto name : WorkbookRoot().child("definedNames").children("definedName")) {
    auto local = name.attribute("localSheetId");
    if (local && local.as_int() >= from) local = local.as_int() + 1;
  }
  ++highestLocalSheetId_;
}

void WorkbookDocument::CopyDefinedNames(int source, int copy, std::string_view sourceName,
                                        std::string_view copyName) {
  auto names = WorkbookRoot().child("definedNames");
  NameIndex& index = Names();
  // Another sheet's copies may sit between a name and where its last copy went.
  if (index.lastSource != source) index.walks.clear();
  index.lastSource = source;
  // The copy takes the source's own names, and a name of its own for each workbook name that
  // refers to the source, so that on the copy such a name means the copy.
  std::vector<std::pair<pugi::xml_node, std::string>> originals;
  if (const auto found = index.bySheet.find(source); found != index.bySheet.end()) {
    for (auto name : found->second)
      originals.emplace_back(name, RenameSheetInFormula(name.text().get(), sourceName, copyName));
  }
  const std::size_t ownNames = originals.size();
  for (auto name : index.workbookScoped) {
    if (!SheetNameMayOccur(name.text().get(), sourceName)) continue;
    // A name of the source's own of the same name already covers it.
    const bool covered = std::any_of(
        originals.begin(), originals.begin() + static_cast<std::ptrdiff_t>(ownNames), [&](const auto& own) {
          return base::EqualsIgnoreCase(own.first.attribute("name").value(), name.attribute("name").value());
        });
    if (covered) continue;
    std::string refersTo = RenameSheetInFormula(name.text().get(), sourceName, copyName);
    if (refersTo != name.text().get()) originals.emplace_back(name, std::move(refersTo));
  }
  for (const auto& [original, refersTo] : originals) {
    // Excel keeps the names sorted by name, then by sheet: the copy goes behind the same name's
    // entries for earlier sheets. The walk goes on from where the previous copy of this name went
    // when every entry passed then belongs before this copy too.
    auto before = original;
    int highestWalked = -1;
    if (const auto walk = index.walks.find(original);
        walk != index.walks.end() && walk->second.highestWalked < copy) {
      before = walk->second.before;
      highestWalked = walk->second.highestWalked;
    }
    for (auto next = before.next_sibling("definedName");
         next && base::EqualsIgnoreCase(next.attribute("name").value(), original.attribute("name").value()) &&
         next.attribute("localSheetId") && next.attribute("localSheetId").as_int() < copy;
         next = next.next_sibling("definedName")) {
      before = next;
      highestWalked = std::max(highestWalked, next.attribute("localSheetId").as_int());
    }
    auto duplicate = names.insert_copy_after(original, before);
    if (auto local = duplicate.attribute("localSheetId")) {
      local = copy;
    } else {
      duplicate.insert_attribute_after("localSheetId", duplicate.attribute("name")) = copy;
    }
    duplicate.text().set(refersTo.c_str());
    index.bySheet[copy].push_back(duplicate);
    index.walks[original] = NameIndex::Walk{before, highestWalked};
  }
}

WorkbookDocument::NameIndex& WorkbookDocument::Names() {
  if (!names_.built) {
    names_.built = true;
    for (auto name : WorkbookRoot().child("definedNames").children("definedName")) {
      if (const auto local = name.attribute("localSheetId")) {
        names_.bySheet[local.as_int()].push_back(name);
      } else {
        names_.workbookScoped.push_back(name);
      }
    }
  }
  return names_;
}

std::string WorkbookDocument::Serialize(std::string_view extension) {
  PrepareForSave(extension);
  return package_.ToZip();
}

void WorkbookDocument::PrepareForSave(std::string_view extension) {
  valueSheet_.sheet.reset();  // the sheets written so far are no longer marked dirty after this
  for (const auto& part : dirtySheets_) {
    if (package_.IsParsed(part)) Worksheet(package_.Xml(part)).UpdateDimension();
  }
  dirtySheets_.clear();
  if (valuesChanged_) DropCachedFormulaResults();
  RemoveCalcChain();
  auto calcPr = WorkbookChild(WorkbookRoot(), "calcPr");
  calcPr.remove_attribute("fullCalcOnLoad");
  calcPr.append_attribute("fullCalcOnLoad") = 1;
  SetMacroContent(base::EqualsIgnoreCase(extension, ".xlsm"));
  UpdateSelectionFlags();
  UpdateAppProperties();
}

// Excel recalculates on load anyway (fullCalcOnLoad), but other readers show what the file holds,
// and a page copied from the template still holds the template's results. Sheets waiting as text
// are parsed one after another, so no more than the usual number stay parsed at once.
void WorkbookDocument::MarkValuesChanged(int position) {
  valuesChanged_ = true;
  const auto& entry = Entry(position);
  if (!entry.worksheet || withoutResults_.contains(entry.part)) return;
  Sheet(position, false).DropCachedFormulaResults();
  withoutResults_.insert(entry.part);
}

void WorkbookDocument::DropCachedFormulaResults() {
  for (int i = 0; i < SheetCount(); ++i) {
    const auto& entry = Entry(i);
    if (!entry.worksheet || withoutResults_.contains(entry.part)) continue;
    if (!package_.IsParsed(entry.part)) {
      const std::string& bytes = package_.Bytes(entry.part);
      const bool formulas = bytes.find("<f") != std::string::npos || bytes.find(":f") != std::string::npos;
      const bool values = bytes.find("<v") != std::string::npos || bytes.find(":v") != std::string::npos ||
                          bytes.find("<is") != std::string::npos || bytes.find(":is") != std::string::npos;
      if (!formulas || !values) continue;
    }
    Sheet(i, false).DropCachedFormulaResults();
    withoutResults_.insert(entry.part);
  }
  valuesChanged_ = false;
}

void WorkbookDocument::RemoveCalcChain() {
  for (const auto& relationship : ReadRelationships(package_, workbookPart_)) {
    if (relationship.type != reltype::kCalcChain) continue;
    RemoveRelationship(package_, workbookPart_, relationship.id);
    if (!relationship.external) {
      package_.Remove(relationship.partName);
      RemoveOverride(package_, relationship.partName);
    }
  }
}

void WorkbookDocument::SetMacroContent(bool macro) {
  SetOverride(package_, workbookPart_, macro ? contenttype::kMacroWorkbook : contenttype::kWorkbook);
  if (macro) return;
  for (const auto& relationship : ReadRelationships(package_, workbookPart_)) {
    if (relationship.type != reltype::kVbaProject) continue;
    RemoveRelationship(package_, workbookPart_, relationship.id);
    if (relationship.external) continue;
    for (const auto& signature : ReadRelationships(package_, relationship.partName)) {
      if (!signature.external) {
        package_.Remove(signature.partName);
        RemoveOverride(package_, signature.partName);
      }
    }
    package_.Remove(RelsPartName(relationship.partName));
    package_.Remove(relationship.partName);
    RemoveOverride(package_, relationship.partName);
  }
  // The "bin" default of a macro workbook says "VBA project"; printer settings that relied on it
  // need their own type now.
  auto types = package_.Xml(kContentTypesPart).document_element();
  for (auto node : types.children("Default")) {
    if (node.attribute("ContentType").value() != contenttype::kVbaProject) continue;
    for (const auto& part : package_.PartNames()) {
      const std::string lower = base::AsciiLower(part);
      if (lower.size() > 4 && lower.substr(lower.size() - 4) == ".bin" &&
          ContentTypeOf(package_, part) == contenttype::kVbaProject) {
        SetOverride(package_, part,
                    lower.find("printersettings") != std::string::npos
                        ? contenttype::kPrinterSettings
                        : "application/vnd.openxmlformats-officedocument.oleObject");
      }
    }
    types.remove_child(node);
    break;
  }
}

void WorkbookDocument::UpdateSelectionFlags() {
  auto root = WorkbookRoot();
  auto views = WorkbookChild(root, "bookViews");
  auto view = views.child("workbookView");
  if (!view) view = views.append_child("workbookView");
  view.remove_attribute("activeTab");
  if (activeSheet_ > 0) view.append_attribute("activeTab") = activeSheet_;
  if (auto first = view.attribute("firstSheet"); first && first.as_int() > activeSheet_) first = activeSheet_;
  for (int i = 0; i < SheetCount(); ++i) {
    const auto& entry = Entry(i);
    if (!entry.worksheet) {
      SetChartSheetTabSelected(package_, entry.part, i == activeSheet_);
      continue;
    }
    if (i == activeSheet_) {
      Sheet(i, false).SetTabSelected(true);
      continue;
    }
    if (!package_.IsParsed(entry.part) &&
        package_.Bytes(entry.part).find("tabSelected") == std::string::npos) {
      continue;
    }
    Sheet(i, false).SetTabSelected(false);
  }
}

void WorkbookDocument::UpdateAppProperties() {
  const std::string part = FindRelatedPart(package_, "", reltype::kExtendedProperties);
  if (part.empty() || !package_.Has(part)) return;
  auto properties = package_.Xml(part).document_element();
  auto headingVector = properties.child("HeadingPairs").child("vt:vector");
  auto titleVector = properties.child("TitlesOfParts").child("vt:vector");
  if (!headingVector || !titleVector) return;

  struct Group {
    std::string label;
    std::vector<std::string> titles;
  };
  std::vector<Group> groups;
  std::vector<std::string> oldTitles;
  for (const auto title : titleVector.children()) oldTitles.emplace_back(title.text().get());
  std::size_t next = 0;
  for (auto variant = headingVector.first_child(); variant; variant = variant.next_sibling()) {
    const auto countVariant = variant.next_sibling();
    if (!countVariant) break;
    Group group{variant.first_child().text().get(), {}};
    const int count = countVariant.first_child().text().as_int();
    for (int k = 0; k < count && next < oldTitles.size(); ++k) group.titles.push_back(oldTitles[next++]);
    groups.push_back(std::move(group));
    variant = countVariant;
  }
  std::vector<std::string> worksheets;
  for (int i = 0; i < SheetCount(); ++i) {
    if (Entry(i).worksheet) worksheets.push_back(SheetName(i));
  }
  std::vector<std::string> names;
  for (const auto name : WorkbookRoot().child("definedNames").children("definedName")) {
    if (name.attribute("hidden").as_bool()) continue;
    std::string shown = name.attribute("name").value();
    if (StartsWith(shown, "_xlnm.")) shown.erase(0, 6);
    if (const auto local = name.attribute("localSheetId")) {
      if (local.as_int() < 0 || local.as_int() >= SheetCount()) continue;
      shown = QuoteSheetNameForFormula(SheetName(local.as_int())) + "!" + shown;
    }
    names.push_back(std::move(shown));
  }
  const auto isLabel = [](const std::string& label, std::initializer_list<std::string_view> options) {
    return std::any_of(options.begin(), options.end(), [&](std::string_view o) { return label == o; });
  };
  bool haveNames = false;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    if (g == 0) {
      groups[g].titles = worksheets;  // Excel lists the worksheets first
    } else if (isLabel(groups[g].label, {"Named Ranges", "Namngivna områden", "Benannte Bereiche"})) {
      groups[g].titles = names;
      haveNames = true;
    }
  }
  if (!haveNames && !names.empty()) groups.push_back(Group{"Named Ranges", names});
  std::erase_if(groups, [](const Group& group) { return group.titles.empty(); });

  while (auto child = headingVector.first_child()) headingVector.remove_child(child);
  while (auto child = titleVector.first_child()) titleVector.remove_child(child);
  std::size_t titleCount = 0;
  for (const auto& group : groups) {
    headingVector.append_child("vt:variant").append_child("vt:lpstr").text().set(group.label.c_str());
    headingVector.append_child("vt:variant")
        .append_child("vt:i4")
        .text()
        .set(static_cast<int>(group.titles.size()));
    for (const auto& title : group.titles) titleVector.append_child("vt:lpstr").text().set(title.c_str());
    titleCount += group.titles.size();
  }
  headingVector.attribute("size") = static_cast<unsigned>(groups.size() * 2);
  titleVector.attribute("size") = static_cast<unsigned>(titleCount);
}

}  // namespace sw::excel
