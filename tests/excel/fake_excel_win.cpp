#include "fake_excel_win.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <functional>
#include <optional>

#include "excel/cell_address.h"
#include "excel/com/com_ptr_win.h"
#include "excel/com/variant_win.h"

namespace sw::excel::testing {

using com::ComPtr;
using com::Utf8;
using com::Variant;
using com::Wide;

const FakeSheet* FakeFile::Find(const std::string& name) const {
  for (const auto& sheet : sheets) {
    if (sheet.name == name) return &sheet;
  }
  return nullptr;
}

namespace {

constexpr int kRows = 1048576;
constexpr int kColumns = 16384;
constexpr HRESULT kExcelError = static_cast<HRESULT>(0x800A03EC);

struct Failure {
  HRESULT scode;
  WORD wCode;
  std::string description;
};

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

class FakeObject;
class WorkbookObject;
class WorksheetObject;

}  // namespace

struct FakeState {
  std::map<std::string, FakeFile> files;
  std::vector<std::string> names;  // member and argument names by DISPID - 1
  std::multimap<std::string, std::pair<int, Failure>> failures;
  std::map<std::string, int> calls;
  int invokes = 0;
  int lookups = 0;
  std::set<FakeObject*> alive;
  std::vector<ComPtr<WorkbookObject>> open;  // Workbooks order
  WorkbookObject* active = nullptr;
  bool visible = false;
  bool userControl = false;
  std::optional<std::pair<WorksheetObject*, std::pair<int, int>>> clipboard;
  std::map<std::string, std::string> lastOpenText;
};

namespace {

// Raised inside a member; Invoke hands it back as DISP_E_EXCEPTION.
struct Raised {
  HRESULT scode;
  WORD wCode;
  std::string description;
};

[[noreturn]] void RaiseExcel(const std::string& description) {
  throw Raised{kExcelError, 0, description};
}

// The arguments of one Invoke: positional in natural order, named by lower-case name.
struct Arguments {
  std::vector<const VARIANT*> positional;
  std::map<std::string, const VARIANT*> named;
  const VARIANT* put = nullptr;

  // Argument `index` (0-based) given positionally or by `name`; nothing when left out.
  const VARIANT* At(std::size_t index, const std::string& name) const {
    const VARIANT* value = nullptr;
    if (const auto found = named.find(name); found != named.end()) value = found->second;
    if (value == nullptr && index < positional.size()) value = positional[index];
    if (value != nullptr && value->vt == VT_ERROR && value->scode == DISP_E_PARAMNOTFOUND) return nullptr;
    return value;
  }
  const VARIANT& Need(std::size_t index, const std::string& name) const {
    const VARIANT* value = At(index, name);
    if (value == nullptr) throw Raised{DISP_E_PARAMNOTOPTIONAL, 0, ""};
    return *value;
  }
};

Variant Copy(const VARIANT& value) {
  Variant copy;
  VariantCopy(copy.Receive(), const_cast<VARIANT*>(&value));
  return copy;
}
long IntOf(const VARIANT& value) {
  return Copy(value).ToInt();
}
bool BoolOf(const VARIANT& value) {
  return Copy(value).ToBool();
}
std::string TextOf(const VARIANT& value) {
  return Copy(value).ToText();
}

class FakeObject : public IDispatch {
 public:
  explicit FakeObject(FakeState* state) : state_(state) { state_->alive.insert(this); }
  virtual ~FakeObject() { state_->alive.erase(this); }
  FakeObject(const FakeObject&) = delete;
  FakeObject& operator=(const FakeObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
      *object = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    ++state_->lookups;
    for (UINT i = 0; i < count; ++i) {
      const std::string name = Lower(Utf8(names[i]));
      auto found = std::find(state_->names.begin(), state_->names.end(), name);
      if (found == state_->names.end()) found = state_->names.insert(state_->names.end(), name);
      ids[i] = static_cast<DISPID>(found - state_->names.begin()) + 1;
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    ++state_->invokes;
    if (id < 1 || id > static_cast<DISPID>(state_->names.size())) return DISP_E_MEMBERNOTFOUND;
    const std::string member = state_->names[static_cast<std::size_t>(id - 1)];
    Arguments arguments;
    const UINT named = parameters->cNamedArgs;
    for (UINT i = 0; i < named; ++i) {
      const DISPID argument = parameters->rgdispidNamedArgs[i];
      if (argument == DISPID_PROPERTYPUT) {
        arguments.put = &parameters->rgvarg[i];
      } else if (argument >= 1 && argument <= static_cast<DISPID>(state_->names.size())) {
        arguments.named[state_->names[static_cast<std::size_t>(argument - 1)]] = &parameters->rgvarg[i];
      } else {
        return DISP_E_PARAMNOTFOUND;
      }
    }
    for (UINT i = parameters->cArgs; i > named; --i)
      arguments.positional.push_back(&parameters->rgvarg[i - 1]);
    const bool isPut = (flags & DISPATCH_PROPERTYPUT) != 0;
    if (isPut && arguments.put == nullptr) return DISP_E_PARAMNOTFOUND;
    const std::string key = member + (isPut ? "=" : "");
    const int call = ++state_->calls[key];
    try {
      const auto [first, last] = state_->failures.equal_range(key);
      for (auto it = first; it != last; ++it) {
        if (it->second.first == call) {
          const Failure& failure = it->second.second;
          throw Raised{failure.scode, failure.wCode, failure.description};
        }
      }
      Variant answer;
      if (!Member(member, isPut, arguments, answer)) return DISP_E_MEMBERNOTFOUND;
      if (result != nullptr) *result = std::exchange(answer.raw(), VARIANT{});
      return S_OK;
    } catch (const Raised& raised) {
      if (exception != nullptr) {
        *exception = EXCEPINFO{};
        exception->wCode = raised.wCode;
        exception->scode = raised.wCode != 0 ? 0 : raised.scode;
        exception->bstrSource = SysAllocString(L"Microsoft Excel");
        if (!raised.description.empty())
          exception->bstrDescription = SysAllocString(Wide(raised.description).c_str());
      }
      return DISP_E_EXCEPTION;
    }
  }

  // References the stand-in keeps for itself (an open workbook, a sheet of one).
  int internalReferences = 0;
  ULONG references() const { return references_; }

 protected:
  // Answers `member` (lower case); false when this object has no such member.
  virtual bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) = 0;
  static void Answer(Variant& result, IDispatch* object) { result = Variant::Object(object); }

