// The writer-speed floor for the workbook benchmark: a plain writer library producing a workbook
// of the same shape (332 sheets, the same number of text cells) from nothing.
// Usage: xlsxwriter_reference OUTPUT.xlsx
#include <xlsxwriter.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: xlsxwriter_reference OUTPUT.xlsx\n");
    return 2;
  }
  lxw_workbook* workbook = workbook_new(argv[1]);
  lxw_worksheet* common = workbook_add_worksheet(workbook, "Common");
  worksheet_write_string(common, 0, 1, "Ställverk 7", nullptr);
  workbook_add_worksheet(workbook, "Mall");
  constexpr int kPages = 330;
  constexpr int kDataCells = 61000;
  int written = 0;
  for (int page = 1; page <= kPages; ++page) {
    const std::string name = std::to_string(page);
    lxw_worksheet* sheet = workbook_add_worksheet(workbook, name.c_str());
    worksheet_write_string(sheet, 0, 5, name.c_str(), nullptr);
    worksheet_write_string(sheet, 1, 5, std::to_string(page + 1).c_str(), nullptr);
    worksheet_write_string(sheet, 1, 1, "+A1", nullptr);
    for (int cell = 0; cell < 185 && written < kDataCells; ++cell, ++written) {
      const std::string text = "W" + std::to_string(written);
      worksheet_write_string(sheet, 9 + cell / 6, cell % 6, text.c_str(), nullptr);
    }
  }
  return workbook_close(workbook) == LXW_NO_ERROR ? 0 : 1;
}
