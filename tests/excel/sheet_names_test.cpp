#include "excel/sheet_names.h"

#include <gtest/gtest.h>

namespace sw::excel {
namespace {

TEST(SheetNames, RefusesWhatExcelRefuses) {
  const std::vector<std::string> existing = {"Common", "Mall", "Ärende"};
  struct Case {
    const char* name;
    bool allowed;
  };
  for (const Case& c : std::initializer_list<Case>{{"1", true},
                                                   {"007", true},
                                                   {"Sida 1", true},
                                                   {"mall", false},
                                                   {"ÄRENDE", false},
                                                   {"", false},
                                                   {"a:b", false},
                                                   {"a\\b", false},
                                                   {"a/b", false},
                                                   {"a?", false},
                                                   {"a*", false},
                                                   {"[a]", false},
                                                   {"'a", false},
                                                   {"a'", false},
                                                   {"a'b", true},
                                                   {"history", false},
                                                   {"1234567890123456789012345678901", true},
                                                   {"12345678901234567890123456789012", false},
                                                   {"ÅÄÖåäöÅÄÖåäöÅÄÖåäöÅÄÖåäöÅÄÖåäöÅ", true}}) {
    EXPECT_EQ(!SheetNameProblem(c.name, existing, -1).has_value(), c.allowed) << c.name;
  }
  EXPECT_FALSE(SheetNameProblem("MALL", existing, 1).has_value()) << "a sheet may change its own name's case";
}

TEST(SheetNames, NamesCopiesAsExcelDoes) {
  EXPECT_EQ(DefaultCopyName("Mall", {"Common", "Mall"}), "Mall (2)");
  EXPECT_EQ(DefaultCopyName("Mall", {"Mall", "mall (2)"}), "Mall (3)");
  EXPECT_EQ(DefaultCopyName("Mall (2)", {"Mall", "Mall (2)"}), "Mall (3)");
  EXPECT_EQ(DefaultCopyName("1234567890123456789012345678901", {"1234567890123456789012345678901"}),
            "123456789012345678901234567 (2)");
}

TEST(SheetNames, QuotesNamesThatFormulasWouldMisread) {
  EXPECT_EQ(QuoteSheetNameForFormula("Mall"), "Mall");
  EXPECT_EQ(QuoteSheetNameForFormula("Mall (2)"), "'Mall (2)'");
  EXPECT_EQ(QuoteSheetNameForFormula("1"), "'1'");
  EXPECT_EQ(QuoteSheetNameForFormula("A1"), "'A1'");
  EXPECT_EQ(QuoteSheetNameForFormula("R1C1"), "'R1C1'");
  EXPECT_EQ(QuoteSheetNameForFormula("Kalle's"), "'Kalle''s'");
  EXPECT_EQ(QuoteSheetNameForFormula("Översikt"), "Översikt");
}

}  // namespace
}  // namespace sw::excel
