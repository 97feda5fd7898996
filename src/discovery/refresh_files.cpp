#include "discovery/refresh_files.h"

#include <string>

#include "base/strings.h"
#include "base/windows_path.h"
#include "cadenv/rds_def.h"
#include "cadenv/registry_walk.h"
#include "discovery/project_template_dir.h"
#include "discovery/step_failure.h"

namespace sw::discovery {
namespace {

using cadenv::RootKey;

std::string WithTrailingBackslash(std::string text) {
  if (text.empty() || text.back() != '\\') text.push_back('\\');
  return text;
}

class Refresh {
 public:
  Refresh(const DiscoverySources& sources, ComboPicker& rdsDir, ComboPicker& voltDump,
          const RefreshHooks& hooks)
      : sources_(sources), rdsDir_(rdsDir), voltDump_(voltDump), hooks_(hooks) {}

  void Run() {
    Step([&] { RememberChoice(); });
    Step([&] { AddRegistryTemplateDirs(); });
    Step([&] { AddUserTemplateDirs(); });
    Step([&] { AddProjectTemplateDir(); });
    Step([&] { ChooseTemplateDir(); });
    Step([&] { AddRegistryDumps(); });
    Step([&] { AddTempDump(); });
    Step([&] { ChooseDump(); });
  }

 private:
  template <typename Body>
  void Step(Body body) {
    RunStep(sources_.dialogs, body);
  }

  void Log(std::string_view message) const {
    if (sources_.startLog) sources_.startLog(message);
  }

  cadenv::RegistryValueList Walk(std::string_view valueName) const {
    return cadenv::CollectRegistryValues(sources_.registry, RootKey::kLocalMachine, kCadMachineKey,
                                         valueName);
  }

  // A: a refresh keeps what the user had on screen, as long as the remembered directory still exists.
  void RememberChoice() { savedTemplateDir_ = rdsDir_.text; }

  // B: taken as they stand; the installation writes them with their backslash.
  void AddRegistryTemplateDirs() {
    Log("RefreshFiles:Fetching RDS-dirs from registry");
    const auto values = Walk(kTemplateDirValue);
    rdsDir_.Clear();
    for (std::size_t i = 1; i < values.size(); ++i) rdsDir_.Add(values[i]);
  }

  // C: every user directory's configuration names a template directory. No check here: a missing file
  // shows up in the list as "\", which tells the user that a user directory is misconfigured.
  void AddUserTemplateDirs() {
    Log("Fetching USER-dirs from registry");
    const auto values = Walk(kUserDirValue);
    for (std::size_t i = 1; i < values.size(); ++i) {
      for (const auto piece : base::Split(values[i], ';')) {
        const std::string configPath = std::string(piece).append(kCadConfigFileName);
        Log("Fetching RDS-dir from " + configPath);
        rdsDir_.Add(WithTrailingBackslash(cadenv::ReadRdsDef(configPath)));
      }
    }
  }

  // D.
  void AddProjectTemplateDir() {
    if (auto folder = ProjectTemplateDirectory(sources_.registry, sources_.environment)) {
      rdsDir_.Add(std::move(*folder));
    }
  }

  // E.
  void ChooseTemplateDir() {
    Log("Fetching last used RDS-dir");
    const std::string last = sources_.settings.GetAppSetting("LastRdsDir", "");
    if (!last.empty()) {
      if (base::WindowsFolderExists(last))
        rdsDir_.SetText(savedTemplateDir_.empty() ? last : savedTemplateDir_);
    } else if (rdsDir_.Count() > 0) {
      rdsDir_.SelectIndex(rdsDir_.Count() - 1);
    }
    Log("Refreshing RDS");
    if (hooks_.refreshTemplates) hooks_.refreshTemplates();
  }

  // F.
  void AddRegistryDumps() {
    Log("Fetching VOLTID-dirs from registry");
    const auto values = Walk(kDumpDirValue);
    voltDump_.Clear();
    for (std::size_t i = 1; i < values.size(); ++i) {
      const std::string dump = WithTrailingBackslash(values[i]).append(kReportDumpFileName);
      if (base::WindowsFileExists(dump)) voltDump_.Add(dump);
    }
  }

  // G: a dump written before the CAD system knew its project directory.
  void AddTempDump() {
    const std::string folder = sources_.environment.Get("TEMP").value_or("").append(kTempDumpFolder);
    if (!base::WindowsFolderExists(folder)) return;
    const std::string dump = folder + std::string(kReportDumpFileName);
    if (base::WindowsFileExists(dump)) voltDump_.Add(dump);
  }

  // H: the remembered dump wins even when no listed directory holds it any more.
  void ChooseDump() {
    Log("Fetching last used VOLTID-dir");
    const std::string last = sources_.settings.GetAppSetting("LastVoltDmp", "");
    if (!last.empty()) {
      if (!base::WindowsFileExists(last)) return;
      voltDump_.SetText(last);
    } else if (voltDump_.Count() > 0) {
      voltDump_.SelectIndex(voltDump_.Count() - 1);
    } else {
      return;
    }
    if (hooks_.dumpChosen) hooks_.dumpChosen();
  }

  const DiscoverySources& sources_;
  ComboPicker& rdsDir_;
  ComboPicker& voltDump_;
  const RefreshHooks& hooks_;
  std::string savedTemplateDir_;
};

}  // namespace

void RefreshFiles(const DiscoverySources& sources, ComboPicker& rdsDir, ComboPicker& voltDump,
                  const RefreshHooks& hooks) {
  Refresh(sources, rdsDir, voltDump, hooks).Run();
}

}  // namespace sw::discovery
