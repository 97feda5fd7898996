#include "excel/package/package_engine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "excel/automation.h"
#include "excel/package/package.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

using testing::DataFile;
using testing::TempDir;

std::string TemplatePath(const char* name) {
  return DataFile(std::string("templates/") + name).string();
}

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

  // The sheets, their print areas and titles as readers find them: external_readers_test.
  Package saved = Saved(target);
  EXPECT_STREQ(saved.Xml("xl/workbook.xml")
                   .document_element()
                   .child("bookViews")
                   .child("workbookView")
                   .attribute("activeTab")
                   .value(),
               "4");
}

std::string Replace(std::string text, std::string_view from, std::string_view to) {
  const auto at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// The template's package with one part changed.
std::string TemplateWith(const char* name, const std::string& part, const std::string& from,
                         const std::string& to) {
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath(name)));
  package.SetBytes(part, Replace(package.Bytes(part), from, to));
  return package.ToZip();
}

// A file that is no zip archive at all is refused by its first bytes: HugeFiles.
TEST_F(PackageEngineTest, RefusesWhatIsNotAnOrdinaryWorkbookAndWritesNothing) {
  const std::string workbookRel =
      "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
  const std::string good = *base::ReadWholeFile(TemplatePath("title_block.xlsx"));
  struct Case {
    const char* what;
    std::string bytes;
    const char* says;
  };
  const std::vector<Case> cases = {
      {"strict",
       TemplateWith("title_block.xlsx", "_rels/.rels", workbookRel,
                    "http://purl.oclc.org/ooxml/officeDocument/relationships/officeDocument"),
       "Strikt"},
      {"document",
       TemplateWith("title_block.xlsx", "[Content_Types].xml", "spreadsheetml.sheet.main+xml",
                    "wordprocessingml.document.main+xml"),
       "inte en Excel-arbetsbok"},
      {"truncated", good.substr(0, good.size() / 2), "zip-arkivet"},
      {"bad workbook xml", TemplateWith("title_block.xlsx", "xl/workbook.xml", "</sheets>", "</sheet>"),
       "XML"},
      {"missing sheet",
       TemplateWith("title_block.xlsx", "xl/_rels/workbook.xml.rels", "sheet2.xml", "sheet9.xml"), "saknas"},
  };
  for (const auto& c : cases) {
    const auto path = temp_.Write(std::string(c.what) + ".xlsx", c.bytes);
    try {
      app_.Workbooks().Open(path.string());
      ADD_FAILURE() << c.what << " was opened";
    } catch (const base::NumberedError& error) {
      EXPECT_EQ(error.number(), kApplicationDefined) << c.what;
      EXPECT_NE(error.description().find(c.says), std::string::npos) << c.what << ": " << error.description();
    }
  }
  EXPECT_EQ(app_.Workbooks().Count(), 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(temp_.path()), {}),
            static_cast<std::ptrdiff_t>(cases.size()));
  // A workbook variable nothing was assigned to fails as an unset object does.
  try {
    Workbook().Save();
    ADD_FAILURE() << "an unset workbook was saved";
  } catch (const base::NumberedError& error) {
    EXPECT_EQ(error.number(), kObjectNotSet);
  }
}

std::string TemplateWithout(const char* name, const std::string& part) {
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath(name)));
  package.Remove(part);
  return package.ToZip();
}

std::string Utf16Le(std::string_view ascii) {
  std::string wide = "\xFF\xFE";
  for (const char c : ascii) {
    wide += c;
    wide += '\0';
  }
  return wide;
}

