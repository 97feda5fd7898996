#pragma once
// What the window follows besides the session's state, decided below the session for every front
// end alike: which keys and texts the sheet-number box takes, how the grid's columns share its width
// and when its popup shows, which controls take the theme's colour, how the report table the session
// holds is coloured, where a window's placement is kept, and where a Windows path the session names
// lies on this machine. The window takes them by these names, so the session stays the one layer it
// reaches.
#include "base/system_colours.h"
#include "base/upper_case.h"
#include "base/windows_path.h"
#include "preview/colour_by_prefix.h"
#include "preview/preview_controls.h"
#include "preview/preview_edits.h"
#include "report/colours.h"
#include "report/report_table.h"
#include "settings/window_placement.h"

namespace sw::session {

using base::kSystemWindowBackground;
using base::RemoveAll;
using base::ResolveWindowsPath;

using preview::kCommandDeletePlacement;
using preview::LayOutColumnWidths;
using preview::PreviewAction;
using preview::SheetNumberKeyPasses;
using preview::SheetNumberTextPasses;
using preview::ShiftedThemeColour;
using preview::ShowsPreviewPopup;
using preview::TakesThemeColour;

using report::CellPicture;
using report::Colour;
using report::kDefaultBack;
using report::ReportTable;

using settings::kMainWindowDefaultSize;
using settings::kMainWindowName;
using settings::PlacementAtClose;
using settings::RestoreWindowPlacement;
using settings::SaveMainWindowAtClose;
using settings::SaveWindowPlacement;
using settings::WindowPlacement;
using settings::WindowState;

}  // namespace sw::session
