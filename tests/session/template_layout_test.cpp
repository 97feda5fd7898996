// The current template's INI file as the session uses it: read once while it stays the same, its
// notices told where the user has always heard them, its fields and headings put on screen.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "fake_installation.h"
#include "recording_launcher.h"
#include "session/session.h"

namespace sw::session {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTabsAndCommon =
    "[Tabs]\nTemplate=Sida\nCommon=Blad1\n[Common]\nProjekt=C3\nDatum=D4|.\n";
constexpr const char* kSheet =
    "[Sheet]\nSHEETNO=H2\nNEXTSHEET=H3\nLOCATION=B5\nSTARTROW=10\nCOLUMNS=A,B,C,D\n";

class TemplateLayoutTest : public ::testing::Test {
 protected:
  Session& Started(bool quietPageLayout = false) {
    session_.emplace(SessionServices{.registry = install_.registry,
                                     .settings = install_.settings,
                                     .environment = install_.environment,
                                     .dialogs = install_.dialogs,
                                     .launcher = launcher_,
                                     .today = [] { return std::string("2026-11-24"); },
                                     .quietPageLayout = quietPageLayout});
    session_->Start();
    return *session_;
  }
  // The current template's INI file, written later than anything read before.
  void WriteIni(const std::string& text) {
    install_.Write("Projektmallar/PANEL.ini", text);
    fs::last_write_time(install_.Host("Projektmallar/PANEL.ini"),
                        fs::file_time_type::clock::now() + std::chrono::seconds(++edits_ * 5));
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& message : install_.dialogs.messages) texts.push_back(message.text);
    return texts;
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  std::optional<Session> session_;
  int edits_ = 0;
};

TEST_F(TemplateLayoutTest, StatusUpdatesReadTheIniOnceUntilItChanges) {
  WriteIni(std::string(kTabsAndCommon) + kSheet + "ENDROW=12\n");
  Session& session = Started();
  EXPECT_EQ(session.TemplateIniReads(), 1);  // pairing, the load's layout and its marks share one reading
  const auto pages = session.Summary().pages;
  ASSERT_TRUE(pages.has_value());
  for (int i = 0; i < 50; ++i) EXPECT_EQ(session.Summary().pages, pages);
  EXPECT_EQ(session.TemplateIniReads(), 1);

  // One row per page now: the next update reads the file again, the ones after it do not.
  WriteIni(std::string(kTabsAndCommon) + kSheet + "ENDROW=10\n");
  const auto morePages = session.Summary().pages;
  ASSERT_TRUE(morePages.has_value());
  EXPECT_GT(*morePages, *pages);
  for (int i = 0; i < 10; ++i) session.Summary();
  EXPECT_EQ(session.TemplateIniReads(), 2);
}

TEST_F(TemplateLayoutTest, PairingFillsTheFieldsAndHeadings) {
  WriteIni(std::string(kTabsAndCommon) + kSheet + "ENDROW=12\n");
  const Session& session = Started();
  EXPECT_EQ(session.Fields().entries[0].caption, "Projekt");
  EXPECT_EQ(session.Fields().entries[1].caption, "Datum");
  EXPECT_EQ(session.Fields().entries[1].text, "2026-11-24");
  EXPECT_TRUE(session.Fields().entries[1].enabled);
  EXPECT_FALSE(session.Fields().entries[2].enabled);
  EXPECT_EQ(session.Definition().CommonFields[1].DefaultText, ".");
  EXPECT_EQ(session.Definition().PreviewColumnNames, (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_TRUE(install_.dialogs.messages.empty());
}

TEST_F(TemplateLayoutTest, ABadLayoutLineIsToldAtEveryReadingOfALoad) {
  WriteIni(std::string(kTabsAndCommon) + kSheet + "ENDROW=12\nINFINITE=ja\n");
  const std::string told = "Dynamisk sidlängd felaktigt angiven i ini-filen.\r\"INFINITE=ja\"";
  Started();
  // The load reads the layout, then once for the marks' page length and once more after it.
  EXPECT_EQ(Texts(), (std::vector<std::string>{told, told, told}));
  EXPECT_EQ(install_.dialogs.messages[0].title, "Fel");
  EXPECT_EQ(install_.dialogs.messages[0].icon, base::MessageIcon::kInformation);

  // Drawing the marks again reads the length twice.
  install_.dialogs.messages.clear();
  session_->ShowPageBreaks();
  EXPECT_EQ(Texts(), (std::vector<std::string>{told, told}));
  EXPECT_EQ(session_->TemplateIniReads(), 1);
}

TEST_F(TemplateLayoutTest, AQuietLayoutTellsNothingOfThePageLength) {
  WriteIni(std::string(kTabsAndCommon) + kSheet + "ENDROW=12\nINFINITE=ja\n");
  Started(/*quietPageLayout=*/true);
  EXPECT_TRUE(Texts().empty());
  // Generation's own check still tells its findings, before the workbook's (a stand-in here).
  EXPECT_FALSE(session_->CheckTemplate("C:\\Projektmallar\\PANEL.xlsx", {}));
  EXPECT_EQ(Texts(),
            (std::vector<std::string>{"Dynamisk sidlängd felaktigt angiven i ini-filen.\r\"INFINITE=ja\"",
                                      "Filen är inte en Excel-arbetsbok."}));
}

}  // namespace
}  // namespace sw::session
