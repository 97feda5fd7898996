#pragma once
// The preview's column widths after a load, the same at every load: each column as wide as what it
// holds, and when they all fit the room left over shared among the columns after the names, so the
// grid is filled without ever needing to be scrolled sideways for the sake of its own layout.
#include <vector>

namespace sw::session {

// `contents`: each column's width for its headings and cells; `view`: the width the grid shows rows
// in. Both in one unit (the window uses pixels).
std::vector<int> FitColumnWidths(std::vector<int> contents, int view);

}  // namespace sw::session
