#include "excel/com/variant_win.h"

#include <windows.h>

#include <new>
#include <utility>

#include "base/error_numbers.h"
#include "excel/automation.h"

namespace sw::excel::com {

std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
  return wide;
}

std::string Utf8(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0,
                                       nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(), size, nullptr,
                      nullptr);
  return utf8;
}

Bstr::Bstr(std::string_view utf8) : Bstr(std::wstring_view(Wide(utf8))) {}

Bstr::Bstr(std::wstring_view wide) : text_(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()))) {
  if (text_ == nullptr) throw std::bad_alloc();
}

Bstr::~Bstr() {
  SysFreeString(text_);
}

BSTR Bstr::Release() {
  return std::exchange(text_, nullptr);
}

Variant::Variant(const Variant& other) {
  VariantInit(&value_);
  if (FAILED(VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)))) throw std::bad_alloc();
}

Variant::Variant(Variant&& other) noexcept : value_(other.value_) {
  VariantInit(&other.value_);
}

Variant& Variant::operator=(Variant other) noexcept {
  std::swap(value_, other.value_);
  return *this;
}

VARIANT* Variant::Receive() {
  VariantClear(&value_);
  return &value_;
}

Variant Variant::Text(std::string_view utf8) {
  Variant v;
  v.value_.vt = VT_BSTR;
  v.value_.bstrVal = Bstr(utf8).Release();
  return v;
}

Variant Variant::Int(long value) {
  Variant v;
  v.value_.vt = VT_I4;
  v.value_.lVal = value;
  return v;
}

Variant Variant::Bool(bool value) {
  Variant v;
  v.value_.vt = VT_BOOL;
  v.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

Variant Variant::Object(IDispatch* object) {
  Variant v;
  v.value_.vt = VT_DISPATCH;
  v.value_.pdispVal = object;
  if (object != nullptr) object->AddRef();
  return v;
}

Variant Variant::Missing() {
  Variant v;
  v.value_.vt = VT_ERROR;
  v.value_.scode = DISP_E_PARAMNOTFOUND;
  return v;
}

Variant Variant::Array(SAFEARRAY* array) {
  Variant v;
  v.value_.vt = VT_ARRAY | VT_VARIANT;
  v.value_.parray = array;
  return v;
}

Variant Variant::List(std::vector<Variant> values) {
  SAFEARRAYBOUND bound{static_cast<ULONG>(values.size()), 1};
  SAFEARRAY* array = SafeArrayCreate(VT_VARIANT, 1, &bound);
  if (array == nullptr) throw std::bad_alloc();
  Variant list = Array(array);  // owns it from here
  for (std::size_t i = 0; i < values.size(); ++i) {
    LONG index = static_cast<LONG>(i + 1);
    if (FAILED(SafeArrayPutElement(array, &index, &values[i].value_))) throw std::bad_alloc();
  }
  return list;
}

namespace {

[[noreturn]] void ThrowTypeMismatch() {
  throw base::NumberedError(base::kTypeMismatch);
}

}  // namespace

std::string Variant::ToText() const {
  if (value_.vt == VT_EMPTY || value_.vt == VT_NULL) return {};
  if (value_.vt == VT_BSTR) return Utf8(std::wstring_view(value_.bstrVal, SysStringLen(value_.bstrVal)));
  Variant text;
  // The user's locale, as a cell shows the number.
  if (FAILED(VariantChangeTypeEx(text.Receive(), const_cast<VARIANT*>(&value_), LOCALE_USER_DEFAULT, 0,
                                 VT_BSTR))) {
    ThrowTypeMismatch();
  }
  return text.ToText();
}

long Variant::ToInt() const {
  Variant number;
  if (FAILED(VariantChangeType(number.Receive(), const_cast<VARIANT*>(&value_), 0, VT_I4)))
    ThrowTypeMismatch();
  return number.value_.lVal;
}

bool Variant::ToBool() const {
  Variant truth;
  if (FAILED(VariantChangeType(truth.Receive(), const_cast<VARIANT*>(&value_), 0, VT_BOOL)))
    ThrowTypeMismatch();
  return truth.value_.boolVal != VARIANT_FALSE;
}

ComPtr<IDispatch> Variant::ToObject() const {
  if (value_.vt == VT_DISPATCH) return ComPtr<IDispatch>::Share(value_.pdispVal);
  if (value_.vt == VT_UNKNOWN && value_.punkVal != nullptr) {
    ComPtr<IDispatch> object;
    value_.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Receive()));
    return object;
  }
  return {};
}

VariantMatrix::VariantMatrix(int rows, int columns) {
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(rows), 1}, {static_cast<ULONG>(columns), 1}};
  array_ = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (array_ == nullptr) throw std::bad_alloc();
}

VariantMatrix::~VariantMatrix() {
  if (array_ != nullptr) SafeArrayDestroy(array_);
}

void VariantMatrix::Set(int row, int column, const Variant& value) {
  // Indices in the order of the bounds given to SafeArrayCreate: row first.
  LONG indices[2] = {row, column};
  if (FAILED(SafeArrayPutElement(array_, indices, const_cast<VARIANT*>(&value.raw()))))
    throw std::bad_alloc();
}

Variant VariantMatrix::Release() {
  return Variant::Array(std::exchange(array_, nullptr));
}

}  // namespace sw::excel::com
