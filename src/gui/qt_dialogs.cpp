#include "gui/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QStringList>

#include "session/window_rules.h"

namespace sw::gui {
namespace {

QString FromUtf8(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QMessageBox::Icon IconOf(base::MessageIcon icon) {
  switch (icon) {
    case base::MessageIcon::kCritical:
      return QMessageBox::Critical;
    case base::MessageIcon::kQuestion:
      return QMessageBox::Question;
    case base::MessageIcon::kExclamation:
      return QMessageBox::Warning;
    case base::MessageIcon::kInformation:
      return QMessageBox::Information;
    case base::MessageIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(base::MessageButtons buttons) {
  switch (buttons) {
    case base::MessageButtons::kOk:
      return QMessageBox::Ok;
    case base::MessageButtons::kOkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case base::MessageButtons::kAbortRetryIgnore:
      return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    case base::MessageButtons::kYesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case base::MessageButtons::kYesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case base::MessageButtons::kRetryCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

base::MessageAnswer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Cancel:
      return base::MessageAnswer::kCancel;
    case QMessageBox::Abort:
      return base::MessageAnswer::kAbort;
    case QMessageBox::Retry:
      return base::MessageAnswer::kRetry;
    case QMessageBox::Ignore:
      return base::MessageAnswer::kIgnore;
    case QMessageBox::Yes:
      return base::MessageAnswer::kYes;
    case QMessageBox::No:
      return base::MessageAnswer::kNo;
    default:
      return base::MessageAnswer::kOk;
  }
}

// The program breaks lines with CR or CR LF.
QString MessageText(const std::string& text) {
  QString result = FromUtf8(text);
  result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  result.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return result;
}

// The window the dialogs belong to: the one set, else the program's main window (which shows the
// messages of its own start before it is set), so that they open over it rather than anywhere.
QWidget* OwnerOr(QWidget* owner) {
  if (owner) return owner;
  if (QWidget* active = QApplication::activeWindow()) return active;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (qobject_cast<QMainWindow*>(widget)) return widget;
  }
  return nullptr;
}

}  // namespace

QString QtNameFilter(const std::vector<base::FileFilter>& filters) {
  QStringList names;
  for (const auto& filter : filters) {
    names << FromUtf8(filter.label) + QStringLiteral(" (") +
                 FromUtf8(filter.patterns).replace(QLatin1Char(';'), QLatin1Char(' ')) + QLatin1Char(')');
  }
  return names.join(QStringLiteral(";;"));
}

base::MessageAnswer QtDialogs::ShowMessage(const base::Message& message) {
  QMessageBox box(IconOf(message.icon), FromUtf8(base::EffectiveTitle(message)), MessageText(message.text),
                  ButtonsOf(message.buttons), OwnerOr(owner_));
  return AnswerOf(box.exec());
}

std::optional<std::string> QtDialogs::ShowFileDialog(const base::FileDialogRequest& request) {
  const auto folder = session::ResolveWindowsPath(request.initialFolder);
  QFileDialog dialog(OwnerOr(owner_), FromUtf8(request.title), QString::fromStdString(folder.string()),
                     QtNameFilter(request.filters));
  if (request.kind == base::FileDialogRequest::Kind::kSave) {
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmOverwrite);
  } else {
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  }
  if (!request.fileName.empty()) dialog.selectFile(FromUtf8(request.fileName));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QByteArray chosen = QDir::toNativeSeparators(dialog.selectedFiles().first()).toUtf8();
  return std::string(chosen.constData(), static_cast<std::size_t>(chosen.size()));
}

}  // namespace sw::gui
