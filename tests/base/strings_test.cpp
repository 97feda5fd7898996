#include "base/strings.h"

#include <gtest/gtest.h>

namespace sw::base {
namespace {

TEST(Strings, TrimSpacesKeepsTabsTrimBlanksDoesNot) {
  EXPECT_EQ(TrimSpaces("  a b\t "), "a b\t");
  EXPECT_EQ(TrimBlanks(" \t\r\n\v\fa b\t "), "a b");
  EXPECT_EQ(TrimSpaces("   "), "");
}

TEST(Strings, CaseInsensitiveComparisonFoldsSwedishLetters) {
  EXPECT_TRUE(EqualsIgnoreCase("Mall \u00c5\u00c4\u00d6", "mall \u00e5\u00e4\u00f6"));
  EXPECT_FALSE(EqualsIgnoreCase("abc", "abd"));
  EXPECT_LT(CompareIgnoreCase("apple", "Banana"), 0);
  EXPECT_LT(CompareIgnoreCase("ab", "ABC"), 0);
}

TEST(Strings, SplitKeepsEmptyPieces) {
  EXPECT_EQ(Split("", '\t').size(), 1u);
  const auto pieces = Split("\ta\t\t", '\t');
  ASSERT_EQ(pieces.size(), 4u);
  EXPECT_EQ(pieces[1], "a");
}

}  // namespace
}  // namespace sw::base
