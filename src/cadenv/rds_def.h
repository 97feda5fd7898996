#pragma once
// The template directory a CAD configuration file names. The CAD system writes it as a Lisp form,
//   (setq RDS_DEF "C:\\VOLTARIS\\Mallar\\")
// so the directory stands in double quotes with doubled backslashes, closed by a parenthesis.
#include <string>
#include <string_view>

namespace sw::cadenv {

inline constexpr std::string_view kRdsDefKeyword = "RDS_DEF";

// The directory named on one line holding "RDS_DEF" (found ignoring case): the text from the eighth
// character after the keyword's start (the keyword and one separator skipped), without double quotes
// and ")", with every "\\" halved, and trimmed of spaces. "(" is left alone: the keyword is expected
// to follow it, not to precede it.
std::string RdsDefFromLine(std::string_view line);

// ReadRdsDef: the directory on the file's last "RDS_DEF" line, or "" when the file (a Windows path)
// is missing or has no such line. The file is ANSI text; lines end at CR LF, CR or LF (a file saved on
// another system keeps its lines apart too).
std::string ReadRdsDef(std::string_view windowsPath);

}  // namespace sw::cadenv
