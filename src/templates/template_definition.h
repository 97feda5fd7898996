#pragma once
// The parsed template INI of the current template. One instance lives for the program's run; what the
// readers in templates/template_ini.h return is applied to its parts:
// - the pairing and [Common]: IniPath, CommonFields, PreviewColumnNames (template chosen);
// - ValidateTemplateIni (IniValidation::ApplyTo): the [Tabs] and [Sheet] fields and IniError (each
//   generation);
// - the preview's page length: only Infinite, set when INFINITE holds a number (each load).
// Generation reads it after a successful ValidateTemplateIni: write CommonFields[i].Value on the
// common sheet at (Row, Col), SheetNo/NextSheet/Location on every page, report rows from StartRow to
// EndRow (or one growing page when Infinite), field i of a row into column DataColumns[i] unless it
// is kFieldNotWritten.
#include <cstdint>
#include <string>
#include <vector>

namespace sw::templates {

// A DataColumns entry for a field the template does not want ("!" in COLUMNS).
inline constexpr std::int16_t kFieldNotWritten = -31;

struct CommonField {
  std::string Label;        // text before "=" in [Common]
  std::string DefaultText;  // text after "|"; "." means today's date
  std::int16_t Row = 0;
  std::int16_t Col = 0;
  std::string Value;  // what the user has in the field when generation starts
};

// [Tabs] and [Sheet] as generation's check reads them; a key that is missing keeps its zero.
struct CheckedLayout {
  std::string CommonSheetName;    // [Tabs] Common
  std::string TemplateSheetName;  // [Tabs] Template
  std::int16_t SheetNoRow = 0, SheetNoCol = 0;
  std::int16_t NextSheetRow = 0, NextSheetCol = 0;
  std::int16_t LocationRow = 0, LocationCol = 0;
  std::int16_t StartRow = 0, EndRow = 0;
  bool Infinite = false;                  // dynamic page length
  std::vector<std::int16_t> DataColumns;  // index = report field
};

// The layout part is what each generation's check sets anew (IniValidation::ApplyTo).
struct TemplateDefinition : CheckedLayout {
  std::string IniPath;  // empty when the template has no INI file
  // One record per [Common] line, blank and rejected lines included (they keep an empty record).
  std::vector<CommonField> CommonFields;
  std::vector<std::string> PreviewColumnNames;  // [Sheet] Columns, split at ","
  bool IniError = false;                        // generation does nothing while set
};

}  // namespace sw::templates
