// Copies of a page template whose formulas and names refer to its own sheet, and the format edits of
// a finished page, checked in the saved package's XML.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "excel/automation.h"
#include "excel/package/package.h"
#include "excel/package/package_engine.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

std::string Replace(std::string text, std::string_view from, std::string_view to) {
  text.replace(text.find(from), from.size(), to);
  return text;
}

std::size_t Count(std::string_view text, std::string_view needle) {
  std::size_t count = 0;
  for (auto at = text.find(needle); at != std::string_view::npos; at = text.find(needle, at + 1)) ++count;
  return count;
}

// The texts of a sheet part's formulas, cell and validation formulas alike, as "element:text".
std::vector<std::string> Formulas(Package& package, const std::string& part) {
  std::vector<std::string> formulas;
  for (const auto node : package.Xml(part).select_nodes("//*[local-name()='f' or local-name()='formula1' or "
                                                        "local-name()='formula']")) {
    formulas.push_back(std::string(node.node().name()) + ":" + node.node().text().get());
  }
  return formulas;
}

bool Has(const std::vector<std::string>& texts, const std::string& wanted) {
  return std::find(texts.begin(), texts.end(), wanted) != texts.end();
}

class PageCopyTest : public ::testing::Test {
 protected:
  // The template with a print area on its third sheet, "Sida".
  PageCopyTest() : app_(std::make_unique<PackageEngine>()) {
    Package package =
        Package::FromZip(*base::ReadWholeFile(testing::DataFile("templates/self_references.xlsx")));
    package.SetBytes("xl/workbook.xml",
                     Replace(package.Bytes("xl/workbook.xml"), "</definedNames>",
                             "<definedName name=\"_xlnm.Print_Area\" localSheetId=\"2\">Sida!$A$1:$B$2"
                             "</definedName></definedNames>"));
    id_ = engine().OpenBytes(package.ToZip(), "Mall.xlsx", false);
  }
  PackageEngine& engine() { return static_cast<PackageEngine&>(app_.engine()); }
  Workbook book() { return Workbook(&engine(), id_); }
  Package Saved() { return Package::FromZip(engine().SaveToBytes(id_, ".xlsx")); }
  static std::vector<std::string> DefinedNames(Package& package) {
    std::vector<std::string> names;
    for (const auto name :
         package.Xml("xl/workbook.xml").document_element().child("definedNames").children("definedName")) {
      names.push_back(std::string(name.attribute("name").value()) + "@" +
                      name.attribute("localSheetId").value() + "=" + name.text().get());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  Application app_;
  WorkbookId id_ = 0;
};

TEST_F(PageCopyTest, CopyRefersToItselfAndRenamesFollowEverywhere) {
  // Copied in front of "Sida", whose name moves up a place.
  book().Sheets().Item(2).CopyAfter(book().Sheets().Item(1));
  EXPECT_EQ(book().Sheets().Item(2).Name(), "Mall 1 (2)");
  book().Sheets().Item(2).SetName("7");
  book().Sheets().Item(3).SetName("Mall");

  // What each formula of a renamed copy refers to, readers check: external_readers_test.
  Package saved = Saved();
  EXPECT_EQ(DefinedNames(saved), (std::vector<std::string>{"Sidnr@1='7'!$F$1", "Sidnr@=Mall!$F$1",
                                                           "_xlnm.Print_Area@3=Sida!$A$1:$B$2"}));
  EXPECT_TRUE(Has(Formulas(saved, "xl/worksheets/sheet4.xml"), "f:'7'!G2"));
  // The template renamed in place: every sheet's formulas and validations follow it.
  for (const char* part : {"xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml"}) {
    const auto formulas = Formulas(saved, part);
    EXPECT_TRUE(Has(formulas, "f:Mall!G2")) << part;
    EXPECT_TRUE(Has(formulas, "formula1:Mall!$G$2:$G$3")) << part;
  }
}

TEST_F(PageCopyTest, CopyOfACopyTakesTheNamesOfItsSource) {
  book().Sheets().Item(2).CopyAfter(book().Sheets().Item(3));
  book().Sheets().Item(4).CopyAfter(book().Sheets().Item(4));  // a copy of a copy
  Package saved = Saved();
  EXPECT_EQ(DefinedNames(saved),
            (std::vector<std::string>{"Sidnr@3='Mall 1 (2)'!$F$1", "Sidnr@4='Mall 1 (3)'!$F$1",
                                      "Sidnr@='Mall 1'!$F$1", "_xlnm.Print_Area@2=Sida!$A$1:$B$2"}));
}

TEST_F(PageCopyTest, SheetsOwnNameWinsOverTheWorkbookNameOfTheSameName) {
  Package package =
      Package::FromZip(*base::ReadWholeFile(testing::DataFile("templates/self_references.xlsx")));
  package.SetBytes("xl/workbook.xml", Replace(package.Bytes("xl/workbook.xml"), "</definedNames>",
                                              "<definedName name=\"Sidnr\" localSheetId=\"1\">'Mall 1'!$F$2"
                                              "</definedName></definedNames>"));
  id_ = engine().OpenBytes(package.ToZip(), "Egen.xlsx", false);
  book().Sheets().Item(2).CopyAfter(book().Sheets().Item(3));
  Package saved = Saved();
  EXPECT_EQ(DefinedNames(saved),
            (std::vector<std::string>{"Sidnr@1='Mall 1'!$F$2", "Sidnr@3='Mall 1 (2)'!$F$2",
                                      "Sidnr@='Mall 1'!$F$1"}));
}

TEST_F(PageCopyTest, SelectingAgainReplacesThePanesSelection) {
  Sheet page = book().Sheets().Item(2);
  page.Select();
  page.Cells(5, 3).Select();
  page.Range("B7:C9").Select();
  const std::string xml = Saved().Bytes("xl/worksheets/sheet2.xml");
  EXPECT_EQ(Count(xml, "<selection"), 1u) << xml;
  EXPECT_NE(xml.find("activeCell=\"B7\" sqref=\"B7:C9\""), std::string::npos) << xml;
}

TEST_F(PageCopyTest, LineUnderWholeRowsFormatsTheRowAndItsCells) {
  Sheet page = book().Sheets().Item(2);
  page.Rows("12:13").Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
  page.Rows("30").Borders(XlBordersIndex::xlEdgeTop).SetWeight(XlBorderWeight::xlThin);
  Package saved = Saved();
  const auto sheet = saved.Xml("xl/worksheets/sheet2.xml").document_element().child("sheetData");
  const auto row = [&](int r) {
    return sheet.find_child_by_attribute("row", "r", std::to_string(r).c_str());
  };
  EXPECT_FALSE(row(12).attribute("customFormat").as_bool());
  EXPECT_EQ(row(12).child("c").attribute("s").as_int(), 1);
  EXPECT_TRUE(row(13).attribute("customFormat").as_bool());
  const int lined = row(13).child("c").attribute("s").as_int();
  EXPECT_NE(lined, 1);
  EXPECT_NE(row(13).attribute("s").as_int(), 0);
  EXPECT_EQ(std::distance(row(13).children("c").begin(), row(13).children("c").end()), 1);
  EXPECT_TRUE(row(30).attribute("customFormat").as_bool());
  const auto formats = saved.Xml("xl/styles.xml").document_element().child("cellXfs");
  const auto xf = std::next(formats.children("xf").begin(), lined);
  const auto border =
      std::next(saved.Xml("xl/styles.xml").document_element().child("borders").children("border").begin(),
                xf->attribute("borderId").as_int());
  EXPECT_STREQ(border->child("bottom").attribute("style").value(), "medium");
  EXPECT_STREQ(border->child("left").attribute("style").value(), "thin");  // the cell's box stays
}

TEST_F(PageCopyTest, FormatsPastedOnAnotherSheetBringTheirConditionalFormatAndHeight) {
  book().Sheets().Item(2).Rows("11:11").Copy();
  book().Sheets().Item(3).Cells(20, 1).PasteSpecial(XlPasteType::xlPasteFormats);
  Package saved = Saved();
  const auto sheet = saved.Xml("xl/worksheets/sheet3.xml").document_element();
  const auto format = sheet.child("conditionalFormatting");
  EXPECT_STREQ(format.attribute("sqref").value(), "A20:F20");
  EXPECT_STREQ(format.child("cfRule").child("formula").text().get(), "$B20=\"X\"");
  EXPECT_FALSE(format.next_sibling("conditionalFormatting"));
  const auto row = sheet.child("sheetData").find_child_by_attribute("row", "r", "20");
  EXPECT_STREQ(row.attribute("ht").value(), "24");
  EXPECT_TRUE(row.attribute("customHeight").as_bool());
}

}  // namespace
}  // namespace sw::excel