// A part that a relationship names but the archive lacks, a document type declaration (which could
// pull in other files) in any XML part, and a name whose extension promises another format: each is
// refused when the workbook is opened, naming the file and the part.
TEST_F(PackageEngineTest, RefusesDanglingPartsDocumentTypesAndMisleadingNames) {
  const std::string good = *base::ReadWholeFile(TemplatePath("title_block.xlsx"));
  const std::string doctype =
      "<!DOCTYPE styleSheet [<!ENTITY xxe SYSTEM \"file:///etc/passwd\">]><styleSheet ";
  const std::string utf16Rels = Utf16Le(
      "<?xml version=\"1.0\" encoding=\"UTF-16\"?><!DOCTYPE r [<!ENTITY e \"x\">]>"
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"/>");
  Package withUtf16 = Package::FromZip(good);
  withUtf16.SetBytes("xl/drawings/_rels/drawing1.xml.rels", utf16Rels);
  struct Case {
    std::string file;
    std::string bytes;
    std::string says;
  };
  const std::vector<Case> cases = {
      {"Stilar.xlsx", TemplateWithout("title_block.xlsx", "xl/styles.xml"),
       " är skadad: delen xl/styles.xml, som xl/workbook.xml hänvisar till, saknas."},
      {"Ritning.xlsx", TemplateWithout("title_block.xlsx", "xl/drawings/drawing1.xml"),
       " är skadad: delen xl/drawings/drawing1.xml, som xl/worksheets/sheet2.xml hänvisar till, saknas."},
      {"Texter.xlsx", TemplateWithout("title_block.xlsx", "xl/sharedStrings.xml"),
       " är skadad: delen xl/sharedStrings.xml, som xl/workbook.xml hänvisar till, saknas."},
      {"Bild.xlsx", TemplateWithout("title_block.xlsx", "xl/media/image1.png"),
       " är skadad: delen xl/media/image1.png, som xl/drawings/drawing1.xml hänvisar till, saknas."},
      {"Doctype.xlsx", TemplateWith("title_block.xlsx", "xl/styles.xml", "<styleSheet ", doctype),
       " kan inte användas: delen xl/styles.xml har en dokumenttypsdeklaration (DOCTYPE)"},
      {"Utf16.xlsx", withUtf16.ToZip(),
       " kan inte användas: delen xl/drawings/_rels/drawing1.xml.rels har en dokumenttypsdeklaration"},
      {"Binar.xlsb", good, " har ändelsen .xlsb (binär arbetsbok), som inte kan öppnas."},
      {"Makro.xlsx",
       TemplateWith("title_block.xlsx", "[Content_Types].xml",
                    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml",
                    "application/vnd.ms-excel.sheet.macroEnabled.main+xml"),
       " har ändelsen .xlsx men är en arbetsbok av typen .xlsm."},
  };
  for (const auto& c : cases) {
    const auto path = temp_.Write(c.file, c.bytes);
    try {
      app_.Workbooks().Open(path.string());
      ADD_FAILURE() << c.file << " was opened";
    } catch (const base::NumberedError& error) {
      EXPECT_EQ(error.number(), kApplicationDefined) << c.file;
      EXPECT_NE(error.description().find(path.string() + c.says), std::string::npos)
          << c.file << ": " << error.description();
    }
    EXPECT_EQ(WorkbookFileRefusal(path.string()).find(c.says) != std::string::npos, true) << c.file;
    EXPECT_EQ(base::ReadWholeFile(path), c.bytes) << c.file;
  }
  EXPECT_EQ(app_.Workbooks().Count(), 0);
  // The same workbook, whole and rightly named, opens.
  EXPECT_EQ(WorkbookFileRefusal(temp_.Write("Hel.xlsx", good).string()), "");
  EXPECT_EQ(WorkbookFileRefusal((temp_.path() / "Finns inte.xlsx").string()), "");
  // A part whose name the relationships write escaped ("%20" for a space) is there under its plain name.
  Package escaped = Package::FromZip(good);
  escaped.SetBytes("xl/media/bild 1.png", std::string(escaped.Bytes("xl/media/image1.png")));
  escaped.Remove("xl/media/image1.png");
  std::string rels = escaped.Bytes("xl/drawings/_rels/drawing1.xml.rels");
  rels.replace(rels.find("image1.png"), std::string("image1.png").size(), "bild%201.png");
  escaped.SetBytes("xl/drawings/_rels/drawing1.xml.rels", rels);
  EXPECT_EQ(WorkbookFileRefusal(temp_.Write("Mellanslag.xlsx", escaped.ToZip()).string()), "");
  // A picture that links to a cell: Excel writes the place as the hyperlink's target, which is no part.
  Package linked = Package::FromZip(good);
  rels = linked.Bytes("xl/drawings/_rels/drawing1.xml.rels");
  rels.insert(rels.find("</Relationships>"),
              "<Relationship Id=\"rId99\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/"
              "relationships/hyperlink\" Target=\"#Mall!A1\"/>");
  linked.SetBytes("xl/drawings/_rels/drawing1.xml.rels", rels);
  EXPECT_EQ(WorkbookFileRefusal(temp_.Write("Lank.xlsx", linked.ToZip()).string()), "");
}

