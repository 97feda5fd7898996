#include "recording_engine.h"

#include <algorithm>
#include <optional>

#include "base/error_numbers.h"
#include "excel/sheet_names.h"

namespace sw::excel {

const Recording::SheetState* Recording::WorkbookSnapshot::Find(std::string_view name) const {
  for (const auto& sheet : sheets) {
    if (sheet.name == name) return &sheet;
  }
  return nullptr;
}

void Recording::AddWorkbookFile(const std::string& path, std::vector<std::string> sheetNames) {
  WorkbookSnapshot snapshot;
  for (auto& name : sheetNames) snapshot.sheets.push_back(SheetState{0, std::move(name), {}, {}});
  files_[path] = std::move(snapshot);
}

void Recording::FailCall(const std::string& member, int occurrence, int number, std::string description) {
  if (description.empty()) description = base::ErrorText(number);
  failures_.emplace(member, Failure{occurrence, number, std::move(description)});
}

void Recording::Record(const std::string& member, std::string line) {
  const int call = ++calls_[member];
  const auto [first, last] = failures_.equal_range(member);
  for (auto it = first; it != last; ++it) {
    if (it->second.occurrence == call) {
      lines_.push_back(line + "  ' fel " + std::to_string(it->second.number));
      throw base::NumberedError(it->second.number, it->second.description);
    }
  }
  lines_.push_back(std::move(line));
}

namespace {

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') quoted += '"';
  }
  return quoted + "\"";
}

const char* Bool(bool value) {
  return value ? "True" : "False";
}

class RecordingEngine final : public Engine {
 public:
  explicit RecordingEngine(Recording& recording) : recording_(recording) {}

  void SetVisible(bool visible) override {
    recording_.Record("Visible=", std::string("Visible = ") + Bool(visible));
    visible_ = visible;
  }
  bool Visible() override { return visible_; }
  void SetCutCopyMode(bool mode) override {
    recording_.Record("CutCopyMode=", std::string("CutCopyMode = ") + Bool(mode));
    clipboard_.reset();
  }
  void Quit() override {
    recording_.Record("Quit", "Quit");
    workbooks_.clear();
  }
  WorkbookId ActiveWorkbook() override { return workbooks_.empty() ? 0 : workbooks_.back().id; }
  RangeRef Selection() override {
    Book& book = ActiveBook();
    RangeRef range = book.selection;
    range.origin = RangeOrigin::kSelection;
    return range;
  }
  RangeRef ActiveCell() override {
    Book& book = ActiveBook();
    RangeRef cell = book.selection;
    cell.lastRow = cell.firstRow;
    cell.lastColumn = cell.firstColumn;
    cell.shape = RangeShape::kCells;
    cell.origin = RangeOrigin::kActiveCell;
    return cell;
  }
  SheetRef ActiveSheet() override {
    Book& book = ActiveBook();
    return SheetRef{book.id, book.activeSheet};
  }

  WorkbookId OpenWorkbook(const std::string& path, const OpenArguments& arguments) override {
    std::string line = "Workbooks.Open " + Quoted(path);
    if (arguments.updateLinks) (line += ", ") += Bool(*arguments.updateLinks);
    if (arguments.readOnly) (line += ", ReadOnly:=") += Bool(*arguments.readOnly);
    recording_.Record("Open", line);
    const bool readOnly = arguments.readOnly.value_or(false);
    const auto file = recording_.files().find(path);
    if (file == recording_.files().end()) {
      throw base::NumberedError(kApplicationDefined, "Det går inte att hitta filen " + path + ".");
    }
    Book book;
    book.id = ++lastWorkbookId_;
    book.path = path;
    book.readOnly = readOnly;
    book.sheets = file->second.sheets;
    for (auto& sheet : book.sheets) sheet.id = recording_.NextSheetId();
    book.activeSheet = book.sheets.front().id;
    book.selection = RangeRef{SheetRef{book.id, book.activeSheet}};
    workbooks_.push_back(std::move(book));
    return workbooks_.back().id;
  }

