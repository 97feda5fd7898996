#pragma once
// VARIANT, BSTR and SAFEARRAY owned by C++ objects, so nothing the automation calls hand over leaks.
#include <oaidl.h>

#include <string>
#include <string_view>
#include <vector>

#include "excel/com/com_ptr_win.h"

namespace sw::excel::com {

// UTF-8 inside the program, UTF-16 across the automation interface.
std::wstring Wide(std::string_view utf8);
std::string Utf8(std::wstring_view wide);

class Bstr {
 public:
  explicit Bstr(std::string_view utf8);
  explicit Bstr(std::wstring_view wide);
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr();
  BSTR Release();  // hands the string to a new owner

 private:
  BSTR text_;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(Variant other) noexcept;
  ~Variant() { VariantClear(&value_); }

  static Variant Text(std::string_view utf8);
  static Variant Int(long value);
  static Variant Bool(bool value);
  static Variant Object(IDispatch* object);  // adds a reference of its own
  // An optional argument left out, as VB passes one.
  static Variant Missing();
  // Takes over `array` (VT_ARRAY | VT_VARIANT).
  static Variant Array(SAFEARRAY* array);
  // A 1-based array of `values`.
  static Variant List(std::vector<Variant> values);

  // The value as Excel would show it in a cell: empty for Empty, numbers and dates as text.
  // Throws base::NumberedError 13 for a value that has no text (an object or array).
  std::string ToText() const;
  long ToInt() const;
  bool ToBool() const;
  ComPtr<IDispatch> ToObject() const;  // empty when the value holds no object

  VARIANT& raw() { return value_; }
  const VARIANT& raw() const { return value_; }
  VARIANT* Receive();  // for a call that fills the value in; the old value is cleared first

 private:
  VARIANT value_;
};

// A rows x columns SAFEARRAY of VARIANT, 1-based in both dimensions as Excel's Range.Value is.
class VariantMatrix {
 public:
  VariantMatrix(int rows, int columns);
  VariantMatrix(const VariantMatrix&) = delete;
  VariantMatrix& operator=(const VariantMatrix&) = delete;
  ~VariantMatrix();
  void Set(int row, int column, const Variant& value);  // copies `value`
  Variant Release();                                    // hands the array over as a VARIANT

 private:
  SAFEARRAY* array_;
};

}  // namespace sw::excel::com