  FakeState* state_;

 private:
  ULONG references_ = 1;
};

template <typename Object, typename... Parameters>
ComPtr<Object> Make(Parameters&&... parameters) {
  return ComPtr<Object>::Adopt(new Object(std::forward<Parameters>(parameters)...));
}

struct Area {
  int firstRow, firstColumn, lastRow, lastColumn;
  bool Contains(int row, int column) const {
    return row >= firstRow && row <= lastRow && column >= firstColumn && column <= lastColumn;
  }
};

// Excel's sheet-name rules, as it refuses a name.
bool BadSheetName(const std::string& name) {
  if (name.empty() || Wide(name).size() > 31) return true;
  return name.find_first_of("[]:*?/\\") != std::string::npos || name.front() == '\'' || name.back() == '\'';
}

class WorksheetObject final : public FakeObject {
 public:
  WorksheetObject(FakeState* state, WorkbookObject* owner, FakeSheet content)
      : FakeObject(state), workbook(owner), data(std::move(content)) {}
  WorkbookObject* workbook;
  FakeSheet data;
  Area selection{1, 1, 1, 1};

  void Store(int row, int column, const VARIANT& value) {
    if (value.vt == VT_EMPTY) {
      data.cells.erase({row, column});
      return;
    }
    std::string text = TextOf(value);
    if (value.vt == VT_BSTR && !text.empty() && text.front() == '\'') {
      data.cells[{row, column}] = FakeCell{text.substr(1), false};
      return;
    }
    if (text.empty()) {
      data.cells.erase({row, column});
      return;
    }
    // A text Excel can read as a number becomes one, as when typed.
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    const bool number = value.vt != VT_BSTR || (end != nullptr && *end == '\0' && text.front() != ' ');
    data.cells[{row, column}] = FakeCell{text, number};
  }
  void RefuseLocked(const Area& area) const {
    for (const auto& [row, column] : data.lockedCells) {
      if (area.Contains(row, column)) RaiseExcel("Cellen eller diagrammet som du försöker ändra är skyddat.");
    }
  }

