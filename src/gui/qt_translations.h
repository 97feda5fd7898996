#pragma once
// Qt's own texts (the file dialogs, the standard Ja/Nej buttons, the line edits' context menus) in
// Swedish, as the rest of the program speaks.
#include <QStringList>

class QCoreApplication;

namespace sw::gui {

// Loads Qt's Swedish catalog (qt_sv.qm) from the first of `folders` that holds it and installs it in
// `application`. The catalog stays installed for the application's life. False when no folder has it:
// Qt's texts then stay English, and the program works on.
bool InstallQtSwedishTranslation(QCoreApplication& application, const QStringList& folders);

// Where the catalog is looked for: "translations" beside the program (the Windows installation), then
// Qt's own translations folder (Debian's qt6-translations-l10n).
QStringList QtTranslationFolders(const QString& programFolder);

}  // namespace sw::gui
