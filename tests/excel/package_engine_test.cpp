#include "excel/package/package_engine.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <memory>

#include "base/file_io.h"
#include "excel/automation.h"
#include "excel/package/package.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

using testing::DataFile;
using testing::TempDir;

std::string TemplatePath(const char* name) { return DataFile(std::string("templates/") + name).string(); }

class PackageEngineTest : public ::testing::Test {
 protected:
  PackageEngineTest() : app_(std::make_unique<PackageEngine>()) {}
  PackageEngine& engine() { return static_cast<PackageEngine&>(app_.engine()); }
  // The saved package, reopened part by part.
  Package Saved(const std::string& path) { return Package::FromZip(*base::ReadWholeFile(path)); }

  TempDir temp_;
  Application app_;
};

TEST_F(PackageEngineTest, GeneratesPagesLikeExcel) {
  Workbook book = app_.Workbooks().Open(TemplatePath("title_block.xlsx"), false);
  Sheets sheets = book.Sheets();
  ASSERT_EQ(sheets.Count(), 2);
  EXPECT_EQ(sheets.Item(1).Name(), "Common");
  EXPECT_EQ(sheets.Item(2).Name(), "Mall");
  const std::string target = (temp_.path() / "Lista.xlsx").string();
  book.SaveAs(target);
  for (int page = 1; page <= 3; ++page) {
    sheets.Item(2).Select();
    sheets.Item(2).CopyAfter(sheets.Item(sheets.Count()));
    EXPECT_EQ(sheets.Item(sheets.Count()).Name(), "Mall (2)");
    sheets.Item(sheets.Count()).Select();
    sheets.Item(sheets.Count()).SetName(std::to_string(page));
    Sheet current = book.Worksheets().Item(sheets.Count());
    current.Cells(2, 2).SetValue("+A1");
    current.Cells(1, 6).SetValue("00" + std::to_string(page));
    current.Cells(10, 1).SetValue("W" + std::to_string(page));
  }
  Sheet last = sheets.Item(5);
  EXPECT_EQ(last.Cells(1, 6).Value(), "003");
  EXPECT_EQ(last.Cells(3, 1).Value(), "Projekt");  // a shared string of the template
  last.Rows("20:20").Select();
  last.HPageBreaks().Add(app_.ActiveCell());
  last.HPageBreaks().Add(last.Cells(30, 1));
  EXPECT_EQ(last.HPageBreaks().Count(), 2);
  last.Rows("11:11").Select();
  app_.Selection().Copy();
  last.Rows("12:14").Select();
  app_.Selection().PasteSpecial(XlPasteType::xlPasteFormats);
  last.Cells(15, 1).Select();
  app_.Selection().Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  app_.SetCutCopyMode(false);
  book.Save();

  Package saved = Saved(target);
  auto& workbook = saved.Xml("xl/workbook.xml");
  std::vector<std::string> names;
  for (auto sheet : workbook.document_element().child("sheets").children("sheet")) {
    names.push_back(sheet.attribute("name").value());
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Common", "Mall", "1", "2", "3"}));
  std::vector<std::string> definedNames;
  for (auto name : workbook.document_element().child("definedNames").children("definedName")) {
    definedNames.push_back(std::string(name.attribute("name").value()) + "@" + name.attribute("localSheetId").value() +
                           "=" + name.text().get());
  }
  EXPECT_EQ(definedNames, (std::vector<std::string>{
                              "_xlnm.Print_Area@1=Mall!$A$1:$F$40", "_xlnm.Print_Area@2='1'!$A$1:$F$40",
                              "_xlnm.Print_Area@3='2'!$A$1:$F$40", "_xlnm.Print_Area@4='3'!$A$1:$F$40",
                              "_xlnm.Print_Titles@1=Mall!1:9", "_xlnm.Print_Titles@2='1'!1:9",
                              "_xlnm.Print_Titles@3='2'!1:9", "_xlnm.Print_Titles@4='3'!1:9"}));
  EXPECT_STREQ(workbook.document_element().child("bookViews").child("workbookView").attribute("activeTab").value(),
               "4");
}

}  // namespace
}  // namespace sw::excel
