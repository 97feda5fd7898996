#include "generate/page_text.h"

namespace sw::generate {

std::string PageText(int number, int minimumLength) {
  std::string text = std::to_string(number);
  if (static_cast<int>(text.size()) < minimumLength) {
    text.insert(0, static_cast<std::size_t>(minimumLength) - text.size(), '0');
  }
  return text;
}

int CharacterCount(std::string_view utf8) {
  int count = 0;
  for (const char c : utf8) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++count;
  }
  return count;
}

}  // namespace sw::generate
