#include "templates/current_report.h"

#include "base/upper_case.h"
#include "templates/profile_file.h"

namespace sw::templates {

std::string CadIniPath(const base::Environment& environment) {
  return environment.Get("windir").value_or("") + "\\VOLTARIS.INI";
}

std::vector<std::string> SheetNumberItems(std::string_view first) {
  std::vector<std::string> items;
  for (std::size_t length = first.size(); length <= 6; ++length) {
    items.push_back(std::string(length - first.size(), '0') + std::string(first));
  }
  return items;
}

CurrentReport ReadCurrentReport(const base::Environment& environment,
                                const settings::StartLogSink& startLog) {
  CurrentReport report;
  const auto lines = ReadIniSection("CURREPORT", CadIniPath(environment)).lines;
  for (const auto& line : lines) {
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string key = base::UpperCase(std::string_view(line).substr(0, equals));
    if (key == "REPORT_ID") report.reportId = line.substr(equals + 1);
    if (key == "REPORT_FIRST") report.first = line.substr(equals + 1);
  }
  report.sheetNumberItems = SheetNumberItems(report.first);
  if (startLog) startLog(lines.empty() ? "VOLTARIS.INI not found" : "VOLTARIS.INI successfully processed.");
  return report;
}

}  // namespace sw::templates