 protected:
  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) override;
};

class RangeObject final : public FakeObject {
 public:
  RangeObject(FakeState* state, ComPtr<WorksheetObject> sheet, Area area)
      : FakeObject(state), sheet_(std::move(sheet)), area_(area) {}
  int firstRow() const { return area_.firstRow; }

 protected:
  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) override;

 private:
  bool OneCell() const { return area_.firstRow == area_.lastRow && area_.firstColumn == area_.lastColumn; }
  ComPtr<WorksheetObject> sheet_;
  Area area_;
};

class BorderObject final : public FakeObject {
 public:
  using FakeObject::FakeObject;

 protected:
  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant&) override {
    if (member != "weight" || !isPut) return false;
    IntOf(*arguments.put);
    return true;
  }
};

class PageBreaksObject final : public FakeObject {
 public:
  PageBreaksObject(FakeState* state, ComPtr<WorksheetObject> sheet)
      : FakeObject(state), sheet_(std::move(sheet)) {}

 protected:
  bool Member(const std::string& member, bool, const Arguments& arguments, Variant& result) override;

 private:
  ComPtr<WorksheetObject> sheet_;
};

class WorkbookObject final : public FakeObject {
 public:
  WorkbookObject(FakeState* state, std::string file, bool readOnlyFile)
      : FakeObject(state), path(std::move(file)), readOnly(readOnlyFile) {}
  ~WorkbookObject() override {
    for (auto& sheet : sheets) sheet->workbook = nullptr;
  }
  std::string path;
  bool readOnly;
  std::vector<ComPtr<WorksheetObject>> sheets;
  WorksheetObject* activeSheet = nullptr;

  void AddSheet(FakeSheet data, std::size_t position) {
    auto sheet = Make<WorksheetObject>(state_, this, std::move(data));
    sheet->internalReferences = 1;
    sheets.insert(sheets.begin() + static_cast<long>(position), sheet);
    activeSheet = sheet.get();
  }
  int IndexOf(const WorksheetObject* sheet) const {
    for (std::size_t i = 0; i < sheets.size(); ++i) {
      if (sheets[i].get() == sheet) return static_cast<int>(i) + 1;
    }
    RaiseExcel("Bladet finns inte längre");
  }
  FakeFile Snapshot() const {
    FakeFile file;
    for (const auto& sheet : sheets) file.sheets.push_back(sheet->data);
    file.activeSheet = static_cast<std::size_t>(IndexOf(activeSheet) - 1);
    return file;
  }

 protected:
  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) override;
};

class SheetsObject final : public FakeObject {
 public:
  SheetsObject(FakeState* state, ComPtr<WorkbookObject> workbook)
      : FakeObject(state), workbook_(std::move(workbook)) {}

 protected:
  bool Member(const std::string& member, bool, const Arguments& arguments, Variant& result) override {
    if (member == "count") {
      result = Variant::Int(static_cast<long>(workbook_->sheets.size()));
      return true;
    }
    if (member == "item") {
      const long index = IntOf(arguments.Need(0, "index"));
      if (index < 1 || index > static_cast<long>(workbook_->sheets.size()))
        throw Raised{DISP_E_BADINDEX, 0, ""};
      Answer(result, workbook_->sheets[static_cast<std::size_t>(index - 1)].get());
      return true;
    }
    return false;
  }

 private:
  ComPtr<WorkbookObject> workbook_;
};

void Activate(FakeState* state, WorkbookObject* workbook) {
  state->active = workbook;
}

bool WorkbookObject::Member(const std::string& member, bool, const Arguments& arguments, Variant& result) {
  if (member == "sheets" || member == "worksheets") {
    auto collection = Make<SheetsObject>(state_, ComPtr<WorkbookObject>::Share(this));
    if (const VARIANT* index = arguments.At(0, "index")) {
      const long i = IntOf(*index);
      if (i < 1 || i > static_cast<long>(sheets.size())) throw Raised{DISP_E_BADINDEX, 0, ""};
      Answer(result, sheets[static_cast<std::size_t>(i - 1)].get());
    } else {
      Answer(result, collection.get());
    }
    return true;
  }
  if (member == "saveas") {
    path = TextOf(arguments.Need(0, "filename"));
    readOnly = false;
    state_->files[path] = Snapshot();
    return true;
  }
  if (member == "save") {
    if (readOnly) RaiseExcel("Arbetsboken är skrivskyddad.");
    state_->files[path] = Snapshot();
    return true;
  }
  if (member == "close") {
    const VARIANT* save = arguments.At(0, "savechanges");
    if (save != nullptr && BoolOf(*save) && !readOnly) state_->files[path] = Snapshot();
    auto& open = state_->open;
    for (auto it = open.begin(); it != open.end(); ++it) {
      if (it->get() != this) continue;
      --internalReferences;
      open.erase(it);
      break;
    }
    if (state_->active == this) state_->active = open.empty() ? nullptr : open.back().get();
    return true;
  }
  if (member == "fullname") {
    result = Variant::Text(path);
    return true;
  }
  return false;
}

