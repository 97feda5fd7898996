#include "gui/about_box.h"

#include <QDesktopServices>
#include <QFont>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "gui/control_colouring.h"
#include "gui/licence_texts.h"
#include "session/front_end.h"

namespace sw::gui {
namespace {

// The about box shows the theme's colour as it is.
constexpr std::int32_t kColourOffset = 0;

QString Title() {
  return QString::fromUtf8(base::kApplicationTitle);
}

QLabel* Label(const char* name, const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QString::fromUtf8(name));
  return label;
}

// A link as a flat button: reached with Tab or its caption's access key, opened with Space or Enter as
// well as with the mouse.
QPushButton* Link(const char* name, const QString& text, QWidget* parent) {
  auto* link = new QPushButton(text, parent);
  link->setObjectName(QString::fromUtf8(name));
  link->setFlat(true);
  link->setCursor(Qt::PointingHandCursor);
  QFont font = link->font();
  font.setUnderline(true);
  link->setFont(font);
  QPalette palette = link->palette();
  palette.setColor(QPalette::ButtonText, palette.color(QPalette::Link));
  link->setPalette(palette);
  return link;
}

}  // namespace

BuildFacts ThisBuild() {
  QString build = QStringLiteral("Bygge ") + QString::fromUtf8(SW_BUILD_DATE);
  const QString commit = QString::fromUtf8(SW_BUILD_COMMIT);
  if (!commit.isEmpty()) build += QStringLiteral(" (") + commit + QLatin1Char(')');
  return {.version = QString::fromUtf8(SW_PROGRAM_VERSION),
          .build = build,
          .supportMail = QString::fromUtf8(SW_SUPPORT_MAIL).trimmed(),
          .webAddress = QString::fromUtf8(SW_WEB_ADDRESS).trimmed()};
}

QString AboutCommandCaption() {
  return QStringLiteral("&Om ") + Title() + QStringLiteral("...");
}

QString ProgramDescription() {
  return QStringLiteral("Fyller Excel-rapportmallar med rapporter från VOLTARIS.");
}

AboutBox::AboutBox(AboutBoxServices services, QWidget* parent)
    : QDialog(parent), services_(std::move(services)) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("Om ") + Title());

  auto* imgLogo = new QLabel(this);
  imgLogo->setObjectName(QStringLiteral("imgLogo"));
  const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  imgLogo->setPixmap(
      style()->standardIcon(QStyle::SP_FileDialogDetailedView, nullptr, this).pixmap(iconSize));
  imgLogo->setAlignment(Qt::AlignTop);

  auto* lblTitle = Label("lblTitle", Title(), this);
  QFont titleFont = lblTitle->font();
  titleFont.setPointSizeF(titleFont.pointSizeF() * 1.5);
  titleFont.setBold(true);
  lblTitle->setFont(titleFont);
  auto* lblVersion = Label("lblVersion", QStringLiteral("Version ") + services_.build.version, this);
  auto* lblBuild = Label("lblBuild", services_.build.build, this);
  lblBuild->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* lblDescription = Label("lblDescription", ProgramDescription(), this);
  lblDescription->setWordWrap(true);

  // Only the addresses the build was given.
  QList<QWidget*> focusChain;
  auto* links = new QGridLayout;
  auto addLink = [&](const char* name, const char* captionName, const char* caption, const QString& text,
                     const QString& target) {
    if (text.isEmpty()) return;
    auto* link = Link(name, text, this);
    auto* label = Label(captionName, QString::fromUtf8(caption), this);
    label->setBuddy(link);
    connect(link, &QPushButton::clicked, this, [this, target] { OpenLink(target); });
    const int row = links->rowCount();
    links->addWidget(label, row, 0);
    links->addWidget(link, row, 1, Qt::AlignLeft);
    focusChain << link;
  };
  const QString mail = services_.build.supportMail;
  const QString web = services_.build.webAddress;
  addLink("lnkMail", "lblMailCaption", "&E-post:", mail, QStringLiteral("mailto:") + mail);
  addLink("lnkWeb", "lblWebCaption", "&Webbplats:", web, web);
  links->setColumnStretch(1, 1);

  auto* texts = new QVBoxLayout;
  texts->addWidget(lblTitle);
  texts->addWidget(lblVersion);
  texts->addWidget(lblBuild);
  texts->addWidget(lblDescription);
  texts->addSpacing(8);
  texts->addLayout(links);
  texts->addStretch();
  auto* top = new QHBoxLayout;
  top->addWidget(imgLogo);
  top->addLayout(texts, 1);

  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  cmdOK->setObjectName(QStringLiteral("cmdOK"));
  cmdOK->setDefault(true);
  connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QVBoxLayout;
  buttons->addWidget(cmdOK);
  QPushButton* cmdSysInfo = nullptr;
  if (services_.systemInformation && services_.systemInformation->Available()) {
    cmdSysInfo = new QPushButton(QStringLiteral("&Systeminformation..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(cmdSysInfo, &QPushButton::clicked, this, [this] { services_.systemInformation->Start(); });
    buttons->addWidget(cmdSysInfo);
  }
  buttons->addStretch();

  // The licences of what the program ships, to read and scroll through.
  auto* txtLicences = new QPlainTextEdit(this);
  txtLicences->setObjectName(QStringLiteral("txtLicences"));
  const std::string_view licences = LicenceTexts();
  txtLicences->setPlainText(QString::fromUtf8(licences.data(), static_cast<qsizetype>(licences.size())));
  txtLicences->setReadOnly(true);
  // Read with the keys as well as with the mouse, and copied from.
  txtLicences->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  txtLicences->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtLicences->setMinimumSize(txtLicences->fontMetrics().horizontalAdvance(QLatin1Char('x')) * 84,
                              txtLicences->fontMetrics().lineSpacing() * 12);
  auto* lblLicences = Label("lblLicences", QStringLiteral("&Licenser:"), this);
  lblLicences->setBuddy(txtLicences);

  auto* upper = new QHBoxLayout;
  upper->addLayout(top, 1);
  upper->addLayout(buttons);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(upper);
  layout->addWidget(lblLicences);
  layout->addWidget(txtLicences, 1);

  focusChain.prepend(cmdOK);
  if (cmdSysInfo) focusChain << cmdSysInfo;
  focusChain << txtLicences;
  for (qsizetype i = 1; i < focusChain.size(); ++i) setTabOrder(focusChain[i - 1], focusChain[i]);
  cmdOK->setFocus();

  ColourByPrefix(*this, services_.themeColour, kColourOffset);
}

void AboutBox::OpenLink(const QString& link) {
  const QUrl url(link);
  if (services_.openUrl) {
    services_.openUrl(url);
  } else {
    QDesktopServices::openUrl(url);
  }
}

void RunAboutBox(QWidget* parent, std::int32_t themeColour) {
  const auto tool = base::CreateSystemInformationTool();
  AboutBox box(AboutBoxServices{.themeColour = themeColour, .systemInformation = tool.get(), .openUrl = {}},
               parent);
  box.exec();
}

}  // namespace sw::gui
