#pragma once
// What the program found of the CAD installation after a start or a refresh: the template folders,
// the templates, the report dumps and the current report. The command line's "environment" prints it;
// the window shows it in place of an empty grid when nothing was found.
#include <optional>
#include <string>
#include <vector>

namespace sw::session {

class Session;

struct EnvironmentReport {
  std::vector<std::string> templateDirs;
  std::string templateDir;  // the one chosen
  std::vector<std::string> templates;
  std::string templateName;                  // the one matched to the current report, "" when none
  std::optional<std::string> templateError;  // why none matched
  std::vector<std::string> dumps;
  std::string dump;  // the one chosen
  std::string reportId;
  std::vector<std::string> sheetNumbers;
};

EnvironmentReport DescribeEnvironment(const Session& session);

// Nothing of an installation was found: no template folder and no report dump, and no rows on screen.
bool NoInstallationFound(const Session& session);

// The window's text in place of the empty grid, one line each: what was looked for, and where.
std::vector<std::string> NothingFoundLines(const Session& session);

// A template is chosen: the commands that work on it can run.
bool TemplateChosen(const Session& session);

}  // namespace sw::session
