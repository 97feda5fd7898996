#pragma once
// The back end behind the automation handles: one virtual per Excel member the program calls.
// Handles (automation.h) carry only an engine pointer and ids, so an engine that forwards every call
// to Excel itself, the built-in package engine and the recording double all fit the same seam.
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "excel/constants.h"

namespace sw::excel {

using WorkbookId = int;  // 0 = no workbook (a handle that was never set)
using SheetId = int;     // stable for the sheet's life, whatever its position

struct SheetRef {
  WorkbookId workbook = 0;
  SheetId sheet = 0;
};

// What part of a sheet a range covers. Rows and columns are 1-based and inclusive.
enum class RangeShape { kCells, kEntireRows, kEntireColumns, kAllCells };
// How the caller reached the range. The engine over Excel itself calls Excel's own Selection or
// ActiveCell for such a range, so that after a Select Excel refused the call still works on what Excel
// has selected, as the program always did; the recording double writes it down as "Selection.Copy".
enum class RangeOrigin { kAddress, kSelection, kActiveCell };

struct RangeRef {
  SheetRef sheet;
  int firstRow = 1;
  int firstColumn = 1;
  int lastRow = 1;
  int lastColumn = 1;
  RangeShape shape = RangeShape::kCells;
  RangeOrigin origin = RangeOrigin::kAddress;
};

// Excel's own limits on a worksheet.
inline constexpr int kMaxRows = 1048576;
inline constexpr int kMaxColumns = 16384;

// The arguments of Workbooks.Open the program passes, as given: UpdateLinks is the second positional
// argument, ReadOnly the third (usually named). An unset one is left out of the call.
struct OpenArguments {
  std::optional<bool> updateLinks;
  std::optional<bool> readOnly;
};

// Workbooks.OpenText's named arguments (values as Excel numbers them).
struct OpenTextOptions {
  std::string fileName;
  int origin = 2;  // xlWindows: the text is in the Windows ANSI code page
  int startRow = 1;
  XlTextParsingType dataType = XlTextParsingType::xlDelimited;
  XlTextQualifier textQualifier = XlTextQualifier::xlTextQualifierNone;
  bool consecutiveDelimiter = false;
  bool tab = true;
  bool semicolon = false;
  bool comma = false;
  bool space = false;
  bool other = false;
  char otherChar = '\0';
  // (column, XlColumnDataType) pairs; columns not listed are imported as general.
  std::vector<std::pair<int, XlColumnDataType>> fieldInfo;
  // Not Excel's: the built-in engine reports how many of the file's rows it has put into the new sheet,
  // (0, rows) before the first, then in steps of about 1 % and (rows, rows) at the end, so that a
  // window can show its progress. Excel, a program of its own, shows its own and is not asked.
  std::function<void(int rowsDone, int rowCount)> rowsWritten;
};

class Engine {
 public:
  virtual ~Engine() = default;

  // Application
  virtual void SetVisible(bool visible) = 0;
  virtual bool Visible() = 0;
  virtual void SetCutCopyMode(bool mode) = 0;
  virtual void Quit() = 0;
  virtual WorkbookId ActiveWorkbook() = 0;
  virtual RangeRef Selection() = 0;
  virtual RangeRef ActiveCell() = 0;
  virtual SheetRef ActiveSheet() = 0;

  // Workbooks
  virtual WorkbookId OpenWorkbook(const std::string& path, const OpenArguments& arguments) = 0;
  virtual WorkbookId OpenText(const OpenTextOptions& options) = 0;
  virtual int WorkbookCount() = 0;
  virtual WorkbookId WorkbookAt(int index) = 0;

  // Workbook
  virtual int SheetCount(WorkbookId workbook) = 0;
  virtual SheetRef SheetAt(WorkbookId workbook, int index) = 0;  // 1-based
  virtual void SaveAs(WorkbookId workbook, const std::string& path) = 0;
  virtual void Save(WorkbookId workbook) = 0;
  virtual void Close(WorkbookId workbook, bool saveChanges) = 0;
  virtual std::string FullName(WorkbookId workbook) = 0;

  // Sheet
  virtual int SheetIndex(SheetRef sheet) = 0;
  virtual std::string SheetName(SheetRef sheet) = 0;
  virtual void SetSheetName(SheetRef sheet, std::string_view name) = 0;
  virtual void CopySheetAfter(SheetRef source, SheetRef after) = 0;
  virtual void SelectSheet(SheetRef sheet) = 0;
  virtual void AddPageBreak(SheetRef sheet, const RangeRef& before) = 0;
  virtual int PageBreakCount(SheetRef sheet) = 0;

  // Range
  virtual void SetValue(const RangeRef& range, std::string_view text) = 0;
  virtual std::string Value(const RangeRef& range) = 0;  // text of the top-left cell
  virtual void Select(const RangeRef& range) = 0;
  virtual void ClearContents(const RangeRef& range) = 0;
  virtual void Copy(const RangeRef& range) = 0;
  virtual void PasteSpecial(const RangeRef& range, XlPasteType paste) = 0;
  virtual void SetBorderWeight(const RangeRef& range, XlBordersIndex edge, XlBorderWeight weight) = 0;
  virtual void AutoFit(const RangeRef& range) = 0;
};

}  // namespace sw::excel
