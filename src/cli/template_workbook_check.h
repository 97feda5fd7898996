#pragma once
// The part of a generation's template checks that needs the workbook itself.
#include <iosfwd>
#include <string>

#include "base/dialogs.h"
#include "templates/template_definition.h"

namespace sw::cli {

// Opens the template workbook read-only through the workbook engine, as generation opens it, finds
// the two sheets [Tabs] names and reads them. Tells every problem in generation's words and returns
// false where generation would stop: a workbook the engine cannot open (damaged, old format,
// encrypted) or a missing sheet.
bool OpenTemplateAsGenerationWould(const std::string& workbookPath,
                                   const templates::TemplateDefinition& definition, base::Dialogs& dialogs);

// Plain warnings for layouts generation runs as they are but that are hardly what was meant: a page
// of no rows, or rows above row 1, which are never written.
void WarnAboutPageLayout(const templates::TemplateDefinition& definition, std::ostream& err);

}  // namespace sw::cli
