#include "templates/template_ini.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/strings.h"
#include "base/system_colours.h"
#include "base/upper_case.h"
#include "base/windows_path.h"
#include "templates/cell_reference.h"
#include "templates/profile_file.h"

namespace sw::templates {
namespace {

using base::MessageIcon;

constexpr const char* kCr = "\r";
constexpr const char* kTitleError = "Fel";
constexpr const char* kTitleCannotUse = "Kan ej använda Excel-filen";

void Tell(base::Dialogs& dialogs, std::string text, std::string title, MessageIcon icon) {
  dialogs.ShowMessage({std::move(text), std::move(title), icon, base::MessageButtons::kOk});
}

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

void TellMissingSection(base::Dialogs& dialogs, std::string_view iniPath, std::string_view section) {
  if (const std::string reason = UnreadableReason(iniPath); !reason.empty()) {
    Tell(dialogs, "Ini-filen " + std::string(iniPath) + kCr + "går inte att läsa " + reason + ".",
         kTitleCannotUse, MessageIcon::kInformation);
    return;
  }
  Tell(dialogs,
       "Ini-filen " + std::string(iniPath) + kCr + "saknar sektionen [" + std::string(section) + "].",
       kTitleCannotUse, MessageIcon::kInformation);
}

// The per-key message of a bad [Sheet] value: the message, CR and the line in double quotes.
void TellBadLine(base::Dialogs& dialogs, std::string_view key, std::string_view line) {
  const char* message = nullptr;
  if (key == "SHEETNO") message = "Cellposition för bladnummer är felaktigt angiven i ini-filen.";
  if (key == "NEXTSHEET") message = "Cellposition för fortsättningsblad är felaktigt angiven i ini-filen.";
  if (key == "LOCATION") message = "Cellposition för placering är felaktigt angiven i ini-filen.";
  if (key == "STARTROW") message = "Startrad för ifyllnad av sida är felaktigt angiven i ini-filen.";
  if (key == "ENDROW") message = "Radantal per sida är felaktigt angiven i ini-filen.";
  if (key == "INFINITE") message = "Dynamisk sidlängd felaktigt angiven i ini-filen.";
  if (key == "COLUMNS") message = "Kolumnnamn för dataifyllnad är felaktigt angiven i ini-filen.";
  if (!message) return;
  Tell(dialogs, std::string(message) + kCr + "\"" + std::string(line) + "\"", kTitleError,
       MessageIcon::kInformation);
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

bool FindIniForTemplate(std::string_view templateFolder, std::string_view templateFileName,
                        TemplateDefinition& definition, FieldPanel& fields, report::ReportTable& preview,
                        base::Dialogs& dialogs, const ShortDateSource& today) {
  fields.Clear();
  std::string base = base::UpperCase(templateFileName);
  for (const char* extension : {".XLSM", ".XLSX", ".XLS"}) base = base::RemoveAll(base, extension);

  // Every file of the folder takes part, not only *.ini: the name less every ".INI" decides, so the
  // first file in name order whose remaining name equals the workbook's wins.
  for (const auto& entry : base::ListFolderFiles(templateFolder)) {
    if (base::RemoveAll(base::UpperCase(entry), ".INI") != base) continue;
    definition.IniPath = std::string(templateFolder) + "\\" + entry;
    ReadCommonFields(definition.IniPath, definition, fields, preview, dialogs, today);
    return true;
  }
  definition.IniPath.clear();
  // A folder or the like under the INI file's name is not missing: it is there and cannot be read.
  std::error_code error;
  for (std::filesystem::directory_iterator entry(base::ResolveWindowsPath(templateFolder), error), end;
       !error && entry != end; entry.increment(error)) {
    const auto name = entry->path().filename().u8string();
    const std::string text(name.begin(), name.end());
    if (base::RemoveAll(base::UpperCase(text), ".INI") != base || entry->is_regular_file(error)) continue;
    TellMissingSection(dialogs, std::string(templateFolder) + "\\" + text, "Common");
    return false;
  }
  Tell(dialogs, "Excel-rapportmallen saknar nödvändig tillhörande INI-fil", kTitleError,
       MessageIcon::kInformation);
  return false;
}

bool ReadCommonFields(std::string_view iniPath, TemplateDefinition& definition, FieldPanel& fields,
                      report::ReportTable& preview, base::Dialogs& dialogs, const ShortDateSource& today) {
  const auto lines = ReadIniSection("Common", iniPath).lines;
  if (lines.empty()) {
    TellMissingSection(dialogs, iniPath, "Common");
    definition.IniError = true;
    return false;
  }

  // Field i is line i; lines past the panel's last box have nowhere to go.
  const std::size_t used = std::min<std::size_t>(lines.size(), kFieldCount);
  definition.CommonFields.resize(used);
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
      Tell(
          dialogs,
          std::string("Rad i INI-fil felaktig. ") + kCr + "'" + line + "'" + kCr + "Felaktig cell-angivelse.",
          "", MessageIcon::kCritical);
      continue;
    }
    auto& record = definition.CommonFields[i];
    record.Label = line.substr(0, equals);
    record.DefaultText = std::string(defaultText);
    record.Row = static_cast<std::int16_t>(cell.row);
    record.Col = static_cast<std::int16_t>(cell.col);

    auto& entry = fields.entries[i];
    entry.caption = record.Label;
    entry.text = record.DefaultText == "." ? today() : record.DefaultText;
    entry.enabled = true;
    entry.backColour = base::kSystemWindowBackground;  // enabled by the template
  }

