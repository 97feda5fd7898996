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

using Loading = base::Outcome<PreviewResult>;

Loading FileError(PreviewResult status, std::string text) {
  Loading outcome;
  outcome.Tell(std::move(text), base::MessageIcon::kCritical, "Filfel").Fail(status);
  return outcome;
}

// The file starts with the byte-order mark of big-endian UTF-16.
bool IsUtf16BigEndian(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  char mark[2] = {};
  if (!in.read(mark, 2)) return false;
  return static_cast<unsigned char>(mark[0]) == 0xFE && static_cast<unsigned char>(mark[1]) == 0xFF;
}

// Reads and loads the dump; tells the user when the file cannot be found, read or held.
Loading LoadDumpFile(ReportTable& table, const PreviewContext& context) {
  const std::filesystem::path path = base::ResolveWindowsPath(context.dumpPath);
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (error == std::errc::permission_denied) {
    return FileError(PreviewResult::kUnreadable, "Kan ej läsa filen " + context.dumpPath + ".");
  }
  // A folder, device or pipe named as the dump is no report and is not read (a pipe would never end);
  // the user is told what lies there, not that nothing does.
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    return FileError(PreviewResult::kUnreadable,
                     "Kan ej läsa filen " + context.dumpPath + " eftersom det inte är någon vanlig fil.");
  }
  if (!std::filesystem::is_regular_file(status)) {
    Loading outcome;
    outcome.Tell("Hittar ej filen " + context.dumpPath + ".", base::MessageIcon::kInformation, "Fel")
        .Fail(PreviewResult::kNotFound);
    return outcome;
  }
  // Read as ANSI, big-endian UTF-16 comes out as no report rows at all, which says nothing.
  if (IsUtf16BigEndian(path)) {
    table.SetRows(1);
    return FileError(PreviewResult::kUnreadable, "Filen " + context.dumpPath +
                                                     " är sparad som UTF-16 big-endian och kan inte läsas. "
                                                     "Spara den som ANSI, UTF-8 eller UTF-16 little-endian.");
  }
  try {
    if (!LoadDumpFile(table, path, context.progress)) {
      table.SetRows(1);
      return FileError(PreviewResult::kUnreadable, "Kan ej läsa filen " + context.dumpPath + ".");
    }
  } catch (const std::bad_alloc&) {
    table.SetRows(1);
    return FileError(PreviewResult::kUnreadable,
                     "Filen " + context.dumpPath + " är för stor för att läsas in.");
  } catch (const std::length_error&) {
    table.SetRows(1);
    return FileError(PreviewResult::kUnreadable,
                     "Filen " + context.dumpPath + " är för stor för att läsas in.");
  }
  return {};
}

}  // namespace

base::Outcome<PreviewResult> PreviewVoltDump(ReportTable& table, const PreviewContext& context) {
  if (context.refreshing) return Loading().Fail(PreviewResult::kSkipped);
  const bool removeSlashTwo = context.settings.GetAppSetting(kUseSlashTwo, "1") == "0";
  table.SetRows(1);
  if (context.dumpPath.empty()) return Loading().Fail(PreviewResult::kNoDump);
  if (auto read = LoadDumpFile(table, context); !read) return read;

  if (context.layoutColumns) context.layoutColumns();
  if (removeSlashTwo) CleanupSlashTwo(table);
  // Loading keeps empty rows unless told otherwise, while the options start with the box unticked:
  // two defaults for one setting, as the program always had them.
  if (context.settings.GetAppSetting(kIncludeEmptyRows, "1") == "0") CleanupEmptyRows(table);
  if (context.reloadTemplateLayout) context.reloadTemplateLayout();
  if (context.showPageBreaks) context.showPageBreaks();
  return {};
}

}  // namespace sw::report
