#include "excel/package/package_engine.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "base/error_numbers.h"
#include "base/file_io.h"
#include "base/own_temp_files.h"
#include "base/strings.h"
#include "base/utf8_path.h"
#include "excel/automation.h"
#include "excel/cell_address.h"
#include "excel/package/conditional_formats.h"
#include "excel/package/styles.h"
#include "excel/package/text_import.h"
#include "excel/package/workbook_document.h"

namespace sw::excel {

namespace {

std::string Extension(const std::string& path) {
  return base::AsciiLower(
      reinterpret_cast<const char*>(base::PathFromUtf8(path).extension().u8string().c_str()));
}

[[noreturn]] void Rejected(const std::string& description) {
  throw base::NumberedError(kApplicationDefined, description);
}

// What Excel reports when Windows refuses a file: a locked or write-protected file is "permission
// denied", a missing drive or medium "device unavailable", anything else an Excel error.
[[noreturn]] void ThrowFileError(const std::error_code& error, const std::string& path, bool writing) {
  if (const int number = base::ErrorNumberOfFileError(error); number != 0) {
    throw base::NumberedError(number, base::ErrorText(number) + ": " + path);
  }
  if (writing && error == std::errc::no_space_on_device) {
    Rejected("Det går inte att spara filen " + path + ": disken är full.");
  }
  if (!writing && base::IsNotARegularFile(error)) {
    Rejected("Det går inte att öppna " + path + " eftersom det inte är någon fil.");
  }
  if (writing) Rejected("Det går inte att spara filen " + path + ".");
  Rejected("Det går inte att hitta filen " + path + ".");
}

// The first bytes and the size of a regular file, looked at before it is read whole; a file that
// cannot be looked at is left to the read, which tells why.
void CheckBeforeReading(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) return;
  std::ifstream in(path, std::ios::binary);
  char head[8] = {};
  in.read(head, sizeof head);
  if (in.gcount() <= 0 && size != 0) return;
  WorkbookDocument::CheckFileHead(std::string_view(head, static_cast<std::size_t>(in.gcount())), size);
}

template <typename Action>
auto AsExcel(Action action) {
  try {
    return action();
  } catch (const PackageError& error) {
    Rejected(error.what());
  } catch (const std::invalid_argument& error) {
    Rejected(error.what());
  }
}

std::string SelectionText(const RangeRef& range) {
  switch (range.shape) {
    case RangeShape::kEntireRows:
      return "A" + std::to_string(range.firstRow) + ":XFD" + std::to_string(range.lastRow);
    case RangeShape::kEntireColumns:
      return ColumnName(range.firstColumn) + "1:" + ColumnName(range.lastColumn) + std::to_string(kMaxRows);
    case RangeShape::kAllCells:
      return "A1:XFD" + std::to_string(kMaxRows);
    case RangeShape::kCells:
      break;
  }
  std::string text = FormatCellAddress(range.firstRow, range.firstColumn);
  if (range.lastRow != range.firstRow || range.lastColumn != range.firstColumn) {
    text += ":" + FormatCellAddress(range.lastRow, range.lastColumn);
  }
  return text;
}

std::size_t DisplayLength(std::string_view text) {
  std::size_t longest = 0, current = 0;
  for (const char c : text) {
    if (c == '\n') {
      longest = std::max(longest, current);
      current = 0;
    } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      ++current;
    }
  }
  return std::max(longest, current);
}

}  // namespace

struct PackageEngine::Book {
  std::unique_ptr<WorkbookDocument> document;
  std::string fullName;
  bool readOnly = false;
  bool fromText = false;
  std::map<int, RangeRef> selections;                        // by sheet id
  std::map<std::tuple<int, int, int>, int> borderedFormats;  // (xf, edge, weight) -> new xf
};

PackageEngine::PackageEngine(base::FileWriter writer)
    : writer_(writer ? std::move(writer) : base::FileWriter(base::WriteFileAtomically)) {}
PackageEngine::~PackageEngine() = default;

