// The template check opens the workbook with the package engine as a run would, and names the page
// layouts a run writes as they are: every refusal and warning in the words the user reads.
#include "generate/template_check.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/notice.h"
#include "base/windows_path.h"
#include "excel/package/zip_archive.h"
#include "temp_dir.h"

namespace sw::generate {
namespace {

// The good template with `part`'s first `from` replaced by `to`, or without `part` when `from` is empty.
std::string TemplateWith(const std::string& part, const std::string& from = {}, const std::string& to = {}) {
  const auto good = *base::ReadWholeFile(testing::DataFile("templates/title_block.xlsx"));
  auto entries = excel::ReadZipArchive(good, {});
  std::vector<excel::ZipSource> sources;
  for (auto& entry : entries) {
    if (entry.name == part && from.empty()) continue;
    if (entry.name == part) entry.bytes.replace(entry.bytes.find(from), from.size(), to);
    sources.push_back({entry.name, entry.bytes});
  }
  return excel::WriteZipArchive(sources);
}

templates::TemplateDefinition Layout(int startRow, int endRow, const std::string& pageSheet = "Mall") {
  templates::TemplateDefinition definition;
  definition.CommonSheetName = "Common";
  definition.TemplateSheetName = pageSheet;
  definition.IniPath = "C:\\Mallar\\Mall.ini";
  definition.StartRow = static_cast<std::int16_t>(startRow);
  definition.EndRow = static_cast<std::int16_t>(endRow);
  return definition;
}

TEST(TemplateCheckTest, WorkbooksARunCouldNotUseAreToldInItsWords) {
  const std::string good = TemplateWith("");
  const auto withFirstRow = [](const std::string& number) {  // the page sheet's first row is row 1
    return TemplateWith("xl/worksheets/sheet2.xml", "<row r=\"1\"", "<row r=\"" + number + "\"");
  };
  struct Case {
    std::string file;
    std::string bytes;
    std::string pageSheet;
    std::vector<std::string> told;  // title: text; "<path>" stands for the workbook's path
  };
  const std::vector<Case> cases = {
      {"Trunkerad.xlsx", good.substr(0, good.size() / 2), "Mall",
       {"Filfel: Filen är inte en giltig arbetsbok (zip-arkivet är skadat: det är inget zip-arkiv)."}},
      {"Gammal.xls", std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(600, '\0'), "Mall",
       {"Filfel: Filen är en arbetsbok i det äldre Excel-formatet (.xls) eller är krypterad och kan inte "
        "öppnas. Spara den som .xlsx eller .xlsm."}},
      {"Sidor.xlsx", good, "Sidor",
       {"Sheetwright: Fliken 'Sidor' saknas i excelfilen",
        "Sheetwright: Redigera mallfilen så att den uppfyller kraven."}},
      {"Rader.xlsx", withFirstRow("2147483647"), "Mall",
       {"Filfel: Kalkylbladet har en rad utanför Excels blad (rad 2147483647)."}},
      {"Doctype.xlsx",
       TemplateWith("xl/sharedStrings.xml", "<sst ",
                    "<!DOCTYPE sst [<!ENTITY xxe SYSTEM \"file:///etc/passwd\">]><sst "),
       "Mall",
       {"Filfel: Arbetsboken <path> kan inte användas: delen xl/sharedStrings.xml har en "
        "dokumenttypsdeklaration (DOCTYPE), som kan hämta in andra filer och som en arbetsbok från Excel "
        "aldrig har. Spara om arbetsboken i Excel."}},
      {"Mall.xlsb", good, "Mall",
       {"Filfel: Filen <path> har ändelsen .xlsb (binär arbetsbok), som inte kan öppnas. Spara den som "
        ".xlsx eller .xlsm."}},
      // The last row Excel has is a row like any other.
      {"Sista.xlsx", withFirstRow("1048576"), "Mall", {}},
  };
  testing::TempDir folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string path = folder.Write(c.file, c.bytes).string();
    const auto opened = OpenTemplateAsGenerationWould(path, Layout(10, 40, c.pageSheet));
    std::vector<std::string> told;
    for (const auto& notice : opened.notices) {
      told.push_back((notice.title.empty() ? base::kApplicationTitle : notice.title) + ": " + notice.text);
    }
    std::vector<std::string> expected = c.told;
    for (auto& text : expected) {
      if (const auto at = text.find("<path>"); at != std::string::npos) text.replace(at, 6, path);
    }
    EXPECT_EQ(told, expected);
    EXPECT_EQ(static_cast<bool>(opened), c.told.empty());
    EXPECT_EQ(base::ReadWholeFile(path), c.bytes);
  }
}

TEST(TemplateCheckTest, PageLayoutsARunTakesAsTheyAreAreWarnedOfAndOneThatWritesNothingRefused) {
  EXPECT_EQ(PageLayoutWarnings(Layout(10, 40)), std::vector<std::string>{});
  EXPECT_EQ(PageLayoutWarnings(Layout(10, 9)),
            std::vector<std::string>{"Varning: Sidlängden är 0 eller mindre (STARTROW 10, ENDROW 9)."});
  EXPECT_EQ(RowsAboveTheSheetRefusal(Layout(0, 40)), "");
  EXPECT_EQ(RowsAboveTheSheetRefusal(Layout(-5, -1)),
            "Sidans rader ligger ovanför rad 1 (STARTROW -5, ENDROW -1), så ingen rad ur rapporten skulle "
            "skrivas.\rRedigera ini-filen " +
                base::DisplayPath("C:\\Mallar\\Mall.ini") + ".");
}

}  // namespace
}  // namespace sw::generate
