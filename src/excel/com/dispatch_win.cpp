#include "excel/com/dispatch_win.h"

#include <windows.h>

#include "base/error_numbers.h"

namespace sw::excel::com {
namespace {

// VB's numbers for the dispatch failures a late-bound call can meet.
int DispatchFailureNumber(HRESULT result) {
  switch (result) {
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
      return base::kMemberNotFound;
    case DISP_E_TYPEMISMATCH:
      return base::kTypeMismatch;
    case DISP_E_BADINDEX:
      return base::kSubscriptOutOfRange;
    case DISP_E_OVERFLOW:
      return base::kOverflow;
    case DISP_E_PARAMNOTFOUND:
      return base::kNamedArgumentNotFound;
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
      return base::kArgumentNotOptional;
    case E_OUTOFMEMORY:
      return base::kOutOfMemory;
    default:
      return 0;
  }
}

std::string SystemText(HRESULT result) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string description = "Automatiseringsfel";
  if (length > 0 && text != nullptr) {
    std::wstring_view message(text, length);
    while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r' || message.back() == L' '))
      message.remove_suffix(1);
    if (!message.empty()) description += ": " + Utf8(message);
  }
  if (text != nullptr) LocalFree(text);
  return description;
}

int NumberOf(HRESULT result) {
  if (HRESULT_FACILITY(result) == FACILITY_CONTROL) return HRESULT_CODE(result);
  if (const int number = DispatchFailureNumber(result); number != 0) return number;
  return static_cast<int>(result);
}

// What VB says for `number`; the system's text for a bare HRESULT.
std::string DescriptionFor(int number, HRESULT result) {
  if (number == static_cast<int>(result)) return SystemText(result);
  return base::ErrorText(number);
}

}  // namespace

base::NumberedError ErrorFromCall(HRESULT result, const EXCEPINFO* exception, std::wstring_view member) {
  if (result == DISP_E_EXCEPTION && exception != nullptr) {
    const int number = exception->wCode != 0 ? exception->wCode : NumberOf(exception->scode);
    std::string description;
    if (exception->bstrDescription != nullptr) {
      description =
          Utf8(std::wstring_view(exception->bstrDescription, SysStringLen(exception->bstrDescription)));
    }
    if (description.empty()) description = DescriptionFor(number, exception->scode);
    return base::NumberedError(number, description);
  }
  const int number = NumberOf(result);
  std::string description = DescriptionFor(number, result);
  if (number == base::kMemberNotFound) description += " (" + Utf8(member) + ")";
  return base::NumberedError(number, description);
}

std::vector<DISPID> DispatchIds::Find(IDispatch* object, std::wstring_view kind,
                                      const std::vector<std::wstring>& names) {
  std::wstring key(kind);
  for (const auto& name : names) (key += L'|') += name;
  if (const auto known = known_.find(key); known != known_.end()) return known->second;
  std::vector<LPOLESTR> pointers;
  for (const auto& name : names) pointers.push_back(const_cast<LPOLESTR>(name.c_str()));
  std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
  const HRESULT result = object->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()),
                                               LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(result)) throw ErrorFromCall(result, nullptr, names.front());
  known_.emplace(std::move(key), ids);
  return ids;
}

Variant Dispatch::Invoke(std::wstring_view member, WORD flags, std::vector<Variant>& positional,
                         std::vector<NamedArgument>& named) const {
  if (!object_) ThrowObjectNotSet();
  std::vector<std::wstring> names{std::wstring(member)};
  for (const auto& argument : named) names.push_back(argument.name);
  const std::vector<DISPID> ids = ids_->Find(object_.get(), kind_, names);

  // Named arguments come first, paired with their ids; the positional ones follow, last one first.
  std::vector<VARIANT> arguments;
  std::vector<DISPID> namedIds;
  for (std::size_t i = 0; i < named.size(); ++i) {
    arguments.push_back(named[i].value.raw());
    namedIds.push_back(ids[i + 1]);
  }
  for (auto it = positional.rbegin(); it != positional.rend(); ++it) arguments.push_back(it->raw());
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments.data(), namedIds.data(), static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(namedIds.size())};
  if (flags == DISPATCH_PROPERTYPUT) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }

  Variant result;
  EXCEPINFO exception{};
  UINT badArgument = 0;
  const HRESULT outcome =
      object_->Invoke(ids.front(), IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                      flags == DISPATCH_PROPERTYPUT ? nullptr : result.Receive(), &exception, &badArgument);
  if (outcome == DISP_E_EXCEPTION && exception.pfnDeferredFillIn != nullptr)
    exception.pfnDeferredFillIn(&exception);
  struct FreeStrings {
    EXCEPINFO& info;
    ~FreeStrings() {
      SysFreeString(info.bstrSource);
      SysFreeString(info.bstrDescription);
      SysFreeString(info.bstrHelpFile);
    }
  } freeStrings{exception};
  if (FAILED(outcome)) throw ErrorFromCall(outcome, &exception, member);
  return result;
}

Variant Dispatch::Get(std::wstring_view member, std::vector<Variant> positional) const {
  std::vector<NamedArgument> none;
  return Invoke(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD, positional, none);
}

Dispatch Dispatch::Object(std::wstring_view member, std::wstring kind,
                          std::vector<Variant> positional) const {
  ComPtr<IDispatch> object = Get(member, std::move(positional)).ToObject();
  if (!object) ThrowObjectNotSet();
  return Dispatch(std::move(object), std::move(kind), ids_);
}

void Dispatch::Put(std::wstring_view member, Variant value) const {
  std::vector<Variant> arguments;
  arguments.push_back(std::move(value));
  std::vector<NamedArgument> none;
  Invoke(member, DISPATCH_PROPERTYPUT, arguments, none);
}

Variant Dispatch::Call(std::wstring_view member, std::vector<Variant> positional,
                       std::vector<NamedArgument> named) const {
  return Invoke(member, DISPATCH_METHOD, positional, named);
}

}  // namespace sw::excel::com
