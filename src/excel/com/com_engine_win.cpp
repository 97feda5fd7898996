#include "excel/com/com_engine_win.h"

#include <windows.h>

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "base/error_numbers.h"
#include "excel/automation.h"
#include "excel/cell_address.h"
#include "excel/cell_blocks.h"
#include "excel/com/dispatch_win.h"

namespace sw::excel::com {
namespace {

// One apartment for the thread that owns every Excel pointer; left after they are all released.
class Apartment {
 public:
  Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }

 private:
  HRESULT result_;
};

// Excel parses a text it is given as if typed, so "007" would become the number 7. The leading
// apostrophe makes it text, as the program's values always are, and is not part of the value.
Variant CellText(std::string_view text) {
  if (text.empty()) return Variant::Text(text);
  return Variant::Text("'" + std::string(text));
}

std::string RowsAddress(int first, int last) {
  return std::to_string(first) + ":" + std::to_string(last);
}

class ComEngine final : public Engine {
 public:
  ComEngine(const ApplicationCreator& create, ComEngineOptions options) : options_(options) {
    ComPtr<IDispatch> application;
    const HRESULT result = create(application.Receive());
    if (FAILED(result) || !application) {
      throw base::NumberedError(kCannotCreateObject);
    }
    app_ = Dispatch(std::move(application), L"Application", &ids_);
  }
  ComEngine(const ComEngine&) = delete;
  ComEngine& operator=(const ComEngine&) = delete;

  ~ComEngine() override {
    try {
      Flush();
      // Excel started by automation ends with its last reference unless the user has it; the
      // result stays open for the user.
      if (visible_ && !quit_) app_.Put(L"UserControl", Variant::Bool(true));
    } catch (...) {
      // Excel has gone or refuses, and a destructor has no one to tell; nothing more can be done.
    }
  }

  // Application
  void SetVisible(bool visible) override {
    Flush();
    app_.Put(L"Visible", Variant::Bool(visible));
    visible_ = visible;
  }
  bool Visible() override {
    Flush();
    return app_.Get(L"Visible").ToBool();
  }
  void SetCutCopyMode(bool mode) override {
    Flush();
    app_.Put(L"CutCopyMode", Variant::Bool(mode));
  }
  void Quit() override {
    Flush();
    books_.clear();
    app_.Call(L"Quit");
    quit_ = true;
  }
  WorkbookId ActiveWorkbook() override {
    Flush();
    const ComPtr<IDispatch> workbook = app_.Get(L"ActiveWorkbook").ToObject();
    if (!workbook) return 0;
    return RememberBook(Dispatch(workbook, L"Workbook", &ids_));
  }
  RangeRef Selection() override {
    RangeRef range = SelectionOn(ActiveSheet());
    range.origin = RangeOrigin::kSelection;
    return range;
  }
  RangeRef ActiveCell() override {
    RangeRef cell = SelectionOn(ActiveSheet());
    cell.lastRow = cell.firstRow;
    cell.lastColumn = cell.firstColumn;
    cell.shape = RangeShape::kCells;
    cell.origin = RangeOrigin::kActiveCell;
    return cell;
  }
  SheetRef ActiveSheet() override {
    const WorkbookId workbook = ActiveWorkbook();
    if (workbook == 0) ThrowObjectNotSet();
    return SheetRef{workbook, RememberSheet(workbook, app_.Object(L"ActiveSheet", L"Worksheet"))};
  }

  // Workbooks
  WorkbookId OpenWorkbook(const std::string& path, const OpenArguments& arguments) override {
    Flush();
    std::vector<Variant> positional;
    positional.push_back(Variant::Text(path));
    if (arguments.updateLinks) positional.push_back(Variant::Bool(*arguments.updateLinks));
    std::vector<NamedArgument> named;
    if (arguments.readOnly) named.push_back({L"ReadOnly", Variant::Bool(*arguments.readOnly)});
    const ComPtr<IDispatch> workbook =
        Workbooks().Call(L"Open", std::move(positional), std::move(named)).ToObject();
    selection_ = RangeRef{};
    if (!workbook) return ActiveWorkbook();
    return RememberBook(Dispatch(workbook, L"Workbook", &ids_));
  }

