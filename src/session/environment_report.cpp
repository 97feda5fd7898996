#include "session/environment_report.h"

#include "base/strings.h"
#include "discovery/refresh_files.h"
#include "session/session.h"

namespace sw::session {

EnvironmentReport DescribeEnvironment(const Session& session) {
  EnvironmentReport report;
  report.templateDirs = session.TemplateDirectories().items;
  report.templateDir = session.TemplateDirectories().text;
  report.templates = session.Templates().items;
  report.templateName = session.Templates().text;
  if (session.Templates().errorLabelVisible) report.templateError = session.Templates().errorLabel;
  report.dumps = session.ReportDumps().items;
  report.dump = session.ReportDumps().text;
  report.reportId = session.CurrentReportId();
  report.sheetNumbers = session.SheetNumbers().items;
  return report;
}

bool NoInstallationFound(const Session& session) {
  const EnvironmentReport report = DescribeEnvironment(session);
  return report.templateDirs.empty() && base::TrimSpaces(report.templateDir).empty() && report.dumps.empty() &&
         base::TrimSpaces(report.dump).empty() && session.Table().Rows() <= 1;
}

std::vector<std::string> NothingFoundLines(const Session& session) {
  const EnvironmentReport report = DescribeEnvironment(session);
  const std::string machineKey = "HKEY_LOCAL_MACHINE\\" + std::string(discovery::kCadMachineKey);
  std::vector<std::string> lines{
      "Hittade ingen VOLTARIS-installation: ingen katalog för rapportmallar och ingen rapportfil.",
      "",
      "Programmet letade efter:",
      "  kataloger för rapportmallar: värdena " + std::string(discovery::kTemplateDirValue) + " och " +
          std::string(discovery::kUserDirValue) + " under " + machineKey + " (med " +
          std::string(discovery::kCadConfigFileName) + " i varje USER-katalog) och det senaste projektets " +
          "mallkatalog,",
      "  rapportfiler " + std::string(discovery::kReportDumpFileName) + ": i katalogerna i värdet " +
          std::string(discovery::kDumpDirValue) + " under " + machineKey + " och i %TEMP%" +
          std::string(discovery::kTempDumpFolder) + ".",
      "",
      "Mallkataloger: " + std::to_string(report.templateDirs.size()) +
          "   Rapportmallar: " + std::to_string(report.templates.size()) +
          "   Rapportfiler: " + std::to_string(report.dumps.size()),
  };
  if (!report.reportId.empty()) lines.push_back("Aktuell rapport: " + report.reportId);
  lines.push_back("");
  lines.push_back("Välj en rapportfil att förhandsgranska:");
  return lines;
}

bool TemplateChosen(const Session& session) {
  return !base::TrimSpaces(session.Templates().text).empty();
}

}  // namespace sw::session
