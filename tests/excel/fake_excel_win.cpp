#include "fake_excel_win.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "excel/automation.h"
#include "excel/cell_address.h"
#include "excel/com/variant_win.h"
#include "excel/package/package_engine.h"

namespace sw::excel::testing {

using com::Utf8;
using com::Variant;
using com::Wide;

namespace {

constexpr HRESULT kExcelError = static_cast<HRESULT>(0x800A03EC);

// Raised inside a member; Invoke hands it back as DISP_E_EXCEPTION.
struct Raised {
  HRESULT scode;
  WORD wCode;
  std::string description;
};

[[noreturn]] void RaiseExcel(const std::string& description) {
  throw Raised{kExcelError, 0, description};
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// What an object stands for: Application, Workbooks, Workbook, Sheets, Worksheet, Range, Border or
// HPageBreaks, with the engine's ids of its workbook, sheet and cells.
enum class Kind { kApplication, kWorkbooks, kWorkbook, kSheets, kSheet, kRange, kBorder, kPageBreaks };

class FakeObject;

}  // namespace

struct FakeState {
  PackageEngine engine;
  std::vector<std::string> names;  // member and argument names by DISPID - 1
  std::multimap<std::string, std::pair<int, Raised>> failures;
  std::map<std::string, int> calls;
  int invokes = 0;
  int lookups = 0;
  std::set<FakeObject*> alive;
  // Excel hands out the same object for a workbook or sheet however it is reached.
  std::map<std::pair<Kind, std::pair<WorkbookId, SheetId>>, FakeObject*> identities;
  std::set<std::pair<int, int>> lockedCells;
  bool userControl = false;
  std::map<std::string, std::string> lastOpenText;
  std::vector<std::string> typedAsNumbers;
};

namespace {

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
std::string TextOf(const VARIANT& value) {
  return Copy(value).ToText();
}

class FakeObject final : public IDispatch {
 public:
  FakeObject(FakeState* state, Kind kind, RangeRef ref, int edge)
      : state_(state), kind_(kind), ref_(ref), edge_(edge) {
    state_->alive.insert(this);
  }
  ~FakeObject() {
    state_->alive.erase(this);
    const auto identity = state_->identities.find(Identity());
    if (identity != state_->identities.end() && identity->second == this) state_->identities.erase(identity);
  }
  FakeObject(const FakeObject&) = delete;
  FakeObject& operator=(const FakeObject&) = delete;

  // A new reference to the object for `kind` and `ref`, the same one for a workbook or sheet still held.
  static IDispatch* Get(FakeState* state, Kind kind, RangeRef ref, int edge = 0) {
    if (kind == Kind::kWorkbook || kind == Kind::kSheet) {
      if (const auto found = state->identities.find({kind, {ref.sheet.workbook, ref.sheet.sheet}});
          found != state->identities.end()) {
        found->second->AddRef();
        return found->second;
      }
    }
    auto* object = new FakeObject(state, kind, ref, edge);
    if (kind == Kind::kWorkbook || kind == Kind::kSheet) state->identities[object->Identity()] = object;
    return object;
  }

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
        if (it->second.first == call) throw it->second.second;
      }
      Variant answer;
      try {
        if (!Member(member, isPut, arguments, answer)) return DISP_E_MEMBERNOTFOUND;
      } catch (const base::NumberedError& error) {
        // The engine's run-time number travels as Excel's own errors do: 1004 as Excel's HRESULT,
        // the others as run-time numbers.
        const int number = error.number();
        if (number == kApplicationDefined) throw Raised{kExcelError, 0, error.description()};
        throw Raised{static_cast<HRESULT>(number),
                     static_cast<WORD>(number > 0 && number <= 0xFFFF ? number : 0), error.description()};
      }
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

  ULONG references() const { return references_; }