// A row element that carries attributes of the template's own (here an outline level, and no style
// or height) stays when its cells are emptied: by a text the report leaves empty, and by the
// clearing and refilling of a page in one-workbook-per-page runs.
TEST_F(PackageEngineTest, EmptiedRowsKeepTheAttributesTheTemplateGaveThem) {
  const std::string plainRow =
      "<row r=\"1%\" customFormat=\"false\" ht=\"15\" hidden=\"false\" customHeight=\"false\" "
      "outlineLevel=\"0\" collapsed=\"false\"><c r=\"A1%\" s=\"5\"/>";
  const auto row = [&](int n) {
    std::string text = plainRow;
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%'))
      text.replace(at, 1, std::to_string(n));
    return text;
  };
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath("title_block.xlsx")));
  std::string sheet = package.Bytes("xl/worksheets/sheet2.xml");
  for (const int n : {0, 1}) {
    const std::string from = row(n);
    ASSERT_NE(sheet.find(from), std::string::npos);
    // The whole row: one cell with a text and no style, in a row of no style or height.
    const auto at = sheet.find(from);
    sheet.replace(at, sheet.find("</row>", at) - at,
                  "<row r=\"1" + std::to_string(n) + "\" outlineLevel=\"1\"><c r=\"A1" + std::to_string(n) +
                      "\" t=\"inlineStr\"><is><t>x</t></is></c>");
  }
  package.SetBytes("xl/worksheets/sheet2.xml", sheet);
  const auto path = temp_.Write("Disposition.xlsx", package.ToZip());

  Workbook book = app_.Workbooks().Open(path.string());
  Sheet page = book.Sheets().Item(2);
  page.Cells(10, 1).SetValue("");  // a field the report leaves empty
  page.Range(page.Cells(11, 1), page.Cells(11, 1)).Select();
  app_.Selection().ClearContents();  // a page cleared for the next one ...
  page.Cells(11, 1).SetValue("W2");  // ... and filled again
  pugi::xml_document saved;
  ASSERT_TRUE(saved.load_string(
      Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx")).Bytes("xl/worksheets/sheet2.xml").c_str()));
  const auto rows = saved.document_element().child("sheetData");
  const auto emptied = rows.find_child_by_attribute("row", "r", "10");
  ASSERT_TRUE(emptied);
  EXPECT_STREQ(emptied.attribute("outlineLevel").value(), "1");
  EXPECT_FALSE(emptied.find_child_by_attribute("c", "r", "A10"));
  const auto refilled = rows.find_child_by_attribute("row", "r", "11");
  ASSERT_TRUE(refilled);
  EXPECT_STREQ(refilled.attribute("outlineLevel").value(), "1");
  EXPECT_STREQ(refilled.child("c").child("is").child_value("t"), "W2");
}

TEST_F(PackageEngineTest, ReadOnlyWorkbookIsNotSavedOverItself) {
  const auto path = temp_.Write("mall.xlsx", *base::ReadWholeFile(TemplatePath("title_block.xlsx")));
  const std::string before = *base::ReadWholeFile(path);
  Workbook book = app_.Workbooks().Open(path.string(), true);
  book.Sheets().Item(1).Cells(1, 1).SetValue("ändrad");
  EXPECT_THROW(book.Save(), base::NumberedError);
  EXPECT_THROW(book.SaveAs(path.string()), base::NumberedError);
  EXPECT_THROW(book.SaveAs((temp_.path() / "saknad mapp" / "x.xlsx").string()), base::NumberedError);
  EXPECT_EQ(*base::ReadWholeFile(path), before);
  // Like Excel without a file format: any other name gets the workbook's own Open XML format.
  const auto asXls = temp_.path() / "Lista.xls";
  book.SaveAs(asXls.string());
  EXPECT_TRUE(base::ReadWholeFile(asXls)->starts_with("PK"));
  EXPECT_EQ(book.FullName(), asXls.string());
  book.Close(false);
  EXPECT_EQ(app_.Workbooks().Count(), 0);
}

TEST_F(PackageEngineTest, MacroProjectStaysInXlsmAndLeavesWithXlsx) {
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath("title_block.xlsm")));
  package.SetBytes("xl/vbaProject.bin", "VBA-projekt");
  package.SetBytes("xl/calcChain.xml",
                   "<calcChain xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"/>");
  auto& types = package.Xml("[Content_Types].xml");
  auto bin = types.document_element().prepend_child("Default");
  bin.append_attribute("Extension") = "bin";
  bin.append_attribute("ContentType") = "application/vnd.ms-office.vbaProject";
  package.SetBytes(
      "xl/_rels/workbook.xml.rels",
      Replace(package.Bytes("xl/_rels/workbook.xml.rels"), "</Relationships>",
              "<Relationship Id=\"rId90\" Type=\"http://schemas.microsoft.com/office/2006/relationships/"
              "vbaProject\" Target=\"vbaProject.bin\"/><Relationship Id=\"rId91\" Type=\"http://"
              "schemas.openxmlformats.org/officeDocument/2006/relationships/calcChain\" "
              "Target=\"calcChain.xml\"/></Relationships>"));
  const WorkbookId id = engine().OpenBytes(package.ToZip(), "mall.xlsm", false);

  Package macro = Package::FromZip(engine().SaveToBytes(id, ".xlsm"));
  EXPECT_EQ(macro.Bytes("xl/vbaProject.bin"), "VBA-projekt");
  EXPECT_NE(macro.Bytes("[Content_Types].xml").find("macroEnabled.main+xml"), std::string::npos);
  EXPECT_FALSE(macro.Has("xl/calcChain.xml"));
  EXPECT_EQ(macro.Bytes("xl/_rels/workbook.xml.rels").find("calcChain"), std::string::npos);
  EXPECT_NE(macro.Bytes("xl/workbook.xml").find("fullCalcOnLoad=\"1\""), std::string::npos);

  Package plain = Package::FromZip(engine().SaveToBytes(id, ".xlsx"));
  EXPECT_FALSE(plain.Has("xl/vbaProject.bin"));
  EXPECT_EQ(plain.Bytes("xl/_rels/workbook.xml.rels").find("vbaProject"), std::string::npos);
  EXPECT_EQ(plain.Bytes("[Content_Types].xml").find("vbaProject"), std::string::npos);
  EXPECT_NE(plain.Bytes("[Content_Types].xml").find("spreadsheetml.sheet.main+xml"), std::string::npos);
}