  WorkbookId OpenText(const OpenTextOptions& options) override {
    std::string line =
        "Workbooks.OpenText FileName:=" + Quoted(options.fileName) +
        ", Origin:=" + std::to_string(options.origin) + ", StartRow:=" + std::to_string(options.startRow) +
        ", DataType:=" + std::to_string(static_cast<int>(options.dataType)) +
        ", TextQualifier:=" + std::to_string(static_cast<int>(options.textQualifier)) +
        ", ConsecutiveDelimiter:=" + Bool(options.consecutiveDelimiter) + ", Tab:=" + Bool(options.tab) +
        ", Semicolon:=" + Bool(options.semicolon) + ", Comma:=" + Bool(options.comma) +
        ", Space:=" + Bool(options.space) + ", Other:=" + Bool(options.other) + ", FieldInfo:=Array(";
    for (std::size_t i = 0; i < options.fieldInfo.size(); ++i) {
      if (i > 0) line += ", ";
      line += "Array(" + std::to_string(options.fieldInfo[i].first) + ", " +
              std::to_string(static_cast<int>(options.fieldInfo[i].second)) + ")";
    }
    recording_.Record("OpenText", line + ")");
    Book book;
    book.id = ++lastWorkbookId_;
    book.path = options.fileName;
    std::string name = options.fileName.substr(options.fileName.find_last_of("/\\") + 1);
    name = name.substr(0, name.rfind('.'));
    book.sheets.push_back(Recording::SheetState{recording_.NextSheetId(), name.substr(0, 31), {}, {}});
    book.activeSheet = book.sheets.front().id;
    book.selection = RangeRef{SheetRef{book.id, book.activeSheet}};
    workbooks_.push_back(std::move(book));
    return workbooks_.back().id;
  }

  int WorkbookCount() override { return static_cast<int>(workbooks_.size()); }
  WorkbookId WorkbookAt(int index) override { return workbooks_.at(static_cast<std::size_t>(index - 1)).id; }

  int SheetCount(WorkbookId workbook) override {
    recording_.Record("Count", "Sheets.Count");
    return static_cast<int>(FindBook(workbook).sheets.size());
  }
  SheetRef SheetAt(WorkbookId workbook, int index) override {
    Book& book = FindBook(workbook);
    if (index < 1 || index > static_cast<int>(book.sheets.size())) {
      throw base::NumberedError(kSubscriptOutOfRange);
    }
    return SheetRef{workbook, book.sheets[static_cast<std::size_t>(index - 1)].id};
  }

  void SaveAs(WorkbookId workbook, const std::string& path) override {
    recording_.Record("SaveAs", "SaveAs " + Quoted(path));
    Book& book = FindBook(workbook);
    book.path = path;
    book.readOnly = false;
    Snapshot(book);
  }
  void Save(WorkbookId workbook) override {
    recording_.Record("Save", "Save");
    Book& book = FindBook(workbook);
    if (book.readOnly) throw base::NumberedError(kApplicationDefined, "Arbetsboken är skrivskyddad.");
    Snapshot(book);
  }
  void Close(WorkbookId workbook, bool saveChanges) override {
    recording_.Record("Close", std::string("Close SaveChanges:=") + Bool(saveChanges));
    Book& book = FindBook(workbook);
    if (saveChanges && !book.readOnly) Snapshot(book);
    workbooks_.erase(std::find_if(workbooks_.begin(), workbooks_.end(),
                                  [&](const Book& candidate) { return candidate.id == workbook; }));
  }
  std::string FullName(WorkbookId workbook) override {
    recording_.Record("FullName", "FullName");
    return FindBook(workbook).path;
  }

