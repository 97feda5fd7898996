#pragma once
// The program's command vocabulary: every command of the menus and toolbars with its id, caption and
// tool tip. Captions mark the access key with "&". The QAction of a command is named "cmd<id>".
#include <string>
#include <string_view>
#include <vector>

namespace sw::gui {

inline constexpr int kCommandExit = 100;
inline constexpr int kCommandUndo = 201;
inline constexpr int kCommandRedo = 202;
inline constexpr int kCommandFindPlacement = 203;
inline constexpr int kCommandGoToPage = 204;
inline constexpr int kCommandEditIni = 302;
inline constexpr int kCommandEditTemplate = 303;
inline constexpr int kCommandOptions = 304;
inline constexpr int kCommandIncludeEmptyRows = 305;
inline constexpr int kCommandSlashTwo = 306;
inline constexpr int kCommandEditDump = 307;
inline constexpr int kCommandFixExport = 308;
inline constexpr int kCommandNext = 401;
inline constexpr int kCommandPrevious = 402;
inline constexpr int kCommandGenerate = 403;
inline constexpr int kCommandResetAppearance = 502;
inline constexpr int kCommandAbout = 601;
inline constexpr int kCommandRefresh = 704;
inline constexpr int kCommandChooseTextFile = 706;
inline constexpr int kCommandSingleSheet = 707;
inline constexpr int kCommandSelectAll = 901;  // Ctrl+A, taken by the window and doing nothing
inline constexpr int kCommandPaste = 902;      // Ctrl+V, likewise
// The show-or-hide command of the "Standard" toolbar ("Visa" > "Verktygsfält" > "Standard").
inline constexpr int kCommandStandardToolbar = 59392;

struct CommandText {
  int id = 0;
  std::string caption;         // menu entry, and toolbar button unless toolbarCaption says otherwise
  std::string toolTip;         // "" : none of its own
  std::string toolbarCaption;  // "" : the caption
  std::string description;     // the status-bar text, "" : none
  bool checkable = false;      // a check box on its toolbar (or a checked menu entry)
  std::string shortcut;        // its key, as Qt writes it portably ("Ctrl+Z", "F5"); "" : none
};

// Every command of the menus and toolbars; the six theme commands come from session/themes.h.
const std::vector<CommandText>& CommandTexts();
const CommandText& CommandTextOf(int id);

}  // namespace sw::gui