TEST_F(PackageEngineTest, CopiesGetTheirOwnCommentShapesAndTables) {
  Workbook book = app_.Workbooks().Open(TemplatePath("title_block_openpyxl.xlsx"));
  book.Sheets().Item(2).CopyAfter(book.Sheets().Item(2));
  book.Sheets().Item(2).CopyAfter(book.Sheets().Item(3));
  EXPECT_EQ(book.Sheets().Item(3).Name(), "Mall (2)");
  EXPECT_EQ(book.Sheets().Item(3).Cells(8, 9).Value(), "");
  Package saved = Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx"));
  // Unique idmap blocks and table ids the package linter checks: external_readers_test.
  std::vector<std::string> tableNames, shapeIds;
  for (const auto& part : saved.PartNames()) {
    const std::string& text = saved.Bytes(part);
    if (part.ends_with(".vml")) shapeIds.push_back(text.substr(text.find("_x0000_s"), 12));
    if (part.starts_with("xl/tables/")) {
      auto& table = saved.Xml(part);
      tableNames.push_back(std::string(table.document_element().attribute("displayName").value()) + "#" +
                           table.document_element().attribute("id").value());
    }
  }
  EXPECT_EQ(shapeIds, (std::vector<std::string>{"_x0000_s1026", "_x0000_s2050", "_x0000_s3074"}));
  EXPECT_EQ(tableNames, (std::vector<std::string>{"Kabeltyper#1", "Kabeltyper1#2", "Kabeltyper2#3"}));
  EXPECT_NE(saved.Bytes("xl/worksheets/sheet3.xml").find("Kabeltyper1[Antal]"), std::string::npos);
  EXPECT_EQ(saved.Bytes("xl/worksheets/sheet3.xml").find("tabSelected"), std::string::npos);
}

