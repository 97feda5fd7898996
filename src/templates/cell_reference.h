#pragma once
// Cell references of the template INI: one or two column letters and a row number ("B3", "ac12").
#include <string_view>

namespace sw::templates {

struct CellReference {
  int row = -1;
  int col = -1;
  bool IsValid() const { return row >= 1 && col >= 1; }
};

// The first digit must be the 2nd or 3rd character; the one or two characters before it are the column
// (each counted by its Windows-1252 code after upper-casing, A = 1 … Z = 26, AA = 27 … ZZ = 702) and the
// rest is the row. The characters before the digit are not checked, so "!1" is column −31 (the marker
// of a COLUMNS field that is not written) and other characters below "A" give columns below 1: callers
// decide what they accept. The row must be a whole number of at most 32767 (spaces around it allowed);
// anything else gives row and column −1, like a reference of the wrong form.
CellReference ParseCellReference(std::string_view text);

}  // namespace sw::templates
