#pragma once
// What pairing a template puts on screen: the field panel from its [Common] lines and the preview's
// heading row from [Sheet] Columns, with the parts of the template's definition they stand for.
#include "report/report_table.h"
#include "templates/field_panel.h"
#include "templates/short_date.h"
#include "templates/template_definition.h"
#include "templates/template_ini.h"

namespace sw::session {

// On a field panel just cleared: box i takes line i's label and default ("." is today's date) and is
// enabled with the window background; the definition's CommonFields take one record per used line (a
// blank or rejected line leaves its record as it was). A missing [Common] section only sets IniError.
// Columns: the heading row is emptied and the names kept as PreviewColumnNames; two or more names
// give the preview one column per name (each heading followed by a space) plus the leading one, a
// single name leaves the column count alone. No Columns leaves the headings as they were.
void ApplyCommonFields(const templates::CommonFieldsReading& reading,
                       templates::TemplateDefinition& definition, templates::FieldPanel& fields,
                       report::ReportTable& preview, const templates::ShortDateSource& today);

}  // namespace sw::session