// A template that Excel saved with its chart sheet showing: the page a run adds is the one sheet
// selected, else Excel opens the page grouped with the chart sheet. Saved untouched, the chart sheet
// keeps the tab.
TEST_F(PackageEngineTest, ChartSheetGivesItsTabToThePageShown) {
  const std::string path = DataFile("excel_made/chartsheet01.xlsx").string();
  auto selectedParts = [](Package& saved) {
    std::vector<std::string> parts;
    for (const auto& part : saved.PartNames()) {
      if ((part.starts_with("xl/worksheets/") || part.starts_with("xl/chartsheets/")) &&
          part.ends_with(".xml") && saved.Bytes(part).find("tabSelected=\"1\"") != std::string::npos) {
        parts.push_back(part);
      }
    }
    return parts;
  };
  auto activeTab = [](Package& saved) {
    return std::string(saved.Xml("xl/workbook.xml")
                           .document_element()
                           .child("bookViews")
                           .child("workbookView")
                           .attribute("activeTab")
                           .value());
  };
  {
    Workbook book = app_.Workbooks().Open(path);
    Package saved = Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx"));
    EXPECT_EQ(selectedParts(saved), (std::vector<std::string>{"xl/chartsheets/sheet1.xml"}));
    EXPECT_EQ(activeTab(saved), "1");
    book.Close(false);
  }
  Workbook book = app_.Workbooks().Open(path);
  book.Sheets().Item(1).CopyAfter(book.Sheets().Item(2));
  EXPECT_EQ(book.Sheets().Item(3).Name(), "Sheet1 (2)");
  Package saved = Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx"));
  EXPECT_EQ(activeTab(saved), "2");
  const auto selected = selectedParts(saved);
  ASSERT_EQ(selected.size(), 1u);
  EXPECT_TRUE(selected[0].starts_with("xl/worksheets/")) << selected[0];
  EXPECT_NE(selected[0], "xl/worksheets/sheet1.xml");
}

TEST_F(PackageEngineTest, KeepsCellsInOrderAndSharedFormulasWhole) {
  app_.Workbooks().Open(TemplatePath("title_block_openpyxl.xlsx"));
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath("title_block_openpyxl.xlsx")));
  package.SetBytes(
      "xl/worksheets/sheet1.xml",
      "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>"
      "<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"B1\"><f t=\"shared\" ref=\"B1:B3\" si=\"0\">"
      "A1*2</f><v>2</v></c></row><row r=\"2\"><c r=\"B2\"><f t=\"shared\" si=\"0\"/></c></row>"
      "<row r=\"3\"><c r=\"B3\"><f t=\"shared\" si=\"0\"/></c></row></sheetData></worksheet>");
  const WorkbookId id = engine().OpenBytes(package.ToZip(), "f.xlsx", false);
  Sheet sheet = Workbook(&engine(), id).Sheets().Item(1);
  sheet.Cells(1, 2).SetValue("text");
  sheet.Cells(5, 3).SetValue("c");
  sheet.Cells(5, 1).SetValue("a");
  sheet.Cells(4, 2).SetValue("b");
  sheet.Cells(5, 2).SetValue(" b ");
  sheet.Range("A5:B5").ClearContents();
  sheet.Cells(2, 30).SetValue("\x01_x0041_");
  EXPECT_EQ(sheet.Cells(2, 30).Value(), "\x01_x0041_");
  const std::string xml =
      Package::FromZip(engine().SaveToBytes(id, ".xlsx")).Bytes("xl/worksheets/sheet1.xml");
  EXPECT_NE(xml.find("<dimension ref=\"A1:AD5\"/>"), std::string::npos) << xml;
  EXPECT_NE(xml.find("<row r=\"2\"><c r=\"B2\"><f>A2*2</f></c><c r=\"AD2\" "
                     "t=\"inlineStr\"><is><t>_x0001__x005F_x0041_</t>"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<row r=\"3\"><c r=\"B3\"><f>A3*2</f></c></row><row r=\"4\"><c r=\"B4\""),
            std::string::npos);
  EXPECT_NE(xml.find("<row r=\"5\"><c r=\"C5\" t=\"inlineStr\"><is><t>c</t></is></c></row>"),
            std::string::npos)
      << xml;
}