PackageEngine::Book& PackageEngine::FindBook(WorkbookId id) {
  const auto found = books_.find(id);
  if (found == books_.end()) ThrowObjectNotSet();
  return *found->second;
}

int PackageEngine::Position(SheetRef sheet) {
  const int position = FindBook(sheet.workbook).document->PositionOf(sheet.sheet);
  if (position < 0) Rejected("Bladet finns inte längre.");
  return position;
}

WorkbookId PackageEngine::Adopt(std::unique_ptr<WorkbookDocument> document, const std::string& fullName,
                                bool readOnly, bool fromText) {
  auto book = std::make_unique<Book>();
  book->document = std::move(document);
  book->fullName = fullName;
  book->readOnly = readOnly;
  book->fromText = fromText;
  const WorkbookId id = ++lastId_;
  books_[id] = std::move(book);
  order_.push_back(id);
  active_ = id;
  return id;
}

std::string WorkbookFileRefusal(const std::string& path) {
  try {
    CheckBeforeReading(base::PathFromUtf8(path));
    std::error_code error;
    const auto bytes = base::ReadWholeFile(base::PathFromUtf8(path), &error);
    if (!bytes) return {};
    (void)WorkbookDocument::FromBytes(*bytes, {}, path);
    return {};
  } catch (const PackageError& error) {
    return error.what();
  }
}

WorkbookId PackageEngine::OpenBytes(std::string_view bytes, const std::string& fullName, bool readOnly) {
  auto document = AsExcel([&] { return WorkbookDocument::FromBytes(bytes, {}, fullName); });
  return Adopt(std::move(document), fullName, readOnly, false);
}

WorkbookId PackageEngine::OpenWorkbook(const std::string& path, const OpenArguments& arguments) {
  // Links to other workbooks are not followed: the templates' formulas refer to their own sheets.
  const bool readOnly = arguments.readOnly.value_or(false);
  // Excel hands back a workbook that is already open instead of opening it twice.
  for (const WorkbookId id : order_) {
    if (base::EqualsIgnoreCase(books_[id]->fullName, path)) {
      active_ = id;
      return id;
    }
  }
  AsExcel([&] {
    CheckBeforeReading(base::PathFromUtf8(path));
    return 0;
  });
  std::error_code error;
  const auto bytes = base::ReadWholeFile(base::PathFromUtf8(path), &error);
  if (!bytes) ThrowFileError(error, path, false);
  return OpenBytes(*bytes, path, readOnly);
}

WorkbookId PackageEngine::OpenText(const OpenTextOptions& options) {
  std::error_code error;
  const auto bytes = base::ReadWholeFile(base::PathFromUtf8(options.fileName), &error);
  if (!bytes) ThrowFileError(error, options.fileName, false);
  const std::string stem =
      reinterpret_cast<const char*>(base::PathFromUtf8(options.fileName).stem().u8string().c_str());
  auto document = AsExcel([&] { return ImportText(*bytes, stem, options); });
  return Adopt(std::move(document), options.fileName, false, true);
}

WorkbookId PackageEngine::WorkbookAt(int index) {
  if (index < 1 || index > WorkbookCount()) {
    throw base::NumberedError(kSubscriptOutOfRange);
  }
  return order_[static_cast<std::size_t>(index - 1)];
}

WorkbookId PackageEngine::ActiveWorkbook() {
  return active_;
}

SheetRef PackageEngine::ActiveSheet() {
  if (active_ == 0) ThrowObjectNotSet();
  Book& book = FindBook(active_);
  return SheetRef{active_, book.document->Entry(book.document->ActiveSheet()).id};
}

RangeRef PackageEngine::Selection() {
  const SheetRef sheet = ActiveSheet();
  Book& book = FindBook(sheet.workbook);
  const auto found = book.selections.find(sheet.sheet);
  RangeRef range = found != book.selections.end() ? found->second : RangeRef{sheet};
  range.origin = RangeOrigin::kSelection;
  return range;
}

RangeRef PackageEngine::ActiveCell() {
  RangeRef cell = Selection();
  cell.shape = RangeShape::kCells;
  cell.lastRow = cell.firstRow;
  cell.lastColumn = cell.firstColumn;
  cell.origin = RangeOrigin::kActiveCell;
  return cell;
}