  WorkbookId OpenText(const OpenTextOptions& options) override {
    Flush();
    std::vector<NamedArgument> named;
    named.push_back({L"FileName", Variant::Text(options.fileName)});
    named.push_back({L"Origin", Variant::Int(options.origin)});
    named.push_back({L"StartRow", Variant::Int(options.startRow)});
    named.push_back({L"DataType", Variant::Int(static_cast<long>(options.dataType))});
    named.push_back({L"TextQualifier", Variant::Int(static_cast<long>(options.textQualifier))});
    named.push_back({L"ConsecutiveDelimiter", Variant::Bool(options.consecutiveDelimiter)});
    named.push_back({L"Tab", Variant::Bool(options.tab)});
    named.push_back({L"Semicolon", Variant::Bool(options.semicolon)});
    named.push_back({L"Comma", Variant::Bool(options.comma)});
    named.push_back({L"Space", Variant::Bool(options.space)});
    named.push_back({L"Other", Variant::Bool(options.other)});
    if (options.other) named.push_back({L"OtherChar", Variant::Text(std::string(1, options.otherChar))});
    std::vector<Variant> fields;
    for (const auto& [column, type] : options.fieldInfo) {
      std::vector<Variant> pair;
      pair.push_back(Variant::Int(column));
      pair.push_back(Variant::Int(static_cast<long>(type)));
      fields.push_back(Variant::List(std::move(pair)));
    }
    named.push_back({L"FieldInfo", Variant::List(std::move(fields))});
    // OpenText gives nothing back; the text opens as the active workbook.
    Workbooks().Call(L"OpenText", {}, std::move(named));
    selection_ = RangeRef{};
    return ActiveWorkbook();
  }

  int WorkbookCount() override {
    Flush();
    return static_cast<int>(Workbooks().Get(L"Count").ToInt());
  }
  WorkbookId WorkbookAt(int index) override {
    Flush();
    return RememberBook(Workbooks().Object(L"Item", L"Workbook", Arguments(Variant::Int(index))));
  }

  // Workbook
  int SheetCount(WorkbookId workbook) override {
    Flush();
    return static_cast<int>(SheetsOf(workbook).Get(L"Count").ToInt());
  }
  SheetRef SheetAt(WorkbookId workbook, int index) override {
    Flush();
    const Dispatch sheet = SheetsOf(workbook).Object(L"Item", L"Worksheet", Arguments(Variant::Int(index)));
    return SheetRef{workbook, RememberSheet(workbook, sheet)};
  }
  void SaveAs(WorkbookId workbook, const std::string& path) override {
    Flush();
    FindBook(workbook).workbook.Call(L"SaveAs", Arguments(Variant::Text(path)));
  }
  void Save(WorkbookId workbook) override {
    Flush();
    FindBook(workbook).workbook.Call(L"Save");
  }
  void Close(WorkbookId workbook, bool saveChanges) override {
    Flush();
    std::vector<NamedArgument> named;
    named.push_back({L"SaveChanges", Variant::Bool(saveChanges)});
    FindBook(workbook).workbook.Call(L"Close", {}, std::move(named));
    books_.erase(workbook);
  }
  std::string FullName(WorkbookId workbook) override {
    Flush();
    return FindBook(workbook).workbook.Get(L"FullName").ToText();
  }

