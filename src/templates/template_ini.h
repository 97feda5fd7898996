#pragma once
// The readers of a template's INI file. A template is a workbook (.XLS, .XLSX, .XLSM) with an INI file
// of the same base name beside it:
//   [Common]  Label=B3|default   one line per common text; "." as default means today's date
//   [Tabs]    Template=<page sheet>, Common=<common-texts sheet>
//   [Sheet]   SHEETNO, NEXTSHEET, LOCATION (cells), STARTROW, ENDROW, INFINITE (numbers), COLUMNS (a,b,!,…)
// Every problem is told through Dialogs in the program's own words and the reading goes on; bad lines
// are skipped. The preview's page-length reader and the generation-time validation differ on purpose:
// the preview takes the first ENDROW, uses 65000 as end row for INFINITE=1, ignores lines without "="
// and reads past a second "="; validation takes the last ENDROW, uses 9999 and rejects both.
#include <string>
#include <string_view>

#include "base/dialogs.h"
#include "report/report_table.h"
#include "templates/field_panel.h"
#include "templates/short_date.h"
#include "templates/template_definition.h"

namespace sw::templates {

// Pairs the workbook `templateFileName` of `templateFolder` with its INI file: the first file of the
// folder, in name order ignoring case and whatever its extension, whose name less every ".INI" equals
// the workbook's name less every ".XLSM"/".XLSX"/".XLS", all ignoring case. Clears the field panel first.
// Found: IniPath = folder + "\" + the INI's name, then ReadCommonFields. Not found: the pairing message and
// an empty IniPath. Returns whether one was found.
bool FindIniForTemplate(std::string_view templateFolder, std::string_view templateFileName,
                        TemplateDefinition& definition, FieldPanel& fields, report::ReportTable& preview,
                        base::Dialogs& dialogs, const ShortDateSource& today = TodayShortDate);

// Fills CommonFields and the field panel from [Common] and the preview's heading row from [Sheet]
// Columns (only when it names at least two columns: then the preview gets one column per name plus
// the leading one). A missing [Common] section sets IniError and returns false. At most 30 lines are
// used, one per field box; a line without "=" is reported like a bad cell.
bool ReadCommonFields(std::string_view iniPath, TemplateDefinition& definition, FieldPanel& fields,
                      report::ReportTable& preview, base::Dialogs& dialogs,
                      const ShortDateSource& today = TodayShortDate);

// Rows per page for the preview's page-break marks (ENDROW − STARTROW + 1), or −1 when the section or
// either row is missing. Sets definition.Infinite when INFINITE holds a number.
int ReadRowsPerPage(std::string_view iniPath, TemplateDefinition& definition, base::Dialogs& dialogs);

enum class IniValidationStatus {
  kAccepted,             // generation may go on
  kMissingSheetSection,  // told; generation stops
  kTooFewEntries,        // told, IniError set; the caller opens the INI file in Notepad
};

struct IniValidationResult {
  IniValidationStatus status = IniValidationStatus::kAccepted;
  int count = 0;  // accepted entries; 8 are needed
  bool Accepted() const { return status == IniValidationStatus::kAccepted; }
  const char* Description() const;
};

// The check generation runs before anything is written: fills the [Tabs] and [Sheet] fields of
// `definition` (reset first) and counts accepted lines: Common, Template, SHEETNO, NEXTSHEET, LOCATION,
// STARTROW, ENDROW and COLUMNS each add one, every time they occur, so a repeated key can stand in for
// a missing one; COLUMNS counts even when one of its items was rejected. Eight or more clear IniError.
IniValidationResult ValidateTemplateIni(std::string_view iniPath, TemplateDefinition& definition,
                                        base::Dialogs& dialogs);

// The number the readers accept: optional sign and digits, within a 16-bit integer.
bool ParseIniNumber(std::string_view text, int& value);

}  // namespace sw::templates
