#include "gui/command_table.h"

#include <stdexcept>

#include "session/front_end.h"
#include "session/themes.h"

namespace sw::gui {
namespace {

std::vector<CommandText> MakeTexts() {
  std::vector<CommandText> texts{
      {.id = kCommandExit, .caption = "&Avsluta"},
      {.id = kCommandUndo,
       .caption = "&Ångra",
       .description = "Ångrar den senaste ändringen av förhandsgranskningen",
       .shortcut = "Ctrl+Z"},
      {.id = kCommandRedo,
       .caption = "&Gör om",
       .description = "Gör om den ändring som ångrades senast",
       .shortcut = "Ctrl+Y"},
      {.id = kCommandFindPlacement,
       .caption = "Sö&k placering...",
       .description = "Söker nästa placering vars namn innehåller en text",
       .shortcut = "Ctrl+F"},
      {.id = kCommandGoToPage,
       .caption = "Gå till si&da...",
       .description = "Går till den första raden på en sida",
       .shortcut = "Ctrl+G"},
      {.id = kCommandEditIni,
       .caption = "Redigera mallens &ini-fil",
       .toolTip = "Redigera Excel-mallens INI-fil med Anteckningsverktyget"},
      {.id = kCommandEditTemplate,
       .caption = "Redigera Excel-mall",
       .toolTip = "Redigera Excel-mallen med Excel"},
      {.id = kCommandOptions, .caption = "Al&ternativ"},
      {.id = kCommandIncludeEmptyRows,
       .caption = "Tomrader",
       .toolTip = "Inkludera tomrader i rapportfilen",
       .checkable = true},
      {.id = kCommandSlashTwo, .caption = "/2", .toolTip = "Visa avslutande '/2'", .checkable = true},
      {.id = kCommandEditDump,
       .caption = "Redigera aktuell &rapport-textfil",
       .toolTip = "Redigera vald rapport-textfil med Excel"},
      {.id = kCommandFixExport,
       .caption = "Infoga kolumn för yttre förbindningstabell genererad av VOLTARIS 15",
       .toolTip = "Infoga kolumn för yttre förbindningstabell genererad av VOLTARIS 15"},
      {.id = kCommandNext, .caption = "&Nästa", .toolTip = "Gå till vy med textfält för ritningshuvud"},
      {.id = kCommandPrevious, .caption = "&Föregående", .toolTip = "Gå till vy med rapportinnehåll"},
      {.id = kCommandGenerate,
       .caption = "Generera Excel-dokument",
       .toolTip = "Starta generering av Excel-dokument av rapporten",
       .toolbarCaption = "&Generera Excel-dokument",
       .description = "Genererar Excel-dokument"},
      {.id = kCommandResetAppearance, .caption = "Återställ menyer till standard..."},
      {.id = kCommandAbout,
       .caption = std::string("&Om ") + base::kApplicationTitle + "...",
       .shortcut = "F1"},
      {.id = kCommandRefresh,
       .caption = "Uppdatera VOLTARIS-rapport",
       .toolTip = "Uppdatera VOLTARIS-rapport",
       .shortcut = "F5"},
      {.id = kCommandChooseTextFile, .caption = "Välj textfil...", .shortcut = "Ctrl+O"},
      {.id = kCommandSingleSheet, .caption = "Enkelblad", .toolTip = "Ett blad per fil", .checkable = true},
      {.id = kCommandStandardToolbar, .caption = "&Standard", .checkable = true},
  };
  for (const auto& theme : session::Themes())
    texts.push_back({.id = theme.commandId, .caption = std::string(theme.caption), .checkable = true});
  return texts;
}

}  // namespace

const std::vector<CommandText>& CommandTexts() {
  static const std::vector<CommandText> texts = MakeTexts();
  return texts;
}

const CommandText& CommandTextOf(int id) {
  for (const auto& text : CommandTexts())
    if (text.id == id) return text;
  throw std::out_of_range("no command " + std::to_string(id));
}

}  // namespace sw::gui