  int SheetIndex(SheetRef sheet) override { return IndexOf(sheet) + 1; }
  std::string SheetName(SheetRef sheet) override {
    recording_.Record("Name", SheetText(sheet) + ".Name");
    return FindSheet(sheet).name;
  }
  void SetSheetName(SheetRef sheet, std::string_view name) override {
    recording_.Record("Name=", SheetText(sheet) + ".Name = " + Quoted(name));
    Book& book = FindBook(sheet.workbook);
    std::vector<std::string> names;
    for (const auto& each : book.sheets) names.push_back(each.name);
    if (const auto problem = SheetNameProblem(name, names, IndexOf(sheet))) {
      throw base::NumberedError(kApplicationDefined, *problem);
    }
    FindSheet(sheet).name = std::string(name);
  }
  void CopySheetAfter(SheetRef source, SheetRef after) override {
    recording_.Record("Copy", SheetText(source) + ".Copy After:=" + SheetText(after));
    Book& book = FindBook(source.workbook);
    std::vector<std::string> names;
    for (const auto& each : book.sheets) names.push_back(each.name);
    Recording::SheetState copy = FindSheet(source);
    copy.id = recording_.NextSheetId();
    copy.name = DefaultCopyName(copy.name, names);
    const int position = IndexOf(after) + 1;
    book.sheets.insert(book.sheets.begin() + position, std::move(copy));
    book.activeSheet = book.sheets[static_cast<std::size_t>(position)].id;
    book.selection = RangeRef{SheetRef{book.id, book.activeSheet}};
  }
  void SelectSheet(SheetRef sheet) override {
    recording_.Record("Select", SheetText(sheet) + ".Select");
    Book& book = FindBook(sheet.workbook);
    FindSheet(sheet);
    book.activeSheet = sheet.sheet;
    book.selection = RangeRef{sheet};
  }
  void AddPageBreak(SheetRef sheet, const RangeRef& before) override {
    recording_.Record("Add", SheetText(sheet) + ".HPageBreaks.Add Before:=" + RangeText(before));
    if (before.firstRow <= 1) throw base::NumberedError(kApplicationDefined);
    auto& rows = FindSheet(sheet).pageBreakRows;
    // Excel's limit of manual breaks on one sheet.
    if (rows.size() >= 1023 && !rows.contains(before.firstRow))
      throw base::NumberedError(kApplicationDefined,
                                "Kalkylbladet har redan det största antalet sidbrytningar (1023).");
    rows.insert(before.firstRow);
  }
  int PageBreakCount(SheetRef sheet) override {
    recording_.Record("Count", SheetText(sheet) + ".HPageBreaks.Count");
    return static_cast<int>(FindSheet(sheet).pageBreakRows.size());
  }

  void SetValue(const RangeRef& range, std::string_view text) override {
    recording_.Record("Value=", RangeText(range) + ".Value = " + Quoted(text));
    auto& cells = FindSheet(range.sheet).cells;
    ForEachCell(range, [&](int row, int column) {
      if (text.empty()) {
        cells.erase({row, column});
      } else {
        cells[{row, column}] = std::string(text);
      }
    });
  }
  std::string Value(const RangeRef& range) override {
    recording_.Record("Value", RangeText(range) + ".Value");
    const auto& cells = FindSheet(range.sheet).cells;
    const auto cell = cells.find({range.firstRow, range.firstColumn});
    return cell == cells.end() ? std::string() : cell->second;
  }
  void Select(const RangeRef& range) override {
    recording_.Record("Select", RangeText(range) + ".Select");
    Book& book = FindBook(range.sheet.workbook);
    if (book.activeSheet != range.sheet.sheet) {
      throw base::NumberedError(kApplicationDefined, "Select-metoden i Range-klassen misslyckades");
    }
    book.selection = range;
    book.selection.origin = RangeOrigin::kAddress;
  }
  void ClearContents(const RangeRef& range) override {
    recording_.Record("ClearContents", RangeText(range) + ".ClearContents");
    auto& cells = FindSheet(range.sheet).cells;
    ForEachCell(range, [&](int row, int column) { cells.erase({row, column}); });
  }
  void Copy(const RangeRef& range) override {
    recording_.Record("Copy", RangeText(range) + ".Copy");
    clipboard_ = range;
  }
  void PasteSpecial(const RangeRef& range, XlPasteType paste) override {
    recording_.Record("PasteSpecial",
                      RangeText(range) + ".PasteSpecial Paste:=" + std::to_string(static_cast<int>(paste)));
    if (!clipboard_)
      throw base::NumberedError(kApplicationDefined, "PasteSpecial-metoden i Range-klassen misslyckades");
  }
  void SetBorderWeight(const RangeRef& range, XlBordersIndex edge, XlBorderWeight weight) override {
    recording_.Record("Weight=", RangeText(range) + ".Borders(" + std::to_string(static_cast<int>(edge)) +
                                     ").Weight = " + std::to_string(static_cast<int>(weight)));
  }
  void AutoFit(const RangeRef& range) override {
    recording_.Record("AutoFit", RangeText(range) + ".AutoFit");
  }

