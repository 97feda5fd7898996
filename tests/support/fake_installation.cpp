#include "fake_installation.h"

#include <stdexcept>

#include "base/windows_path.h"

namespace sw::testing {

FakeInstallation::FakeInstallation(bool withCadFiles)
    : drive_(temp.path() / "drive_c"), registry(temp.path() / "registry.reg") {
  std::filesystem::create_directories(drive_);
  base::WindowsPaths().MapDrive('C', drive_);
  if (!withCadFiles) return;
  std::filesystem::copy(DataFile("cad_install/drive_c"), drive_, std::filesystem::copy_options::recursive);
  if (!registry.MergeRegFile(DataFile("cad_install/voltaris_installation.reg"))) {
    throw std::runtime_error("the installation's registry file does not merge");
  }
  environment.Set("windir", "C:\\Windows");
  environment.Set("TEMP", "C:\\Temp");
  environment.Set("SYSTEMDRIVE", "C:");
}

FakeInstallation::~FakeInstallation() {
  base::WindowsPaths().MapDrive('C', {});
}

void FakeInstallation::Write(std::string_view relative, std::string_view bytes) const {
  temp.Write(std::string("drive_c/").append(relative), bytes);
}

void FakeInstallation::Remove(std::string_view relative) const {
  std::filesystem::remove_all(drive_ / relative);
}

void FakeInstallation::MergeReg(std::string_view regText) {
  const auto file = temp.Write("extra.reg", regText);
  if (!registry.MergeRegFile(file)) throw std::runtime_error("extra registry text does not merge");
}

}  // namespace sw::testing
