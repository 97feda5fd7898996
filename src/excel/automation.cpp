#include "excel/automation.h"

#include <charconv>

#include "excel/cell_address.h"

namespace sw::excel {

void ThrowObjectNotSet() {
  throw base::NumberedError(kObjectNotSet);
}

namespace {

[[noreturn]] void ThrowBadAddress(std::string_view address) {
  throw base::NumberedError(kApplicationDefined, "Ogiltig referens: \"" + std::string(address) + "\"");
}

int ParseRowNumber(std::string_view text) {
  int value = 0;
  const auto* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (text.empty() || result.ec != std::errc() || result.ptr != end || value < 1 || value > kMaxRows)
    return 0;
  return value;
}

}  // namespace

void Border::SetWeight(XlBorderWeight weight) {
  if (engine_ == nullptr) ThrowObjectNotSet();
  engine_->SetBorderWeight(range_, edge_, weight);
}

void Range::Check() const {
  if (engine_ == nullptr || ref_.sheet.sheet == 0) ThrowObjectNotSet();
}
void Range::SetValue(std::string_view text) {
  Check();
  engine_->SetValue(ref_, text);
}
std::string Range::Value() const {
  Check();
  return engine_->Value(ref_);
}
void Range::Select() {
  Check();
  engine_->Select(ref_);
}
void Range::ClearContents() {
  Check();
  engine_->ClearContents(ref_);
}
void Range::Copy() {
  Check();
  engine_->Copy(ref_);
}
void Range::PasteSpecial(XlPasteType paste) {
  Check();
  engine_->PasteSpecial(ref_, paste);
}
Border Range::Borders(XlBordersIndex edge) const {
  Check();
  return Border(engine_, ref_, edge);
}
Range Range::EntireColumn() const {
  Check();
  RangeRef columns = ref_;
  columns.shape = ref_.shape == RangeShape::kCells || ref_.shape == RangeShape::kEntireColumns
                      ? RangeShape::kEntireColumns
                      : RangeShape::kAllCells;
  columns.firstRow = 1;
  columns.lastRow = kMaxRows;
  columns.origin = RangeOrigin::kAddress;
  if (columns.shape == RangeShape::kAllCells) {
    columns.firstColumn = 1;
    columns.lastColumn = kMaxColumns;
  }
  return Range(engine_, columns);
}
void Range::AutoFit() {
  Check();
  engine_->AutoFit(ref_);
}

void HPageBreaks::Add(const Range& before) {
  if (engine_ == nullptr) ThrowObjectNotSet();
  engine_->AddPageBreak(sheet_, before.ref());
}
int HPageBreaks::Count() const {
  if (engine_ == nullptr) ThrowObjectNotSet();
  return engine_->PageBreakCount(sheet_);
}

void Sheet::Check() const {
  if (engine_ == nullptr || ref_.sheet == 0) ThrowObjectNotSet();
}
std::string Sheet::Name() const {
  Check();
  return engine_->SheetName(ref_);
}
void Sheet::SetName(std::string_view name) {
  Check();
  engine_->SetSheetName(ref_, name);
}
int Sheet::Index() const {
  Check();
  return engine_->SheetIndex(ref_);
}
void Sheet::CopyAfter(const Sheet& after) {
  Check();
  after.Check();
  engine_->CopySheetAfter(ref_, after.ref_);
}
void Sheet::Select() {
  Check();
  engine_->SelectSheet(ref_);
}
sw::excel::Range Sheet::Cells(int row, int column) const {
  Check();
  if (row < 1 || row > kMaxRows || column < 1 || column > kMaxColumns) {
    throw base::NumberedError(
        kApplicationDefined,
        "Cellen (" + std::to_string(row) + ", " + std::to_string(column) + ") ligger utanför kalkylbladet");
  }
  return sw::excel::Range(engine_, RangeRef{ref_, row, column, row, column});
}
sw::excel::Range Sheet::Cells() const {
  Check();
  return sw::excel::Range(engine_, RangeRef{ref_, 1, 1, kMaxRows, kMaxColumns, RangeShape::kAllCells});
}
sw::excel::Range Sheet::Range(const sw::excel::Range& first, const sw::excel::Range& last) const {
  Check();
  const RangeRef& a = first.ref();
  const RangeRef& b = last.ref();
  if (a.sheet.sheet != ref_.sheet || b.sheet.sheet != ref_.sheet) {
    throw base::NumberedError(kApplicationDefined, "Cellerna hör inte till samma kalkylblad");
  }
  RangeRef joined{ref_, std::min(a.firstRow, b.firstRow), std::min(a.firstColumn, b.firstColumn),
                  std::max(a.lastRow, b.lastRow), std::max(a.lastColumn, b.lastColumn)};
  return sw::excel::Range(engine_, joined);
}
sw::excel::Range Sheet::Range(std::string_view address) const {
  Check();
  const auto colon = address.find(':');
  const auto first = ParseCellAddress(address.substr(0, colon));
  const auto last = colon == std::string_view::npos ? first : ParseCellAddress(address.substr(colon + 1));
  if (!first || !last) ThrowBadAddress(address);
  return sw::excel::Range(
      engine_, RangeRef{ref_, std::min(first->row, last->row), std::min(first->column, last->column),
                        std::max(first->row, last->row), std::max(first->column, last->column)});
}
sw::excel::Range Sheet::Rows(std::string_view rows) const {
  Check();
  const auto colon = rows.find(':');
  const int first = ParseRowNumber(rows.substr(0, colon));
  const int last = colon == std::string_view::npos ? first : ParseRowNumber(rows.substr(colon + 1));
  if (first == 0 || last == 0) ThrowBadAddress(rows);
  return sw::excel::Range(engine_, RangeRef{ref_, std::min(first, last), 1, std::max(first, last),
                                            kMaxColumns, RangeShape::kEntireRows});
}
sw::excel::HPageBreaks Sheet::HPageBreaks() const {
  Check();
  return sw::excel::HPageBreaks(engine_, ref_);
}

int Sheets::Count() const {
  if (engine_ == nullptr || workbook_ == 0) ThrowObjectNotSet();
  return engine_->SheetCount(workbook_);
}
Sheet Sheets::Item(int index) const {
  if (engine_ == nullptr || workbook_ == 0) ThrowObjectNotSet();
  return Sheet(engine_, engine_->SheetAt(workbook_, index));
}

void Workbook::Check() const {
  if (!IsSet()) ThrowObjectNotSet();
}
sw::excel::Sheets Workbook::Sheets() const {
  Check();
  return sw::excel::Sheets(engine_, id_);
}
sw::excel::Sheets Workbook::Worksheets() const {
  return Sheets();
}
void Workbook::SaveAs(const std::string& path) {
  Check();
  engine_->SaveAs(id_, path);
}
void Workbook::Save() {
  Check();
  engine_->Save(id_);
}
void Workbook::Close(bool saveChanges) {
  Check();
  engine_->Close(id_, saveChanges);
}
std::string Workbook::FullName() const {
  Check();
  return engine_->FullName(id_);
}

Workbook Workbooks::Open(const std::string& path, bool readOnly) {
  return Open(path, OpenArguments{.updateLinks = std::nullopt, .readOnly = readOnly});
}
Workbook Workbooks::Open(const std::string& path, const OpenArguments& arguments) {
  if (engine_ == nullptr) ThrowObjectNotSet();
  return Workbook(engine_, engine_->OpenWorkbook(path, arguments));
}
Workbook Workbooks::OpenText(const OpenTextOptions& options) {
  if (engine_ == nullptr) ThrowObjectNotSet();
  return Workbook(engine_, engine_->OpenText(options));
}
int Workbooks::Count() const {
  if (engine_ == nullptr) ThrowObjectNotSet();
  return engine_->WorkbookCount();
}
Workbook Workbooks::Item(int index) const {
  if (engine_ == nullptr) ThrowObjectNotSet();
  return Workbook(engine_, engine_->WorkbookAt(index));
}

Workbook Application::ActiveWorkbook() {
  return Workbook(engine_.get(), engine_->ActiveWorkbook());
}
Sheets Application::Sheets() {
  const WorkbookId active = engine_->ActiveWorkbook();
  if (active == 0) throw base::NumberedError(kApplicationDefined, "Det finns ingen aktiv arbetsbok");
  return sw::excel::Sheets(engine_.get(), active);
}
Sheet Application::ActiveSheet() {
  return Sheet(engine_.get(), engine_->ActiveSheet());
}
Range Application::Selection() {
  return Range(engine_.get(), engine_->Selection());
}
Range Application::ActiveCell() {
  return Range(engine_.get(), engine_->ActiveCell());
}

}  // namespace sw::excel
