#pragma once
// Runs the built sheetwright-cli as a user would, with its own registry file, and captures the result.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace sw::testing {

// The bundled example dump, and an INI file that makes a template of the example workbook's sheets.
inline const std::string kExample =
    std::filesystem::absolute("../examples/yttre_forbindningstabell.txt").string();
inline constexpr const char* kIni =
    "[Tabs]\r\nTemplate=Mall\r\nCommon=Common\r\n"
    "[Common]\r\nProjekt=C3\r\n"
    "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=A,B,C\r\n";

struct CliResult {
  int exitCode = -1;
  std::string out;
  std::string err;
};

class CliRunner {
 public:
  // `folder` holds the registry file and the captured streams.
  explicit CliRunner(std::filesystem::path folder)
      : folder_(std::move(folder)), registry_(folder_ / "registry.reg") {}

  const std::filesystem::path& RegistryFile() const { return registry_; }
  // Extra environment variables for every run ("NAME=value").
  std::vector<std::string> environment;

  CliResult Run(const std::vector<std::string>& args) const;

  // What every run is given over the test's own environment ("NAME=value").
  std::vector<std::string> Variables() const {
    std::vector<std::string> variables{"SHEETWRIGHT_REGISTRY=" + registry_.string(), "SHEETWRIGHT_STARTLOG="};
    variables.insert(variables.end(), environment.begin(), environment.end());
    return variables;
  }

 private:
  std::filesystem::path folder_;
  std::filesystem::path registry_;
};

}  // namespace sw::testing
