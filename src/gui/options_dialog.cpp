#include "gui/options_dialog.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "gui/dialog_placement.h"

namespace sw::gui {
namespace {

constexpr DefaultSize kDefaultSize{.height = 3900, .width = 6930};

QCheckBox* CheckBox(const char* name, const char* caption, QWidget* parent) {
  auto* box = new QCheckBox(QString::fromUtf8(caption), parent);
  box->setObjectName(QString::fromUtf8(name));
  return box;
}

}  // namespace

OptionsDialog::OptionsDialog(session::Session& session, settings::Settings& settings, QWidget* parent,
                             OperationRunner run)
    : QDialog(parent), session_(session), settings_(settings), run_(std::move(run)) {
  setObjectName(QString::fromUtf8(kOptionsWindowName));
  setWindowTitle(QStringLiteral("Alternativ"));

  auto* tabs = new QTabWidget(this);
  tabs->setObjectName(QStringLiteral("tabOptions"));

  auto* general = new QWidget(tabs);
  general->setObjectName(QStringLiteral("pagGenerellt"));
  auto* fraOptions = new QGroupBox(general);
  fraOptions->setObjectName(QStringLiteral("fraOptions"));
  chkPageBreak_ = CheckBox("chkPageBreak", "Visa sidbrytningar", fraOptions);
  chkShowWarning_ = CheckBox("chkShowWarning", "Visa varning när enkelbladsfiler skapas", fraOptions);
  chkIncludeEmptyRows_ = CheckBox("chkIncludeEmptyRows", "Inkludera tomrader", fraOptions);
  chkUseSlashTwo_ = CheckBox("chkUseSlashTwo", "Visa avslutande /2", fraOptions);
  auto* boxes = new QVBoxLayout(fraOptions);
  for (QCheckBox* box : {chkPageBreak_, chkShowWarning_, chkIncludeEmptyRows_, chkUseSlashTwo_}) {
    boxes->addWidget(box);
  }
  boxes->addStretch();
  (new QVBoxLayout(general))->addWidget(fraOptions);
  tabs->addTab(general, QStringLiteral("Generellt"));

  // The outer connection table has no options of its own yet; the tab keeps its place.
  auto* external = new QWidget(tabs);
  external->setObjectName(QStringLiteral("pagYttreForbindningar"));
  auto* none = new QLabel(QStringLiteral("Inga inställningar."), external);
  none->setObjectName(QStringLiteral("lblNoOptions"));
  auto* externalLayout = new QVBoxLayout(external);
  externalLayout->addWidget(none);
  externalLayout->addStretch();
  tabs->addTab(external, QStringLiteral("Yttre Förbindningar"));

  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  cmdOK->setObjectName(QStringLiteral("cmdOK"));
  cmdOK->setDefault(true);
  auto* cmdCancel = new QPushButton(QStringLiteral("Avbryt"), this);
  cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs);
  layout->addLayout(buttons);

  // Tab order: the tab bar, the four boxes top to bottom, then OK and Avbryt.
  setTabOrder(tabs, chkPageBreak_);
  setTabOrder(chkPageBreak_, chkShowWarning_);
  setTabOrder(chkShowWarning_, chkIncludeEmptyRows_);
  setTabOrder(chkIncludeEmptyRows_, chkUseSlashTwo_);
  setTabOrder(chkUseSlashTwo_, cmdOK);
  setTabOrder(cmdOK, cmdCancel);

  RestoreDialogPlacement(*this, settings_, kOptionsWindowName, kDefaultSize);
  const session::Options options = session_.LoadOptions();
  chkPageBreak_->setChecked(options.showPageBreaks);
  chkShowWarning_->setChecked(options.showSingleSheetWarning);
  chkIncludeEmptyRows_->setChecked(options.includeEmptyRows);
  chkUseSlashTwo_->setChecked(options.useSlashTwo);

  // `clicked` comes from the user only (mouse or space bar), never from loading the boxes above.
  connect(chkIncludeEmptyRows_, &QCheckBox::clicked, this,
          [this](bool checked) { Run([this, checked] { session_.SetIncludeEmptyRows(checked); }); });
  connect(chkUseSlashTwo_, &QCheckBox::clicked, this,
          [this](bool checked) { Run([this, checked] { session_.SetUseSlashTwo(checked); }); });
  connect(cmdOK, &QPushButton::clicked, this, &OptionsDialog::AcceptChoices);
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

session::Options OptionsDialog::Chosen() const {
  return session::Options{.showPageBreaks = chkPageBreak_->isChecked(),
                          .showSingleSheetWarning = chkShowWarning_->isChecked(),
                          .includeEmptyRows = chkIncludeEmptyRows_->isChecked(),
                          .useSlashTwo = chkUseSlashTwo_->isChecked()};
}

void OptionsDialog::Run(const std::function<void()>& operation) {
  if (run_) {
    run_(operation);
  } else {
    operation();
  }
}

void OptionsDialog::AcceptChoices() {
  session_.StoreOptions(Chosen());
  SaveDialogPlacement(*this, settings_, kOptionsWindowName);
  Run([this] { session_.ShowPageBreaks(); });
  accept();
}

void RunOptionsDialog(QWidget* parent, session::Session& session, settings::Settings& settings,
                      OperationRunner run) {
  OptionsDialog dialog(session, settings, parent, std::move(run));
  dialog.exec();
}

}  // namespace sw::gui
