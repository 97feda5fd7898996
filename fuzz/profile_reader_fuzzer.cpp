// Any bytes as a profile file: parsing and both calls must neither crash nor hang, and the results
// must respect the buffers the program hands to Windows.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "templates/profile_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  // The first byte picks small buffers now and then, so the cutting paths are reached.
  const std::size_t sectionBuffer = size > 0 && data[0] < 64 ? data[0] : sw::templates::kSectionBufferSize;
  const std::size_t valueBuffer = size > 1 && data[1] < 64 ? data[1] : sw::templates::kValueBufferSize;

  const auto profile = sw::templates::ProfileText::Parse(bytes);
  for (const char* section : {"Common", "Sheet", "Tabs", "CURREPORT", ""}) {
    const auto result = profile.Section(section, sectionBuffer);
    for (const auto& line : result.lines) {
      if (line.empty()) std::abort();  // empty lines are never returned
    }
    for (const char* key : {"Columns", "STARTROW", "Template", "REPORT_ID", ""}) {
      const auto value = profile.Value(section, key, valueBuffer);
      // A UTF-8 character is at most three bytes for one Windows-1252 byte.
      if (valueBuffer > 0 && value.value.size() > 3 * (valueBuffer - 1)) std::abort();
    }
  }
  return 0;
}
