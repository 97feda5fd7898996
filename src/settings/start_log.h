#pragma once
// The start log: a plain-text trace of start-up and of the search for the CAD system's folders, kept
// in "Start.log" in the program's folder when the SHEETWRIGHT_STARTLOG environment variable is set.
//
// Each line is "<date> <time>\t<message>\r\n" with the date and time as "YYYY-MM-DD HH:MM:SS" (local
// time), one form on every machine so that logs from different users compare. The file is UTF-8
// without a byte-order mark: the messages are plain ASCII, current Notepad opens UTF-8 by default, and a
// mark would end up in the middle of a file that grows across runs.
#include <filesystem>
#include <functional>
#include <string_view>

namespace sw::base {
class Environment;
}

namespace sw::settings {

inline constexpr std::string_view kStartLogVariable = "SHEETWRIGHT_STARTLOG";
inline constexpr std::string_view kStartLogFileName = "Start.log";

// Where a part that logs during start-up writes its lines; empty while logging is off.
using StartLogSink = std::function<void(std::string_view)>;

class StartLog {
 public:
  // Logging is on when the variable is set to a non-empty value; the log lives in the program's folder.
  explicit StartLog(const base::Environment& environment);
  // The same with the log in `folder` instead.
  StartLog(const base::Environment& environment, std::filesystem::path folder);

  bool Enabled() const { return enabled_; }
  std::filesystem::path FilePath() const { return folder_ / kStartLogFileName; }

  // Appends one line (or, with `startNewFile`, empties the file first), opening and closing the file
  // for it so that a crash loses nothing already logged. Does nothing when logging is off. False when
  // the file could not be written.
  bool WriteStartLog(std::string_view message, bool startNewFile = false) const;

 private:
  bool enabled_;
  std::filesystem::path folder_;
};

}  // namespace sw::settings
