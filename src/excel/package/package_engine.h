#pragma once
// The built-in engine: opens .xlsx/.xlsm packages itself and edits them with Excel's observable
// results, so the program works where Excel is not installed.
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/file_io.h"
#include "excel/engine.h"

namespace sw::excel {

class WorkbookDocument;

// What the engine refuses in the workbook file at `path` when it opens it (damaged, a part it cannot
// trust, another format than its name says), in the program's words; empty when it opens, and when
// the file cannot be read at all, which the open itself tells. Lets a run refuse a template before
// it asks where the result goes.
std::string WorkbookFileRefusal(const std::string& path);

class PackageEngine final : public Engine {
 public:
  // Every file is written through `writer` (by default base::WriteFileAtomically).
  explicit PackageEngine(base::FileWriter writer = {});
  ~PackageEngine() override;

  // Opens package bytes held in memory as a workbook named `fullName` (nothing is read from disk).
  WorkbookId OpenBytes(std::string_view bytes, const std::string& fullName, bool readOnly);
  // The bytes Save would write, without writing them.
  std::string SaveToBytes(WorkbookId workbook, std::string_view extension);

  void SetVisible(bool visible) override { visible_ = visible; }
  bool Visible() override { return visible_; }
  void SetCutCopyMode(bool mode) override;
  void Quit() override;
  WorkbookId ActiveWorkbook() override;
  RangeRef Selection() override;
  RangeRef ActiveCell() override;
  SheetRef ActiveSheet() override;

  WorkbookId OpenWorkbook(const std::string& path, const OpenArguments& arguments) override;
  WorkbookId OpenText(const OpenTextOptions& options) override;
  int WorkbookCount() override { return static_cast<int>(order_.size()); }
  WorkbookId WorkbookAt(int index) override;

  int SheetCount(WorkbookId workbook) override;
  SheetRef SheetAt(WorkbookId workbook, int index) override;
  void SaveAs(WorkbookId workbook, const std::string& path) override;
  void Save(WorkbookId workbook) override;
  void Close(WorkbookId workbook, bool saveChanges) override;
  std::string FullName(WorkbookId workbook) override;

  int SheetIndex(SheetRef sheet) override;
  std::string SheetName(SheetRef sheet) override;
  void SetSheetName(SheetRef sheet, std::string_view name) override;
  void CopySheetAfter(SheetRef source, SheetRef after) override;
  void SelectSheet(SheetRef sheet) override;
  void AddPageBreak(SheetRef sheet, const RangeRef& before) override;
  int PageBreakCount(SheetRef sheet) override;

  void SetValue(const RangeRef& range, std::string_view text) override;
  std::string Value(const RangeRef& range) override;
  void Select(const RangeRef& range) override;
  void ClearContents(const RangeRef& range) override;
  void Copy(const RangeRef& range) override;
  void PasteSpecial(const RangeRef& range, XlPasteType paste) override;
  void SetBorderWeight(const RangeRef& range, XlBordersIndex edge, XlBorderWeight weight) override;
  void AutoFit(const RangeRef& range) override;

 private:
  struct Book;
  Book& FindBook(WorkbookId id);
  int Position(SheetRef sheet);
  WorkbookId Adopt(std::unique_ptr<WorkbookDocument> document, const std::string& fullName, bool readOnly,
                   bool fromText);
  void WriteTo(Book& book, const std::string& path);

  std::map<WorkbookId, std::unique_ptr<Book>> books_;
  std::vector<WorkbookId> order_;  // Workbooks collection order; the last opened is active
  WorkbookId active_ = 0;
  WorkbookId lastId_ = 0;
  std::optional<RangeRef> clipboard_;
  bool visible_ = false;
  base::FileWriter writer_;
};

}  // namespace sw::excel
