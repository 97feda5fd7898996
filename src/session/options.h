#pragma once
// The four settings the options dialog ("Alternativ") edits. Each is a flag stored as "1" or "0"; a
// box is checked only for the exact text "1", so a damaged value shows as unchecked.
#include "settings/settings.h"

namespace sw::session {

struct Options {
  bool showPageBreaks = true;          // chkPageBreak, "ShowPageBreaks"
  bool showSingleSheetWarning = true;  // chkShowWarning, "ShowSingleSheetWarning"
  bool includeEmptyRows = false;       // chkIncludeEmptyRows, "IncludeEmptyRows"
  bool useSlashTwo = true;             // chkUseSlashTwo, "UseSlashTwo"

  bool operator==(const Options&) const = default;
};

// The four settings with the dialog's defaults ("IncludeEmptyRows" is "0" here, unlike a dump load).
Options ReadOptions(settings::Settings& settings);

// What OK stores: "IncludeEmptyRows", "UseSlashTwo", "ShowSingleSheetWarning", "ShowPageBreaks", in that
// order.
void StoreOptions(settings::Settings& settings, const Options& options);

}  // namespace sw::session
