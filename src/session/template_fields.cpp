#include "session/template_fields.h"

#include <cstddef>

#include "base/system_colours.h"

namespace sw::session {

void ApplyCommonFields(const templates::CommonFieldsReading& reading,
                       templates::TemplateDefinition& definition, templates::FieldPanel& fields,
                       report::ReportTable& preview, const templates::ShortDateSource& today) {
  if (reading.outcome.status == templates::CommonFieldsStatus::kMissingSection) {
    definition.IniError = true;
    return;
  }
  definition.CommonFields.resize(reading.fields.size());
  for (std::size_t i = 0; i < reading.fields.size(); ++i) {
    if (!reading.fields[i]) continue;
    const auto& field = *reading.fields[i];
    auto& record = definition.CommonFields[i];
    record.Label = field.Label;
    record.DefaultText = field.DefaultText;
    record.Row = field.Row;
    record.Col = field.Col;

    auto& entry = fields.entries[i];
    entry.caption = field.Label;
    entry.text = field.DefaultText == "." ? today() : field.DefaultText;
    entry.enabled = true;
    entry.backColour = base::kSystemWindowBackground;  // enabled by the template
  }

  if (!reading.columnNames) return;
  const auto& names = *reading.columnNames;
  for (int col = 0; col < preview.Cols(); ++col) preview.SetText(0, col, "");
  definition.PreviewColumnNames = names;
  if (names.size() < 2) return;
  preview.SetCols(static_cast<int>(names.size()) + 1);
  for (std::size_t j = 0; j < names.size(); ++j) preview.SetText(0, static_cast<int>(j) + 1, names[j] + " ");
}

}  // namespace sw::session
