// The options dialog's settings and the operations its boxes call, without the dialog.
#include "session/options.h"

#include <gtest/gtest.h>

#include "fake_installation.h"
#include "memory_settings.h"
#include "recording_launcher.h"
#include "session/session.h"

namespace sw::session {
namespace {

using List = std::vector<std::string>;

// Settings that log every save as "Key=Value", in order.
class LoggingSettings final : public settings::Settings {
 public:
  explicit LoggingSettings(settings::Settings& inner) : inner_(inner) {}
  List saved;
  std::string GetAppSetting(std::string_view key, std::string_view defaultValue,
                            std::string_view section = {}, std::string_view appName = {}) override {
    return inner_.GetAppSetting(key, defaultValue, section, appName);
  }
  void SaveAppSetting(std::string_view key, std::string_view value, std::string_view section = {}) override {
    saved.push_back(std::string(key) + "=" + std::string(value));
    inner_.SaveAppSetting(key, value, section);
  }
  void DeleteAppSetting(std::string_view key, std::string_view section = {}) override {
    inner_.DeleteAppSetting(key, section);
  }

 private:
  settings::Settings& inner_;
};

class CommandsSeen final : public SessionObserver {
 public:
  int commands = 0;
  void SessionChanged(Changes what) override {
    if (what.Has(Change::kCommands)) ++commands;
  }
};

TEST(Options, FreshSettingsCheckAllButTheEmptyRows) {
  testing::MemorySettings settings;
  EXPECT_EQ(ReadOptions(settings), (Options{.showPageBreaks = true,
                                            .showSingleSheetWarning = true,
                                            .includeEmptyRows = false,
                                            .useSlashTwo = true}));
}

TEST(Options, OnlyTheExactTextOneChecksABox) {
  testing::MemorySettings settings;
  settings.SaveAppSetting("ShowPageBreaks", "0");
  settings.SaveAppSetting("ShowSingleSheetWarning", "2");
  settings.SaveAppSetting("IncludeEmptyRows", "1");
  settings.SaveAppSetting("UseSlashTwo", "ja");
  EXPECT_EQ(ReadOptions(settings), (Options{.showPageBreaks = false,
                                            .showSingleSheetWarning = false,
                                            .includeEmptyRows = true,
                                            .useSlashTwo = false}));
}

TEST(Options, StoreWritesTheFourInTheirOrder) {
  testing::MemorySettings memory;
  LoggingSettings settings(memory);
  StoreOptions(settings, Options{.showPageBreaks = false,
                                 .showSingleSheetWarning = true,
                                 .includeEmptyRows = true,
                                 .useSlashTwo = false});
  EXPECT_EQ(settings.saved,
            (List{"IncludeEmptyRows=1", "UseSlashTwo=0", "ShowSingleSheetWarning=1", "ShowPageBreaks=0"}));
}

class OptionsSessionTest : public ::testing::Test {
 protected:
  OptionsSessionTest()
      : session_({.registry = install_.registry,
                  .settings = install_.settings,
                  .environment = install_.environment,
                  .dialogs = install_.dialogs,
                  .launcher = launcher_}) {
    session_.AddObserver(seen_);
  }

  testing::FakeInstallation install_;
  testing::RecordingLauncher launcher_;
  Session session_;
  CommandsSeen seen_;
};

TEST_F(OptionsSessionTest, ReportBoxesActAtOnceAndTellTheCommands) {
  install_.settings.SaveAppSetting("IncludeEmptyRows", "0");
  session_.Start();
  ASSERT_FALSE(session_.IncludeEmptyRows());
  const int rowsWithoutEmpty = session_.Table().Rows();
  const int commandsBefore = seen_.commands;

  session_.SetIncludeEmptyRows(true);  // reloaded with the empty row
  EXPECT_TRUE(session_.IncludeEmptyRows());
  EXPECT_EQ(install_.settings.GetAppSetting("IncludeEmptyRows", ""), "1");
  EXPECT_EQ(session_.Table().Rows(), rowsWithoutEmpty + 1);
  EXPECT_GT(seen_.commands, commandsBefore);

  session_.SetIncludeEmptyRows(false);  // tidied in place
  EXPECT_FALSE(session_.IncludeEmptyRows());
  EXPECT_EQ(session_.Table().Rows(), rowsWithoutEmpty);
  EXPECT_EQ(install_.settings.GetAppSetting("IncludeEmptyRows", ""), "0");

  session_.SetUseSlashTwo(false);
  EXPECT_FALSE(session_.UseSlashTwo());
  EXPECT_EQ(session_.Table().Text(2, 3), "Pump");
  EXPECT_EQ(install_.settings.GetAppSetting("UseSlashTwo", ""), "0");
  session_.SetUseSlashTwo(true);
  EXPECT_EQ(session_.Table().Text(2, 3), "Pump/2");
}

TEST_F(OptionsSessionTest, LoadingReadsTheSettingsAndLeavesTheRefreshingFlagAsItWas) {
  install_.settings.SaveAppSetting("ShowPageBreaks", "0");
  session_.Start();
  EXPECT_FALSE(session_.LoadOptions().showPageBreaks);
  EXPECT_FALSE(session_.Refreshing());

  session_.StoreOptions(Options{});
  EXPECT_EQ(install_.settings.GetAppSetting("ShowPageBreaks", ""), "1");
}

}  // namespace
}  // namespace sw::session
