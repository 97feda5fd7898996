#pragma once
// One open workbook package: its sheets in order, the workbook part with its defined names and
// views, and the edits Excel makes at this level (copying and renaming sheets, the active sheet,
// saving).
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "excel/package/package.h"
#include "excel/package/worksheet.h"

namespace sw::excel {

class WorkbookDocument {
 public:
  // Throws PackageError when a file that starts with `head` (its first bytes, 8 are enough) and is
  // `size` bytes long cannot be a workbook: an old binary .xls, no zip archive, or too large. Asked
  // before a file is read whole, so a huge file of anything else is refused at once.
  static void CheckFileHead(std::string_view head, std::uintmax_t size, const PackageLimits& limits = {});
  // Throws PackageError: not a workbook, an old binary .xls, Strict Open XML, a damaged package (a
  // part that a relationship names is missing), a part with a document type declaration, or a file
  // whose name promises another format than the one it holds. `fileName`, when known, is the file's
  // name for the messages and for the format its extension promises.
  static std::unique_ptr<WorkbookDocument> FromBytes(std::string_view bytes, const PackageLimits& limits = {},
                                                     std::string_view fileName = {});
  // A workbook of one sheet `sheetName` holding `rows`; cells of columns marked in `textColumns` use
  // the text format, the others general (numbers stored as numbers). `rowsWritten`, when given, hears
  // of the rows put into the sheet as OpenTextOptions::rowsWritten says.
  static std::unique_ptr<WorkbookDocument> FromTable(std::string_view sheetName,
                                                     const std::vector<std::vector<std::string>>& rows,
                                                     const std::vector<bool>& textColumns,
                                                     const std::function<void(int, int)>& rowsWritten = {});

  struct SheetEntry {
    int id = 0;                  // stable handle id, unique in this workbook
    std::string part;            // part name of the sheet
    bool worksheet = true;       // false for chart sheets and the like
    bool createdByCopy = false;  // no formula anywhere can name it yet, but its own
    bool namesItself = false;    // a copy whose own formulas name it
  };

  int SheetCount() const { return static_cast<int>(sheets_.size()); }
  const SheetEntry& Entry(int position) const { return sheets_[static_cast<std::size_t>(position)]; }
  int PositionOf(int id) const;  // -1 when gone
  std::string SheetName(int position) const;
  std::vector<std::string> SheetNames() const;
  // Throws std::invalid_argument with Excel's reason when the name is refused.
  void RenameSheet(int position, std::string_view name);
  // Copies the sheet at `source` to just after `after`; returns the copy's position.
  int CopySheet(int source, int after);

  // The worksheet at `position`, parsed; `forWrite` marks it changed.
  Worksheet Sheet(int position, bool forWrite);
  pugi::xml_document& Styles();
  std::string SharedString(int index);

  int ActiveSheet() const { return activeSheet_; }
  void SetActiveSheet(int position) { activeSheet_ = position; }
  bool HasVbaProject();

  // Cells of the sheet at `position` were written, so results cached in formula cells anywhere may be
  // stale: the written sheet, parsed anyway, loses them at once, the others at the next save.
  void MarkValuesChanged(int position);
  // The sheet at `position` for writing values: Sheet(position, true) after MarkValuesChanged. The
  // same object is handed out again while the writes go on in that sheet and nothing else has had a
  // sheet or freed a parsed part, so it goes on from the row its last write ended at: a page is
  // written cell by cell, and each write looked its sheet up and walked its rows again.
  Worksheet& SheetForValues(int position);

  // The package as it is saved under a name ending in `extension` (".xlsx", ".xlsm").
  std::string Serialize(std::string_view extension);
  // What the last Serialize() gave; empty before the first.
  const std::string& LastSerialized() const { return package_.LastZip(); }

