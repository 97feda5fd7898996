#include "base/text_codec.h"

#include <gtest/gtest.h>

namespace sw::base {
namespace {

TEST(Windows1252, SwedishLettersAndEuroRoundTrip) {
  const std::string ansi = "R\xE4kna \xE5 \xF6 \xC5\xC4\xD6 \x80 \x96";
  const std::string utf8 = DecodeWindows1252(ansi);
  EXPECT_EQ(utf8, "R\u00e4kna \u00e5 \u00f6 \u00c5\u00c4\u00d6 \u20ac \u2013");
  EXPECT_EQ(EncodeWindows1252(utf8), ansi);
}

TEST(Windows1252, UndefinedBytesBecomeC1ControlsAndBack) {
  const std::string ansi = "\x81\x8D\x8F\x90\x9D";
  EXPECT_EQ(EncodeWindows1252(DecodeWindows1252(ansi)), ansi);
}

TEST(Windows1252, CharactersOutsideThePageBecomeQuestionMarks) {
  EXPECT_EQ(EncodeWindows1252("\u03a9 \U0001F600"), "? ?");
}

TEST(Utf16, RoundTripsIncludingSurrogatePairs) {
  const std::string utf8 = "a\u00e5\u20ac\U0001F600";
  const std::string utf16 = EncodeUtf16Le(utf8);
  EXPECT_EQ(utf16.size(), 2u * 5u);
  EXPECT_EQ(DecodeUtf16Le(utf16), utf8);
}

TEST(Utf16, UnpairedSurrogateAndOddByte) {
  EXPECT_EQ(DecodeUtf16Le(std::string("\x00\xD8\x41\x00\x42", 5)), "\uFFFDA");
}

TEST(DecodeText, ByteOrderMarksSwitchTheEncoding) {
  EXPECT_EQ(DecodeText("\xE5"), "\u00e5");
  EXPECT_EQ(DecodeText("\xEF\xBB\xBF\xC3\xA5"), "\u00e5");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE\xE5\x00", 4)), "\u00e5");
  // A UTF-8 BOM followed by ANSI bytes still gives readable text.
  EXPECT_EQ(DecodeText("\xEF\xBB\xBF\xE5"), "\u00e5");
}

}  // namespace
}  // namespace sw::base
