#include "gui/qt_translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

namespace sw::gui {

bool InstallQtSwedishTranslation(QCoreApplication& application, const QStringList& folders) {
  for (const QString& folder : folders) {
    auto* translator = new QTranslator(&application);
    if (translator->load(QStringLiteral("qt_sv"), folder)) {
      QCoreApplication::installTranslator(translator);
      return true;
    }
    delete translator;
  }
  return false;
}

QStringList QtTranslationFolders(const QString& programFolder) {
  return {QDir(programFolder).filePath(QStringLiteral("translations")),
          QLibraryInfo::path(QLibraryInfo::TranslationsPath)};
}

}  // namespace sw::gui
