#pragma once
// Reading a report dump's bytes into the report table: the row rules of the CAD system's dump format,
// without files or settings (PreviewVoltDump in report/preview_loader.h adds those).
//
// The dump is text in the Windows ANSI code page (1252), unless a UTF-8 or UTF-16LE byte-order mark
// says otherwise. A line ends at CR LF, a lone CR or a lone LF; a last line without an ending counts.
// Fields are separated by TAB. A line starting with "%" is a title: all its "%" removed, it is one
// cell (TABs stay inside) on a light green row. Lines before the first title line or the first line
// with an empty first field and at least two fields are a preamble and are not shown; a blank green
// row goes before the first such data line.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>

#include "report/report_table.h"

namespace sw::report {

// Receives the load's progress: the busy state and the progress bar of the main window.
class LoadProgress {
 public:
  virtual ~LoadProgress() = default;
  // The reading pass starts: busy state on, progress bar at 0 of `lineCount`.
  virtual void Begin(int lineCount) = 0;
  // `linesDone` lines were read before the current one. Reported in steps of about 1 %; the last
  // value (lineCount - 1) is always reported.
  virtual void Step(int linesDone) = 0;
  // The reading pass has ended (also when it failed): busy state off.
  virtual void End() = 0;
};

struct DumpReadResult {
  int lineCount = 0;  // lines in the dump, the progress bar's maximum
};

// Replaces the table's report rows with the dump's rows and sets the column count to the number of
// fields on the widest line (title and preamble lines included), at least 1. The column count the
// table had before is where the reading starts from, as the grid keeps it across loads.
// Throws std::bad_alloc or std::length_error when the dump does not fit in memory; the table then
// holds part of the dump.
DumpReadResult LoadDumpText(ReportTable& table, std::string_view bytes, LoadProgress* progress = nullptr);

// The same from the file at `path`, read `chunkBytes` at a time (twice: counting, then reading), so
// that the dump is never in memory beside the table. Nothing when the file cannot be opened or read;
// the table then holds its heading row only.
std::optional<DumpReadResult> LoadDumpFile(ReportTable& table, const std::filesystem::path& path,
                                           LoadProgress* progress = nullptr,
                                           std::size_t chunkBytes = std::size_t{64} << 10);

}  // namespace sw::report