// Writes go on in the sheet written last from where the last one ended; whatever happens to the
// sheets in between (rows cleared away, other sheets written, the sheet parked and parsed again, a
// save) must leave every value where it was written.
TEST_F(PackageEngineTest, WritesBetweenOtherEditsLandWhereTheyWereWritten) {
  app_.Workbooks().Open(TemplatePath("title_block_openpyxl.xlsx"));
  Workbook book = app_.ActiveWorkbook();
  Sheets sheets = book.Sheets();
  for (int copy = 0; copy < 12; ++copy) sheets.Item(1).CopyAfter(sheets.Item(sheets.Count()));
  Sheet first = sheets.Item(1);
  first.Cells(40, 1).SetValue("a40");
  first.Cells(41, 1).SetValue("a41");
  first.Cells(42, 2).SetValue("b42");
  first.Range("A41:B42").ClearContents();  // rows 41 and 42 go, row 42 being the one written last
  first.Cells(42, 3).SetValue("c42");
  first.Cells(43, 1).SetValue("a43");
  first.Cells(41, 3).SetValue("c41");
  first.Cells(39, 1).SetValue("a39");
  for (int i = 2; i <= sheets.Count(); ++i) sheets.Item(i).Cells(50, 1).SetValue("s" + std::to_string(i));
  first.Cells(44, 1).SetValue("a44");  // the first sheet was parked meanwhile
  const std::string saved = temp_.Write("mellan.xlsx", "").string();
  book.SaveAs(saved);
  first.Cells(45, 1).SetValue("a45");  // after a save

  const std::vector<std::pair<std::string, std::string>> expected = {
      {"A39", "a39"}, {"A40", "a40"}, {"A41", ""},    {"B42", ""},   {"C41", "c41"},
      {"C42", "c42"}, {"A43", "a43"}, {"A44", "a44"}, {"A45", "a45"}};
  for (const auto& [address, text] : expected) EXPECT_EQ(first.Range(address).Value(), text) << address;
  for (int i = 2; i <= sheets.Count(); ++i)
    EXPECT_EQ(sheets.Item(i).Cells(50, 1).Value(), "s" + std::to_string(i));

  // The rows stay in order in the file.
  Package package = Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx"));
  int previous = 0;
  for (const auto row :
       package.Xml("xl/worksheets/sheet1.xml").document_element().child("sheetData").children("row")) {
    EXPECT_LT(previous, row.attribute("r").as_int());
    previous = row.attribute("r").as_int();
  }
}

// Formula cells of a package part as "address:type:value"; a formula cell keeps no result once
// cells were written.
std::vector<std::string> FormulaCellResults(Package& package, const std::string& part) {
  std::vector<std::string> results;
  for (const auto cell : package.Xml(part).select_nodes("//*[local-name()='c'][*[local-name()='f']]")) {
    const auto node = cell.node();
    results.push_back(std::string(node.attribute("r").value()) + ":" + node.attribute("t").value() + ":" +
                      node.child("v").text().get() + node.child("is").child("t").text().get());
  }
  return results;
}

