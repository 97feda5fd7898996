#include "excel/package/formula_text.h"

#include <gtest/gtest.h>

namespace sw::excel {
namespace {

TEST(FormulaText, ShiftsRelativeReferencesOnly) {
  EXPECT_EQ(ShiftFormula("A1+$B$2+C$3+$D4", 2, 1), "B3+$B$2+D$3+$D6");
  EXPECT_EQ(ShiftFormula("SUM(A1:A3)*LOG10(B1)", 1, 0), "SUM(A2:A4)*LOG10(B2)");
  EXPECT_EQ(ShiftFormula("\"A1\"&'Blad A1'!A1&Tab1[Kol A1]", 1, 0), "\"A1\"&'Blad A1'!A2&Tab1[Kol A1]");
  EXPECT_EQ(ShiftFormula("A1", -1, 0), "#REF!");
}

TEST(FormulaText, RenamesSheetQualifiedReferences) {
  EXPECT_EQ(RenameSheetInFormula("Mall!$A$1:$F$40", "Mall", "Mall (2)"), "'Mall (2)'!$A$1:$F$40");
  EXPECT_EQ(RenameSheetInFormula("'Mall (2)'!1:9", "mall (2)", "1"), "'1'!1:9");
  EXPECT_EQ(RenameSheetInFormula("Mall2!A1+\"Mall!A1\"+Mall!B2", "Mall", "X"), "Mall2!A1+\"Mall!A1\"+X!B2");
  EXPECT_EQ(RenameSheetInFormula("[1]Mall!A1", "Mall", "X"), "[1]Mall!A1");
}

TEST(FormulaText, LooksForSheetNamesInPartTextCheaplyButNeverMissesOne) {
  EXPECT_TRUE(SheetNameMayOccur("<f>COUNTA(MALL!G2)</f>", "Mall"));
  EXPECT_TRUE(SheetNameMayOccur("<f>&apos;Mall 1&apos;!G2</f>", "Mall 1"));
  EXPECT_FALSE(SheetNameMayOccur("<f>Common!B1</f>", "Mall"));
  // Escaped in XML or doubled in formulas: the plain name may not be in the text at all.
  EXPECT_TRUE(SheetNameMayOccur("<f>'R&amp;D'!A1</f>", "R&D"));
  EXPECT_TRUE(SheetNameMayOccur("<f>'O''Brien'!A1</f>", "O'Brien"));
}

TEST(FormulaText, RenamesTablesInStructuredReferences) {
  EXPECT_EQ(RenameTableInFormula("SUM(Kabeltyper[Antal])+Kabeltyper2[x]", "Kabeltyper", "Kabeltyper1"),
            "SUM(Kabeltyper1[Antal])+Kabeltyper2[x]");
}

}  // namespace
}  // namespace sw::excel
