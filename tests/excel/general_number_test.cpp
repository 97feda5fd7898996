#include "excel/package/general_number.h"

#include <gtest/gtest.h>

namespace sw::excel {
namespace {

using Format = BuiltInNumberFormat;

std::string Read(std::string_view text) {
  const auto number = ReadGeneralNumber(text);
  return number ? number->value + "/" + std::to_string(static_cast<int>(number->format)) : "text";
}

TEST(GeneralNumberTest, NumbersAsExcelReadsThem) {
  EXPECT_EQ(Read("007"), "7/0");
  EXPECT_EQ(Read("-3.50"), "-3.5/0");
  EXPECT_EQ(Read("+12"), "12/0");
  EXPECT_EQ(Read(".5"), "0.5/0");
  EXPECT_EQ(Read("5."), "5/0");
  EXPECT_EQ(Read("-0"), "0/0");
  EXPECT_EQ(Read("123456789012345"), "123456789012345/0");
}

TEST(GeneralNumberTest, PercentagesAndScientificNotationKeepTheirLook) {
  EXPECT_EQ(Read("5%"), "0.05/" + std::to_string(static_cast<int>(Format::kPercent)));
  EXPECT_EQ(Read("12.5%"), "0.125/" + std::to_string(static_cast<int>(Format::kPercentDecimals)));
  EXPECT_EQ(Read("-100%"), "-1/9");
  EXPECT_EQ(Read("1E5"), "100000/11");
  EXPECT_EQ(Read("2.5e-3"), "0.0025/11");
}

TEST(GeneralNumberTest, EverythingElseStaysText) {
  for (const char* text :
       {"",      "-",    "+",  ".",      "%",     "5 %", " 7",   "7 ",  "1/2", "1.2.3",
        "\"7\"", "0x10", "1E", "1E1234", "1e999", "5%%", "1E5%", "12a", "1,5", "1234567890123456",
        "Fläkt"}) {
    EXPECT_EQ(Read(text), "text") << text;
  }
}

}  // namespace
}  // namespace sw::excel
