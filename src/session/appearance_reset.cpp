#include "session/appearance_reset.h"

#include "base/file_io.h"
#include "base/windows_path.h"
#include "cadenv/reg_file.h"
#include "session/toolbar_layout.h"
#include "settings/settings.h"

namespace sw::session {

std::string DefaultsFilePath(std::string_view programFolder) {
  std::string path(programFolder);
  if (!path.empty() && path.back() != '\\' && path.back() != '/') path += '\\';
  return path + std::string(kDefaultsFileName);
}

std::optional<std::string> AskResetAppearance(base::Dialogs& dialogs, std::string_view programFolder) {
  const auto answer =
      dialogs.ShowMessage({.text = "Ska programmets färger och menyer återställas till standardutseendet?",
                           .title = "Återställning",
                           .icon = base::MessageIcon::kQuestion,
                           .buttons = base::MessageButtons::kYesNo});
  if (answer != base::MessageAnswer::kYes) return std::nullopt;
  std::string path = DefaultsFilePath(programFolder);
  if (!base::WindowsFileExists(path)) return std::nullopt;
  return path;
}

bool RegeditDefaultsMerger::Merge(std::string_view regFile) {
  return launcher_.RunMinimisedAndWait("REGEDIT /s " + std::string(regFile));
}

bool SettingsDefaultsMerger::Merge(std::string_view regFile) {
  const auto bytes = base::ReadWholeFile(base::ResolveWindowsPath(regFile));
  if (!bytes) return false;
  cadenv::RegTree tree;
  if (!cadenv::ParseRegFile(*bytes, tree)) return false;
  const cadenv::RegKey* root =
      tree.FindKey(cadenv::RootKey::kCurrentUser, settings::RegistrySettings::KeyPath({}));
  if (!root) return true;
  auto saveTexts = [this](const cadenv::RegKey& key, std::string_view section) {
    for (const auto& value : key.Values()) {
      if (value.type == cadenv::ValueType::kString) settings_.SaveAppSetting(value.name, value.data, section);
    }
  };
  saveTexts(*root, {});
  for (const cadenv::RegKey& section : root->Subkeys()) saveTexts(section, section.Name());
  return true;
}

bool RestoreStandardAppearance(settings::Settings& settings, DefaultsMerger& merger,
                               std::string_view windowName, std::string_view regFile) {
  ForgetToolbarLayout(settings, windowName);
  return merger.Merge(regFile);
}

}  // namespace sw::session