// "A1", "A1:C3", "B:D" or "10:12".
std::optional<Area> ParseArea(const std::string& address) {
  const auto colon = address.find(':');
  const std::string first = address.substr(0, colon);
  const std::string last = colon == std::string::npos ? first : address.substr(colon + 1);
  const auto a = ParseCellAddress(first);
  const auto b = ParseCellAddress(last);
  if (a && b)
    return Area{std::min(a->row, b->row), std::min(a->column, b->column), std::max(a->row, b->row),
                std::max(a->column, b->column)};
  if (!first.empty() && std::all_of(first.begin(), first.end(), ::isdigit) && !last.empty() &&
      std::all_of(last.begin(), last.end(), ::isdigit)) {
    return Area{std::stoi(first), 1, std::stoi(last), kColumns};
  }
  const auto column = [](const std::string& letters) { return ParseCellAddress(letters + "1"); };
  if (const auto c = column(first), d = column(last); c && d) return Area{1, c->column, kRows, d->column};
  return std::nullopt;
}

std::string CopyName(const WorkbookObject& workbook, const std::string& name) {
  for (int n = 2;; ++n) {
    const std::string candidate = name + " (" + std::to_string(n) + ")";
    bool taken = false;
    for (const auto& sheet : workbook.sheets) taken = taken || Lower(sheet->data.name) == Lower(candidate);
    if (!taken) return candidate;
  }
}

WorksheetObject* AsSheet(const VARIANT& value) {
  if (value.vt != VT_DISPATCH || value.pdispVal == nullptr) return nullptr;
  return dynamic_cast<WorksheetObject*>(static_cast<FakeObject*>(value.pdispVal));
}

bool WorksheetObject::Member(const std::string& member, bool isPut, const Arguments& arguments,
                             Variant& result) {
  if (workbook == nullptr) RaiseExcel("Objektet har kopplats bort från sina klienter.");
  auto self = ComPtr<WorksheetObject>::Share(this);
  if (member == "name") {
    if (!isPut) {
      result = Variant::Text(data.name);
      return true;
    }
    const std::string name = TextOf(*arguments.put);
    for (const auto& sheet : workbook->sheets) {
      if (sheet.get() != this && Lower(sheet->data.name) == Lower(name)) RaiseExcel("Namnet används redan.");
    }
    if (BadSheetName(name)) RaiseExcel("Bladnamnet är ogiltigt.");
    data.name = name;
    return true;
  }
  if (member == "index") {
    result = Variant::Int(workbook->IndexOf(this));
    return true;
  }
  if (member == "copy") {
    const VARIANT* after = arguments.At(1, "after");
    const VARIANT* before = arguments.At(0, "before");
    WorksheetObject* anchor = AsSheet(after != nullptr ? *after : before != nullptr ? *before : VARIANT{});
    if (anchor == nullptr || anchor->workbook != workbook)
      RaiseExcel("Copy-metoden i Worksheet-klassen misslyckades");
    FakeSheet copy = data;
    copy.name = CopyName(*workbook, data.name);
    const int position = workbook->IndexOf(anchor) - (after != nullptr ? 0 : 1);
    workbook->AddSheet(std::move(copy), static_cast<std::size_t>(position));
    Activate(state_, workbook);
    return true;
  }
  if (member == "select") {
    workbook->activeSheet = this;
    Activate(state_, workbook);
    return true;
  }
  if (member == "cells") {
    const VARIANT* row = arguments.At(0, "rowindex");
    const VARIANT* column = arguments.At(1, "columnindex");
    Area area{1, 1, kRows, kColumns};
    if (row != nullptr && column != nullptr) {
      const long r = IntOf(*row);
      const long c = IntOf(*column);
      if (r < 1 || r > kRows || c < 1 || c > kColumns)
        RaiseExcel("Programdefinierat eller objektdefinierat fel");
      area = Area{static_cast<int>(r), static_cast<int>(c), static_cast<int>(r), static_cast<int>(c)};
    }
    Answer(result, Make<RangeObject>(state_, self, area).get());
    return true;
  }
  if (member == "range" || member == "rows" || member == "columns") {
    const VARIANT& first = arguments.Need(0, "cell1");
    std::optional<Area> area;
    if (first.vt == VT_BSTR) {
      area = ParseArea(TextOf(first));
    } else if (member == "rows") {
      const int row = static_cast<int>(IntOf(first));
      area = Area{row, 1, row, kColumns};
    }
    if (!area) RaiseExcel("Programdefinierat eller objektdefinierat fel");
    if (member == "rows" && area->lastColumn != kColumns)
      RaiseExcel("Programdefinierat eller objektdefinierat fel");
    Answer(result, Make<RangeObject>(state_, self, *area).get());
    return true;
  }
  if (member == "hpagebreaks") {
    Answer(result, Make<PageBreaksObject>(state_, self).get());
    return true;
  }
  return false;
}