  // Sheet
  int SheetIndex(SheetRef sheet) override {
    Flush();
    return static_cast<int>(SheetObject(sheet).Get(L"Index").ToInt());
  }
  std::string SheetName(SheetRef sheet) override {
    Flush();
    return SheetObject(sheet).Get(L"Name").ToText();
  }
  void SetSheetName(SheetRef sheet, std::string_view name) override {
    Flush();
    SheetObject(sheet).Put(L"Name", Variant::Text(name));
  }
  void CopySheetAfter(SheetRef source, SheetRef after) override {
    Flush();
    std::vector<NamedArgument> named;
    named.push_back({L"After", Variant::Object(SheetObject(after).get())});
    SheetObject(source).Call(L"Copy", {}, std::move(named));
    selection_ = RangeRef{};
  }
  void SelectSheet(SheetRef sheet) override {
    Flush();
    SheetObject(sheet).Call(L"Select");
    selection_ = RangeRef{sheet};
  }
  void AddPageBreak(SheetRef sheet, const RangeRef& before) override {
    Flush();
    const Dispatch breaks = SheetObject(sheet).Object(L"HPageBreaks", L"HPageBreaks");
    const Dispatch cell = RangeObject(before);
    std::vector<NamedArgument> named;
    named.push_back({L"Before", Variant::Object(cell.get())});
    breaks.Call(L"Add", {}, std::move(named));
  }
  int PageBreakCount(SheetRef sheet) override {
    Flush();
    return static_cast<int>(SheetObject(sheet).Object(L"HPageBreaks", L"HPageBreaks").Get(L"Count").ToInt());
  }

  // Range
  void SetValue(const RangeRef& range, std::string_view text) override {
    const bool oneCell = range.shape == RangeShape::kCells && range.origin == RangeOrigin::kAddress &&
                         range.firstRow == range.lastRow && range.firstColumn == range.lastColumn;
    if (options_.combineWrites && oneCell) {
      pending_.push_back(PendingWrite{range.sheet, range.firstRow, range.firstColumn, std::string(text)});
      return;
    }
    Flush();
    RangeObject(range).Put(L"Value", CellText(text));
  }
  std::string Value(const RangeRef& range) override {
    Flush();
    RangeRef corner = range;
    if (range.origin == RangeOrigin::kAddress) {
      corner.shape = RangeShape::kCells;
      corner.lastRow = corner.firstRow;
      corner.lastColumn = corner.firstColumn;
      return RangeObject(corner).Get(L"Value").ToText();
    }
    return RangeObject(range)
        .Object(L"Cells", L"Range", Arguments(Variant::Int(1), Variant::Int(1)))
        .Get(L"Value")
        .ToText();
  }
  void Select(const RangeRef& range) override {
    Flush();
    RangeObject(range).Call(L"Select");
    selection_ = range;
    selection_.origin = RangeOrigin::kAddress;
  }
  void ClearContents(const RangeRef& range) override {
    Flush();
    RangeObject(range).Call(L"ClearContents");
  }
  void Copy(const RangeRef& range) override {
    Flush();
    RangeObject(range).Call(L"Copy");
  }
  void PasteSpecial(const RangeRef& range, XlPasteType paste) override {
    Flush();
    std::vector<NamedArgument> named;
    named.push_back({L"Paste", Variant::Int(static_cast<long>(paste))});
    RangeObject(range).Call(L"PasteSpecial", {}, std::move(named));
  }
  void SetBorderWeight(const RangeRef& range, XlBordersIndex edge, XlBorderWeight weight) override {
    Flush();
    RangeObject(range)
        .Object(L"Borders", L"Border", Arguments(Variant::Int(static_cast<long>(edge))))
        .Put(L"Weight", Variant::Int(static_cast<long>(weight)));
  }
  void AutoFit(const RangeRef& range) override {
    Flush();
    RangeObject(range).Call(L"AutoFit");
  }

 private:
  struct SheetEntry {
    Dispatch sheet;
    ComPtr<IUnknown> identity;
  };
  struct Book {
    Dispatch workbook;
    ComPtr<IUnknown> identity;
    Dispatch sheets;  // the workbook's live Sheets collection, fetched once
    std::map<SheetId, SheetEntry> sheetsById;
  };
  struct PendingWrite {
    SheetRef sheet;
    int row;
    int column;
    std::string text;
  };

