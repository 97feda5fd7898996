#pragma once
// Workbooks.OpenText: a delimited text file becomes a new workbook of one sheet.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "excel/engine.h"
#include "excel/package/workbook_document.h"

namespace sw::excel {

// The file's lines split into fields as `options` say (delimiters, qualifier, start row).
std::vector<std::vector<std::string>> SplitDelimitedText(std::string_view bytes,
                                                         const OpenTextOptions& options);

// The workbook Excel shows for the text file `bytes` named `stem`; its sheet carries the file's name.
std::unique_ptr<WorkbookDocument> ImportText(std::string_view bytes, std::string_view stem,
                                             const OpenTextOptions& options);

}  // namespace sw::excel
