#pragma once
// The part of generation's template checks that needs the workbook itself, and the page layouts
// generation runs as they are but that are hardly what the template's author meant.
#include <string>
#include <vector>

#include "base/outcome.h"
#include "templates/template_definition.h"

namespace sw::generate {

// Opens the template workbook read-only through the workbook engine, as generation opens it, finds
// the two sheets [Tabs] names and reads them. kNo, with every problem in generation's words, where
// generation would stop: a workbook the engine cannot open (damaged, old format, encrypted) or a
// missing sheet.
base::Outcome<base::Done> OpenTemplateAsGenerationWould(const std::string& workbookPath,
                                                        const templates::TemplateDefinition& definition);

// Plain warnings, one line each: a page of no rows, or rows above row 1, which are never written.
std::vector<std::string> PageLayoutWarnings(const templates::TemplateDefinition& definition);

// A fixed-length page whose every row lies above row 1 would write none of the report: the refusal, in
// the program's words, or empty when some row of the page is on the sheet.
std::string RowsAboveTheSheetRefusal(const templates::TemplateDefinition& definition);

}  // namespace sw::generate