  const std::string columns = ReadIniValue("Sheet", "Columns", iniPath);
  if (!columns.empty()) {
    for (int col = 0; col < preview.Cols(); ++col) preview.SetText(0, col, "");
    const auto names = base::Split(columns, ',');
    definition.PreviewColumnNames.assign(names.begin(), names.end());
    // A single name leaves the headings cleared and the column count alone.
    if (names.size() >= 2) {
      preview.SetCols(static_cast<int>(names.size()) + 1);
      for (std::size_t j = 0; j < names.size(); ++j) {
        preview.SetText(0, static_cast<int>(j) + 1, std::string(names[j]) + " ");
      }
    }
  }
  return true;
}

int ReadRowsPerPage(std::string_view iniPath, TemplateDefinition& definition, base::Dialogs& dialogs) {
  const auto lines = ReadIniSection("Sheet", iniPath).lines;
  if (lines.empty()) {
    TellMissingSection(dialogs, iniPath, "Sheet");
    return -1;
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
      TellBadLine(dialogs, key, line);
      continue;
    }
    if (key == "STARTROW") {
      startRow = value;
    } else if (key == "ENDROW") {
      if (endRow == 0) endRow = value;
    } else {
      if (value == 1) endRow = 65000;
      definition.Infinite = true;
    }
  }
  if (startRow >= 1 && endRow >= 1) return endRow - startRow + 1;
  return -1;
}

const char* IniValidationResult::Description() const {
  switch (status) {
    case IniValidationStatus::kAccepted:
      return "Template INI accepted";
    case IniValidationStatus::kMissingSheetSection:
      return "Section [Sheet] missing or empty";
    case IniValidationStatus::kTooFewEntries:
      return "Fewer than 8 accepted entries";
  }
  return "Unknown status";
}

