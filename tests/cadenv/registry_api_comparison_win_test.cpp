// The portable registry store against the Windows registry holding the same keys: the CAD
// installation's registration file is imported with regedit and both are walked the same way.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/strings.h"
#include "cadenv/portable_registry.h"
#include "cadenv/registry.h"
#include "cadenv/win32_registry.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

// Imports a registration file the way the program's "REGEDIT /s " does.
void ImportWithRegedit(const std::filesystem::path& file) {
  std::wstring commandLine = L"regedit.exe /s \"" + file.wstring() + L"\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             &startup, &process));
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

// Everything below a key as enumeration sees it: "key\value" type data, subkeys in their order.
// Values are compared in name order: Wine keeps a key's values sorted by name, Windows (and our store)
// in the order they were made, which the portable store's own tests hold.
void Walk(Registry& registry, RootKey root, const std::string& path, std::vector<std::string>& out) {
  std::vector<std::pair<std::string, std::string>> values;
  for (std::size_t i = 0;; ++i) {
    const auto value = registry.ValueAt(root, path, i);
    if (!value) break;
    values.emplace_back(value->name, path + "\\" + value->name + " type " +
                                         std::to_string(static_cast<int>(value->type)) + " " + value->data +
                                         "\n  text: " + EnumRegistryValue(registry, root, path, i).data);
  }
  std::sort(values.begin(), values.end(),
            [](const auto& a, const auto& b) { return _stricmp(a.first.c_str(), b.first.c_str()) < 0; });
  for (const auto& value : values) out.push_back(value.second);
  for (std::size_t i = 0;; ++i) {
    const auto subkey = registry.SubkeyAt(root, path, i);
    if (!subkey) break;
    out.push_back(path + "\\" + *subkey + "\\");
    Walk(registry, root, path + "\\" + *subkey, out);
  }
}

TEST(WindowsOnlyRegistryComparison, CadInstallationReadsTheSameFromTheRegistryAsFromItsFile) {
  testing::TempDir folder;
  // The CAD system's own keys, with the cases regedit's file format allows and the buffer limit. Left out:
  // names with "_" and other signs between "Z" and "a", which Windows sorts after the letters (it compares
  // upper case, as our store does) and Wine before them (it compares lower case).
  const std::string extra =
      "\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\Jamforelse]\r\n"
      "\"Zulu\"=\"sist skapad forst\"\r\n"
      "\"alfa\"=\"\"\r\n"
      "@=\"standard\"\r\n"
      "\"Utokad\"=hex(2):25,54,45,4d,50,25,00\r\n"
      "\"Flera\"=hex(7):61,00,62,00,00\r\n"
      "\"Binar\"=hex:01,02,03\r\n"
      "\"Stor\"=hex(b):01,00,00,00,00,00,00,00\r\n"
      "\"Tal\"=dword:00000005\r\n"
      "\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\Jamforelse\\Langa]\r\n"
      // Made in name order, so Wine's name order and the creation order agree on where the end is read.
      "\"a_kort\"=\"kort\"\r\n"
      "\"b_2047\"=\"" +
      std::string(2047, 'x') +
      "\"\r\n"
      "\"c_2048\"=\"" +
      std::string(2048, 'y') +
      "\"\r\n"
      "\"d_efter\"=\"efter de langa\"\r\n"
      "\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\Jamforelse\\beta]\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\Jamforelse\\Alfa]\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\VOLTARIS\\Jamforelse\\Gamma 2]\r\n";
  const std::string cadFile =
      *base::ReadWholeFile(testing::DataFile("cad_install/voltaris_installation.reg")) + extra;
  const auto portableFile = folder.Write("portable.reg", cadFile);

  // The CAD system is a 32-bit program: its machine keys are in the 32-bit view, where a 64-bit
  // regedit writes them below Wow6432Node. Earlier runs' keys go first.
  std::string imported = base::ReplaceAll(cadFile, "[HKEY_LOCAL_MACHINE\\SOFTWARE\\",
                                          "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\");
  imported.insert(imported.find('\n') + 1,
                  "\r\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\VOLTARIS]\r\n"
                  "[-HKEY_CURRENT_USER\\Software\\voltaris]\r\n");
  ImportWithRegedit(folder.Write("import.reg", imported));

  PortableRegistry portable(portableFile);
  Win32Registry windows;
  for (const auto& [root, path] : {std::pair{RootKey::kLocalMachine, std::string("SOFTWARE\\VOLTARIS")},
                                   std::pair{RootKey::kCurrentUser, std::string("Software\\voltaris")}}) {
    std::vector<std::string> fromFile;
    std::vector<std::string> fromRegistry;
    Walk(portable, root, path, fromFile);
    Walk(windows, root, path, fromRegistry);
    EXPECT_FALSE(fromRegistry.empty()) << path;
    for (std::size_t i = 0; i < std::min(fromFile.size(), fromRegistry.size()); ++i) {
      ASSERT_EQ(fromFile[i], fromRegistry[i]) << path << " entry " << i;
    }
    EXPECT_EQ(fromFile.size(), fromRegistry.size()) << path;
    for (const auto& [key, name] :
         {std::pair{"\\Jamforelse\\Langa", "b_2047"}, std::pair{"\\Jamforelse\\Langa", "c_2048"},
          std::pair{"\\Jamforelse", "Tal"}, std::pair{"\\Jamforelse", "alfa"},
          std::pair{"\\Jamforelse", ""}}) {
      EXPECT_EQ(ReadRegistryValue(portable, root, path + key, name, "standard?"),
                ReadRegistryValue(windows, root, path + key, name, "standard?"))
          << key << " " << name;
    }
  }
}

}  // namespace
}  // namespace sw::cadenv