 private:
  std::pair<Kind, std::pair<WorkbookId, SheetId>> Identity() const {
    return {kind_, {ref_.sheet.workbook, ref_.sheet.sheet}};
  }
  void Answer(Variant& result, Kind kind, RangeRef ref, int edge = 0) const {
    result = Variant::Object(Get(state_, kind, ref, edge));
    result.raw().pdispVal->Release();  // Variant::Object took its own reference
  }
  void AnswerBook(Variant& result, WorkbookId book) const {
    if (book != 0) Answer(result, Kind::kWorkbook, RangeRef{SheetRef{book, 0}});
  }
  void AnswerSheet(Variant& result, SheetRef sheet) const { Answer(result, Kind::kSheet, RangeRef{sheet}); }
  void AnswerRange(Variant& result, RangeRef range) const { Answer(result, Kind::kRange, range); }
  // The object an argument passes, when it is one of this stand-in's of `kind`.
  static const FakeObject* ObjectOf(const VARIANT& value, Kind kind) {
    if (value.vt != VT_DISPATCH || value.pdispVal == nullptr) return nullptr;
    const auto* object = static_cast<const FakeObject*>(value.pdispVal);
    return object->kind_ == kind ? object : nullptr;
  }

  bool Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result);
  bool ApplicationMember(const std::string& member, bool isPut, const Arguments& arguments, Variant& result);
  bool WorkbooksMember(const std::string& member, const Arguments& arguments, Variant& result);
  bool SheetMember(const std::string& member, bool isPut, const Arguments& arguments, Variant& result);
  bool RangeMember(const std::string& member, bool isPut, const Arguments& arguments, Variant& result);
  void Store(int row, int column, const VARIANT& value);

