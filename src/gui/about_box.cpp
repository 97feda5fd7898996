#include "gui/about_box.h"

#include <QDesktopServices>
#include <QFont>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "base/dialogs.h"
#include "gui/control_colouring.h"

namespace sw::gui {
namespace {

// From the build (src/gui/CMakeLists.txt): the project's version and the support addresses.
constexpr const char* kProgramVersion = SW_PROGRAM_VERSION;
constexpr const char* kSupportMail = SW_SUPPORT_MAIL;
constexpr const char* kWebAddress = SW_WEB_ADDRESS;

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
  auto* lblVersion =
      Label("lblVersion", QStringLiteral("Version ") + QString::fromUtf8(kProgramVersion), this);
  auto* lblDescription = Label("lblDescription", ProgramDescription(), this);
  lblDescription->setWordWrap(true);

  const QString mail = QString::fromUtf8(kSupportMail);
  const QString web = QString::fromUtf8(kWebAddress);
  auto* lnkMail = Link("lnkMail", mail, this);
  auto* lnkWeb = Link("lnkWeb", web, this);
  auto* lblMailCaption = Label("lblMailCaption", QStringLiteral("&E-post:"), this);
  lblMailCaption->setBuddy(lnkMail);
  auto* lblWebCaption = Label("lblWebCaption", QStringLiteral("&Webbplats:"), this);
  lblWebCaption->setBuddy(lnkWeb);
  connect(lnkMail, &QPushButton::clicked, this, [this, mail] { OpenLink(QStringLiteral("mailto:") + mail); });
  connect(lnkWeb, &QPushButton::clicked, this, [this, web] { OpenLink(web); });

  auto* links = new QGridLayout;
  links->addWidget(lblMailCaption, 0, 0);
  links->addWidget(lnkMail, 0, 1, Qt::AlignLeft);
  links->addWidget(lblWebCaption, 1, 0);
  links->addWidget(lnkWeb, 1, 1, Qt::AlignLeft);
  links->setColumnStretch(1, 1);

  auto* texts = new QVBoxLayout;
  texts->addWidget(lblTitle);
  texts->addWidget(lblVersion);
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

  auto* layout = new QHBoxLayout(this);
  layout->addLayout(top, 1);
  layout->addLayout(buttons);

  setTabOrder(cmdOK, lnkMail);
  setTabOrder(lnkMail, lnkWeb);
  if (cmdSysInfo) setTabOrder(lnkWeb, cmdSysInfo);
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