bool RangeObject::Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) {
  WorksheetObject& sheet = *sheet_.get();
  if (sheet.workbook == nullptr) RaiseExcel("Objektet har kopplats bort från sina klienter.");
  if (member == "value" || member == "value2") {
    if (!isPut) {
      if (!OneCell()) throw Raised{DISP_E_TYPEMISMATCH, 0, ""};
      const auto cell = sheet.data.cells.find({area_.firstRow, area_.firstColumn});
      if (cell == sheet.data.cells.end()) return true;
      if (cell->second.number) {
        VARIANT number;
        VariantInit(&number);
        number.vt = VT_R8;
        number.dblVal = std::strtod(cell->second.text.c_str(), nullptr);
        result.raw() = number;
      } else {
        result = Variant::Text(cell->second.text);
      }
      return true;
    }
    sheet.RefuseLocked(area_);
    const VARIANT& value = *arguments.put;
    if ((value.vt & VT_ARRAY) != 0) {
      SAFEARRAY* array = value.parray;
      LONG rowsLow = 0, rowsHigh = 0, columnsLow = 0, columnsHigh = 0;
      if (SafeArrayGetDim(array) != 2) RaiseExcel("Matrisen måste ha två dimensioner");
      SafeArrayGetLBound(array, 1, &rowsLow);
      SafeArrayGetUBound(array, 1, &rowsHigh);
      SafeArrayGetLBound(array, 2, &columnsLow);
      SafeArrayGetUBound(array, 2, &columnsHigh);
      // Excel fills a larger range with #N/A; the engine must never ask for that.
      if (rowsHigh - rowsLow + 1 != area_.lastRow - area_.firstRow + 1 ||
          columnsHigh - columnsLow + 1 != area_.lastColumn - area_.firstColumn + 1) {
        RaiseExcel("Matrisen passar inte området");
      }
      for (LONG r = rowsLow; r <= rowsHigh; ++r) {
        for (LONG c = columnsLow; c <= columnsHigh; ++c) {
          LONG indices[2] = {r, c};
          Variant element;
          SafeArrayGetElement(array, indices, element.Receive());
          sheet.Store(area_.firstRow + static_cast<int>(r - rowsLow),
                      area_.firstColumn + static_cast<int>(c - columnsLow), element.raw());
        }
      }
      return true;
    }
    for (int r = area_.firstRow; r <= area_.lastRow && r <= 100000; ++r) {
      for (int c = area_.firstColumn; c <= area_.lastColumn && c <= 1000; ++c) sheet.Store(r, c, value);
    }
    return true;
  }
  if (member == "select") {
    if (sheet.workbook->activeSheet != &sheet) RaiseExcel("Select-metoden i Range-klassen misslyckades");
    sheet.selection = area_;
    return true;
  }
  if (member == "clearcontents") {
    sheet.RefuseLocked(area_);
    for (auto it = sheet.data.cells.begin(); it != sheet.data.cells.end();) {
      it = area_.Contains(it->first.first, it->first.second) ? sheet.data.cells.erase(it) : std::next(it);
    }
    return true;
  }
  if (member == "copy") {
    state_->clipboard = std::make_pair(&sheet, std::make_pair(area_.firstRow, area_.lastRow));
    return true;
  }
  if (member == "pastespecial") {
    if (!state_->clipboard) RaiseExcel("PasteSpecial-metoden i Range-klassen misslyckades");
    IntOf(arguments.Need(0, "paste"));
    return true;
  }
  if (member == "borders") {
    IntOf(arguments.Need(0, "index"));
    Answer(result, Make<BorderObject>(state_).get());
    return true;
  }
  if (member == "entirecolumn") {
    Answer(result,
           Make<RangeObject>(state_, sheet_, Area{1, area_.firstColumn, kRows, area_.lastColumn}).get());
    return true;
  }
  if (member == "autofit") {
    if (area_.firstRow != 1 || area_.lastRow != kRows)
      RaiseExcel("AutoFit-metoden i Range-klassen misslyckades");
    return true;
  }
  if (member == "row" || member == "column") {
    result = Variant::Int(member == "row" ? area_.firstRow : area_.firstColumn);
    return true;
  }
  if (member == "cells") {
    const long r = IntOf(arguments.Need(0, "rowindex"));
    const long c = IntOf(arguments.Need(1, "columnindex"));
    const int row = area_.firstRow + static_cast<int>(r) - 1;
    const int column = area_.firstColumn + static_cast<int>(c) - 1;
    Answer(result, Make<RangeObject>(state_, sheet_, Area{row, column, row, column}).get());
    return true;
  }
  return false;
}

