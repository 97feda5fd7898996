#include "gui/warning_dialog.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "gui/dialog_placement.h"

namespace sw::gui {
namespace {

constexpr DefaultSize kDefaultSize{.height = 4245, .width = 6270};

QLabel* Text(const char* name, const char* text, QWidget* parent) {
  auto* label = new QLabel(QString::fromUtf8(text), parent);
  label->setObjectName(QString::fromUtf8(name));
  label->setWordWrap(true);
  return label;
}

}  // namespace

WarningDialog::WarningDialog(settings::Settings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
  setObjectName(QString::fromUtf8(kWarningWindowName));
  setWindowTitle(QString::fromUtf8(generate::kWarningCaption));

  auto* imgWarning = new QLabel(this);
  imgWarning->setObjectName(QStringLiteral("imgWarning"));
  const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  imgWarning->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(iconSize));
  imgWarning->setAlignment(Qt::AlignTop);

  auto* texts = new QVBoxLayout;
  texts->addWidget(Text("lblOverwrite", generate::kWarningOverwrite, this));
  texts->addWidget(Text("lblExample", generate::kWarningExample, this));
  texts->addWidget(Text("lblPageCount", generate::kWarningPageCount, this));
  auto* top = new QHBoxLayout;
  top->addWidget(imgWarning);
  top->addLayout(texts, 1);

  chkShowNoMore_ = new QCheckBox(QString::fromUtf8(generate::kWarningShowNoMore), this);
  chkShowNoMore_->setObjectName(QStringLiteral("chkShowNoMore"));
  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  cmdOK->setObjectName(QStringLiteral("cmdOK"));
  cmdOK->setDefault(true);
  auto* cmdCancel = new QPushButton(QStringLiteral("Avbryt"), this);
  cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(chkShowNoMore_);
  buttons->addStretch();
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addStretch();
  layout->addLayout(buttons);

  setTabOrder(cmdOK, cmdCancel);
  setTabOrder(cmdCancel, chkShowNoMore_);
  connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

  RestoreDialogPlacement(*this, settings_, kWarningWindowName, kDefaultSize);
  cmdOK->setFocus();
}

generate::WarningAnswer WarningDialog::Answer() const {
  return generate::WarningAnswer{.accepted = accepted_, .showNoMore = chkShowNoMore_->isChecked()};
}

void WarningDialog::done(int result) {
  // Every way out (OK, Avbryt, Escape, the window's close button) passes here.
  accepted_ = result == QDialog::Accepted;
  SaveDialogPlacement(*this, settings_, kWarningWindowName);
  QDialog::done(result);
}

generate::WarningAnswer DialogSingleSheetWarning::Show() {
  WarningDialog dialog(settings_, parent_);
  dialog.exec();
  return dialog.Answer();
}

}  // namespace sw::gui
