#pragma once
// A complete VOLTARIS installation in a temporary folder that stands in for drive C: the registry of
// data/cad_install/voltaris_installation.reg, the folders and files of data/cad_install/drive_c, and
// the environment Windows gives the program (windir, TEMP, SYSTEMDRIVE).
#include <filesystem>
#include <string_view>

#include "base/environment.h"
#include "cadenv/portable_registry.h"
#include "fake_environment.h"
#include "memory_settings.h"
#include "scripted_dialogs.h"
#include "temp_dir.h"

namespace sw::testing {

class FakeInstallation {
 public:
  // `withCadFiles` false: an empty drive C: and an empty registry, no environment.
  explicit FakeInstallation(bool withCadFiles = true);
  ~FakeInstallation();
  FakeInstallation(const FakeInstallation&) = delete;
  FakeInstallation& operator=(const FakeInstallation&) = delete;

  // The host path of a Windows path below C:.
  std::filesystem::path Host(std::string_view relative) const { return drive_ / relative; }
  // Writes a file below C: (relative path with "/").
  void Write(std::string_view relative, std::string_view bytes) const;
  void Remove(std::string_view relative) const;
  void MergeReg(std::string_view regText);

  TempDir temp;
  std::filesystem::path drive_;
  cadenv::PortableRegistry registry;
  testing::FakeEnvironment environment;
  MemorySettings settings;
  ScriptedDialogs dialogs;
};

}  // namespace sw::testing
