#pragma once
// One thing the user is told: a message box without a question (the window) or a "<title>: <text>"
// line (the command line).
#include <string>

namespace sw::base {

// The program's title: the title of a message box shown without one of its own.
inline constexpr const char* kApplicationTitle = "Sheetwright";

enum class MessageIcon { kNone, kCritical, kQuestion, kExclamation, kInformation };

struct Notice {
  std::string text;   // may hold CR (or CR LF) line breaks as the program builds them
  std::string title;  // empty: kApplicationTitle
  MessageIcon icon = MessageIcon::kNone;
  bool operator==(const Notice&) const = default;
};

}  // namespace sw::base
