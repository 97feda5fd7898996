#pragma once
// The Excel automation object model as the program uses it. Objects are small handles (an engine
// pointer and ids), cheap to copy, valid while their Application lives. Every failure throws
// base::NumberedError with Excel's run-time error number, so callers can react by number as they would
// to Excel itself.
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/numbered_error.h"
#include "excel/constants.h"
#include "excel/engine.h"

namespace sw::excel {

class Range;

class Border {
 public:
  Border() = default;
  Border(Engine* engine, RangeRef range, XlBordersIndex edge) : engine_(engine), range_(range), edge_(edge) {}
  void SetWeight(XlBorderWeight weight);

 private:
  Engine* engine_ = nullptr;
  RangeRef range_;
  XlBordersIndex edge_ = XlBordersIndex::xlEdgeBottom;
};

class Range {
 public:
  Range() = default;
  Range(Engine* engine, RangeRef ref) : engine_(engine), ref_(ref) {}

  void SetValue(std::string_view text);  // Value = text (always stored as text)
  std::string Value() const;
  void Select();
  void ClearContents();
  void Copy();
  void PasteSpecial(XlPasteType paste);
  Border Borders(XlBordersIndex edge) const;
  Range EntireColumn() const;
  void AutoFit();
  int Row() const { return ref_.firstRow; }
  int Column() const { return ref_.firstColumn; }
  const RangeRef& ref() const { return ref_; }

 private:
  void Check() const;
  Engine* engine_ = nullptr;
  RangeRef ref_;
};

class HPageBreaks {
 public:
  HPageBreaks() = default;
  HPageBreaks(Engine* engine, SheetRef sheet) : engine_(engine), sheet_(sheet) {}
  void Add(const Range& before);
  int Count() const;

 private:
  Engine* engine_ = nullptr;
  SheetRef sheet_;
};

class Sheet {
 public:
  Sheet() = default;
  Sheet(Engine* engine, SheetRef ref) : engine_(engine), ref_(ref) {}

  std::string Name() const;
  void SetName(std::string_view name);
  int Index() const;
  void CopyAfter(const Sheet& after);  // Copy After:=after
  void Select();
  sw::excel::Range Cells(int row, int column) const;
  sw::excel::Range Cells() const;  // every cell of the sheet
  sw::excel::Range Range(const sw::excel::Range& first, const sw::excel::Range& last) const;
  sw::excel::Range Range(std::string_view address) const;  // "A1" or "A1:C3"
  sw::excel::Range Rows(std::string_view rows) const;      // "12:12" or "12:20"
  sw::excel::HPageBreaks HPageBreaks() const;
  const SheetRef& ref() const { return ref_; }

 private:
  void Check() const;
  Engine* engine_ = nullptr;
  SheetRef ref_;
};

class Sheets {
 public:
  Sheets() = default;
  Sheets(Engine* engine, WorkbookId workbook) : engine_(engine), workbook_(workbook) {}
  int Count() const;
  Sheet Item(int index) const;  // 1-based
  Sheet operator()(int index) const { return Item(index); }

 private:
  Engine* engine_ = nullptr;
  WorkbookId workbook_ = 0;
};

class Workbook {
 public:
  Workbook() = default;
  Workbook(Engine* engine, WorkbookId id) : engine_(engine), id_(id) {}

  sw::excel::Sheets Sheets() const;
  sw::excel::Sheets Worksheets() const;  // the program's workbooks hold worksheets only
  void SaveAs(const std::string& path);
  void Save();
  void Close(bool saveChanges);
  std::string FullName() const;
  bool IsSet() const { return engine_ != nullptr && id_ != 0; }
  WorkbookId id() const { return id_; }

 private:
  void Check() const;
  Engine* engine_ = nullptr;
  WorkbookId id_ = 0;
};

class Workbooks {
 public:
  Workbooks() = default;
  explicit Workbooks(Engine* engine) : engine_(engine) {}
  Workbook Open(const std::string& path, bool readOnly = false);  // Open path, ReadOnly:=readOnly
  Workbook Open(const std::string& path, const OpenArguments& arguments);
  Workbook OpenText(const OpenTextOptions& options);
  int Count() const;
  Workbook Item(int index) const;

 private:
  Engine* engine_ = nullptr;
};

class Application {
 public:
  explicit Application(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}

  sw::excel::Workbooks Workbooks() { return sw::excel::Workbooks(engine_.get()); }
  Workbook ActiveWorkbook();
  sw::excel::Sheets Sheets();  // of the active workbook
  Sheet ActiveSheet();
  Range Selection();
  Range ActiveCell();
  void SetVisible(bool visible) { engine_->SetVisible(visible); }
  bool Visible() { return engine_->Visible(); }
  void SetCutCopyMode(bool mode) { engine_->SetCutCopyMode(mode); }
  void Quit() { engine_->Quit(); }
  Engine& engine() { return *engine_; }

 private:
  std::unique_ptr<Engine> engine_;
};

// Raised for a call on a handle that was never set, as VB raises it for an unset object variable.
[[noreturn]] void ThrowObjectNotSet();

}  // namespace sw::excel