IniValidationResult ValidateTemplateIni(std::string_view iniPath, TemplateDefinition& definition,
                                        base::Dialogs& dialogs) {
  IniValidationResult result;
  const auto lines = ReadIniSection("Sheet", iniPath).lines;
  if (lines.empty()) {
    TellMissingSection(dialogs, iniPath, "Sheet");
    result.status = IniValidationStatus::kMissingSheetSection;
    return result;
  }

  // Everything below is read afresh, so nothing of an earlier template survives a missing key.
  definition.SheetNoRow = definition.SheetNoCol = 0;
  definition.NextSheetRow = definition.NextSheetCol = 0;
  definition.LocationRow = definition.LocationCol = 0;
  definition.StartRow = definition.EndRow = 0;
  definition.DataColumns.clear();

  int& count = result.count;
  std::string errors;
  definition.CommonSheetName = ReadIniValue("Tabs", "Common", iniPath);
  if (!definition.CommonSheetName.empty()) {
    ++count;
  } else {
    errors =
        std::string(
            "Namn på flik för gemensamma texter 'Common=' är ej angiven i ini-filens sektion '[Tabs]'.") +
        kCr;
  }
  definition.TemplateSheetName = ReadIniValue("Tabs", "Template", iniPath);
  if (!definition.TemplateSheetName.empty()) {
    ++count;
  } else {
    errors += "Namn på flik för sidmall 'Template=' är ej angiven i ini-filens sektion '[Tabs]'.";
  }
  if (!errors.empty()) Tell(dialogs, errors, kTitleError, MessageIcon::kInformation);

  definition.Infinite = false;
  for (const auto& line : lines) {
    if (base::TrimSpaces(line).empty()) continue;
    const auto parts = base::Split(line, '=');
    if (parts.size() != 2) {
      Tell(dialogs,
           std::string("Felaktig rad i ini-filen. =-tecken saknas eller är felaktigt använt.") + kCr + "\"" +
               line + "\"",
           "INI-fel", MessageIcon::kNone);
      continue;
    }
    const std::string key = base::UpperCase(parts[0]);
    const std::string_view value = base::TrimSpaces(parts[1]);

    if (key == "SHEETNO" || key == "NEXTSHEET" || key == "LOCATION") {
      const auto cell = ParseCellReference(value);
      if (!cell.IsValid()) {
        TellBadLine(dialogs, key, line);
        continue;
      }
      auto& row = key == "SHEETNO"     ? definition.SheetNoRow
                  : key == "NEXTSHEET" ? definition.NextSheetRow
                                       : definition.LocationRow;
      auto& col = key == "SHEETNO"     ? definition.SheetNoCol
                  : key == "NEXTSHEET" ? definition.NextSheetCol
                                       : definition.LocationCol;
      row = static_cast<std::int16_t>(cell.row);
      col = static_cast<std::int16_t>(cell.col);
      ++count;
    } else if (key == "STARTROW" || key == "ENDROW") {
      int number = 0;
      if (!ParseIniNumber(value, number)) {
        TellBadLine(dialogs, key, line);
        continue;
      }
      (key == "STARTROW" ? definition.StartRow : definition.EndRow) = static_cast<std::int16_t>(number);
      ++count;
    } else if (key == "INFINITE") {
      int number = 0;
      if (!ParseIniNumber(value, number)) {
        TellBadLine(dialogs, key, line);
        continue;
      }
      if (number == 1) definition.EndRow = 9999;
      definition.Infinite = true;
    } else if (key == "COLUMNS") {
      const auto items = base::Split(value, ',');
      for (std::size_t i = 0; i < items.size(); ++i) {
        const auto cell = ParseCellReference(std::string(base::TrimSpaces(items[i])) + "1");
        if (cell.row < 1 || (cell.col < 1 && cell.col != kFieldNotWritten)) {
          TellBadLine(dialogs, key, line);
          break;
        }
        definition.DataColumns.resize(i + 1);
        definition.DataColumns[i] = static_cast<std::int16_t>(cell.col);
      }
      ++count;
    }
  }

  if (count >= 8) {
    definition.IniError = false;
    return result;
  }
  Tell(dialogs, "Redigera ini-filen " + std::string(iniPath) + " och försök senare.", kTitleError,
       MessageIcon::kInformation);
  definition.IniError = true;
  result.status = IniValidationStatus::kTooFewEntries;
  return result;
}

}  // namespace sw::templates
