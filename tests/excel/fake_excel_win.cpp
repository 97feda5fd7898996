#include "fake_excel_win.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "excel/automation.h"
#include "excel/cell_address.h"
#include "excel/com/variant_win.h"
#include "excel/package/package_engine.h"

namespace sw::excel::testing {

using com::Utf8;
using com::Variant;
using com::Wide;

namespace {

// Raised inside a member; Invoke hands it back as DISP_E_EXCEPTION.
struct Raised {
  HRESULT scode;
  WORD wCode;
  std::string description;
};

[[noreturn]] void RaiseExcel(const std::string& description) {
  throw Raised{static_cast<HRESULT>(0x800A03EC), 0, description};
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// What an object stands for; its RangeRef holds the engine's ids of its workbook, sheet and cells.
enum class Kind { kApplication, kWorkbooks, kWorkbook, kSheets, kSheet, kRange, kBorder, kPageBreaks };

class FakeObject;

}  // namespace

struct FakeState {
  PackageEngine engine;
  std::vector<std::string> names;  // member and argument names by DISPID - 1
  std::multimap<std::string, std::pair<int, Raised>> failures;
  std::map<std::string, int> calls;
  int crossings = 0;
  std::set<FakeObject*> alive;
  // Excel hands out the same object for a workbook or sheet however it is reached.
  std::map<std::tuple<Kind, WorkbookId, SheetId>, FakeObject*> identities;
  std::set<std::pair<int, int>> lockedCells;
  bool userControl = false;
};

namespace {

Variant Copy(const VARIANT& value) {
  Variant copy;
  VariantCopy(copy.Receive(), const_cast<VARIANT*>(&value));
  return copy;
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
    const bool hasIdentity = kind == Kind::kWorkbook || kind == Kind::kSheet;
    if (hasIdentity) {
      if (const auto found = state->identities.find({kind, ref.sheet.workbook, ref.sheet.sheet});
          found != state->identities.end()) {
        found->second->AddRef();
        return found->second;
      }
    }
    auto* object = new FakeObject(state, kind, ref, edge);
    if (hasIdentity) state->identities[object->Identity()] = object;
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
    ++state_->crossings;
    for (UINT i = 0; i < count; ++i) {
      const std::string name = Lower(Utf8(names[i]));
      auto found = std::find(state_->names.begin(), state_->names.end(), name);
      if (found == state_->names.end()) found = state_->names.insert(state_->names.end(), name);
      ids[i] = static_cast<DISPID>(found - state_->names.begin()) + 1;
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override;

  Kind kind() const { return kind_; }
  const RangeRef& ref() const { return ref_; }
  int edge() const { return edge_; }
  ULONG references() const { return references_; }

 private:
  std::tuple<Kind, WorkbookId, SheetId> Identity() const {
    return {kind_, ref_.sheet.workbook, ref_.sheet.sheet};
  }

  FakeState* state_;
  Kind kind_;
  RangeRef ref_;
  int edge_;  // a Border's XlBordersIndex
  ULONG references_ = 1;
};

// One Invoke: the object called, its arguments (positional in natural order, named by lower-case
// name, the value of a property put) and its answer.
struct Call {
  FakeState& state;
  const FakeObject& self;
  std::vector<const VARIANT*> positional;
  std::map<std::string, const VARIANT*> named;
  const VARIANT* put = nullptr;
  Variant result;

  PackageEngine& engine() const { return state.engine; }
  const RangeRef& ref() const { return self.ref(); }
  WorkbookId book() const { return ref().sheet.workbook; }
  SheetRef sheet() const { return ref().sheet; }

  // Argument `index` (0-based) given positionally or by `name`; nothing when left out.
  const VARIANT* At(std::size_t index, const std::string& name) const {
    const VARIANT* value = nullptr;
    if (const auto found = named.find(name); found != named.end()) value = found->second;
    if (value == nullptr && index < positional.size()) value = positional[index];
    if (value != nullptr && value->vt == VT_ERROR && value->scode == DISP_E_PARAMNOTFOUND) return nullptr;
    return value;
  }
  Variant Need(std::size_t index, const std::string& name) const {
    const VARIANT* value = At(index, name);
    if (value == nullptr) throw Raised{DISP_E_PARAMNOTOPTIONAL, 0, ""};
    return Copy(*value);
  }
  Variant Named(const std::string& name) const { return Need(positional.size(), name); }
  // The object an argument passes, when it is one of this stand-in's of `kind`.
  const FakeObject* ObjectAt(std::size_t index, const std::string& name, Kind kind) const {
    const VARIANT* value = At(index, name);
    if (value == nullptr || value->vt != VT_DISPATCH || value->pdispVal == nullptr) return nullptr;
    const auto* object = static_cast<const FakeObject*>(value->pdispVal);
    return object->kind() == kind ? object : nullptr;
  }

  void Answer(Kind kind, RangeRef range, int edge = 0) {
    result = Variant::Object(FakeObject::Get(&state, kind, range, edge));
    result.raw().pdispVal->Release();  // Variant::Object took its own reference
  }
  void AnswerBook(WorkbookId workbook) {
    if (workbook != 0) Answer(Kind::kWorkbook, RangeRef{SheetRef{workbook, 0}});
  }
  void AnswerRange(const Range& range) { Answer(Kind::kRange, range.ref()); }

  void RefuseLocked() const {
    for (const auto& [row, column] : state.lockedCells) {
      if (row >= ref().firstRow && row <= ref().lastRow && column >= ref().firstColumn &&
          column <= ref().lastColumn)
        RaiseExcel("Cellen eller diagrammet som du försöker ändra är skyddat.");
    }
  }
};

// Excel reads a text it is given as if typed: what reads as a number becomes that number, unless a
// leading apostrophe keeps it text.
std::string Typed(const VARIANT& value) {
  const std::string text = value.vt == VT_EMPTY ? std::string() : Copy(value).ToText();
  if (value.vt == VT_BSTR && text.starts_with('\'')) return text.substr(1);
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || text.front() == ' ' || *end != '\0') return text;
  std::ostringstream shown;
  shown << number;
  return shown.str();
}

void PutValue(Call& call) {
  call.RefuseLocked();
  const RangeRef& ref = call.ref();
  const VARIANT& value = *call.put;
  const auto store = [&](int row, int column, const VARIANT& cell) {
    call.engine().SetValue(RangeRef{ref.sheet, row, column, row, column}, Typed(cell));
  };
  if ((value.vt & VT_ARRAY) == 0) {
    if (ref.firstRow != ref.lastRow || ref.firstColumn != ref.lastColumn) RaiseExcel("Ett värde per cell");
    return store(ref.firstRow, ref.firstColumn, value);
  }
  SAFEARRAY* array = value.parray;
  LONG rowsLow = 0, rowsHigh = 0, columnsLow = 0, columnsHigh = 0;
  if (SafeArrayGetDim(array) != 2) RaiseExcel("Matrisen måste ha två dimensioner");
  SafeArrayGetLBound(array, 1, &rowsLow);
  SafeArrayGetUBound(array, 1, &rowsHigh);
  SafeArrayGetLBound(array, 2, &columnsLow);
  SafeArrayGetUBound(array, 2, &columnsHigh);
  // Excel fills a larger range with #N/A; the engine must never ask for that.
  if (rowsHigh - rowsLow != ref.lastRow - ref.firstRow ||
      columnsHigh - columnsLow != ref.lastColumn - ref.firstColumn)
    RaiseExcel("Matrisen passar inte området");
  for (LONG r = rowsLow; r <= rowsHigh; ++r) {
    for (LONG c = columnsLow; c <= columnsHigh; ++c) {
      LONG indices[2] = {r, c};
      Variant element;
      SafeArrayGetElement(array, indices, element.Receive());
      store(ref.firstRow + static_cast<int>(r - rowsLow), ref.firstColumn + static_cast<int>(c - columnsLow),
            element.raw());
    }
  }
}

// Every argument by name, as the program passes them; FieldInfo is an array of (column, type) arrays.
void OpenText(Call& call) {
  OpenTextOptions options;
  options.fileName = call.Named("filename").ToText();
  options.origin = static_cast<int>(call.Named("origin").ToInt());
  options.startRow = static_cast<int>(call.Named("startrow").ToInt());
  options.dataType = static_cast<XlTextParsingType>(call.Named("datatype").ToInt());
  options.textQualifier = static_cast<XlTextQualifier>(call.Named("textqualifier").ToInt());
  options.consecutiveDelimiter = call.Named("consecutivedelimiter").ToBool();
  options.tab = call.Named("tab").ToBool();
  options.semicolon = call.Named("semicolon").ToBool();
  options.comma = call.Named("comma").ToBool();
  options.space = call.Named("space").ToBool();
  options.other = call.Named("other").ToBool();
  if (options.other) options.otherChar = call.Named("otherchar").ToText().front();
  const Variant fields = call.Named("fieldinfo");
  if ((fields.raw().vt & VT_ARRAY) == 0) throw Raised{DISP_E_TYPEMISMATCH, 0, ""};
  LONG low = 0, high = -1;
  SafeArrayGetLBound(fields.raw().parray, 1, &low);
  SafeArrayGetUBound(fields.raw().parray, 1, &high);
  for (LONG i = low; i <= high; ++i) {
    Variant pair, column, type;
    SafeArrayGetElement(fields.raw().parray, &i, pair.Receive());
    LONG first = 0;
    SafeArrayGetLBound(pair.raw().parray, 1, &first);
    LONG second = first + 1;
    SafeArrayGetElement(pair.raw().parray, &first, column.Receive());
    SafeArrayGetElement(pair.raw().parray, &second, type.Receive());
    options.fieldInfo.emplace_back(static_cast<int>(column.ToInt()),
                                   static_cast<XlColumnDataType>(type.ToInt()));
  }
  call.engine().OpenText(options);
}

void SheetItem(Call& call) {
  const long index = call.Need(0, "index").ToInt();
  if (index < 1 || index > call.engine().SheetCount(call.book())) throw Raised{DISP_E_BADINDEX, 0, ""};
  call.Answer(Kind::kSheet, RangeRef{call.engine().SheetAt(call.book(), static_cast<int>(index))});
}

void SheetCells(Call& call) {
  const Sheet sheet(&call.engine(), call.sheet());
  const VARIANT* row = call.At(0, "rowindex");
  const VARIANT* column = call.At(1, "columnindex");
  if (row == nullptr || column == nullptr) return call.AnswerRange(sheet.Cells());
  call.AnswerRange(
      sheet.Cells(static_cast<int>(Copy(*row).ToInt()), static_cast<int>(Copy(*column).ToInt())));
}

void SheetColumns(Call& call) {
  const std::string address = call.Need(0, "cell1").ToText();
  const auto colon = address.find(':');
  const auto first = ParseCellAddress(address.substr(0, colon) + "1");
  const auto last = ParseCellAddress(address.substr(colon + 1) + "1");
  if (colon == std::string::npos || !first || !last)
    RaiseExcel("Programdefinierat eller objektdefinierat fel");
  call.Answer(Kind::kRange,
              RangeRef{call.sheet(), 1, first->column, kMaxRows, last->column, RangeShape::kEntireColumns});
}

// The members the program calls, by object and lower-case name ("name=" for a property put).
using Members = std::map<std::pair<Kind, std::string>, std::function<void(Call&)>>;
const Members& MemberTable() {
  using enum Kind;
  static const Members members = {
      {{kApplication, "visible"}, [](Call& c) { c.result = Variant::Bool(c.engine().Visible()); }},
      {{kApplication, "visible="}, [](Call& c) { c.engine().SetVisible(Copy(*c.put).ToBool()); }},
      {{kApplication, "usercontrol="}, [](Call& c) { c.state.userControl = Copy(*c.put).ToBool(); }},
      {{kApplication, "cutcopymode="}, [](Call& c) { c.engine().SetCutCopyMode(Copy(*c.put).ToBool()); }},
      {{kApplication, "quit"}, [](Call& c) { c.engine().Quit(); }},
      {{kApplication, "workbooks"}, [](Call& c) { c.Answer(kWorkbooks, RangeRef{}); }},
      {{kApplication, "activeworkbook"}, [](Call& c) { c.AnswerBook(c.engine().ActiveWorkbook()); }},
      {{kApplication, "activesheet"}, [](Call& c) { c.Answer(kSheet, RangeRef{c.engine().ActiveSheet()}); }},
      {{kApplication, "selection"}, [](Call& c) { c.Answer(kRange, c.engine().Selection()); }},
      {{kApplication, "activecell"}, [](Call& c) { c.Answer(kRange, c.engine().ActiveCell()); }},
      {{kWorkbooks, "count"}, [](Call& c) { c.result = Variant::Int(c.engine().WorkbookCount()); }},
      {{kWorkbooks, "open"},
       [](Call& c) {
         OpenArguments open;
         if (const VARIANT* links = c.At(1, "updatelinks")) open.updateLinks = Copy(*links).ToBool();
         if (const VARIANT* readOnly = c.At(2, "readonly")) open.readOnly = Copy(*readOnly).ToBool();
         c.AnswerBook(c.engine().OpenWorkbook(c.Need(0, "filename").ToText(), open));
       }},
      {{kWorkbooks, "opentext"}, OpenText},
      {{kWorkbook, "sheets"}, [](Call& c) { c.Answer(kSheets, c.ref()); }},
      {{kWorkbook, "saveas"}, [](Call& c) { c.engine().SaveAs(c.book(), c.Need(0, "filename").ToText()); }},
      {{kWorkbook, "save"}, [](Call& c) { c.engine().Save(c.book()); }},
      {{kWorkbook, "close"},
       [](Call& c) {
         const VARIANT* save = c.At(0, "savechanges");
         c.engine().Close(c.book(), save != nullptr && Copy(*save).ToBool());
       }},
      {{kWorkbook, "fullname"}, [](Call& c) { c.result = Variant::Text(c.engine().FullName(c.book())); }},
      {{kSheets, "count"}, [](Call& c) { c.result = Variant::Int(c.engine().SheetCount(c.book())); }},
      {{kSheets, "item"}, SheetItem},
      {{kSheet, "name"}, [](Call& c) { c.result = Variant::Text(c.engine().SheetName(c.sheet())); }},
      {{kSheet, "name="}, [](Call& c) { c.engine().SetSheetName(c.sheet(), Copy(*c.put).ToText()); }},
      {{kSheet, "index"}, [](Call& c) { c.result = Variant::Int(c.engine().SheetIndex(c.sheet())); }},
      {{kSheet, "copy"},
       [](Call& c) {
         const FakeObject* after = c.ObjectAt(1, "after", kSheet);
         if (after == nullptr) RaiseExcel("Copy-metoden i Worksheet-klassen misslyckades");
         c.engine().CopySheetAfter(c.sheet(), after->ref().sheet);
       }},
      {{kSheet, "select"}, [](Call& c) { c.engine().SelectSheet(c.sheet()); }},
      {{kSheet, "cells"}, SheetCells},
      {{kSheet, "range"},
       [](Call& c) { c.AnswerRange(Sheet(&c.engine(), c.sheet()).Range(c.Need(0, "cell1").ToText())); }},
      {{kSheet, "rows"},
       [](Call& c) { c.AnswerRange(Sheet(&c.engine(), c.sheet()).Rows(c.Need(0, "cell1").ToText())); }},
      {{kSheet, "columns"}, SheetColumns},
      {{kSheet, "hpagebreaks"}, [](Call& c) { c.Answer(kPageBreaks, c.ref()); }},
      {{kPageBreaks, "count"},
       [](Call& c) { c.result = Variant::Int(c.engine().PageBreakCount(c.sheet())); }},
      {{kPageBreaks, "add"},
       [](Call& c) {
         const FakeObject* cell = c.ObjectAt(0, "before", kRange);
         if (cell == nullptr) throw Raised{DISP_E_TYPEMISMATCH, 0, ""};
         c.engine().AddPageBreak(c.sheet(), cell->ref());
       }},
      {{kRange, "value"}, [](Call& c) { c.result = Variant::Text(c.engine().Value(c.ref())); }},
      {{kRange, "value="}, PutValue},
      {{kRange, "select"}, [](Call& c) { c.engine().Select(c.ref()); }},
      {{kRange, "clearcontents"},
       [](Call& c) {
         c.RefuseLocked();
         c.engine().ClearContents(c.ref());
       }},
      {{kRange, "copy"}, [](Call& c) { c.engine().Copy(c.ref()); }},
      {{kRange, "pastespecial"},
       [](Call& c) {
         c.engine().PasteSpecial(c.ref(), static_cast<XlPasteType>(c.Need(0, "paste").ToInt()));
       }},
      {{kRange, "borders"},
       [](Call& c) { c.Answer(kBorder, c.ref(), static_cast<int>(c.Need(0, "index").ToInt())); }},
      {{kRange, "autofit"}, [](Call& c) { c.engine().AutoFit(c.ref()); }},
      {{kRange, "cells"},
       [](Call& c) {
         const int row = c.ref().firstRow + static_cast<int>(c.Need(0, "rowindex").ToInt()) - 1;
         const int column = c.ref().firstColumn + static_cast<int>(c.Need(1, "columnindex").ToInt()) - 1;
         c.Answer(kRange, RangeRef{c.sheet(), row, column, row, column});
       }},
      {{kBorder, "weight="},
       [](Call& c) {
         c.engine().SetBorderWeight(c.ref(), static_cast<XlBordersIndex>(c.self.edge()),
                                    static_cast<XlBorderWeight>(Copy(*c.put).ToInt()));
       }},
  };
  return members;
}

HRESULT FakeObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO* exception, UINT*) {
  ++state_->crossings;
  const auto nameOf = [this](DISPID dispid) {
    return dispid >= 1 && dispid <= static_cast<DISPID>(state_->names.size())
               ? &state_->names[static_cast<std::size_t>(dispid - 1)]
               : nullptr;
  };
  if (nameOf(id) == nullptr) return DISP_E_MEMBERNOTFOUND;
  Call call{*state_, *this, {}, {}, nullptr, {}};
  const UINT named = parameters->cNamedArgs;
  for (UINT i = 0; i < named; ++i) {
    const DISPID argument = parameters->rgdispidNamedArgs[i];
    if (argument == DISPID_PROPERTYPUT) {
      call.put = &parameters->rgvarg[i];
    } else if (const std::string* name = nameOf(argument)) {
      call.named[*name] = &parameters->rgvarg[i];
    } else {
      return DISP_E_PARAMNOTFOUND;
    }
  }
  for (UINT i = parameters->cArgs; i > named; --i) call.positional.push_back(&parameters->rgvarg[i - 1]);
  const bool isPut = (flags & DISPATCH_PROPERTYPUT) != 0;
  if (isPut && call.put == nullptr) return DISP_E_PARAMNOTFOUND;
  const std::string key = *nameOf(id) + (isPut ? "=" : "");
  const auto member = MemberTable().find({kind_, key});
  if (member == MemberTable().end()) return DISP_E_MEMBERNOTFOUND;
  const int count = ++state_->calls[key];
  try {
    const auto [first, last] = state_->failures.equal_range(key);
    for (auto it = first; it != last; ++it) {
      if (it->second.first == count) throw it->second.second;
    }
    try {
      member->second(call);
    } catch (const base::NumberedError& error) {
      // The engine's run-time number travels as Excel's own errors do: 1004 as Excel's HRESULT,
      // the others as run-time numbers.
      const int number = error.number();
      if (number == kApplicationDefined) RaiseExcel(error.description());
      throw Raised{static_cast<HRESULT>(number),
                   static_cast<WORD>(number > 0 && number <= 0xFFFF ? number : 0), error.description()};
    }
    if (result != nullptr) *result = std::exchange(call.result.raw(), VARIANT{});
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

int FakeExcel::crossings() const {
  return state_->crossings;
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

}  // namespace sw::excel::testing
