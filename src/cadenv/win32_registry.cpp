#include "cadenv/win32_registry.h"

#include <windows.h>

#include <cstring>
#include <vector>

#include "base/text_codec.h"
#include "cadenv/reg_tree.h"
#include "cadenv/reg_value_data.h"

namespace sw::cadenv {
namespace {

constexpr DWORD kEnumBufferChars = 2048;

// The program was a 32-bit one and the CAD system's machine-wide keys live in the 32-bit view.
constexpr REGSAM kView = KEY_WOW64_32KEY;

HKEY RootHandle(RootKey root) {
  return root == RootKey::kCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

std::wstring Wide(std::string_view utf8) {
  const std::string bytes = base::EncodeUtf16Le(utf8);
  std::wstring wide(bytes.size() / 2, L'\0');
  std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(wchar_t));
  return wide;
}

std::string Narrow(const wchar_t* text, std::size_t length) {
  return base::DecodeUtf16Le(std::string_view(reinterpret_cast<const char*>(text), length * sizeof(wchar_t)));
}

// RegOpenKeyEx does not take leading, trailing or doubled backslashes; the callers' paths may have them.
std::wstring NormalisedPath(std::string_view keyPath) {
  std::string joined;
  for (const auto name : SplitKeyPath(keyPath)) {
    if (!joined.empty()) joined += '\\';
    joined += name;
  }
  return Wide(joined);
}

class OpenKey {
 public:
  OpenKey(RootKey root, std::string_view keyPath, REGSAM access) {
    if (::RegOpenKeyExW(RootHandle(root), NormalisedPath(keyPath).c_str(), 0, access | kView, &handle_) !=
        ERROR_SUCCESS) {
      handle_ = nullptr;
    }
  }
  ~OpenKey() {
    if (handle_) ::RegCloseKey(handle_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  HKEY get() const { return handle_; }

 private:
  HKEY handle_ = nullptr;
};

RegistryValue MakeValue(std::string name, DWORD type, const BYTE* data, DWORD size) {
  RegistryValue value{std::move(name), static_cast<ValueType>(type), {}};
  const std::string bytes = size ? std::string(reinterpret_cast<const char*>(data), size) : std::string();
  value.data = IsTextType(value.type) ? StripTerminators(value.type, base::DecodeUtf16Le(bytes)) : bytes;
  return value;
}

}  // namespace

std::optional<RegistryValue> Win32Registry::QueryValue(RootKey root, std::string_view keyPath,
                                                       std::string_view valueName) {
  const OpenKey key(root, keyPath, KEY_QUERY_VALUE);
  if (!key.get()) return std::nullopt;
  const std::wstring name = Wide(valueName);
  DWORD type = 0;
  DWORD size = 0;
  std::vector<BYTE> data;
  // The value may grow between the size query and the read; ask again then.
  for (int attempt = 0; attempt < 4; ++attempt) {
    LSTATUS status = ::RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, nullptr, &size);
    if (status != ERROR_SUCCESS) return std::nullopt;
    data.resize(size);
    status = ::RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, data.data(), &size);
    if (status == ERROR_SUCCESS) return MakeValue(std::string(valueName), type, data.data(), size);
    if (status != ERROR_MORE_DATA) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<std::string> Win32Registry::SubkeyAt(RootKey root, std::string_view keyPath,
                                                   std::size_t index) {
  const OpenKey key(root, keyPath, KEY_ENUMERATE_SUB_KEYS);
  if (!key.get() || index > MAXDWORD) return std::nullopt;
  wchar_t name[kEnumBufferChars];
  DWORD length = kEnumBufferChars;
  if (::RegEnumKeyExW(key.get(), static_cast<DWORD>(index), name, &length, nullptr, nullptr, nullptr,
                      nullptr) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return Narrow(name, length);
}

std::optional<RegistryValue> Win32Registry::ValueAt(RootKey root, std::string_view keyPath,
                                                    std::size_t index) {
  const OpenKey key(root, keyPath, KEY_QUERY_VALUE);
  if (!key.get() || index > MAXDWORD) return std::nullopt;
  wchar_t name[kEnumBufferChars];
  DWORD nameLength = kEnumBufferChars;
  BYTE data[kEnumBufferChars * sizeof(wchar_t)];
  DWORD dataSize = sizeof data;
  DWORD type = 0;
  if (::RegEnumValueW(key.get(), static_cast<DWORD>(index), name, &nameLength, nullptr, &type, data,
                      &dataSize) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return MakeValue(Narrow(name, nameLength), type, data, dataSize);
}

bool Win32Registry::SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                                   std::string_view text) {
  HKEY key = nullptr;
  if (::RegCreateKeyExW(RootHandle(root), NormalisedPath(keyPath).c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_SET_VALUE | kView, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const std::string bytes = Utf16DataFromText(ValueType::kString, text);
  const LSTATUS status =
      ::RegSetValueExW(key, Wide(valueName).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
  ::RegCloseKey(key);
  return status == ERROR_SUCCESS;
}

bool Win32Registry::DeleteValue(RootKey root, std::string_view keyPath, std::string_view valueName) {
  const OpenKey key(root, keyPath, KEY_SET_VALUE);
  if (!key.get()) return false;
  return ::RegDeleteValueW(key.get(), Wide(valueName).c_str()) == ERROR_SUCCESS;
}

}  // namespace sw::cadenv