  FakeState* state_;
  Kind kind_;
  RangeRef ref_;
  int edge_;
  ULONG references_ = 1;
};

bool FakeObject::Member(const std::string& member, bool isPut, const Arguments& arguments, Variant& result) {
  Engine& engine = state_->engine;
  const WorkbookId book = ref_.sheet.workbook;
  switch (kind_) {
    case Kind::kApplication:
      return ApplicationMember(member, isPut, arguments, result);
    case Kind::kWorkbooks:
      return WorkbooksMember(member, arguments, result);
    case Kind::kWorkbook:
      if (member == "sheets" || member == "worksheets") {
        Answer(result, Kind::kSheets, ref_);
      } else if (member == "saveas") {
        engine.SaveAs(book, TextOf(arguments.Need(0, "filename")));
      } else if (member == "save") {
        engine.Save(book);
      } else if (member == "close") {
        const VARIANT* save = arguments.At(0, "savechanges");
        engine.Close(book, save != nullptr && Copy(*save).ToBool());
      } else if (member == "fullname") {
        result = Variant::Text(engine.FullName(book));
      } else {
        return false;
      }
      return true;
    case Kind::kSheets:
      if (member == "count") {
        result = Variant::Int(engine.SheetCount(book));
      } else if (member == "item") {
        const long index = IntOf(arguments.Need(0, "index"));
        if (index < 1 || index > engine.SheetCount(book)) throw Raised{DISP_E_BADINDEX, 0, ""};
        AnswerSheet(result, engine.SheetAt(book, static_cast<int>(index)));
      } else {
        return false;
      }
      return true;
    case Kind::kSheet:
      return SheetMember(member, isPut, arguments, result);
    case Kind::kRange:
      return RangeMember(member, isPut, arguments, result);
    case Kind::kBorder:
      if (member != "weight" || !isPut) return false;
      engine.SetBorderWeight(ref_, static_cast<XlBordersIndex>(edge_),
                             static_cast<XlBorderWeight>(IntOf(*arguments.put)));
      return true;
    case Kind::kPageBreaks:
      if (member == "count") {
        result = Variant::Int(engine.PageBreakCount(ref_.sheet));
      } else if (member == "add") {
        const FakeObject* cell = ObjectOf(arguments.Need(0, "before"), Kind::kRange);
        if (cell == nullptr) throw Raised{DISP_E_TYPEMISMATCH, 0, ""};
        engine.AddPageBreak(ref_.sheet, cell->ref_);
      } else {
        return false;
      }
      return true;
  }
  return false;
}

bool FakeObject::ApplicationMember(const std::string& member, bool isPut, const Arguments& arguments,
                                   Variant& result) {
  Engine& engine = state_->engine;
  if (member == "visible") {
    if (isPut) {
      engine.SetVisible(Copy(*arguments.put).ToBool());
    } else {
      result = Variant::Bool(engine.Visible());
    }
  } else if (member == "usercontrol") {
    if (isPut) {
      state_->userControl = Copy(*arguments.put).ToBool();
    } else {
      result = Variant::Bool(state_->userControl);
    }
  } else if (member == "cutcopymode" && isPut) {
    engine.SetCutCopyMode(Copy(*arguments.put).ToBool());
  } else if (member == "quit") {
    engine.Quit();
  } else if (member == "workbooks") {
    Answer(result, Kind::kWorkbooks, RangeRef{});
  } else if (member == "activeworkbook") {
    AnswerBook(result, engine.ActiveWorkbook());
  } else if (member == "activesheet") {
    AnswerSheet(result, engine.ActiveSheet());
  } else if (member == "selection") {
    AnswerRange(result, engine.Selection());
  } else if (member == "activecell") {
    AnswerRange(result, engine.ActiveCell());
  } else {
    return false;
  }
  return true;
}

// FieldInfo's array of (column, type) arrays as "1:2,2:2,...".
std::string FieldPairs(SAFEARRAY* array) {
  std::string pairs;
  LONG low = 0, high = -1;
  SafeArrayGetLBound(array, 1, &low);
  SafeArrayGetUBound(array, 1, &high);
  for (LONG i = low; i <= high; ++i) {
    Variant pair;
    SafeArrayGetElement(array, &i, pair.Receive());
    LONG first = 0;
    SafeArrayGetLBound(pair.raw().parray, 1, &first);
    Variant column, type;
    LONG second = first + 1;
    SafeArrayGetElement(pair.raw().parray, &first, column.Receive());
    SafeArrayGetElement(pair.raw().parray, &second, type.Receive());
    if (!pairs.empty()) pairs += ",";
    pairs += column.ToText() + ":" + type.ToText();
  }
  return pairs;
}

bool FakeObject::WorkbooksMember(const std::string& member, const Arguments& arguments, Variant& result) {
  Engine& engine = state_->engine;
  if (member == "count") {
    result = Variant::Int(engine.WorkbookCount());
  } else if (member == "item") {
    const long index = IntOf(arguments.Need(0, "index"));
    if (index < 1 || index > engine.WorkbookCount()) throw Raised{DISP_E_BADINDEX, 0, ""};
    AnswerBook(result, engine.WorkbookAt(static_cast<int>(index)));
  } else if (member == "open") {
    OpenArguments open;
    if (const VARIANT* links = arguments.At(1, "updatelinks")) open.updateLinks = Copy(*links).ToBool();
    if (const VARIANT* readOnly = arguments.At(2, "readonly")) open.readOnly = Copy(*readOnly).ToBool();
    AnswerBook(result, engine.OpenWorkbook(TextOf(arguments.Need(0, "filename")), open));
  } else if (member == "opentext") {
    std::map<std::string, std::string>& given = state_->lastOpenText;
    given.clear();
    for (const auto& [name, value] : arguments.named)
      given[name] = (value->vt & VT_ARRAY) != 0 ? FieldPairs(value->parray) : TextOf(*value);
    OpenTextOptions options;
    options.fileName = given["filename"];
    std::istringstream pairs(given["fieldinfo"]);
    for (std::string pair; std::getline(pairs, pair, ',');) {
      options.fieldInfo.emplace_back(
          std::stoi(pair), static_cast<XlColumnDataType>(std::stoi(pair.substr(pair.find(':') + 1))));
    }
    engine.OpenText(options);
  } else {
    return false;
  }
  return true;
}

bool FakeObject::SheetMember(const std::string& member, bool isPut, const Arguments& arguments,
                             Variant& result) {
  Engine& engine = state_->engine;
  Sheet sheet(&engine, ref_.sheet);
  if (member == "name") {
    if (isPut) {
      sheet.SetName(TextOf(*arguments.put));
    } else {
      result = Variant::Text(sheet.Name());
    }
  } else if (member == "index") {
    result = Variant::Int(sheet.Index());
  } else if (member == "copy") {
    const VARIANT* after = arguments.At(1, "after");
    const FakeObject* anchor = after != nullptr ? ObjectOf(*after, Kind::kSheet) : nullptr;
    if (anchor == nullptr) RaiseExcel("Copy-metoden i Worksheet-klassen misslyckades");
    engine.CopySheetAfter(ref_.sheet, anchor->ref_.sheet);
  } else if (member == "select") {
    engine.SelectSheet(ref_.sheet);
  } else if (member == "cells") {
    const VARIANT* row = arguments.At(0, "rowindex");
    const VARIANT* column = arguments.At(1, "columnindex");
    AnswerRange(result, (row != nullptr && column != nullptr
                             ? sheet.Cells(static_cast<int>(IntOf(*row)), static_cast<int>(IntOf(*column)))
                             : sheet.Cells())
                            .ref());
  } else if (member == "range" || member == "rows") {
    const std::string address = TextOf(arguments.Need(0, "cell1"));
    AnswerRange(result, (member == "rows" ? sheet.Rows(address) : sheet.Range(address)).ref());
  } else if (member == "columns") {
    const std::string address = TextOf(arguments.Need(0, "cell1"));
    const auto colon = address.find(':');
    const auto first = ParseCellAddress(address.substr(0, colon) + "1");
    const auto last = ParseCellAddress(address.substr(colon + 1) + "1");
    if (colon == std::string::npos || !first || !last)
      RaiseExcel("Programdefinierat eller objektdefinierat fel");
    AnswerRange(result,
                RangeRef{ref_.sheet, 1, first->column, kMaxRows, last->column, RangeShape::kEntireColumns});
  } else if (member == "hpagebreaks") {
    Answer(result, Kind::kPageBreaks, ref_);
  } else {
    return false;
  }
  return true;
}

void FakeObject::Store(int row, int column, const VARIANT& value) {
  std::string text = value.vt == VT_EMPTY ? std::string() : TextOf(value);
  if (value.vt == VT_BSTR && text.starts_with('\'')) {
    text.erase(0, 1);
  } else if (!text.empty()) {
    // A text Excel can read as a number becomes one, as when typed.
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    if (value.vt != VT_BSTR || (end != nullptr && *end == '\0' && text.front() != ' '))
      state_->typedAsNumbers.push_back(state_->engine.SheetName(ref_.sheet) + "!" +
                                       FormatCellAddress(row, column));
  }
  state_->engine.SetValue(RangeRef{ref_.sheet, row, column, row, column}, text);
}

bool FakeObject::RangeMember(const std::string& member, bool isPut, const Arguments& arguments,
                             Variant& result) {
  Engine& engine = state_->engine;
  const auto refuseLocked = [this] {
    for (const auto& [row, column] : state_->lockedCells) {
      if (row >= ref_.firstRow && row <= ref_.lastRow && column >= ref_.firstColumn &&
          column <= ref_.lastColumn)
        RaiseExcel("Cellen eller diagrammet som du försöker ändra är skyddat.");
    }
  };
  if (member == "value" || member == "value2") {
    if (!isPut) {
      result = Variant::Text(engine.Value(ref_));
      return true;
    }
    refuseLocked();
    const VARIANT& value = *arguments.put;
    if ((value.vt & VT_ARRAY) == 0) {
      if (ref_.firstRow != ref_.lastRow || ref_.firstColumn != ref_.lastColumn)
        RaiseExcel("Ett värde per cell");
      Store(ref_.firstRow, ref_.firstColumn, value);
      return true;
    }
    SAFEARRAY* array = value.parray;
    LONG rowsLow = 0, rowsHigh = 0, columnsLow = 0, columnsHigh = 0;
    if (SafeArrayGetDim(array) != 2) RaiseExcel("Matrisen måste ha två dimensioner");
    SafeArrayGetLBound(array, 1, &rowsLow);
    SafeArrayGetUBound(array, 1, &rowsHigh);
    SafeArrayGetLBound(array, 2, &columnsLow);
    SafeArrayGetUBound(array, 2, &columnsHigh);
    // Excel fills a larger range with #N/A; the engine must never ask for that.
    if (rowsHigh - rowsLow != ref_.lastRow - ref_.firstRow ||
        columnsHigh - columnsLow != ref_.lastColumn - ref_.firstColumn)
      RaiseExcel("Matrisen passar inte området");
    for (LONG r = rowsLow; r <= rowsHigh; ++r) {
      for (LONG c = columnsLow; c <= columnsHigh; ++c) {
        LONG indices[2] = {r, c};
        Variant element;
        SafeArrayGetElement(array, indices, element.Receive());
        Store(ref_.firstRow + static_cast<int>(r - rowsLow),
              ref_.firstColumn + static_cast<int>(c - columnsLow), element.raw());
      }
    }
  } else if (member == "select") {
    engine.Select(ref_);
  } else if (member == "clearcontents") {
    refuseLocked();
    engine.ClearContents(ref_);
  } else if (member == "copy") {
    engine.Copy(ref_);
  } else if (member == "pastespecial") {
    engine.PasteSpecial(ref_, static_cast<XlPasteType>(IntOf(arguments.Need(0, "paste"))));
  } else if (member == "borders") {
    Answer(result, Kind::kBorder, ref_, static_cast<int>(IntOf(arguments.Need(0, "index"))));
  } else if (member == "autofit") {
    engine.AutoFit(ref_);
  } else if (member == "cells") {
    const int row = ref_.firstRow + static_cast<int>(IntOf(arguments.Need(0, "rowindex"))) - 1;
    const int column = ref_.firstColumn + static_cast<int>(IntOf(arguments.Need(1, "columnindex"))) - 1;
    AnswerRange(result, RangeRef{ref_.sheet, row, column, row, column});
  } else {
    return false;
  }
  return true;
}

}  // namespace

FakeExcel::FakeExcel() : state_(std::make_unique<FakeState>()) {}
FakeExcel::~FakeExcel() = default;

void FakeExcel::FailCall(const std::string& member, int occurrence, HRESULT scode, unsigned short wCode,
                         const std::string& description) {
  state_->failures.emplace(Lower(member), std::make_pair(occurrence, Raised{scode, wCode, description}));
}

void FakeExcel::LockCell(int row, int column) {
  state_->lockedCells.insert({row, column});
}

HRESULT FakeExcel::CreateApplication(IDispatch** application) {
  *application = FakeObject::Get(state_.get(), Kind::kApplication, RangeRef{});
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
  for (const FakeObject* object : state_->alive) outside += static_cast<int>(object->references());
  return outside;
}
bool FakeExcel::visible() const {
  return state_->engine.Visible();
}
bool FakeExcel::userControl() const {
  return state_->userControl;
}
const std::map<std::string, std::string>& FakeExcel::lastOpenText() const {
  return state_->lastOpenText;
}
const std::vector<std::string>& FakeExcel::typedAsNumbers() const {
  return state_->typedAsNumbers;
}

}  // namespace sw::excel::testing
