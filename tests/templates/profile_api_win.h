#pragma once
// The Windows profile calls the program's INI reading stands in for, called with a buffer of `size`
// characters as the program would pass, their answer decoded from Windows-1252.
#include <cstddef>
#include <string>
#include <vector>

namespace sw::templates {

// GetPrivateProfileSectionA: the section's lines, in order.
std::vector<std::string> ApiSection(const std::string& section, std::size_t size, const std::string& file);
// GetPrivateProfileStringA with an empty default.
std::string ApiValue(const std::string& section, const std::string& key, std::size_t size,
                     const std::string& file);

}  // namespace sw::templates