void PackageEngine::SetCutCopyMode(bool) {
  clipboard_.reset();
}

void PackageEngine::Quit() {
  books_.clear();
  order_.clear();
  active_ = 0;
  clipboard_.reset();
}

int PackageEngine::SheetCount(WorkbookId workbook) {
  return FindBook(workbook).document->SheetCount();
}

SheetRef PackageEngine::SheetAt(WorkbookId workbook, int index) {
  Book& book = FindBook(workbook);
  if (index < 1 || index > book.document->SheetCount()) {
    throw base::NumberedError(kSubscriptOutOfRange);
  }
  return SheetRef{workbook, book.document->Entry(index - 1).id};
}

void PackageEngine::WriteTo(Book& book, const std::string& path) {
  std::string extension = Extension(path);
  if (extension != ".xlsx" && extension != ".xlsm") {
    // Excel saves under any name in the workbook's own format when no file format is given ("Lista.xls"
    // gets an Open XML workbook, which Excel opens after a warning about the name).
    extension = book.document->HasVbaProject() ? ".xlsm" : ".xlsx";
  }
  const std::filesystem::path target = base::PathFromUtf8(path);
  // A working copy of this process's own is never read back: it holds the result's place and shows
  // that the folder takes a file of the workbook's size, and the workbook is written under its own
  // name afterwards. It gets the archive made last instead of a new one: a single-sheet run saves
  // such a copy for every page and would otherwise put each page together twice.
  const std::string& last = book.document->LastSerialized();
  const bool placeHolder = !last.empty() && base::IsThisProcessTempFile(target);
  const std::string bytes =
      placeHolder ? std::string() : AsExcel([&] { return book.document->Serialize(extension); });
  std::error_code error;
  if (!std::filesystem::is_directory(target.parent_path().empty() ? "." : target.parent_path(), error)) {
    Rejected("Det går inte att komma åt mappen för " + path + ".");
  }
  if (const auto written = writer_(target, placeHolder ? std::string_view(last) : std::string_view(bytes))) {
    ThrowFileError(written, path, true);
  }
}

std::string PackageEngine::SaveToBytes(WorkbookId workbook, std::string_view extension) {
  Book& book = FindBook(workbook);
  return AsExcel([&] { return book.document->Serialize(extension); });
}

void PackageEngine::SaveAs(WorkbookId workbook, const std::string& path) {
  Book& book = FindBook(workbook);
  if (book.readOnly) {
    std::error_code error;
    if (base::EqualsIgnoreCase(path, book.fullName) ||
        std::filesystem::equivalent(base::PathFromUtf8(path), base::PathFromUtf8(book.fullName), error)) {
      Rejected("Arbetsboken är öppnad skrivskyddad och kan inte sparas över sig själv.");
    }
  }
  WriteTo(book, path);
  book.fullName = path;
  book.readOnly = false;
  book.fromText = false;
}

void PackageEngine::Save(WorkbookId workbook) {
  Book& book = FindBook(workbook);
  if (book.readOnly) Rejected("Arbetsboken är öppnad skrivskyddad och kan inte sparas.");
  if (book.fromText) Rejected("En textfil som öppnats som arbetsbok måste sparas med Spara som.");
  WriteTo(book, book.fullName);
}

void PackageEngine::Close(WorkbookId workbook, bool saveChanges) {
  FindBook(workbook);
  if (saveChanges) Save(workbook);
  if (clipboard_ && clipboard_->sheet.workbook == workbook) clipboard_.reset();
  books_.erase(workbook);
  std::erase(order_, workbook);
  if (active_ == workbook) active_ = order_.empty() ? 0 : order_.back();
}

std::string PackageEngine::FullName(WorkbookId workbook) {
  return FindBook(workbook).fullName;
}

int PackageEngine::SheetIndex(SheetRef sheet) {
  return Position(sheet) + 1;
}

