// The writer-speed floor for the workbook benchmarks: a plain writer library producing a workbook of
// the same shape from nothing.
// Usage: xlsxwriter_reference OUTPUT.xlsx [PAGES DATA_CELLS]
//        xlsxwriter_reference OUTPUT.xlsx --cells CELLS_FILE
// With --cells it writes exactly the sheets and text cells CELLS_FILE lists (bench/compare.py takes
// them from a generated workbook): a line "S<TAB>name" starts a sheet, "C<TAB>row<TAB>column<TAB>text"
// (1-based, the text with \\, \t, \n and \r escaped) writes a text cell into the current sheet.
#include <xlsxwriter.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

std::string Unescaped(const std::string& text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      plain += text[i];
      continue;
    }
    const char next = text[++i];
    plain += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
  }
  return plain;
}

int WriteListedCells(const char* output, const char* cellsFile) {
  std::ifstream in(cellsFile, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", cellsFile);
    return 2;
  }
  lxw_workbook* workbook = workbook_new(output);
  lxw_worksheet* sheet = nullptr;
  std::string line;
  while (std::getline(in, line)) {
    if (line.size() > 2 && line[0] == 'S' && line[1] == '\t') {
      sheet = workbook_add_worksheet(workbook, line.c_str() + 2);
      if (sheet == nullptr) return 1;
      continue;
    }
    if (line.size() < 2 || line[0] != 'C' || sheet == nullptr) continue;
    const auto first = line.find('\t', 2);
    const auto second = first == std::string::npos ? first : line.find('\t', first + 1);
    if (second == std::string::npos) continue;
    const int row = std::atoi(line.c_str() + 2);
    const int column = std::atoi(line.c_str() + first + 1);
    const std::string text = Unescaped(line.substr(second + 1));
    worksheet_write_string(sheet, static_cast<lxw_row_t>(row - 1), static_cast<lxw_col_t>(column - 1),
                           text.c_str(), nullptr);
  }
  return workbook_close(workbook) == LXW_NO_ERROR ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[2]) == "--cells") return WriteListedCells(argv[1], argv[3]);
  if (argc != 2 && argc != 4) {
    std::fprintf(stderr, "usage: xlsxwriter_reference OUTPUT.xlsx [PAGES DATA_CELLS | --cells CELLS_FILE]\n");
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
