#include "cadenv/reg_value_data.h"

#include "base/text_codec.h"

namespace sw::cadenv {

bool IsTextType(ValueType type) {
  return type == ValueType::kString || type == ValueType::kExpandString || type == ValueType::kMultiString;
}

std::string StripTerminators(ValueType type, std::string text) {
  const int terminators = type == ValueType::kMultiString ? 2 : 1;
  for (int i = 0; i < terminators && !text.empty() && text.back() == '\0'; ++i) text.pop_back();
  return text;
}

std::string Utf16DataFromText(ValueType type, std::string_view text) {
  std::string bytes = base::EncodeUtf16Le(text);
  bytes.append(type == ValueType::kMultiString ? 4 : 2, '\0');
  return bytes;
}

}  // namespace sw::cadenv