std::string PackageEngine::SheetName(SheetRef sheet) {
  return FindBook(sheet.workbook).document->SheetName(Position(sheet));
}

void PackageEngine::SetSheetName(SheetRef sheet, std::string_view name) {
  const int position = Position(sheet);
  AsExcel([&] {
    FindBook(sheet.workbook).document->RenameSheet(position, name);
    return 0;
  });
}

void PackageEngine::CopySheetAfter(SheetRef source, SheetRef after) {
  if (source.workbook != after.workbook) Rejected("Blad kan bara kopieras inom samma arbetsbok.");
  const int from = Position(source);
  const int behind = Position(after);
  AsExcel([&] { return FindBook(source.workbook).document->CopySheet(from, behind); });
  active_ = source.workbook;
}

void PackageEngine::SelectSheet(SheetRef sheet) {
  const int position = Position(sheet);
  FindBook(sheet.workbook).document->SetActiveSheet(position);
  active_ = sheet.workbook;
}

void PackageEngine::AddPageBreak(SheetRef sheet, const RangeRef& before) {
  const int position = Position(sheet);
  if (before.firstRow <= 1) Rejected("En sidbrytning kan inte läggas före första raden.");
  const bool added = AsExcel(
      [&] { return FindBook(sheet.workbook).document->Sheet(position, true).AddRowBreak(before.firstRow); });
  if (!added) Rejected("Kalkylbladet har redan det största antalet sidbrytningar (1023).");
}

int PackageEngine::PageBreakCount(SheetRef sheet) {
  const int position = Position(sheet);
  return AsExcel([&] { return FindBook(sheet.workbook).document->Sheet(position, false).RowBreakCount(); });
}

void PackageEngine::SetValue(const RangeRef& range, std::string_view text) {
  const int position = Position(range.sheet);
  const long long area =
      static_cast<long long>(range.lastRow - range.firstRow + 1) * (range.lastColumn - range.firstColumn + 1);
  if (range.shape != RangeShape::kCells || area > 1'000'000) Rejected("Området är för stort för att fyllas.");
  AsExcel([&] {
    Worksheet& sheet = FindBook(range.sheet.workbook).document->SheetForValues(position);
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
      for (int column = range.firstColumn; column <= range.lastColumn; ++column)
        sheet.SetText(row, column, text);
    }
    return 0;
  });
}

std::string PackageEngine::Value(const RangeRef& range) {
  const int position = Position(range.sheet);
  WorkbookDocument& document = *FindBook(range.sheet.workbook).document;
  return AsExcel([&] {
    return document.Sheet(position, false).Text(range.firstRow, range.firstColumn, [&](int index) {
      return document.SharedString(index);
    });
  });
}

void PackageEngine::Select(const RangeRef& range) {
  const int position = Position(range.sheet);
  Book& book = FindBook(range.sheet.workbook);
  if (book.document->ActiveSheet() != position || active_ != range.sheet.workbook) {
    Rejected("Select-metoden i Range-klassen misslyckades.");
  }
  RangeRef stored = range;
  stored.origin = RangeOrigin::kAddress;
  book.selections[range.sheet.sheet] = stored;
  AsExcel([&] {
    book.document->Sheet(position, false)
        .SetSelection(range.firstRow, range.firstColumn, SelectionText(range));
    return 0;
  });
}

void PackageEngine::ClearContents(const RangeRef& range) {
  const int position = Position(range.sheet);
  AsExcel([&] {
    WorkbookDocument& document = *FindBook(range.sheet.workbook).document;
    document.Sheet(position, true)
        .ClearContents(range.firstRow, range.firstColumn, range.lastRow, range.lastColumn);
    document.MarkValuesChanged(position);
    return 0;
  });
}

void PackageEngine::Copy(const RangeRef& range) {
  Position(range.sheet);
  clipboard_ = range;
  clipboard_->origin = RangeOrigin::kAddress;
}

