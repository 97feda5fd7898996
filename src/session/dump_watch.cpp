#include "session/dump_watch.h"

#include <system_error>

#include "base/windows_path.h"
#include "session/session.h"

namespace sw::session {

FileStamp StampOf(const std::filesystem::path& path) {
  FileStamp stamp;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return stamp;
  stamp.exists = true;
  stamp.size = std::filesystem::file_size(path, error);
  if (error) stamp.size = 0;
  const auto written = std::filesystem::last_write_time(path, error);
  stamp.written = error ? 0 : static_cast<std::int64_t>(written.time_since_epoch().count());
  stamp.key = base::KeyOfFile(path);
  return stamp;
}

void DumpWatch::Watch(std::filesystem::path path, FileStamp loaded) {
  watching_ = true;
  path_ = std::move(path);
  loaded_ = loaded;
  kept_.reset();
}

void DumpWatch::Forget() {
  watching_ = false;
  path_.clear();
  loaded_ = {};
  kept_.reset();
}

bool DumpWatch::Changed() const {
  if (!watching_) return false;
  const FileStamp now = StampOf(path_);
  // A file being replaced is briefly missing; it is told of once it is back.
  if (!now.exists) return false;
  return now != loaded_ && (!kept_ || now != *kept_);
}

void DumpWatch::KeepScreen() {
  if (watching_) kept_ = StampOf(path_);
}

// --- The session's side: the watch follows every load of the dump.

bool Session::DumpChangedOnDisk() const {
  return dumpWatch_.Changed();
}

void Session::KeepDumpOnScreen() {
  dumpWatch_.KeepScreen();
}

void Session::ReloadChangedDump() {
  PreviewVoltDump();
  FixExport(false);
}

void Session::WatchLoadedDump(report::PreviewResult result, const FileStamp& before) {
  if (result == report::PreviewResult::kSkipped) return;
  if (result == report::PreviewResult::kLoaded) {
    dumpWatch_.Watch(base::ResolveWindowsPath(voltDump_.text), before);
  } else {
    dumpWatch_.Forget();
  }
}

}  // namespace sw::session
