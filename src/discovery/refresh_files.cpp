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
  explicit Refresh(const DiscoverySources& sources) : sources_(sources) {}

  base::Outcome<base::Done> TemplateDirectories(ComboPicker& rdsDir) {
    rdsDir_ = &rdsDir;
    base::Outcome<base::Done> outcome;
    outcome.Append(Step([&] { RememberChoice(); }));
    outcome.Append(Step([&] { AddRegistryTemplateDirs(); }));
    outcome.Append(Step([&] { AddUserTemplateDirs(); }));
    outcome.Append(Step([&] { AddProjectTemplateDir(); }));
    const auto chosen = Step([&] { ChooseTemplateDir(); });
    outcome.Append(chosen).Fail(chosen.status);
    return outcome;
  }

  base::Outcome<DumpChoice> ReportDumps(ComboPicker& voltDump) {
    voltDump_ = &voltDump;
    base::Outcome<DumpChoice> outcome;
    outcome.Append(Step([&] { AddRegistryDumps(); }));
    outcome.Append(Step([&] { AddTempDump(); }));
    bool chosen = false;
    outcome.Append(Step([&] { chosen = ChooseDump(); }));
    if (!chosen) outcome.Fail(DumpChoice::kNone);
    return outcome;
  }

 private:
  template <typename Body>
  base::Outcome<base::Done> Step(Body body) {
    return RunStep(body);
  }

  void Log(std::string_view message) const {
    if (sources_.startLog) sources_.startLog(message);
  }

  cadenv::RegistryValueList Walk(std::string_view valueName) const {
    return cadenv::CollectRegistryValues(sources_.registry, RootKey::kLocalMachine, kCadMachineKey,
                                         valueName);
  }

  // A: a refresh keeps what the user had on screen, as long as the remembered directory still exists.
  void RememberChoice() { savedTemplateDir_ = rdsDir_->text; }

  // B: taken as they stand; the installation writes them with their backslash.
  void AddRegistryTemplateDirs() {
    Log("RefreshFiles:Fetching RDS-dirs from registry");
    const auto values = Walk(kTemplateDirValue);
    rdsDir_->Clear();
    for (std::size_t i = 1; i < values.size(); ++i) rdsDir_->Add(values[i]);
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
        rdsDir_->Add(WithTrailingBackslash(cadenv::ReadRdsDef(configPath)));
      }
    }
  }

  // D.
  void AddProjectTemplateDir() {
    if (auto folder = ProjectTemplateDirectory(sources_.registry, sources_.environment)) {
      rdsDir_->Add(std::move(*folder));
    }
  }

  // E, up to the template list, which the caller refills.
  void ChooseTemplateDir() {
    Log("Fetching last used RDS-dir");
    const std::string last = sources_.settings.GetAppSetting("LastRdsDir", "");
    if (!last.empty()) {
      if (base::WindowsFolderExists(last))
        rdsDir_->SetText(savedTemplateDir_.empty() ? last : savedTemplateDir_);
    } else if (rdsDir_->Count() > 0) {
      rdsDir_->SelectIndex(rdsDir_->Count() - 1);
    }
    Log("Refreshing RDS");
  }

  // F.
  void AddRegistryDumps() {
    Log("Fetching VOLTID-dirs from registry");
    const auto values = Walk(kDumpDirValue);
    voltDump_->Clear();
    for (std::size_t i = 1; i < values.size(); ++i) {
      const std::string dump = WithTrailingBackslash(values[i]).append(kReportDumpFileName);
      if (base::WindowsFileExists(dump)) voltDump_->Add(dump);
    }
  }

  // G: a dump written before the CAD system knew its project directory.
  void AddTempDump() {
    const std::string folder = sources_.environment.Get("TEMP").value_or("").append(kTempDumpFolder);
    if (!base::WindowsFolderExists(folder)) return;
    const std::string dump = folder + std::string(kReportDumpFileName);
    if (base::WindowsFileExists(dump)) voltDump_->Add(dump);
  }

  // H: the remembered dump wins even when no listed directory holds it any more. Whether one was chosen.
  bool ChooseDump() {
    Log("Fetching last used VOLTID-dir");
    const std::string last = sources_.settings.GetAppSetting("LastVoltDmp", "");
    if (!last.empty()) {
      if (!base::WindowsFileExists(last)) return false;
      voltDump_->SetText(last);
    } else if (voltDump_->Count() > 0) {
      voltDump_->SelectIndex(voltDump_->Count() - 1);
    } else {
      return false;
    }
    return true;
  }

  const DiscoverySources& sources_;
  ComboPicker* rdsDir_ = nullptr;
  ComboPicker* voltDump_ = nullptr;
  std::string savedTemplateDir_;
};

}  // namespace

base::Outcome<base::Done> FillTemplateDirectories(const DiscoverySources& sources, ComboPicker& rdsDir) {
  return Refresh(sources).TemplateDirectories(rdsDir);
}

base::Outcome<DumpChoice> FillReportDumps(const DiscoverySources& sources, ComboPicker& voltDump) {
  return Refresh(sources).ReportDumps(voltDump);
}

}  // namespace sw::discovery
