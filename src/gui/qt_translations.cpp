#include "gui/qt_translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

namespace sw::gui {
namespace {

// The Swedish catalog Debian ships was written for the Qt where the dialog buttons' texts ("&Yes",
// "Cancel", "Save") belonged to QDialogButtonBox; Qt 6 asks for them as QPlatformTheme's. The catalog's
// own translations are found under the old name.
class SwedishQtTranslator final : public QTranslator {
 public:
  using QTranslator::QTranslator;

  QString translate(const char* context, const char* sourceText, const char* disambiguation,
                    int n) const override {
    QString text = QTranslator::translate(context, sourceText, disambiguation, n);
    if (text.isEmpty() && qstrcmp(context, "QPlatformTheme") == 0) {
      text = QTranslator::translate("QDialogButtonBox", sourceText, disambiguation, n);
    }
    return text;
  }
};

}  // namespace

bool InstallQtSwedishTranslation(QCoreApplication& application, const QStringList& folders) {
  for (const QString& folder : folders) {
    auto* translator = new SwedishQtTranslator(&application);
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
