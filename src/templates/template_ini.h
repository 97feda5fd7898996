#pragma once
// The readers of a template's INI file. A template is a workbook (.XLS, .XLSX, .XLSM) with an INI file
// of the same base name beside it:
//   [Common]  Label=B3|default   one line per common text; "." as default means today's date
//   [Tabs]    Template=<page sheet>, Common=<common-texts sheet>
//   [Sheet]   SHEETNO, NEXTSHEET, LOCATION (cells), STARTROW, ENDROW, INFINITE (numbers), COLUMNS (a,b,!,…)
// The readers return what they found and, in their outcome, every problem in the program's own words,
// in the order the user is told them; the reading goes on past bad lines, which are skipped. Nothing
// here shows anything or touches the window: the session applies the result and tells the notices.
// The preview's page-length reader and the generation-time validation differ on purpose: the preview
// takes the first ENDROW, uses 65000 as end row for INFINITE=1, ignores lines without "=" and reads
// past a second "="; validation takes the last ENDROW, uses 9999 and rejects both.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/outcome.h"
#include "templates/template_definition.h"

namespace sw::templates {

class ProfileFile;

// The INI file that goes with a workbook.
struct IniPairing {
  std::string iniPath;  // folder + "\" + the INI's name; empty when there is none
  base::Outcome<base::Done> outcome;
};

// Pairs the workbook `templateFileName` of `templateFolder` with its INI file: the first file of the
// folder, in name order ignoring case and whatever its extension, whose name less every ".INI" equals
// the workbook's name less every ".XLSM"/".XLSX"/".XLS", all ignoring case. None: kNo with the pairing
// message (or, for a folder under that name, the message of an INI file that cannot be read).
IniPairing FindIniForTemplate(std::string_view templateFolder, std::string_view templateFileName);

// [Common] and [Sheet] Columns, as the field panel and the preview's heading row take them.
enum class CommonFieldsStatus { kRead, kMissingSection };

struct CommonFieldsReading {
  // One entry per [Common] line up to the panel's kFieldCount boxes; a blank or rejected line has none
  // (a line without "=" is told like a bad cell).
  std::vector<std::optional<CommonField>> fields;
  // [Sheet] Columns split at ",", when it is not empty.
  std::optional<std::vector<std::string>> columnNames;
  base::Outcome<CommonFieldsStatus> outcome;  // kMissingSection: nothing else was read
};

CommonFieldsReading ReadCommonFields(std::string_view iniPath);

// The preview's reading of [Sheet]: the page length of its page-break marks.
struct PageLengthReading {
  int rowsPerPage = -1;   // ENDROW − STARTROW + 1, or −1 when the section or either row is missing
  bool infinite = false;  // INFINITE holds a number
  base::Outcome<base::Done> outcome;  // kNo: no [Sheet] section
};

PageLengthReading ReadRowsPerPage(std::string_view iniPath);

enum class IniValidationStatus {
  kAccepted,             // generation may go on
  kMissingSheetSection,  // told; generation stops
  kTooFewEntries,        // told, IniError set; the caller opens the INI file in Notepad
};

struct IniValidation {
  CheckedLayout layout;  // empty when [Sheet] is missing
  int count = 0;         // accepted entries; 8 are needed
  base::Outcome<IniValidationStatus> outcome;
  bool Accepted() const { return static_cast<bool>(outcome); }
  // What the check leaves in the template's definition: every [Tabs] and [Sheet] field replaced, so
  // nothing of an earlier template survives a missing key, and IniError set by the count. A missing
  // [Sheet] section changes nothing.
  void ApplyTo(TemplateDefinition& definition) const;
};

// The check generation runs before anything is written. Counts accepted lines: Common, Template,
// SHEETNO, NEXTSHEET, LOCATION, STARTROW, ENDROW and COLUMNS each add one, every time they occur, so a
// repeated key can stand in for a missing one; COLUMNS counts even when one of its items was rejected.
// Eight or more are accepted.
IniValidation ValidateTemplateIni(std::string_view iniPath);

// Everything the program reads of one INI file, from one reading of it.
struct TemplateDescription {
  std::string IniPath;
  bool fileFound = false;  // there was a file to read
  CommonFieldsReading common;
  PageLengthReading pageLength;
  IniValidation validation;
};

TemplateDescription ReadTemplateDescription(std::string_view iniPath);

// The number the readers accept: optional sign and digits, within a 16-bit integer.
bool ParseIniNumber(std::string_view text, int& value);

}  // namespace sw::templates
