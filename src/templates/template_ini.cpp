#include "templates/template_ini.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/strings.h"
#include "base/upper_case.h"
#include "base/windows_path.h"
#include "base/windows_path.h"
#include "templates/cell_reference.h"
#include "templates/field_panel.h"
#include "templates/profile_file.h"

namespace sw::templates {
namespace {

using base::MessageIcon;

constexpr const char* kCr = "\r";
constexpr const char* kTitleError = "Fel";
constexpr const char* kTitleCannotUse = "Kan ej använda Excel-filen";

// Why the INI file cannot be read at all, in the message's words; empty when it can be (or is not there,
// which the pairing has told already). An unreadable file reads as empty, and is then not to be told as
// one that lacks its sections.
std::string UnreadableReason(std::string_view iniPath) {
  const std::filesystem::path path = base::ResolveWindowsPath(iniPath);
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (error && error != std::errc::no_such_file_or_directory) return "eftersom den inte kan kommas åt";
  if (!std::filesystem::exists(status)) return {};
  if (!std::filesystem::is_regular_file(status)) return "eftersom det inte är någon vanlig fil";
  std::ifstream in(path, std::ios::binary);
  if (!in) return "eftersom behörighet saknas";
  return {};
}

base::Notice MissingSection(std::string_view iniPath, std::string_view section) {
  if (const std::string reason = UnreadableReason(iniPath); !reason.empty()) {
    return {"Ini-filen " + base::DisplayPath(iniPath) + kCr + "går inte att läsa " + reason + ".", kTitleCannotUse,
            MessageIcon::kInformation};
  }
  return {"Ini-filen " + base::DisplayPath(iniPath) + kCr + "saknar sektionen [" + std::string(section) + "].",
          kTitleCannotUse, MessageIcon::kInformation};
}

// The per-key message of a bad [Sheet] value: the message, CR and the line in double quotes.
template <typename Status>
void TellBadLine(base::Outcome<Status>& outcome, std::string_view key, std::string_view line) {
  const char* message = nullptr;
  if (key == "SHEETNO") message = "Cellposition för bladnummer är felaktigt angiven i ini-filen.";
  if (key == "NEXTSHEET") message = "Cellposition för fortsättningsblad är felaktigt angiven i ini-filen.";
  if (key == "LOCATION") message = "Cellposition för placering är felaktigt angiven i ini-filen.";
  if (key == "STARTROW") message = "Startrad för ifyllnad av sida är felaktigt angiven i ini-filen.";
  if (key == "ENDROW") message = "Radantal per sida är felaktigt angiven i ini-filen.";
  if (key == "INFINITE") message = "Dynamisk sidlängd felaktigt angiven i ini-filen.";
  if (key == "COLUMNS") message = "Kolumnnamn för dataifyllnad är felaktigt angiven i ini-filen.";
  if (!message) return;
  outcome.Tell(std::string(message) + kCr + "\"" + std::string(line) + "\"", MessageIcon::kInformation,
               kTitleError);
}

}  // namespace

bool ParseIniNumber(std::string_view text, int& value) {
  text = base::TrimSpaces(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  if (text.empty()) return false;
  long number = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    number = number * 10 + (c - '0');
    if (number > 32768) return false;
  }
  if (negative) number = -number;
  if (number > 32767) return false;
  value = static_cast<int>(number);
  return true;
}

IniPairing FindIniForTemplate(std::string_view templateFolder, std::string_view templateFileName) {
  IniPairing pairing;
  std::string base = base::UpperCase(templateFileName);
  for (const char* extension : {".XLSM", ".XLSX", ".XLS"}) base = base::RemoveAll(base, extension);

  // Every file of the folder takes part, not only *.ini: the name less every ".INI" decides, so the
  // first file in name order whose remaining name equals the workbook's wins.
  for (const auto& entry : base::ListFolderFiles(templateFolder)) {
    if (base::RemoveAll(base::UpperCase(entry), ".INI") != base) continue;
    pairing.iniPath = std::string(templateFolder) + "\\" + entry;
    return pairing;
  }
  pairing.outcome.Fail(base::Done::kNo);
  // A folder or the like under the INI file's name is not missing: it is there and cannot be read.
  std::error_code error;
  for (std::filesystem::directory_iterator entry(base::ResolveWindowsPath(templateFolder), error), end;
       !error && entry != end; entry.increment(error)) {
    const auto name = entry->path().filename().u8string();
    const std::string text(name.begin(), name.end());
    if (base::RemoveAll(base::UpperCase(text), ".INI") != base || entry->is_regular_file(error)) continue;
    pairing.outcome.Tell(MissingSection(std::string(templateFolder) + "\\" + text, "Common"));
    return pairing;
  }
  pairing.outcome.Tell("Excel-rapportmallen saknar nödvändig tillhörande INI-fil", MessageIcon::kInformation,
                       kTitleError);
  return pairing;
}

namespace {

CommonFieldsReading ReadCommonFields(const ProfileFile& file, std::string_view iniPath) {
  CommonFieldsReading reading;
  const auto lines = file.Section("Common").lines;
  if (lines.empty()) {
    reading.outcome.Tell(MissingSection(iniPath, "Common")).Fail(CommonFieldsStatus::kMissingSection);
    return reading;
  }

  // Field i is line i; lines past the panel's last box have nowhere to go.
  const std::size_t used = std::min<std::size_t>(lines.size(), kFieldCount);
  reading.fields.resize(used);
  for (std::size_t i = 0; i < used; ++i) {
    const std::string& line = lines[i];
    if (base::TrimSpaces(line).empty()) continue;
    const auto equals = line.find('=');
    CellReference cell;
    std::string_view defaultText;
    if (equals != std::string::npos) {
      // The default text is all that follows the first "|", further bars included.
      const std::string_view value = std::string_view(line).substr(equals + 1);
      const auto bar = value.find('|');
      cell = ParseCellReference(value.substr(0, bar));
      if (bar != std::string_view::npos) defaultText = value.substr(bar + 1);
    }
    if (cell.row < 1 || cell.col < 1) {
      reading.outcome.Tell(
          std::string("Rad i INI-fil felaktig. ") + kCr + "'" + line + "'" + kCr + "Felaktig cell-angivelse.",
          MessageIcon::kCritical);
      continue;
    }
    auto& record = reading.fields[i].emplace();
    record.Label = line.substr(0, equals);
    record.DefaultText = std::string(defaultText);
    record.Row = static_cast<std::int16_t>(cell.row);
    record.Col = static_cast<std::int16_t>(cell.col);
  }

  const std::string columns = file.Value("Sheet", "Columns");
  if (!columns.empty()) {
    const auto names = base::Split(columns, ',');
    reading.columnNames.emplace(names.begin(), names.end());
  }
  return reading;
}

PageLengthReading ReadRowsPerPage(const ProfileFile& file, std::string_view iniPath) {
  PageLengthReading reading;
  const auto lines = file.Section("Sheet").lines;
  if (lines.empty()) {
    reading.outcome.Tell(MissingSection(iniPath, "Sheet")).Fail(base::Done::kNo);
    return reading;
  }
  int startRow = 0;
  int endRow = 0;
  for (const auto& line : lines) {
    const auto parts = base::Split(line, '=');
    if (parts.size() < 2) continue;
    const std::string key = base::UpperCase(parts[0]);
    if (key != "STARTROW" && key != "ENDROW" && key != "INFINITE") continue;
    int value = 0;
    if (!ParseIniNumber(parts[1], value)) {
      TellBadLine(reading.outcome, key, line);
      continue;
    }
    if (key == "STARTROW") {
      startRow = value;
    } else if (key == "ENDROW") {
      if (endRow == 0) endRow = value;
    } else {
      if (value == 1) endRow = 65000;
      reading.infinite = true;
    }
  }
  if (startRow >= 1 && endRow >= 1) reading.rowsPerPage = endRow - startRow + 1;
  return reading;
}

IniValidation ValidateTemplateIni(const ProfileFile& file, std::string_view iniPath) {
  IniValidation result;
  auto& outcome = result.outcome;
  const auto lines = file.Section("Sheet").lines;
  if (lines.empty()) {
    outcome.Tell(MissingSection(iniPath, "Sheet")).Fail(IniValidationStatus::kMissingSheetSection);
    return result;
  }

  CheckedLayout& layout = result.layout;
  int& count = result.count;
  std::string errors;
  layout.CommonSheetName = file.Value("Tabs", "Common");
  if (!layout.CommonSheetName.empty()) {
    ++count;
  } else {
    errors =
        std::string(
            "Namn på flik för gemensamma texter 'Common=' är ej angiven i ini-filens sektion '[Tabs]'.") +
        kCr;
  }
  layout.TemplateSheetName = file.Value("Tabs", "Template");
  if (!layout.TemplateSheetName.empty()) {
    ++count;
  } else {
    errors += "Namn på flik för sidmall 'Template=' är ej angiven i ini-filens sektion '[Tabs]'.";
  }
  if (!errors.empty()) outcome.Tell(errors, MessageIcon::kInformation, kTitleError);

  for (const auto& line : lines) {
    if (base::TrimSpaces(line).empty()) continue;
    const auto parts = base::Split(line, '=');
    if (parts.size() != 2) {
      outcome.Tell(std::string("Felaktig rad i ini-filen. =-tecken saknas eller är felaktigt använt.") + kCr +
                       "\"" + line + "\"",
                   MessageIcon::kNone, "INI-fel");
      continue;
    }
    const std::string key = base::UpperCase(parts[0]);
    const std::string_view value = base::TrimSpaces(parts[1]);

    if (key == "SHEETNO" || key == "NEXTSHEET" || key == "LOCATION") {
      const auto cell = ParseCellReference(value);
      if (!cell.IsValid()) {
        TellBadLine(outcome, key, line);
        continue;
      }
      auto& row = key == "SHEETNO"     ? layout.SheetNoRow
                  : key == "NEXTSHEET" ? layout.NextSheetRow
                                       : layout.LocationRow;
      auto& col = key == "SHEETNO"     ? layout.SheetNoCol
                  : key == "NEXTSHEET" ? layout.NextSheetCol
                                       : layout.LocationCol;
      row = static_cast<std::int16_t>(cell.row);
      col = static_cast<std::int16_t>(cell.col);
      ++count;
    } else if (key == "STARTROW" || key == "ENDROW") {
      int number = 0;
      if (!ParseIniNumber(value, number)) {
        TellBadLine(outcome, key, line);
        continue;
      }
      (key == "STARTROW" ? layout.StartRow : layout.EndRow) = static_cast<std::int16_t>(number);
      ++count;
    } else if (key == "INFINITE") {
      int number = 0;
      if (!ParseIniNumber(value, number)) {
        TellBadLine(outcome, key, line);
        continue;
      }
      if (number == 1) layout.EndRow = 9999;
      layout.Infinite = true;
    } else if (key == "COLUMNS") {
      const auto items = base::Split(value, ',');
      for (std::size_t i = 0; i < items.size(); ++i) {
        const auto cell = ParseCellReference(std::string(base::TrimSpaces(items[i])) + "1");
        if (cell.row < 1 || (cell.col < 1 && cell.col != kFieldNotWritten)) {
          TellBadLine(outcome, key, line);
          break;
        }
        layout.DataColumns.resize(i + 1);
        layout.DataColumns[i] = static_cast<std::int16_t>(cell.col);
      }
      ++count;
    }
  }

  if (count >= 8) return result;
  outcome.Tell("Redigera ini-filen " + base::DisplayPath(iniPath) + " och försök senare.",
               MessageIcon::kInformation, kTitleError);
  outcome.Fail(IniValidationStatus::kTooFewEntries);
  return result;
}

}  // namespace

CommonFieldsReading ReadCommonFields(std::string_view iniPath) {
  return ReadCommonFields(ProfileFile(iniPath), iniPath);
}

PageLengthReading ReadRowsPerPage(std::string_view iniPath) {
  return ReadRowsPerPage(ProfileFile(iniPath), iniPath);
}

IniValidation ValidateTemplateIni(std::string_view iniPath) {
  return ValidateTemplateIni(ProfileFile(iniPath), iniPath);
}

void IniValidation::ApplyTo(TemplateDefinition& definition) const {
  if (outcome.status == IniValidationStatus::kMissingSheetSection) return;
  static_cast<CheckedLayout&>(definition) = layout;
  definition.IniError = !Accepted();
}

TemplateDescription ReadTemplateDescription(std::string_view iniPath) {
  const ProfileFile file(iniPath);
  TemplateDescription description;
  description.IniPath = std::string(iniPath);
  description.fileFound = file.Found();
  description.common = ReadCommonFields(file, iniPath);
  description.pageLength = ReadRowsPerPage(file, iniPath);
  description.validation = ValidateTemplateIni(file, iniPath);
  return description;
}

}  // namespace sw::templates