 private:
  WorkbookDocument() = default;
  void Load(std::string_view fileName);
  void RefuseDocumentTypes(std::string_view fileName);
  void RefuseMissingParts(std::string_view fileName);
  void Touch(const std::string& part);
  void ShiftLocalSheetIds(int from);
  void CopyDefinedNames(int source, int copy, std::string_view sourceName, std::string_view copyName);
  std::string CopyPart(const std::string& original, std::string_view sheetName, std::string_view copyName);
  std::string CopyDrawing(const std::string& original, std::string_view sheetName, std::string_view copyName);
  std::string CopyChart(const std::string& original, std::string_view sheetName, std::string_view copyName);
  std::string CopyVml(const std::string& original);
  std::string CopyTable(const std::string& original,
                        std::vector<std::pair<std::string, std::string>>& renamed);
  void WriteRelationshipsLike(const std::string& originalSource, const std::string& copySource,
                              const std::vector<std::pair<std::string, std::string>>& newTargets);
  void RenameInOtherParts(std::string_view oldName, std::string_view newName, int position);
  void PrepareForSave(std::string_view extension);
  void RemoveCalcChain();
  void DropCachedFormulaResults();
  void SetMacroContent(bool macro);
  void UpdateSelectionFlags();
  void UpdateAppProperties();
  pugi::xml_node SheetNode(int position) const;
  pugi::xml_node WorkbookRoot();
  // The <sheet> elements by position and the sheet names, gathered once: a run of thousands of pages
  // looks sheets up by position and name for every page.
  void IndexSheets() const;
  bool NameTaken(std::string_view name, int selfPosition) const;
  void CountName(std::string_view name, int change);

  Package package_;
  std::string workbookPart_;
  std::vector<SheetEntry> sheets_;
  int nextId_ = 1;
  int activeSheet_ = 0;
  std::deque<std::string> parsedSheets_;  // most recently used first
  std::vector<std::string> dirtySheets_;
  std::vector<std::string> sharedStrings_;
  // What copies must not reuse, gathered once from the package and kept up to date by each copy.
  int highestVmlBlock_ = -1;  // -1: not gathered yet
  bool tablesGathered_ = false;
  unsigned highestTableId_ = 0;
  std::set<std::string> tableNames_;  // lower-cased
  bool sharedStringsLoaded_ = false;
  bool valuesChanged_ = false;
  // Sheet parts that hold no cached formula results any more: the engine never writes new ones, so
  // a save need not parse these again (hundreds of copied pages would otherwise each be parsed).
  std::set<std::string> withoutResults_;
  // What SheetForValues handed out last; dropped by Sheet() and whenever a parsed part is freed.
  struct ValueSheet {
    std::string part;
    std::uint64_t documentsFreed = 0;
    std::optional<Worksheet> sheet;
  };
  ValueSheet valueSheet_;

  struct IgnoreCaseLess {
    bool operator()(std::string_view a, std::string_view b) const;
  };
  mutable const pugi::xml_document* indexedWorkbook_ = nullptr;  // null: IndexSheets must run
  mutable std::vector<pugi::xml_node> sheetNodes_;
  mutable std::map<std::string, int, IgnoreCaseLess> nameCounts_;
  mutable unsigned highestSheetId_ = 0;
  mutable std::size_t positionHint_ = 0;  // where PositionOf found the last sheet asked for
  int highestLocalSheetId_ = -2;          // of any defined name; -2: not gathered yet
  // The sheet-scoped defined names by sheet, and where the last copy of each name was put, so that
  // copying a page does not walk every page's names. Whatever inserts, removes or renumbers
  // definedName elements calls NamesChanged().
  struct NameIndex {
    struct Walk {
      pugi::xml_node before;   // the copy of the name went behind this node
      int highestWalked = -1;  // highest localSheetId passed on the way there
    };
    bool built = false;
    int lastSource = -1;
    std::map<int, std::vector<pugi::xml_node>> bySheet;
    std::vector<pugi::xml_node> workbookScoped;  // names without a sheet of their own
    std::map<pugi::xml_node, Walk> walks;        // by original name
  };
  NameIndex& Names();
  void NamesChanged() { names_ = NameIndex{}; }
  NameIndex names_;
  bool chartPartsGathered_ = false;
  std::vector<std::string> chartParts_;  // every chart part, gathered once and kept by CopyChart
};

}  // namespace sw::excel
