#include "templates/profile_file.h"

#include <gtest/gtest.h>

#include "base/text_codec.h"
#include "temp_dir.h"

namespace sw::templates {
namespace {

using Lines = std::vector<std::string>;

struct ValueCase {
  const char* file;
  const char* section;
  const char* key;
  const char* expected;
};

void ExpectValues(const std::vector<ValueCase>& cases) {
  for (const auto& c : cases) {
    EXPECT_EQ(ProfileText::Parse(c.file).Value(c.section, c.key).value, c.expected)
        << "file: " << c.file << " [" << c.section << "] " << c.key;
  }
}

TEST(ProfileReaderTest, NamesMatchIgnoringCaseAndTheFirstSectionAndKeyWin) {
  ExpectValues({
      {"[Sheet]\nStartRow=10\n", "SHEET", "STARTROW", "10"},
      {"[sHeEt]\nstartrow=10\n", "Sheet", "StartRow", "10"},
      {"[Sheet]\nA=1\nA=2\n", "Sheet", "a", "1"},
      {"[Sheet]\nA=1\n[sheet]\nA=2\nB=3\n", "Sheet", "A", "1"},
      {"[Sheet]\nA=1\n[sheet]\nB=3\n", "Sheet", "B", ""},    // only the first section is searched
      {"[\xC5tg\xE4rd]\n\xD6l=ja\n", "åTGÄRD", "öL", "ja"},  // Windows-1252 "[Åtgärd]", "Öl"
  });
  EXPECT_EQ(ProfileText::Parse("[S]\na=1\n[T]\nb=2\n[s]\nc=3\n").Section("S").lines, Lines{"a=1"});
}

TEST(ProfileReaderTest, BlanksAroundNamesAndValuesAreRemoved) {
  ExpectValues({
      {"[Sheet]\n  StartRow  =  10  \n", "Sheet", "StartRow", "10"},
      {"[Sheet]\n\tKey\t=\tv a l\t\v\f\n", "Sheet", "Key", "v a l"},
      {"   [  Sheet  ]\nA=1\n", "Sheet", "A", "1"},
      {"[Sheet] text after the bracket\nA=1\n", "Sheet", "A", "1"},
      {"[Sheet\nA=1\n", "Sheet", "A", "1"},  // Windows opens the section without "]"
      {"[Sheet]]\nA=1\n", "Sheet", "A", "1"},
      {"A=0\n[Sheet]\nB=1\n", "Sheet", "A", ""},  // lines before the first section are unreadable
  });
}

TEST(ProfileReaderTest, OnlyASemicolonAtLineStartMakesAComment) {
  ExpectValues({
      {"[S]\n;A=1\nA=2\n", "S", "A", "2"},
      {"[S]\n   ;A=1\n", "S", "A", ""},
      {"[S]\n#A=1\n", "S", "#A", "1"},
      {"[S]\nA=v ;not a comment\n", "S", "A", "v ;not a comment"},
      {";[S]\nA=1\n", "S", "A", ""},
  });
  EXPECT_EQ(ProfileText::Parse("[S]\n;x\n#y=1\n  ; z\nk=v\n").Section("S").lines, (Lines{"#y=1", "k=v"}));
}

TEST(ProfileReaderTest, SectionCallReturnsTrimmedLinesAndStringCallStripsOnePairOfQuotes) {
  const auto profile = ProfileText::Parse(
      "[section1]\r\nname1=val1\r\nname2=\r\n  name3  \r\n\r\n   \r\nname4 = val4\r\nq=\"quoted\"\r\n");
  EXPECT_EQ(profile.Section("section1").lines,
            (Lines{"name1=val1", "name2=", "name3", "name4=val4", "q=\"quoted\""}));
  // Every line is listed, lines with an empty name one after another too.
  EXPECT_EQ(ProfileText::Parse("[S]\r\n=1\r\n=2\r\nA=3\r\n").Section("S").lines, (Lines{"=1", "=2", "A=3"}));
  ExpectValues({
      {"[S]\nk=\"v\"\n", "S", "k", "v"},
      {"[S]\nk='v'\n", "S", "k", "v"},
      {"[S]\nk=  \"   v   \"  \n", "S", "k", "   v   "},
      {"[S]\nk=\"\"v\"\"\n", "S", "k", "\"v\""},  // one pair only
      {"[S]\nk=\"v'\n", "S", "k", "\"v'"},        // mismatched quotes stay
      {"[S]\nk=\"\n", "S", "k", "\""},
      {"[S]\nk=\"\"\n", "S", "k", ""},
      {"[S]\nname3\n", "S", "name3", ""},
  });
}

TEST(ProfileReaderTest, BuffersCutResultsAsWindowsDoes) {
  const auto profile = ProfileText::Parse("[section1]\r\nname1=val1\r\nname2=\r\nname3\r\nname4=val4\r\n");
  struct Case {
    std::size_t size;
    Lines lines;
    ProfileStatus status;
  };
  for (const auto& c : std::vector<Case>{
           {36, {"name1=val1", "name2=", "name3", "name4=val4"}, ProfileStatus::kOk},
           {35, {"name1=val1", "name2=", "name3", "name4=val"}, ProfileStatus::kTruncated},
           {24, {"name1=val1", "name2=", "name"}, ProfileStatus::kTruncated},
           {20, {"name1=val1", "name2="}, ProfileStatus::kTruncated},
           {2, {}, ProfileStatus::kTruncated},
       }) {
    const auto result = profile.Section("section1", c.size);
    EXPECT_EQ(result.lines, c.lines) << "buffer " << c.size;
    EXPECT_EQ(result.status, c.status) << "buffer " << c.size;
  }

  const std::string longValue(3000, 'x');
  const auto big = ProfileText::Parse("[S]\nk=" + longValue + "\nexact=" + std::string(2046, 'y') + "\n");
  const auto cut = big.Value("S", "k");
  EXPECT_EQ(cut.value, std::string(2046, 'x'));
  EXPECT_EQ(cut.status, ProfileStatus::kTruncated);
  EXPECT_EQ(big.Value("S", "exact").status, ProfileStatus::kOk);

  // Lines of 11 characters and a NUL: 682 fill 8184 of the 8190 characters, the 683rd keeps 6.
  std::string many = "[S]\n";
  for (int i = 0; i < 1000; ++i) many += "k" + std::to_string(1000 + i) + "=value\n";
  const auto lines = ProfileText::Parse(many).Section("S").lines;
  ASSERT_EQ(lines.size(), 683u);
  EXPECT_EQ(lines[681], "k1681=value");
  EXPECT_EQ(lines[682], "k1682=");
  // Counting is in ANSI characters: "å" is one of them, not two UTF-8 bytes.
  EXPECT_EQ(ProfileText::Parse("[S]\nk=\xE5\xE5\xE5\n").Value("S", "k", 3).value, "åå");
}

TEST(ProfileReaderTest, CrLfLoneCrAndLoneLfEndLines) {
  for (const char* file :
       {"[S]\r\na=1\r\nb=2\r\n", "[S]\ra=1\rb=2", "[S]\na=1\nb=2\n", "[S]\r\n\ra=1\n\r\nb=2\r"}) {
    EXPECT_EQ(ProfileText::Parse(file).Section("S").lines, (Lines{"a=1", "b=2"})) << file;
  }
}

TEST(ProfileReaderTest, Windows1252AndUtf16WithBomAreRead) {
  struct Case {
    std::string bytes;
    const char* expected;
  };
  const std::string utf16 = "\xFF\xFE" + base::EncodeUtf16Le("[Common]\r\nDatum=B2|Malmö\r\n");
  for (const auto& c : std::vector<Case>{
           {"[Common]\r\nDatum=B2|Malm\xF6\r\n", "B2|Malmö"},
           {utf16, "B2|Malmö"},
           // Windows does not know a UTF-8 BOM: it stays in front of the first line, spoiling it.
           {"\xEF\xBB\xBF[Common]\r\nDatum=B2\r\n", ""},
           {"\xEF\xBB\xBF\r\n[Common]\r\nDatum=B2\r\n", "B2"},
       }) {
    EXPECT_EQ(ProfileText::Parse(c.bytes).Value("Common", "Datum").value, c.expected);
  }
}

TEST(ProfileReaderTest, MissingFileOrSectionReadsAsEmpty) {
  testing::TempDir dir;
  const auto ini = dir.Write("Mall.ini", "[Sheet]\nA=1\n[Empty]\n");
  const std::string path = dir.path().string() + "\\MALL.INI";  // as the program joins it
  EXPECT_EQ(ReadIniSection("sheet", path).lines, Lines{"A=1"});
  EXPECT_EQ(ReadIniValue("SHEET", "a", path), "1");

  const auto missingFile = ReadIniSection("Sheet", dir.path().string() + "\\Saknas.ini");
  EXPECT_TRUE(missingFile.lines.empty());
  EXPECT_EQ(missingFile.status, ProfileStatus::kFileNotFound);
  EXPECT_EQ(ReadIniSection("Other", path).status, ProfileStatus::kSectionNotFound);
  EXPECT_TRUE(ReadIniSection("Empty", path).lines.empty());
  EXPECT_EQ(ReadIniValue("Sheet", "B", path), "");
  EXPECT_EQ(ReadIniValue("Sheet", "A", dir.path().string()), "");  // a folder is no profile file
}

}  // namespace
}  // namespace sw::templates
