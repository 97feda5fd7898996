#include "cadenv/enumeration_buffer.h"

#include "base/text_codec.h"
#include "cadenv/reg_value_data.h"

namespace sw::cadenv {
namespace {

std::size_t Utf16Units(std::string_view utf8) {
  return base::EncodeUtf16Le(utf8).size() / 2;
}

}  // namespace

bool SubkeyNameFitsEnumeration(std::string_view name) {
  return Utf16Units(name) < kEnumerationBufferChars;
}

bool ValueFitsEnumeration(const RegistryValue& value) {
  if (Utf16Units(value.name) >= kEnumerationBufferChars) return false;
  const std::size_t dataBytes =
      IsTextType(value.type) ? Utf16DataFromText(value.type, value.data).size() : value.data.size();
  return dataBytes <= kEnumerationBufferChars * 2;
}

}  // namespace sw::cadenv
