// On Windows the program's profile reading is the Windows calls themselves: what ReadIniSection and
// ReadIniValue give must be what GetPrivateProfileSectionA and GetPrivateProfileStringA give with the
// program's buffers, and what the portable reader gives on the same bytes.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/text_codec.h"
#include "base/utf8_path.h"
#include "profile_api_win.h"
#include "temp_dir.h"
#include "templates/profile_file.h"

namespace sw::templates {
namespace {

using Lines = std::vector<std::string>;

struct QuirkyFile {
  const char* name;
  std::string bytes;
  Lines sections;  // Windows-1252, as passed to the calls
  Lines keys;
  // False where Wine's calls are known to differ from the portable reader.
  bool portableAgrees = true;
};

std::vector<QuirkyFile> QuirkyFiles() {
  std::string manyLines = "[Sheet]\r\n";
  for (int i = 0; i < 600; ++i) manyLines += "Key" + std::to_string(i) + "=" + std::string(20, 'v') + "\r\n";
  return {
      {"duplicate_keys.ini",
       "[Sheet]\r\nA=1\r\na=2\r\nA = 3\r\n[Tabs]\r\nCommon=Gemensamt\r\n",
       {"Sheet", "Tabs"},
       {"A", "Common"}},
      {"duplicate_sections.ini",
       "[Sheet]\r\nA=1\r\n[SHEET]\r\nA=2\r\nB=3\r\n",
       {"Sheet", "sheet"},
       {"A", "B"}},
      {"comments.ini",
       "; header\r\n[Sheet]\r\n;A=1\r\n  ; B=2\r\n#C=3\r\nD=4 ;not a comment\r\n",
       {"Sheet"},
       {"A", "B", "#C", "D"}},
      {"long_value.ini",
       "[Sheet]\r\nA=" + std::string(3000, 'x') + "\r\nB=" + std::string(2046, 'y') + "\r\n",
       {"Sheet"},
       {"A", "B"}},
      // A quoted value that fits the buffer only without its quotes: Wine cuts it one character
      // shorter than the portable reader, which removes the quotes first and then cuts.
      {"long_quoted_value.ini",
       "[Sheet]\r\nC=\"" + std::string(2046, 'z') + "\"\r\n",
       {"Sheet"},
       {"C"},
       false},
      {"long_section.ini", manyLines, {"Sheet"}, {"Key0", "Key599"}},
      {"quotes_and_blanks.ini",
       "[ Sheet ]junk\r\n\tA\t=\t\"1\"\t\r\nB='2'\r\nC=\"3'\r\n",
       {"Sheet"},
       {"A", "B", "C"}},
      {"windows_1252.ini", "[\xC5TG\xC4RD]\r\n\xD6L=Malm\xF6 \x80\r\n", {"\xC5TG\xC4RD"}, {"\xD6L"}},
      {"utf16.ini",
       std::string("\xFF\xFE", 2) + base::EncodeUtf16Le("[Sheet]\r\nA=Malmö\r\n"),
       {"Sheet"},
       {"A"}},
  };
}

TEST(WindowsOnlyProfileFile, ReadsWhatTheWindowsCallsGive) {
  testing::TempDir folder;
  for (const auto& quirky : QuirkyFiles()) {
    const auto file = folder.Write(quirky.name, quirky.bytes).string();
    const auto portable = ProfileText::Parse(quirky.bytes);
    for (const auto& ansiSection : quirky.sections) {
      const std::string section = base::DecodeWindows1252(ansiSection);
      const auto lines = ReadIniSection(section, file).lines;
      EXPECT_EQ(lines, ApiSection(ansiSection, kSectionBufferSize, file))
          << quirky.name << " [" << section << "]";
      if (quirky.portableAgrees) {
        EXPECT_EQ(lines, portable.Section(section).lines) << quirky.name << " [" << section << "]";
      }
      for (const auto& ansiKey : quirky.keys) {
        const std::string key = base::DecodeWindows1252(ansiKey);
        const auto value = ReadIniValue(section, key, file);
        EXPECT_EQ(value, ApiValue(ansiSection, ansiKey, kValueBufferSize, file)) << quirky.name << " " << key;
        if (quirky.portableAgrees) {
          EXPECT_EQ(value, portable.Value(section, key).value) << quirky.name << " " << key;
        }
      }
    }
  }
}

TEST(WindowsOnlyProfileFile, StatusesTellMissingEmptyAndCutApart) {
  testing::TempDir folder;
  const auto file = folder.Write("Mall.ini", "[Sheet]\r\nA=1\r\n[Empty]\r\n").string();
  EXPECT_EQ(ReadIniSection("Sheet", file).status, ProfileStatus::kOk);
  EXPECT_EQ(ReadIniSection("Empty", file).status, ProfileStatus::kOk);
  EXPECT_EQ(ReadIniSection("Missing", file).status, ProfileStatus::kSectionNotFound);
  EXPECT_EQ(ReadIniSection("Sheet", folder.path().string() + "\\Saknas.ini").status,
            ProfileStatus::kFileNotFound);
  EXPECT_EQ(ReadIniSection("Sheet", folder.path().string()).status, ProfileStatus::kFileNotFound);
  EXPECT_EQ(ReadIniValue("Sheet", "Missing", file), "");
  EXPECT_EQ(ReadIniValue("Missing", "A", file), "");

  // The section text fills the buffer exactly (text, NUL after each line, the closing NUL) or overflows.
  const std::string exact = "[S]\r\nA=" + std::string(kSectionBufferSize - 4, 'x') + "\r\n";
  const auto exactFile = folder.Write("exact.ini", exact).string();
  EXPECT_EQ(ReadIniSection("S", exactFile).status, ProfileStatus::kOk);
  const auto cutFile =
      folder.Write("cut.ini", "[S]\r\nA=" + std::string(kSectionBufferSize, 'x') + "\r\n").string();
  const auto cut = ReadIniSection("S", cutFile);
  EXPECT_EQ(cut.status, ProfileStatus::kTruncated);
  EXPECT_EQ(cut.lines,
            ProfileText::Parse("[S]\r\nA=" + std::string(kSectionBufferSize, 'x')).Section("S").lines);
}

TEST(WindowsOnlyProfileFile, ARewrittenFileReadsItsNewContent) {
  testing::TempDir folder;
  // Windows keeps the last file read in memory while its time stamp is unchanged; rewrites within one
  // tick must still be seen.
  for (int round = 0; round < 20; ++round) {
    const auto file =
        folder.Write("VOLTARIS.INI", "[CURREPORT]\r\nREPORT_ID=" + std::to_string(round) + "\r\n");
    EXPECT_EQ(ReadIniValue("CURREPORT", "REPORT_ID", file.string()), std::to_string(round));
  }
}

TEST(WindowsOnlyProfileFile, FoldersWithLettersBeyondAsciiAreRead) {
  testing::TempDir folder;
  const auto subfolder = folder.path() / base::PathFromUtf8("Mallar \xC3\xA5\xC3\xA4\xC3\xB6");
  std::filesystem::create_directories(subfolder);
  std::ofstream(subfolder / "Plan.ini", std::ios::binary) << "[Tabs]\r\nCommon=Gemensamt\r\n";
  const std::string path = folder.path().string() + "\\Mallar \xC3\xA5\xC3\xA4\xC3\xB6\\PLAN.INI";
  EXPECT_EQ(ReadIniValue("Tabs", "Common", path), "Gemensamt");
  EXPECT_EQ(ReadIniSection("Tabs", path).lines, Lines{"Common=Gemensamt"});
}

}  // namespace
}  // namespace sw::templates