bool PageBreaksObject::Member(const std::string& member, bool, const Arguments& arguments, Variant& result) {
  if (member == "count") {
    result = Variant::Int(static_cast<long>(sheet_->data.pageBreakRows.size()));
    return true;
  }
  if (member == "add") {
    const VARIANT& before = arguments.Need(0, "before");
    if (before.vt != VT_DISPATCH || before.pdispVal == nullptr) RaiseExcel("Typerna matchar inte");
    auto* cell = dynamic_cast<RangeObject*>(static_cast<FakeObject*>(before.pdispVal));
    if (cell == nullptr) RaiseExcel("Typerna matchar inte");
    const long at = cell->firstRow();
    if (at <= 1) RaiseExcel("Programdefinierat eller objektdefinierat fel");
    sheet_->data.pageBreakRows.insert(static_cast<int>(at));
    return true;
  }
  return false;
}

class WorkbooksObject final : public FakeObject {
 public:
  using FakeObject::FakeObject;

 protected:
  bool Member(const std::string& member, bool, const Arguments& arguments, Variant& result) override {
    if (member == "count") {
      result = Variant::Int(static_cast<long>(state_->open.size()));
      return true;
    }
    if (member == "item") {
      const long index = IntOf(arguments.Need(0, "index"));
      if (index < 1 || index > static_cast<long>(state_->open.size())) throw Raised{DISP_E_BADINDEX, 0, ""};
      Answer(result, state_->open[static_cast<std::size_t>(index - 1)].get());
      return true;
    }
    if (member == "open") {
      const std::string path = TextOf(arguments.Need(0, "filename"));
      const VARIANT* readOnly = arguments.At(2, "readonly");
      if (const VARIANT* links = arguments.At(1, "updatelinks")) IntOf(*links);
      const auto file = state_->files.find(path);
      if (file == state_->files.end()) RaiseExcel("Det går inte att hitta " + path + ".");
      auto workbook = Make<WorkbookObject>(state_, path, readOnly != nullptr && BoolOf(*readOnly));
      for (const auto& sheet : file->second.sheets) workbook->AddSheet(sheet, workbook->sheets.size());
      workbook->activeSheet = workbook->sheets.at(file->second.activeSheet).get();
      workbook->internalReferences = 1;
      state_->open.push_back(workbook);
      Activate(state_, workbook.get());
      Answer(result, workbook.get());
      return true;
    }
    if (member == "opentext") {
      std::map<std::string, std::string> given;
      for (const auto& [name, value] : arguments.named) {
        if ((value->vt & VT_ARRAY) == 0) {
          given[name] = TextOf(*value);
          continue;
        }
        std::string pairs;
        LONG low = 0, high = -1;
        SafeArrayGetLBound(value->parray, 1, &low);
        SafeArrayGetUBound(value->parray, 1, &high);
        for (LONG i = low; i <= high; ++i) {
          Variant pair;
          SafeArrayGetElement(value->parray, &i, pair.Receive());
          LONG first = 0;
          SafeArrayGetLBound(pair.raw().parray, 1, &first);
          Variant column, type;
          LONG second = first + 1;
          SafeArrayGetElement(pair.raw().parray, &first, column.Receive());
          SafeArrayGetElement(pair.raw().parray, &second, type.Receive());
          if (!pairs.empty()) pairs += ",";
          pairs += column.ToText() + ":" + type.ToText();
        }
        given[name] = pairs;
      }
      state_->lastOpenText = given;
      const std::string path = given["filename"];
      std::string name = path.substr(path.find_last_of("/\\") + 1);
      name = name.substr(0, name.rfind('.'));
      auto workbook = Make<WorkbookObject>(state_, path, false);
      workbook->AddSheet(FakeSheet{name, {}, {}, {}}, 0);
      workbook->internalReferences = 1;
      state_->open.push_back(workbook);
      Activate(state_, workbook.get());
      return true;
    }
    return false;
  }
};