  template <typename... Values>
  static std::vector<Variant> Arguments(Values&&... values) {
    std::vector<Variant> arguments;
    (arguments.push_back(std::forward<Values>(values)), ...);
    return arguments;
  }

  Dispatch Workbooks() const { return app_.Object(L"Workbooks", L"Workbooks"); }

  Book& FindBook(WorkbookId id) {
    const auto book = books_.find(id);
    if (book == books_.end()) ThrowObjectNotSet();
    return book->second;
  }

  // The same workbook object always gets the same id, however it was reached.
  WorkbookId RememberBook(Dispatch workbook) {
    ComPtr<IUnknown> identity = Identity(workbook.get());
    for (const auto& [id, book] : books_) {
      if (book.identity.get() == identity.get()) return id;
    }
    const WorkbookId id = ++lastWorkbookId_;
    books_[id] = Book{std::move(workbook), std::move(identity), {}, {}};
    return id;
  }

  SheetId RememberSheet(WorkbookId workbook, Dispatch sheet) {
    ComPtr<IUnknown> identity = Identity(sheet.get());
    Book& book = FindBook(workbook);
    for (const auto& [id, entry] : book.sheetsById) {
      if (entry.identity.get() == identity.get()) return id;
    }
    const SheetId id = ++lastSheetId_;
    book.sheetsById[id] = SheetEntry{std::move(sheet), std::move(identity)};
    return id;
  }

  const Dispatch& SheetsOf(WorkbookId workbook) {
    Book& book = FindBook(workbook);
    if (!book.sheets) book.sheets = book.workbook.Object(L"Sheets", L"Sheets");
    return book.sheets;
  }

  const Dispatch& SheetObject(SheetRef sheet) {
    Book& book = FindBook(sheet.workbook);
    const auto entry = book.sheetsById.find(sheet.sheet);
    if (entry == book.sheetsById.end()) ThrowObjectNotSet();
    return entry->second.sheet;
  }

  RangeRef SelectionOn(SheetRef sheet) const {
    RangeRef range{sheet};
    if (selection_.sheet.workbook == sheet.workbook && selection_.sheet.sheet == sheet.sheet) {
      range = selection_;
    }
    return range;
  }

  Dispatch RangeObject(const RangeRef& range) {
    if (range.origin == RangeOrigin::kSelection) return app_.Object(L"Selection", L"Range");
    if (range.origin == RangeOrigin::kActiveCell) return app_.Object(L"ActiveCell", L"Range");
    const Dispatch& sheet = SheetObject(range.sheet);
    switch (range.shape) {
      case RangeShape::kAllCells:
        return sheet.Object(L"Cells", L"Range");
      case RangeShape::kEntireRows:
        return sheet.Object(L"Rows", L"Range",
                            Arguments(Variant::Text(RowsAddress(range.firstRow, range.lastRow))));
      case RangeShape::kEntireColumns:
        return sheet.Object(
            L"Columns", L"Range",
            Arguments(Variant::Text(ColumnName(range.firstColumn) + ":" + ColumnName(range.lastColumn))));
      case RangeShape::kCells:
        break;
    }
    if (range.firstRow == range.lastRow && range.firstColumn == range.lastColumn) {
      return sheet.Object(L"Cells", L"Range",
                          Arguments(Variant::Int(range.firstRow), Variant::Int(range.firstColumn)));
    }
    return sheet.Object(L"Range", L"Range",
                        Arguments(Variant::Text(FormatCellAddress(range.firstRow, range.firstColumn) + ":" +
                                                FormatCellAddress(range.lastRow, range.lastColumn))));
  }

