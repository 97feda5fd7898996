// The writer-speed floor for the workbook benchmark: a plain writer library producing a workbook
// of the same shape (332 sheets, the same number of text cells) from nothing.
// Usage: xlsxwriter_reference OUTPUT.xlsx [PAGES DATA_CELLS]
#include <xlsxwriter.h>

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
  if (argc != 2 && argc != 4) {
    std::fprintf(stderr, "usage: xlsxwriter_reference OUTPUT.xlsx [PAGES DATA_CELLS]\n");
    return 2;
  }
  lxw_workbook* workbook = workbook_new(argv[1]);
  lxw_worksheet* common = workbook_add_worksheet(workbook, "Common");
  worksheet_write_string(common, 0, 1, "Ställverk 7", nullptr);
  workbook_add_worksheet(workbook, "Mall");
  const int kPages = argc == 4 ? std::atoi(argv[2]) : 330;
  const int kDataCells = argc == 4 ? std::atoi(argv[3]) : 61000;
  const int cellsPerPage = argc == 4 && kPages > 0 ? (kDataCells + kPages - 1) / kPages : 185;
  // Given a size, the cells lie as a filled page's do: seven columns from row 7.
  const int columns = argc == 4 ? 7 : 6;
  const int firstRow = argc == 4 ? 6 : 9;
  int written = 0;
  for (int page = 1; page <= kPages; ++page) {
    const std::string name = std::to_string(page);
    lxw_worksheet* sheet = workbook_add_worksheet(workbook, name.c_str());
    worksheet_write_string(sheet, 0, 5, name.c_str(), nullptr);
    worksheet_write_string(sheet, 1, 5, std::to_string(page + 1).c_str(), nullptr);
    worksheet_write_string(sheet, 1, 1, "+A1", nullptr);
    for (int cell = 0; cell < cellsPerPage && written < kDataCells; ++cell, ++written) {
      const std::string text = "W" + std::to_string(written);
      worksheet_write_string(sheet, firstRow + cell / columns, cell % columns, text.c_str(), nullptr);
    }
  }
  return workbook_close(workbook) == LXW_NO_ERROR ? 0 : 1;
}