void PackageEngine::PasteSpecial(const RangeRef& range, XlPasteType paste) {
  if (!clipboard_) Rejected("PasteSpecial-metoden i Range-klassen misslyckades.");
  if (paste != XlPasteType::xlPasteFormats) Rejected("Bara inklistring av format stöds.");
  const RangeRef source = *clipboard_;
  const int sourcePosition = Position(source.sheet);
  const int targetPosition = Position(range.sheet);
  if (source.sheet.workbook != range.sheet.workbook)
    Rejected("Format kan bara klistras in i samma arbetsbok.");
  WorkbookDocument& document = *FindBook(range.sheet.workbook).document;

  struct RowFormat {
    int style = 0;
    bool custom = false;
    std::string height;  // empty: the default height
    bool customHeight = false;
    std::vector<std::pair<int, int>> cells;  // (column, style)
  };
  const int height = source.lastRow - source.firstRow + 1;
  const bool wholeRows = source.shape == RangeShape::kEntireRows || source.shape == RangeShape::kAllCells;
  std::vector<RowFormat> formats;
  AsExcel([&] {
    Worksheet sheet = document.Sheet(sourcePosition, false);
    for (int row = source.firstRow; row <= source.lastRow; ++row) {
      RowFormat format;
      if (const auto node = sheet.Row(row)) {
        format.style = node.attribute("s").as_int();
        format.custom = node.attribute("customFormat").as_bool();
        format.height = node.attribute("ht").value();
        format.customHeight = node.attribute("customHeight").as_bool();
      }
      sheet.ForEachCell(row, source.firstColumn, row, source.lastColumn, [&](pugi::xml_node cell) {
        format.cells.emplace_back(CellColumn(cell), cell.attribute("s").as_int());
      });
      formats.push_back(std::move(format));
    }
    return 0;
  });

  RangeRef target = range;
  if (range.shape == RangeShape::kCells && range.firstRow == range.lastRow &&
      range.firstColumn == range.lastColumn) {
    target.lastRow = std::min(kMaxRows, range.firstRow + height - 1);
    target.lastColumn = std::min(kMaxColumns, range.firstColumn + (source.lastColumn - source.firstColumn));
  }
  AsExcel([&] {
    Worksheet sheet = document.Sheet(targetPosition, true);
    for (int row = target.firstRow; row <= target.lastRow; ++row) {
      const RowFormat& format = formats[static_cast<std::size_t>((row - target.firstRow) % height)];
      if (wholeRows) {
        sheet.SetRowStyle(row, format.style, format.custom);
        sheet.SetRowHeight(row, format.height, format.customHeight);  // whole rows bring their height
      }
      const int columnShift = target.firstColumn - source.firstColumn;
      // Cells the source row leaves without a format of their own take the source row's format.
      std::vector<int> targetColumns;
      sheet.ForEachCell(row, target.firstColumn, row, target.lastColumn,
                        [&](pugi::xml_node cell) { targetColumns.push_back(CellColumn(cell)); });
      for (const int column : targetColumns) {
        const bool covered = std::any_of(format.cells.begin(), format.cells.end(), [&](const auto& cell) {
          return cell.first + columnShift == column;
        });
        if (!covered) sheet.SetStyle(row, column, format.custom ? format.style : 0);
      }
      for (const auto& [column, style] : format.cells) {
        const int to = column + columnShift;
        if (to >= target.firstColumn && to <= target.lastColumn) sheet.SetStyle(row, to, style);
      }
    }
    PasteConditionalFormats(document.Sheet(sourcePosition, false),
                            {source.firstRow, source.firstColumn, source.lastRow, source.lastColumn}, sheet,
                            {target.firstRow, target.firstColumn, target.lastRow, target.lastColumn},
                            sourcePosition == targetPosition);
    return 0;
  });
}

