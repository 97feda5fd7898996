#include "report/preview_loader.h"

#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "base/file_io.h"
#include "base/windows_path.h"
#include "report/cleanup.h"

namespace sw::report {
namespace {

constexpr std::string_view kUseSlashTwo = "UseSlashTwo";
constexpr std::string_view kIncludeEmptyRows = "IncludeEmptyRows";

void ShowFileError(base::Dialogs& dialogs, std::string text) {
  dialogs.ShowMessage({std::move(text), "Filfel", base::MessageIcon::kCritical, base::MessageButtons::kOk});
}

// The file starts with the byte-order mark of big-endian UTF-16.
bool IsUtf16BigEndian(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  char mark[2] = {};
  if (!in.read(mark, 2)) return false;
  return static_cast<unsigned char>(mark[0]) == 0xFE && static_cast<unsigned char>(mark[1]) == 0xFF;
}

// Reads and loads the dump; tells the user when the file cannot be found, read or held.
PreviewResult LoadDumpFile(ReportTable& table, const PreviewContext& context) {
  const std::filesystem::path path = base::ResolveWindowsPath(context.dumpPath);
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (error == std::errc::permission_denied) {
    ShowFileError(context.dialogs, "Kan ej läsa filen " + context.dumpPath + ".");
    return PreviewResult::kUnreadable;
  }
  // A folder, device or pipe named as the dump is no report and is not read (a pipe would never end);
  // the user is told what lies there, not that nothing does.
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    ShowFileError(context.dialogs,
                  "Kan ej läsa filen " + context.dumpPath + " eftersom det inte är någon vanlig fil.");
    return PreviewResult::kUnreadable;
  }
  if (!std::filesystem::is_regular_file(status)) {
    context.dialogs.ShowMessage({"Hittar ej filen " + context.dumpPath + ".", "Fel",
                                 base::MessageIcon::kInformation, base::MessageButtons::kOk});
    return PreviewResult::kNotFound;
  }
  // Read as ANSI, big-endian UTF-16 comes out as no report rows at all, which says nothing.
  if (IsUtf16BigEndian(path)) {
    table.SetRows(1);
    ShowFileError(context.dialogs, "Filen " + context.dumpPath +
                                       " är sparad som UTF-16 big-endian och kan inte läsas. Spara den som "
                                       "ANSI, UTF-8 eller UTF-16 little-endian.");
    return PreviewResult::kUnreadable;
  }
  try {
    if (!LoadDumpFile(table, path, context.progress)) {
      table.SetRows(1);
      ShowFileError(context.dialogs, "Kan ej läsa filen " + context.dumpPath + ".");
      return PreviewResult::kUnreadable;
    }
  } catch (const std::bad_alloc&) {
    table.SetRows(1);
    ShowFileError(context.dialogs, "Filen " + context.dumpPath + " är för stor för att läsas in.");
    return PreviewResult::kUnreadable;
  } catch (const std::length_error&) {
    table.SetRows(1);
    ShowFileError(context.dialogs, "Filen " + context.dumpPath + " är för stor för att läsas in.");
    return PreviewResult::kUnreadable;
  }
  return PreviewResult::kLoaded;
}

}  // namespace

PreviewResult PreviewVoltDump(ReportTable& table, const PreviewContext& context) {
  if (context.refreshing) return PreviewResult::kSkipped;
  const bool removeSlashTwo = context.settings.GetAppSetting(kUseSlashTwo, "1") == "0";
  table.SetRows(1);
  if (context.dumpPath.empty()) return PreviewResult::kNoDump;
  if (const PreviewResult read = LoadDumpFile(table, context); read != PreviewResult::kLoaded) return read;

  if (context.layoutColumns) context.layoutColumns();
  if (removeSlashTwo) CleanupSlashTwo(table);
  // Loading keeps empty rows unless told otherwise, while the options start with the box unticked:
  // two defaults for one setting, as the program always had them.
  if (context.settings.GetAppSetting(kIncludeEmptyRows, "1") == "0") CleanupEmptyRows(table);
  if (context.reloadTemplateLayout) context.reloadTemplateLayout();
  if (context.showPageBreaks) context.showPageBreaks();
  return PreviewResult::kLoaded;
}

}  // namespace sw::report
