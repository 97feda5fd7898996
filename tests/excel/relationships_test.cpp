#include "excel/package/relationships.h"

#include <gtest/gtest.h>

#include <string>

#include "excel/package/package.h"

namespace sw::excel {
namespace {

constexpr char kWorksheetType[] =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet";

// New ids follow the highest number in the part, also once the part was parked and parsed again, and
// after a removal, as counting through the part would give them.
TEST(Relationships, NewIdsFollowTheHighestNumberThroughRemovalsAndParking) {
  Package package;
  package.SetBytes(
      "xl/_rels/workbook.xml.rels",
      "<?xml version=\"1.0\"?><Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/"
      "relationships\"><Relationship Id=\"rId7\" Type=\"t\" Target=\"a.xml\"/>"
      "<Relationship Id=\"x\" Type=\"t\" Target=\"b.xml\"/></Relationships>");
  EXPECT_EQ(AddRelationship(package, "xl/workbook.xml", kWorksheetType, "xl/worksheets/sheet1.xml"), "rId8");
  EXPECT_EQ(AddRelationship(package, "xl/workbook.xml", kWorksheetType, "xl/worksheets/sheet2.xml"), "rId9");
  RemoveRelationship(package, "xl/workbook.xml", "rId9");
  EXPECT_EQ(AddRelationship(package, "xl/workbook.xml", kWorksheetType, "xl/worksheets/sheet3.xml"), "rId9");
  package.Park("xl/_rels/workbook.xml.rels");
  EXPECT_EQ(AddRelationship(package, "xl/workbook.xml", kWorksheetType, "xl/worksheets/sheet4.xml"), "rId10");
  // A part set anew is counted anew.
  package.SetBytes("xl/_rels/workbook.xml.rels",
                   "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                   "<Relationship Id=\"rId2\" Type=\"t\" Target=\"a.xml\"/></Relationships>");
  EXPECT_EQ(AddRelationship(package, "xl/workbook.xml", kWorksheetType, "xl/worksheets/sheet5.xml"), "rId3");

  const auto relationships = ReadRelationships(package, "xl/workbook.xml");
  ASSERT_EQ(relationships.size(), 2u);
  EXPECT_EQ(relationships.back().id, "rId3");
  EXPECT_EQ(relationships.back().partName, "xl/worksheets/sheet5.xml");
}

}  // namespace
}  // namespace sw::excel
