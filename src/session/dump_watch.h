#pragma once
// Whether the report dump on screen is still the file on disk. The CAD system writes its report again
// while the preview is open (a new report run, or the same one repeated); the user is to hear of it
// once per change and choose between the new file and the edits made to the old one.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "base/file_identity.h"

namespace sw::session {

// What a file looked like at one moment: its size, when it was last written and which file it was.
struct FileStamp {
  bool exists = false;
  std::uintmax_t size = 0;
  std::int64_t written = 0;  // the file system's own clock ticks
  std::optional<base::FileKey> key;
  bool operator==(const FileStamp&) const = default;
};

FileStamp StampOf(const std::filesystem::path& path);

class DumpWatch {
 public:
  // The dump at `path` (host path) was loaded as it was at `loaded`.
  void Watch(std::filesystem::path path, FileStamp loaded);
  // No dump on screen: nothing to watch.
  void Forget();
  bool Watching() const { return watching_; }
  // The file differs from the one loaded and from the one the user last chose to keep the screen over.
  bool Changed() const;
  // The user keeps what is on screen: the file as it is now is not told of again.
  void KeepScreen();

 private:
  bool watching_ = false;
  std::filesystem::path path_;
  FileStamp loaded_;
  std::optional<FileStamp> kept_;
};

}  // namespace sw::session