  // One cell as the program writes it: a rejected write (1004) is skipped, anything else goes on.
  void WriteCell(const Dispatch& sheet, int row, int column, const std::string& text) {
    try {
      sheet.Object(L"Cells", L"Range", Arguments(Variant::Int(row), Variant::Int(column)))
          .Put(L"Value", CellText(text));
    } catch (const base::NumberedError& error) {
      if (error.number() != kApplicationDefined) throw;
    }
  }

  void WriteBlock(const Dispatch& sheet, const CellBlock& block,
                  const std::map<std::pair<int, int>, std::string>& texts) {
    if (block.firstRow == block.lastRow && block.firstColumn == block.lastColumn) {
      WriteCell(sheet, block.firstRow, block.firstColumn, texts.at({block.firstRow, block.firstColumn}));
      return;
    }
    try {
      VariantMatrix values(block.lastRow - block.firstRow + 1, block.lastColumn - block.firstColumn + 1);
      for (int row = block.firstRow; row <= block.lastRow; ++row) {
        for (int column = block.firstColumn; column <= block.lastColumn; ++column) {
          values.Set(row - block.firstRow + 1, column - block.firstColumn + 1,
                     CellText(texts.at({row, column})));
        }
      }
      sheet
          .Object(L"Range", L"Range",
                  Arguments(Variant::Text(FormatCellAddress(block.firstRow, block.firstColumn) + ":" +
                                          FormatCellAddress(block.lastRow, block.lastColumn))))
          .Put(L"Value", values.Release());
    } catch (const base::NumberedError&) {
      // Part of the block refused the write: cell by cell, each refused cell skipped on its own
      // as the program skips it.
      for (int row = block.firstRow; row <= block.lastRow; ++row) {
        for (int column = block.firstColumn; column <= block.lastColumn; ++column) {
          WriteCell(sheet, row, column, texts.at({row, column}));
        }
      }
    }
  }

  // Sends the writes held back so far, before anything that could see or depend on them.
  void Flush() {
    if (pending_.empty()) return;
    const std::vector<PendingWrite> writes = std::exchange(pending_, {});
    // Per sheet in the order first written; a cell written twice keeps its last text.
    std::vector<std::pair<SheetRef, std::map<std::pair<int, int>, std::string>>> sheets;
    for (const auto& write : writes) {
      auto sheet = sheets.begin();
      while (sheet != sheets.end() &&
             (sheet->first.workbook != write.sheet.workbook || sheet->first.sheet != write.sheet.sheet)) {
        ++sheet;
      }
      if (sheet == sheets.end()) sheet = sheets.insert(sheets.end(), {write.sheet, {}});
      sheet->second[{write.row, write.column}] = write.text;
    }
    for (const auto& [ref, texts] : sheets) {
      const Dispatch& sheet = SheetObject(ref);
      std::set<std::pair<int, int>> cells;
      for (const auto& entry : texts) cells.insert(entry.first);
      for (const CellBlock& block : CoverWithBlocks(cells)) WriteBlock(sheet, block, texts);
    }
  }

  Apartment apartment_;  // declared first: left last, after every pointer below is released
  ComEngineOptions options_;
  DispatchIds ids_;
  Dispatch app_;
  std::map<WorkbookId, Book> books_;
  WorkbookId lastWorkbookId_ = 0;
  SheetId lastSheetId_ = 0;
  RangeRef selection_;  // as last set through this engine; Excel's own is used for every call
  bool visible_ = false;
  bool quit_ = false;
  std::vector<PendingWrite> pending_;
};

}  // namespace

HRESULT CreateExcelByProgId(IDispatch** application) {
  CLSID clsid;
  const HRESULT found = CLSIDFromProgID(L"Excel.Application", &clsid);
  if (FAILED(found)) return found;
  return CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                          reinterpret_cast<void**>(application));
}

std::unique_ptr<Engine> CreateComEngine(const ApplicationCreator& create, ComEngineOptions options) {
  return std::make_unique<ComEngine>(create, options);
}

}  // namespace sw::excel::com
