#pragma once
// What Excel's General format makes of a text it reads from a file: "007" is the number 7, "5%" the
// number 0.05 shown as a percentage, "1E5" 100000 shown in scientific notation; anything else stays text.
#include <optional>
#include <string>
#include <string_view>

namespace sw::excel {

// Excel's built-in number formats a General cell may be given.
enum class BuiltInNumberFormat : int { kGeneral = 0, kPercent = 9, kPercentDecimals = 10, kScientific = 11 };

struct GeneralNumber {
  std::string value;  // as SpreadsheetML stores it: "0.05"
  BuiltInNumberFormat format = BuiltInNumberFormat::kGeneral;
};

// The number `text` stands for, or nothing when Excel keeps it as text. The decimal separator is "."
// whatever the locale of the process, as files of the CAD system write it. More than 15 digits stay
// text: Excel would keep only the first 15 and lose the rest of an article number.
std::optional<GeneralNumber> ReadGeneralNumber(std::string_view text);

}  // namespace sw::excel
