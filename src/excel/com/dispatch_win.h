#pragma once
// Late-bound calls by member name on an automation object: GetIDsOfNames, then Invoke, with Excel's
// failures turned into the run-time error numbers the program reacts to.
#include <oaidl.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "excel/automation.h"
#include "excel/com/com_ptr_win.h"
#include "excel/com/variant_win.h"

namespace sw::excel::com {

struct NamedArgument {
  std::wstring name;
  Variant value;
};

// The member ids learnt so far, shared by every object of one application. Ids belong to an
// interface, not to one object, so objects of one kind share their entries.
class DispatchIds {
 public:
  std::vector<DISPID> Find(IDispatch* object, std::wstring_view kind, const std::vector<std::wstring>& names);

 private:
  std::map<std::wstring, std::vector<DISPID>> known_;
};

// The run-time error a failed call stands for, as VB reports it: Excel's own errors
// (FACILITY_CONTROL, 0x800A03EC for 1004) and EXCEPINFO's wCode by their number, the dispatch
// failures by VB's numbers for them, anything else by the HRESULT itself.
base::NumberedError ErrorFromCall(HRESULT result, const EXCEPINFO* exception, std::wstring_view member);

class Dispatch {
 public:
  Dispatch() = default;
  Dispatch(ComPtr<IDispatch> object, std::wstring kind, DispatchIds* ids)
      : object_(std::move(object)), kind_(std::move(kind)), ids_(ids) {}

  Variant Get(std::wstring_view member, std::vector<Variant> positional = {}) const;
  // A property or method whose result is an object of `kind`; error 91 when it gives none.
  Dispatch Object(std::wstring_view member, std::wstring kind, std::vector<Variant> positional = {}) const;
  void Put(std::wstring_view member, Variant value) const;
  Variant Call(std::wstring_view member, std::vector<Variant> positional = {},
               std::vector<NamedArgument> named = {}) const;

  IDispatch* get() const { return object_.get(); }
  explicit operator bool() const { return static_cast<bool>(object_); }

 private:
  Variant Invoke(std::wstring_view member, WORD flags, std::vector<Variant>& positional,
                 std::vector<NamedArgument>& named) const;

  ComPtr<IDispatch> object_;
  std::wstring kind_;
  DispatchIds* ids_ = nullptr;
};

}  // namespace sw::excel::com
