#include "gui/qt_translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

namespace sw::gui {
namespace {

// Texts of Qt's own file dialog that the Swedish catalog lacks altogether; without them the dialog
// asks "Look in:" among Swedish labels.
struct MissingText {
  const char* context;
  const char* source;
  const char* swedish;
};
constexpr MissingText kMissingTexts[] = {
    {"QFileDialog", "Look in:", "Leta i:"},
    {"QFileSystemModel", "Computer", "Dator"},
    {"QFileSystemModel", "My Computer", "Den här datorn"},
    {"QAbstractFileIconProvider", "Folder", "Mapp"},
    {"QAbstractFileIconProvider", "Drive", "Enhet"},
    {"QAbstractFileIconProvider", "File", "Fil"},
};

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
    if (text.isEmpty()) {
      for (const auto& missing : kMissingTexts) {
        if (qstrcmp(context, missing.context) == 0 && qstrcmp(sourceText, missing.source) == 0) {
          return QString::fromUtf8(missing.swedish);
        }
      }
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
