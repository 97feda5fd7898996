#pragma once
// frmAbout (command 601): the program's title, version, build and what it does, the support addresses
// as links the desktop opens (only those the build was given), the licences of what the program ships,
// and a button that starts the system's information tool where there is one. It takes the theme's
// colours when it opens.
#include <QDialog>
#include <QUrl>
#include <cstdint>
#include <functional>

#include "session/front_end.h"

namespace sw::gui {

// What the build tells of itself (src/gui/CMakeLists.txt).
struct BuildFacts {
  QString version;
  QString build;        // the day it was configured and the commit it came from, as far as known
  QString supportMail;  // empty: none offered
  QString webAddress;   // empty: none offered
};
BuildFacts ThisBuild();

struct AboutBoxServices {
  std::int32_t themeColour = 0x00FFFFFF;  // packed 0x00BBGGRR, as the window's theme gives it
  base::SystemInformationTool* systemInformation = nullptr;  // none: no button
  std::function<void(const QUrl&)> openUrl;                  // empty: the desktop's handler for the address
  BuildFacts build = ThisBuild();
};

// The caption of command 601: "&Om " + the program's title + "...".
QString AboutCommandCaption();
// The one line that tells what the program does.
QString ProgramDescription();

class AboutBox final : public QDialog {
  Q_OBJECT
 public:
  explicit AboutBox(AboutBoxServices services, QWidget* parent = nullptr);

 private:
  void OpenLink(const QString& link);

  AboutBoxServices services_;
};

// Command 601: the about box, modal over `parent`.
void RunAboutBox(QWidget* parent, std::int32_t themeColour);

}  // namespace sw::gui