void PackageEngine::SetBorderWeight(const RangeRef& range, XlBordersIndex edge, XlBorderWeight weight) {
  const int position = Position(range.sheet);
  Book& book = FindBook(range.sheet.workbook);
  if (range.shape != RangeShape::kCells && range.shape != RangeShape::kEntireRows)
    Rejected("Kantlinjer kan bara sättas på celler och hela rader.");
  int firstRow = range.firstRow, lastRow = range.lastRow, firstColumn = range.firstColumn,
      lastColumn = range.lastColumn;
  switch (edge) {
    case XlBordersIndex::xlEdgeBottom:
      firstRow = lastRow;
      break;
    case XlBordersIndex::xlEdgeTop:
      lastRow = firstRow;
      break;
    case XlBordersIndex::xlEdgeLeft:
      lastColumn = firstColumn;
      break;
    case XlBordersIndex::xlEdgeRight:
      firstColumn = lastColumn;
      break;
  }
  // A line along whole rows is a format of the rows, as Excel stores it, not of 16384 cells each.
  const bool alongRows = range.shape == RangeShape::kEntireRows && firstColumn < lastColumn;
  const long long cells =
      static_cast<long long>(lastRow - firstRow + 1) * (alongRows ? 1 : lastColumn - firstColumn + 1);
  if (cells > 100'000) Rejected("Området är för stort.");
  AsExcel([&] {
    auto& styles = book.document->Styles();
    Worksheet sheet = book.document->Sheet(position, true);
    const int formatCount = CellFormatCount(styles);
    const auto bordered = [&](int xf) {
      if (xf < 0 || xf >= formatCount) xf = 0;
      const auto key = std::make_tuple(xf, static_cast<int>(edge), static_cast<int>(weight));
      auto found = book.borderedFormats.find(key);
      if (found == book.borderedFormats.end()) {
        found = book.borderedFormats.emplace(key, AddBorderedFormat(styles, xf, edge, weight)).first;
      }
      return found->second;
    };
    for (int row = firstRow; row <= lastRow; ++row) {
      if (!alongRows) {
        for (int column = firstColumn; column <= lastColumn; ++column)
          sheet.SetStyle(row, column, bordered(sheet.EffectiveStyle(row, column)));
        continue;
      }
      // The row's cells, and the columns whose own format they would otherwise lose to the row's,
      // keep their formats with the line added.
      std::map<int, int> cellFormats;
      sheet.ForEachCell(row, 1, row, kMaxColumns,
                        [&](pugi::xml_node cell) { cellFormats[CellColumn(cell)] = 0; });
      for (const auto col : sheet.root().child("cols").children("col")) {
        if (col.attribute("style").as_int() == 0) continue;
        const int last = std::min(col.attribute("max").as_int(), kMaxColumns);
        for (int column = std::max(col.attribute("min").as_int(), 1); column <= last; ++column)
          cellFormats[column] = 0;
      }
      for (auto& [column, xf] : cellFormats) xf = sheet.EffectiveStyle(row, column);
      const auto rowNode = sheet.Row(row);
      const int rowXf =
          rowNode && rowNode.attribute("customFormat").as_bool() ? rowNode.attribute("s").as_int() : 0;
      sheet.SetRowStyle(row, bordered(rowXf), true);
      for (const auto& [column, xf] : cellFormats) sheet.SetStyle(row, column, bordered(xf));
    }
    return 0;
  });
}

void PackageEngine::AutoFit(const RangeRef& range) {
  if (range.shape != RangeShape::kEntireColumns && range.shape != RangeShape::kAllCells) {
    Rejected("AutoFit-metoden i Range-klassen misslyckades.");
  }
  const int position = Position(range.sheet);
  WorkbookDocument& document = *FindBook(range.sheet.workbook).document;
  AsExcel([&] {
    Worksheet sheet = document.Sheet(position, true);
    std::map<int, std::size_t> widths;
    sheet.ForEachCell(1, range.firstColumn, kMaxRows, range.lastColumn, [&](pugi::xml_node cell) {
      const std::string text = Worksheet::Text(cell, [&](int index) { return document.SharedString(index); });
      if (!text.empty()) widths[CellColumn(cell)] = std::max(widths[CellColumn(cell)], DisplayLength(text));
    });
    for (const auto& [column, characters] : widths) {
      sheet.SetColumnWidth(column, std::min(255.0, static_cast<double>(characters) + 0.71));
    }
    return 0;
  });
}

}  // namespace sw::excel