 private:
  struct Book {
    WorkbookId id = 0;
    std::string path;
    bool readOnly = false;
    std::vector<Recording::SheetState> sheets;
    SheetId activeSheet = 0;
    RangeRef selection;
  };

  Book& FindBook(WorkbookId id) {
    for (auto& book : workbooks_) {
      if (book.id == id) return book;
    }
    ThrowObjectNotSet();
  }
  Book& ActiveBook() {
    if (workbooks_.empty()) throw base::NumberedError(kObjectNotSet);
    return workbooks_.back();
  }
  int IndexOf(SheetRef ref) {
    Book& book = FindBook(ref.workbook);
    for (std::size_t i = 0; i < book.sheets.size(); ++i) {
      if (book.sheets[i].id == ref.sheet) return static_cast<int>(i);
    }
    ThrowObjectNotSet();
  }
  Recording::SheetState& FindSheet(SheetRef ref) {
    return FindBook(ref.workbook).sheets[static_cast<std::size_t>(IndexOf(ref))];
  }
  std::string SheetText(SheetRef ref) { return "Sheets(" + std::to_string(IndexOf(ref) + 1) + ")"; }
  std::string RangeText(const RangeRef& range) {
    if (range.origin == RangeOrigin::kSelection) return "Selection";
    if (range.origin == RangeOrigin::kActiveCell) return "ActiveCell";
    const std::string sheet = SheetText(range.sheet);
    const auto cell = [](int row, int column) {
      return "Cells(" + std::to_string(row) + ", " + std::to_string(column) + ")";
    };
    switch (range.shape) {
      case RangeShape::kAllCells:
        return sheet + ".Cells";
      case RangeShape::kEntireRows:
        return sheet + ".Rows(\"" + std::to_string(range.firstRow) + ":" + std::to_string(range.lastRow) +
               "\")";
      case RangeShape::kEntireColumns:
        return sheet + ".Range(" + cell(range.firstRow, range.firstColumn) + ", " +
               cell(range.firstRow, range.lastColumn) + ").EntireColumn";
      case RangeShape::kCells:
        break;
    }
    if (range.firstRow == range.lastRow && range.firstColumn == range.lastColumn) {
      return sheet + "." + cell(range.firstRow, range.firstColumn);
    }
    return sheet + ".Range(" + cell(range.firstRow, range.firstColumn) + ", " +
           cell(range.lastRow, range.lastColumn) + ")";
  }
  template <typename Visit>
  void ForEachCell(const RangeRef& range, Visit visit) {
    auto& cells = FindSheet(range.sheet).cells;
    const long long area = static_cast<long long>(range.lastRow - range.firstRow + 1) *
                           (range.lastColumn - range.firstColumn + 1);
    if (range.shape != RangeShape::kCells || area > 100000) {
      std::vector<std::pair<int, int>> inside;
      for (const auto& [address, text] : cells) {
        if (address.first >= range.firstRow && address.first <= range.lastRow &&
            address.second >= range.firstColumn && address.second <= range.lastColumn) {
          inside.push_back(address);
        }
      }
      for (const auto& [row, column] : inside) visit(row, column);
      return;
    }
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
      for (int column = range.firstColumn; column <= range.lastColumn; ++column) visit(row, column);
    }
  }
  void Snapshot(const Book& book) {
    Recording::WorkbookSnapshot snapshot;
    snapshot.sheets = book.sheets;
    recording_.mutableFiles()[book.path] = std::move(snapshot);
  }

  Recording& recording_;
  std::vector<Book> workbooks_;  // the last one is the active workbook
  std::optional<RangeRef> clipboard_;
  WorkbookId lastWorkbookId_ = 0;
  bool visible_ = false;
};

}  // namespace

std::unique_ptr<Application> CreateRecordingApplication(Recording& recording) {
  recording.Record("CreateObject", "CreateObject(\"Excel.Application\")");
  recording.CountApplication();
  return std::make_unique<Application>(std::make_unique<RecordingEngine>(recording));
}

}  // namespace sw::excel
