#pragma once
// The template directory of the project last opened in the CAD system: the project file "X.PDS" has a
// configuration twin "X.CFG" whose RDS_DEF line names it, possibly through %SYSTEMDRIVE% and
// %VOLTARIS_USER%.
#include <optional>
#include <string>
#include <string_view>

#include "base/environment.h"
#include "cadenv/registry.h"

namespace sw::discovery {

// Where the CAD system records its last project (HKEY_CURRENT_USER; the leading "\" is its own).
inline constexpr std::string_view kLastProjectKey = "\\Software\\voltaris\\general";
inline constexpr std::string_view kLastProjectValue = "VRSB_LASTPROJ_IC";

// The directory from a project configuration file's whole text: quotes removed and "\\" halved, then
// the text after "RDS_DEF" (found ignoring case) up to the first CR LF, trimmed of spaces, less the one
// character before the line end (the setq form's ")"). Nothing when there is no keyword or the line
// has no CR LF after it. A keyword standing right at its line's end leaves no character to drop and
// raises error 5, as cutting a negative length does.
std::optional<std::string> ProjectRdsDefFromText(std::string_view text);

// Replaces the first occurrence of `placeholder` (found ignoring case) by `value`.
std::string ExpandFirst(std::string_view text, std::string_view placeholder, std::string_view value);

// The whole lookup: the last project's folder must exist, its path upper-cased with ".PDS" turned into
// ".CFG" must be a file, its RDS_DEF directory (placeholders expanded, first occurrence each) must be
// an existing folder. Nothing when any of that fails.
std::optional<std::string> ProjectTemplateDirectory(cadenv::Registry& registry,
                                                    const base::Environment& environment);

}  // namespace sw::discovery
