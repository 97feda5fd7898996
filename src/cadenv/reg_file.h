#pragma once
// Registration files in regedit's export format: "Windows Registry Editor Version 5.00" (exported as
// UTF-16LE with a byte-order mark) and the older ANSI "REGEDIT4".
#include <cstddef>
#include <string>
#include <string_view>

#include "cadenv/reg_tree.h"

namespace sw::cadenv {

enum class RegParseStatus {
  kOk,
  kUnreadable,        // the file could not be read
  kMissingHeader,     // the first line is neither header
  kBadKeyLine,        // "[" without a closing "]"
  kUnknownRoot,       // a hive other than HKEY_CURRENT_USER / HKEY_LOCAL_MACHINE
  kKeyTooDeep,        // more than kMaxKeyDepth levels
  kValueOutsideKey,   // a value line before the first key line
  kBadValueName,      // unterminated name or no "=" after it
  kBadValueData,      // data that is no string, dword, hex list or "-"
  kUnrecognisedLine,  // anything else
  kWriteFailed,       // the store the file was merged into could not be written
};

struct RegParseResult {
  RegParseStatus status = RegParseStatus::kOk;
  std::size_t line = 0;    // 1-based line of the problem; 0 when it concerns no line
  std::size_t column = 0;  // 1-based character in that line
  std::string description;

  explicit operator bool() const { return status == RegParseStatus::kOk; }
};

// Applies a registration file (its bytes as stored) to `tree` line by line, as regedit imports it:
// keys are created, values set, "name"=- deletes a value, [-KEY] deletes a tree. Reading stops at the
// first line it cannot understand; what came before it has been applied, so callers that want all or
// nothing parse into a copy.
RegParseResult ParseRegFile(std::string_view bytes, RegTree& tree);

// The tree as regedit exports it, as UTF-8 text with CR LF line ends.
std::string FormatRegText(const RegTree& tree);

// FormatRegText encoded as regedit writes it: UTF-16LE with a byte-order mark.
std::string SerializeRegFile(const RegTree& tree);

}  // namespace sw::cadenv
