// A new workbook made from a table of texts, as Excel makes one when it opens a text file.
#include <algorithm>

#include "excel/cell_address.h"
#include "excel/package/cell_text.h"
#include "excel/package/general_number.h"
#include "excel/package/styles.h"
#include "excel/package/workbook_document.h"

namespace sw::excel {

namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
// The cell formats an imported sheet uses beyond General (0) and text (1): percent without and
// with decimals (2, 3) and scientific (4), as StyleOf hands them out.
constexpr std::initializer_list<int> kImportNumberFormats = {9, 10, 11};
constexpr int kTextStyle = 1;

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

// The cell format a General cell gets for the number format Excel gives what it read.
int StyleOf(BuiltInNumberFormat format) {
  switch (format) {
    case BuiltInNumberFormat::kPercent:
      return 2;
    case BuiltInNumberFormat::kPercentDecimals:
      return 3;
    case BuiltInNumberFormat::kScientific:
      return 4;
    case BuiltInNumberFormat::kGeneral:
      break;
  }
  return 0;
}

}  // namespace

std::unique_ptr<WorkbookDocument> WorkbookDocument::FromTable(
    std::string_view sheetName, const std::vector<std::vector<std::string>>& rows,
    const std::vector<bool>& textColumns, const std::function<void(int, int)>& rowsWritten) {
  std::unique_ptr<WorkbookDocument> document(new WorkbookDocument());
  Package& package = document->package_;
  const std::string name = Escaped(sheetName);
  package.SetBytes(
      "[Content_Types].xml",
      std::string(kDeclaration) +
          R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
          R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
          R"(<Default Extension="xml" ContentType="application/xml"/>)"
          R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>)"
          R"(<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
          R"(<Override PartName="/xl/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"/>)"
          R"(<Override PartName="/docProps/core.xml" ContentType="application/vnd.openxmlformats-package.core-properties+xml"/>)"
          R"(<Override PartName="/docProps/app.xml" ContentType="application/vnd.openxmlformats-officedocument.extended-properties+xml"/>)"
          R"(</Types>)");
  package.SetBytes(
      "_rels/.rels",
      std::string(kDeclaration) +
          R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
          R"(<Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties" Target="docProps/app.xml"/>)"
          R"(<Relationship Id="rId2" Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties" Target="docProps/core.xml"/>)"
          R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/>)"
          R"(</Relationships>)");
  package.SetBytes(
      "docProps/app.xml",
      std::string(kDeclaration) +
          R"(<Properties xmlns="http://schemas.openxmlformats.org/officeDocument/2006/extended-properties" )"
          R"(xmlns:vt="http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes">)"
          R"(<Application>Microsoft Excel</Application><DocSecurity>0</DocSecurity><ScaleCrop>false</ScaleCrop>)"
          R"(<HeadingPairs><vt:vector size="2" baseType="variant"><vt:variant><vt:lpstr>Worksheets</vt:lpstr>)"
          R"(</vt:variant><vt:variant><vt:i4>1</vt:i4></vt:variant></vt:vector></HeadingPairs>)"
          R"(<TitlesOfParts><vt:vector size="1" baseType="lpstr"><vt:lpstr>)" +
          name +
          R"(</vt:lpstr></vt:vector></TitlesOfParts><LinksUpToDate>false</LinksUpToDate>)"
          R"(<SharedDoc>false</SharedDoc><HyperlinksChanged>false</HyperlinksChanged><AppVersion>16.0300</AppVersion>)"
          R"(</Properties>)");
  package.SetBytes(
      "docProps/core.xml",
      std::string(kDeclaration) +
          R"(<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" )"
          R"(xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/" )"
          R"(xmlns:dcmitype="http://purl.org/dc/dcmitype/" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"/>)");
  package.SetBytes(
      "xl/workbook.xml",
      std::string(kDeclaration) +
          R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
          R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
          R"(<workbookPr defaultThemeVersion="164011"/><bookViews><workbookView xWindow="0" yWindow="0" )"
          R"(windowWidth="28800" windowHeight="12300"/></bookViews><sheets><sheet name=")" +
          name + R"(" sheetId="1" r:id="rId1"/></sheets><calcPr calcId="191029"/></workbook>)");
  package.SetBytes(
      "xl/_rels/workbook.xml.rels",
      std::string(kDeclaration) +
          R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
          R"(<Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/>)"
          R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/>)"
          R"(</Relationships>)");
  package.SetBytes("xl/styles.xml", NewWorkbookStyles(kImportNumberFormats));

  auto sheet = std::make_unique<pugi::xml_document>();
  auto root = sheet->append_child("worksheet");
  root.append_attribute("xmlns") = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  root.append_attribute("xmlns:r") = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  root.append_child("dimension").append_attribute("ref") = "A1";
  auto view = root.append_child("sheetViews").append_child("sheetView");
  view.append_attribute("tabSelected") = 1;
  view.append_attribute("workbookViewId") = 0;
  root.append_child("sheetFormatPr").append_attribute("defaultRowHeight") = "15";
  auto data = root.append_child("sheetData");
  const int rowCount = static_cast<int>(rows.size());
  const int reportEvery = std::max(rowCount / 100, 1);
  if (rowsWritten) rowsWritten(0, rowCount);
  int rowNumber = 0;
  for (const auto& fields : rows) {
    if (rowsWritten && rowNumber > 0 && rowNumber % reportEvery == 0) rowsWritten(rowNumber, rowCount);
    ++rowNumber;
    pugi::xml_node row;
    for (std::size_t k = 0; k < fields.size(); ++k) {
      if (fields[k].empty()) continue;
      if (!row) {
        row = data.append_child("row");
        row.append_attribute("r") = rowNumber;
      }
      const int column = static_cast<int>(k) + 1;
      auto cell = row.append_child("c");
      cell.append_attribute("r") = FormatCellAddress(rowNumber, column).c_str();
      const bool text = k < textColumns.size() && textColumns[k];
      if (text) cell.append_attribute("s") = kTextStyle;
      if (const auto number = text ? std::nullopt : ReadGeneralNumber(fields[k])) {
        if (const int style = StyleOf(number->format)) cell.append_attribute("s") = style;
        cell.append_child("v").text().set(number->value.c_str());
        continue;
      }
      cell.append_attribute("t") = "inlineStr";
      auto t = cell.append_child("is").append_child("t");
      t.text().set(EncodeCellText(fields[k]).c_str());
      if (fields[k].front() == ' ' || fields[k].back() == ' ') t.append_attribute("xml:space") = "preserve";
    }
  }
  if (rowsWritten) rowsWritten(rowCount, rowCount);
  auto margins = root.append_child("pageMargins");
  for (const auto& [key, value] : {std::pair{"left", "0.7"},
                                   {"right", "0.7"},
                                   {"top", "0.75"},
                                   {"bottom", "0.75"},
                                   {"header", "0.3"},
                                   {"footer", "0.3"}}) {
    margins.append_attribute(key) = value;
  }
  package.SetXml("xl/worksheets/sheet1.xml", std::move(sheet));
  document->Load({});
  document->dirtySheets_.push_back("xl/worksheets/sheet1.xml");
  return document;
}

}  // namespace sw::excel