TEST_F(PackageEngineTest, WrittenCellsDropCachedFormulaResultsOnEverySheet) {
  Workbook book = app_.Workbooks().Open(TemplatePath("title_block.xlsx"), false);
  const std::string target = (temp_.path() / "Lista.xlsx").string();
  book.SaveAs(target);
  {
    Package untouched = Saved(target);  // nothing written: the template's results still hold
    EXPECT_EQ(FormulaCellResults(untouched, "xl/worksheets/sheet2.xml"),
              (std::vector<std::string>{"B3:str:Ställverk 7", "I8:n:5"}));
  }
  book.Sheets().Item(1).Cells(1, 2).SetValue("Ställverk 9");
  for (int page = 1; page <= 10; ++page) {  // more pages than the engine keeps parsed
    book.Sheets().Item(2).CopyAfter(book.Sheets().Item(book.Sheets().Count()));
    book.Sheets().Item(book.Sheets().Count()).Cells(10, 1).SetValue("W" + std::to_string(page));
  }
  book.Save();

  Package saved = Saved(target);
  const auto sheetParts = saved.PartNamesWithPrefix("xl/worksheets/sheet");
  ASSERT_EQ(sheetParts.size(), 12u);
  for (const auto& part : sheetParts) {
    if (part == "xl/worksheets/sheet1.xml") continue;  // Common holds no formula
    EXPECT_EQ(FormulaCellResults(saved, part), (std::vector<std::string>{"B3::", "I8::"})) << part;
    EXPECT_NE(saved.Bytes(part).find("<f aca=\"false\">Common!B1</f>"), std::string::npos) << part;
  }
}

TEST_F(PackageEngineTest, DroppedResultsLeaveSharedAndArrayFormulasWhole) {
  Package package = Package::FromZip(*base::ReadWholeFile(TemplatePath("title_block_openpyxl.xlsx")));
  package.SetBytes(
      "xl/worksheets/sheet1.xml",
      "<x:worksheet xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><x:sheetData>"
      "<x:row r=\"1\"><x:c r=\"A1\"><x:v>1</x:v></x:c><x:c r=\"B1\"><x:f t=\"shared\" ref=\"B1:B2\" "
      "si=\"0\">A1*2</x:f><x:v>2</x:v></x:c><x:c r=\"C1\" t=\"s\"><x:f>Mall!A3</x:f><x:v>0</x:v></x:c>"
      "<x:c r=\"D1\" t=\"b\"><x:f>A1=1</x:f><x:v>1</x:v></x:c></x:row>"
      "<x:row r=\"2\"><x:c r=\"B2\"><x:f t=\"shared\" si=\"0\"/><x:v>0</x:v></x:c>"
      "<x:c r=\"C2\" t=\"e\"><x:f t=\"array\" ref=\"C2:C3\">1/A2:A3</x:f><x:v>#DIV/0!</x:v></x:c></x:row>"
      "</x:sheetData></x:worksheet>");
  const WorkbookId id = engine().OpenBytes(package.ToZip(), "f.xlsx", false);
  Workbook(&engine(), id).Sheets().Item(1).Cells(2, 1).SetValue("5");
  const std::string xml =
      Package::FromZip(engine().SaveToBytes(id, ".xlsx")).Bytes("xl/worksheets/sheet1.xml");
  EXPECT_NE(xml.find("<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"B1\"><f t=\"shared\" ref=\"B1:B2\" "
                     "si=\"0\">A1*2</f></c><c r=\"C1\"><f>Mall!A3</f></c><c r=\"D1\"><f>A1=1</f></c></row>"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<c r=\"B2\"><f t=\"shared\" si=\"0\"/></c><c r=\"C2\"><f t=\"array\" "
                     "ref=\"C2:C3\">1/A2:A3</f></c></row>"),
            std::string::npos)
      << xml;
}

TEST_F(PackageEngineTest, PageBreaksStopAtExcelsLimit) {
  Workbook book = app_.Workbooks().Open(TemplatePath("title_block.xlsx"));
  Sheet sheet = book.Sheets().Item(2);
  EXPECT_THROW(sheet.HPageBreaks().Add(sheet.Cells(1, 1)), base::NumberedError);
  for (int row = 2; row <= 1024; ++row) sheet.HPageBreaks().Add(sheet.Cells(row, 1));
  sheet.HPageBreaks().Add(sheet.Cells(500, 3));  // already there
  EXPECT_EQ(sheet.HPageBreaks().Count(), 1023);
  EXPECT_THROW(sheet.HPageBreaks().Add(sheet.Cells(2000, 1)), base::NumberedError);
  const std::string xml =
      Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx")).Bytes("xl/worksheets/sheet2.xml");
  EXPECT_NE(
      xml.find("<rowBreaks count=\"1023\" manualBreakCount=\"1023\"><brk id=\"1\" max=\"16383\" man=\"1\"/>"),
      std::string::npos);
}