class ApplicationObject final : public FakeObject {
 public:
  using FakeObject::FakeObject;

 protected:
  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) override {
    if (member == "visible" || member == "usercontrol") {
      bool& flag = member == "visible" ? state_->visible : state_->userControl;
      if (isPut) {
        flag = BoolOf(*arguments.put);
      } else {
        result = Variant::Bool(flag);
      }
      return true;
    }
    if (member == "cutcopymode" && isPut) {
      state_->clipboard.reset();
      return true;
    }
    if (member == "quit") {
      for (auto& workbook : state_->open) --workbook->internalReferences;
      state_->open.clear();
      state_->active = nullptr;
      return true;
    }
    if (member == "workbooks") {
      Answer(result, Make<WorkbooksObject>(state_).get());
      return true;
    }
    if (member == "activeworkbook") {
      Answer(result, state_->active);
      return true;
    }
    WorkbookObject* workbook = state_->active;
    if (member == "activesheet" || member == "selection" || member == "activecell") {
      if (workbook == nullptr) RaiseExcel("Objektvariabeln eller With-blockvariabeln har inte angetts");
      WorksheetObject* sheet = workbook->activeSheet;
      if (member == "activesheet") {
        Answer(result, sheet);
        return true;
      }
      Area area = sheet->selection;
      if (member == "activecell")
        area = Area{area.firstRow, area.firstColumn, area.firstRow, area.firstColumn};
      Answer(result, Make<RangeObject>(state_, ComPtr<WorksheetObject>::Share(sheet), area).get());
      return true;
    }
    return false;
  }
};

}  // namespace

FakeExcel::FakeExcel() : state_(std::make_unique<FakeState>()) {}

FakeExcel::~FakeExcel() {
  state_->open.clear();
}

void FakeExcel::AddFile(const std::string& path, FakeFile file) {
  state_->files[path] = std::move(file);
}

const std::map<std::string, FakeFile>& FakeExcel::files() const {
  return state_->files;
}

void FakeExcel::FailCall(const std::string& member, int occurrence, HRESULT scode, unsigned short wCode,
                         const std::string& description) {
  state_->failures.emplace(Lower(member), std::make_pair(occurrence, Failure{scode, wCode, description}));
}

HRESULT FakeExcel::CreateApplication(IDispatch** application) {
  *application = new ApplicationObject(state_.get());
  return S_OK;
}

int FakeExcel::invokes() const {
  return state_->invokes;
}
int FakeExcel::nameLookups() const {
  return state_->lookups;
}
int FakeExcel::CallsOf(const std::string& member) const {
  const auto found = state_->calls.find(Lower(member));
  return found == state_->calls.end() ? 0 : found->second;
}
int FakeExcel::ReferencesHeldOutside() const {
  int outside = 0;
  for (const FakeObject* object : state_->alive) {
    outside += static_cast<int>(object->references()) - object->internalReferences;
  }
  return outside;
}
bool FakeExcel::visible() const {
  return state_->visible;
}
bool FakeExcel::userControl() const {
  return state_->userControl;
}
const std::map<std::string, std::string>& FakeExcel::lastOpenText() const {
  return state_->lastOpenText;
}
std::vector<FakeFile> FakeExcel::OpenWorkbooks() const {
  std::vector<FakeFile> files;
  for (const auto& workbook : state_->open) files.push_back(workbook->Snapshot());
  return files;
}

}  // namespace sw::excel::testing
