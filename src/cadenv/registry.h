#pragma once
// Registry access. The CAD system keeps its directories in the registry and the program keeps its
// settings there; on Linux the same keys live in a regedit-format file (portable_registry.h).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sw::cadenv {

enum class RootKey { kCurrentUser, kLocalMachine };

// Windows' REG_* type numbers.
enum class ValueType : std::uint32_t {
  kNone = 0,
  kString = 1,        // REG_SZ
  kExpandString = 2,  // REG_EXPAND_SZ
  kBinary = 3,        // REG_BINARY
  kDword = 4,         // REG_DWORD (little-endian)
  kMultiString = 7,   // REG_MULTI_SZ
  kQword = 11,        // REG_QWORD
};

struct RegistryValue {
  std::string name;
  ValueType type = ValueType::kNone;
  // kString, kExpandString: UTF-8 text without terminator. kMultiString: the strings joined by '\0'.
  // Every other type: the raw data bytes.
  std::string data;

  bool operator==(const RegistryValue&) const = default;
};

// The platform seam. Key paths are relative to the root, with "\" separators; a trailing "\" is
// allowed. Key and value names match ignoring case. No operation throws.
class Registry {
 public:
  virtual ~Registry() = default;

  // The named value ("" = the key's default value), or nothing when the key or value is missing.
  virtual std::optional<RegistryValue> QueryValue(RootKey root, std::string_view keyPath,
                                                  std::string_view valueName) = 0;
  // The index-th subkey name in Windows' order (sorted by name ignoring case), or nothing past the end.
  virtual std::optional<std::string> SubkeyAt(RootKey root, std::string_view keyPath, std::size_t index) = 0;
  // The index-th value in creation order, or nothing past the end.
  virtual std::optional<RegistryValue> ValueAt(RootKey root, std::string_view keyPath, std::size_t index) = 0;
  // Creates the key (and missing parents) and writes a REG_SZ value. False when it failed.
  virtual bool SetStringValue(RootKey root, std::string_view keyPath, std::string_view valueName,
                              std::string_view text) = 0;
  // Deletes one value. False when it was not there or could not be deleted.
  virtual bool DeleteValue(RootKey root, std::string_view keyPath, std::string_view valueName) = 0;
};

// The current user's registry: the Windows registry on Windows, elsewhere the portable registry file
// named by the environment (see PortableRegistry::DefaultPath).
std::unique_ptr<Registry> OpenUserRegistry();

// The text enumeration answers with past the last entry or on any failure.
inline constexpr std::string_view kNotFound = "Not Found";

// The value's text when it is a non-empty REG_SZ (cut at its first NUL), else `defaultText`.
std::string ReadRegistryValue(Registry& registry, RootKey root, std::string_view keyPath,
                              std::string_view valueName, std::string_view defaultText);

// The name of the subkey at `index`, or "Not Found".
std::string EnumRegistryKey(Registry& registry, RootKey root, std::string_view keyPath, std::size_t index);

// The three-element answer of value enumeration: the index, the value's name and its data as text.
// REG_DWORD data is written in decimal with at least three digits ("005"). Past the last value (or
// when the key is missing) both name and data read "Not Found".
struct EnumeratedValue {
  std::size_t index = 0;
  std::string name;
  std::string data;
  bool NotFound() const { return name == kNotFound && data == kNotFound; }
};
EnumeratedValue EnumRegistryValue(Registry& registry, RootKey root, std::string_view keyPath,
                                  std::size_t index);

}  // namespace sw::cadenv