TEST_F(PackageEngineTest, OpenTextKeepsTextColumnsAsWritten) {
  std::string line = "007\t\"citat\"\t\t";
  for (int column = 4; column <= 20; ++column) line += "x\t";
  line += "007\t\xC5sa\r\n";  // column 21 is general; the file is Windows-1252
  OpenTextOptions options;
  options.fileName = temp_.Write("Rapport 7.txt", line + "a\tb\r\n").string();
  for (int column = 1; column <= 20; ++column)
    options.fieldInfo.emplace_back(column, XlColumnDataType::xlTextFormat);
  Workbook book = app_.Workbooks().OpenText(options);
  Sheet sheet = app_.ActiveWorkbook().Sheets().Item(1);
  EXPECT_EQ(sheet.Name(), "Rapport 7");
  EXPECT_EQ(sheet.Cells(1, 1).Value(), "007");
  EXPECT_EQ(sheet.Cells(1, 2).Value(), "\"citat\"");
  EXPECT_EQ(sheet.Cells(1, 3).Value(), "");
  EXPECT_EQ(sheet.Cells(1, 21).Value(), "7");
  EXPECT_EQ(sheet.Cells(1, 22).Value(), "Åsa");
  EXPECT_EQ(sheet.Cells(2, 2).Value(), "b");
  sheet.Cells().Select();
  app_.Selection().EntireColumn().AutoFit();
  sheet.Range("A1").Select();
  EXPECT_THROW(book.Save(), base::NumberedError);
  book.SaveAs((temp_.path() / "Rapport.xlsx").string());
  EXPECT_EQ(
      app_.Workbooks().Open((temp_.path() / "Rapport.xlsx").string()).Sheets().Item(1).Cells(1, 22).Value(),
      "Åsa");
}

TEST_F(PackageEngineTest, OpenTextTakesEveryKindOfLineEnd) {
  OpenTextOptions options;
  // Empty lines are rows of their own whatever ends them.
  options.fileName = temp_.Write("Rader.txt", "a\n\nb\r\n\r\nc\rd\n").string();
  app_.Workbooks().OpenText(options);
  Sheet sheet = app_.ActiveWorkbook().Sheets().Item(1);
  int row = 0;
  for (const char* text : {"a", "", "b", "", "c", "d", ""})
    EXPECT_EQ(sheet.Cells(++row, 1).Value(), text) << row;
}

TEST_F(PackageEngineTest, OpenTextGivesGeneralColumnsExcelsNumbers) {
  OpenTextOptions options;
  options.fileName = temp_.Write("Tal.txt", "007\t5%\t12.5%\t1E3\tx7\r\n").string();
  options.fieldInfo.emplace_back(5, XlColumnDataType::xlTextFormat);
  Workbook book = app_.Workbooks().OpenText(options);
  const std::string xml =
      Package::FromZip(engine().SaveToBytes(book.id(), ".xlsx")).Bytes("xl/worksheets/sheet1.xml");
  EXPECT_NE(xml.find(R"(<c r="A1"><v>7</v></c>)"), std::string::npos) << xml;
  EXPECT_NE(xml.find(R"(<c r="B1" s="2"><v>0.05</v></c>)"), std::string::npos) << xml;
  EXPECT_NE(xml.find(R"(<c r="C1" s="3"><v>0.125</v></c>)"), std::string::npos) << xml;
  EXPECT_NE(xml.find(R"(<c r="D1" s="4"><v>1000</v></c>)"), std::string::npos) << xml;
  EXPECT_NE(xml.find(R"(<c r="E1" s="1" t="inlineStr"><is><t>x7</t></is></c>)"), std::string::npos) << xml;
}

}  // namespace
}  // namespace sw::excel
