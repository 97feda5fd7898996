// Arbitrary bytes opened as a workbook package, then the edits generation makes: nothing may crash
// or hang, whatever the file holds.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "excel/automation.h"
#include "excel/package/package_engine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace sw::excel;
  PackageEngine engine;
  try {
    const WorkbookId id =
        engine.OpenBytes(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.xlsm", false);
    Workbook book(&engine, id);
    Sheets sheets = book.Sheets();
    const int count = sheets.Count();
    Sheet first = sheets.Item(1);
    try {
      first.CopyAfter(sheets.Item(count));
      Sheet copy = sheets.Item(count + 1);
      copy.Select();
      copy.SetName("1");
      copy.Cells(3, 2).SetValue("text");
      (void)copy.Cells(1, 1).Value();
      copy.HPageBreaks().Add(copy.Cells(5, 1));
      copy.Rows("2:2").Select();
      engine.Copy(engine.Selection());
      engine.PasteSpecial(copy.Rows("3:4").ref(), XlPasteType::xlPasteFormats);
      copy.Cells(4, 2).Borders(XlBordersIndex::xlEdgeBottom).SetWeight(XlBorderWeight::xlMedium);
    } catch (const sw::base::NumberedError&) {
    }
    (void)engine.SaveToBytes(id, ".xlsx");
    (void)engine.SaveToBytes(id, ".xlsm");
  } catch (const sw::base::NumberedError&) {
  }
  return 0;
}
