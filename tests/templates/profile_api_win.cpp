#include "profile_api_win.h"

#include <windows.h>

#include "base/text_codec.h"

namespace sw::templates {

// The buffers are two characters longer than the calls are told, filled with a mark, so that a call
// writing past what it was given would show.
std::vector<std::string> ApiSection(const std::string& section, std::size_t size, const std::string& file) {
  std::vector<char> buffer(size + 2, '\x7f');
  const DWORD length =
      GetPrivateProfileSectionA(section.c_str(), buffer.data(), static_cast<DWORD>(size), file.c_str());
  std::vector<std::string> lines;
  std::string line;
  for (DWORD i = 0; i < length; ++i) {
    if (buffer[i] == '\0') {
      lines.push_back(base::DecodeWindows1252(line));
      line.clear();
    } else {
      line += buffer[i];
    }
  }
  if (!line.empty()) lines.push_back(base::DecodeWindows1252(line));
  return lines;
}

std::string ApiValue(const std::string& section, const std::string& key, std::size_t size,
                     const std::string& file) {
  std::vector<char> buffer(size + 2, '\x7f');
  const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), "", buffer.data(),
                                                static_cast<DWORD>(size), file.c_str());
  return base::DecodeWindows1252(std::string(buffer.data(), length));
}

}  // namespace sw::templates
