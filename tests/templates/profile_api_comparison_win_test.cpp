// Our profile reader against the Windows calls it stands in for, GetPrivateProfileSectionA and
// GetPrivateProfileStringA, on the same files: the quirks the CAD system's files are known to have and
// a few thousand generated files mixing them. On Windows the program's own reading is those calls
// with the program's buffers; it must give what they give.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/text_codec.h"
#include "base/utf8_path.h"
#include "profile_api_win.h"
#include "temp_dir.h"
#include "templates/profile_file.h"

namespace sw::templates {
namespace {

struct Query {
  std::string section;  // Windows-1252, as the program passes it
  std::string key;      // empty: the section call
  std::size_t size;
};

// Compares every query on one file; returns the number of differences. With `program`, the program's
// own reading at its buffer sizes too.
int CompareFile(const std::string& name, const std::string& bytes, const std::vector<Query>& queries,
                const testing::TempDir& folder, bool program = false) {
  const auto file = folder.Write(name, bytes).string();
  const auto ours = ProfileText::Parse(bytes);
  int differences = 0;
  for (const auto& query : queries) {
    const std::string section = base::DecodeWindows1252(query.section);
    if (query.key.empty()) {
      const auto expected = ApiSection(query.section, query.size, file);
      const auto actual = ours.Section(section, query.size).lines;
      if (actual != expected) ++differences;
      EXPECT_EQ(actual, expected) << name << " [" << section << "] size " << query.size;
      if (program && query.size == kSectionBufferSize) {
        EXPECT_EQ(ReadIniSection(section, file).lines, expected) << name << " [" << section << "]";
      }
    } else {
      const std::string key = base::DecodeWindows1252(query.key);
      const auto expected = ApiValue(query.section, query.key, query.size, file);
      const auto actual = ours.Value(section, key, query.size).value;
      if (actual != expected) ++differences;
      EXPECT_EQ(actual, expected) << name << " [" << section << "] " << query.key << " size " << query.size;
      if (program && query.size == kValueBufferSize) {
        EXPECT_EQ(ReadIniValue(section, key, file), expected) << name << " [" << section << "] " << key;
      }
    }
  }
  return differences;
}

std::vector<Query> StandardQueries(const std::vector<std::string>& sections,
                                   const std::vector<std::string>& keys) {
  std::vector<Query> queries;
  for (const auto& section : sections) {
    for (std::size_t size : {kSectionBufferSize, std::size_t{24}, std::size_t{7}})
      queries.push_back({section, "", size});
    for (const auto& key : keys) {
      for (std::size_t size : {kValueBufferSize, std::size_t{5}}) queries.push_back({section, key, size});
    }
  }
  return queries;
}

// Files known to show a quirk of the Windows reader, by name.
struct QuirkFile {
  const char* name;
  std::string bytes;
};

const std::vector<QuirkFile>& QuirkFiles() {
  static const std::vector<QuirkFile> files{
      {"section_example.ini", "[section1]\r\nname1=val1\r\nname2=\r\nname3\r\nname4=val4\r\n"},
      {"names_ignore_case.ini", "[sHeEt]\r\nStartRow=10\r\n"},
      {"first_key_wins.ini", "[Sheet]\r\nA=1\r\nA=2\r\n"},
      {"first_section_wins.ini", "[Sheet]\r\nA=1\r\n[sheet]\r\nA=2\r\nB=3\r\n"},
      {"blanks_trimmed.ini", "  [ Sheet ]  \r\n \t A \t = \t 1 \t \r\n\vB\f=\f2\v\r\n"},
      {"text_after_bracket.ini", "[Sheet]junk\r\nA=1\r\n"},
      {"comments.ini", "[Sheet]\r\n;A=1\r\n  ;B=2\r\n#C=3\r\nD=4 ;x\r\n"},
      {"before_first_section.ini", "A=0\r\n[Sheet]\r\nB=1\r\n"},
      {"quotes.ini", "[Sheet]\r\nA=\"1\"\r\nB='2'\r\nC=\"3'\r\nD=  \"   4   \"\r\nE=\"\r\nF=\"\"\r\n"},
      {"lone_cr.ini", "[Sheet]\rA=1\rB=2\r"},
      {"lone_lf.ini", "[Sheet]\nA=1\nB=2\n"},
      {"mixed_breaks.ini", "[Sheet]\r\r\nA=1\n\r\nB=2\r\r\r\nC=3"},
      {"windows_1252.ini", "[\xC5TG\xC4RD]\r\n\xF6l=\xE5\xE4\xF6\x80\r\n"},
      {"utf16_bom.ini",
       std::string("\xFF\xFE", 2) + base::EncodeUtf16Le("[Sheet]\r\nA=1\r\n[Next]\r\nB=\xC3\xA5\r\n")},
      {"empty_value_and_key.ini", "[Sheet]\r\n=1\r\nA=\r\n = \r\n"},
      {"long_value.ini", "[Sheet]\r\nA=" + std::string(3000, 'x') + "\r\nB=2\r\n"},
  };
  return files;
}

const std::vector<Query>& QuirkQueries() {
  static const auto queries =
      StandardQueries({"Sheet", "SHEET", "section1", "Next", "\xC5TG\xC4RD", "Missing"},
                      {"A", "b", "C", "D", "E", "F", "name3", "\xF6L", "Missing"});
  return queries;
}

TEST(WindowsOnlyProfileApiComparison, KnownQuirksReadAsWindowsReadsThem) {
  testing::TempDir folder;
  for (const auto& quirk : QuirkFiles()) {
    EXPECT_EQ(CompareFile(quirk.name, quirk.bytes, QuirkQueries(), folder, true), 0) << quirk.name;
  }
}

// Left out above, since Wine's reader differs from Windows' on them: a section line without "]", a UTF-8
// byte order mark, Windows-1252 letters in names of another case, and a line with an empty name right
// after another. How Windows reads them, which ours follows, is held by profile_file_test.cpp.

// One generated file: sections, keys, comments, quotes, blanks and long lines in random order, with
// random line breaks and Windows-1252 letters.
std::string GeneratedFile(std::mt19937& random) {
  static const std::vector<std::string> pieces{"[S1]",
                                               "[ s1 ]",
                                               "[S2]",
                                               "  [S2]x",
                                               "[S3]",
                                               "[\xC5R]",
                                               "[]",
                                               "k1=v1",
                                               " K1 = other ",
                                               "k2=\"q q\"",
                                               "k2='single'",
                                               "k3=\"mixed'",
                                               "k3 =  \"  blank  \"  ",
                                               "noequals",
                                               "=novalue",
                                               "k4=",
                                               "k5=a=b",
                                               ";k1=comment",
                                               "  ;k2=comment",
                                               "#k3=hash",
                                               "k4=value ;not a comment",
                                               "\t\vk5\f=\ttabbed\t",
                                               "\xD6k=\xE5\xE4\xF6",
                                               "\xD6K=\xC5",
                                               "k1",
                                               "",
                                               "   "};
  static const std::vector<std::string> breaks{"\r\n", "\n", "\r", "\r\r\n", "\n\n"};
  std::string file;
  const int lines = std::uniform_int_distribution<int>(1, 30)(random);
  for (int i = 0; i < lines; ++i) {
    const int choice = std::uniform_int_distribution<int>(0, static_cast<int>(pieces.size()))(random);
    if (choice == static_cast<int>(pieces.size())) {
      file += "k" + std::to_string(random() % 6) + "=" +
              std::string(std::uniform_int_distribution<std::size_t>(1, 400)(random), 'L');
    } else {
      const auto& piece = pieces[static_cast<std::size_t>(choice)];
      // Wine drops an empty-named key right after another (see above), so the corpus keeps them apart.
      if (piece.starts_with('=') && file.find("=novalue") != std::string::npos) continue;
      file += piece;
    }
    file += breaks[random() % breaks.size()];
  }
  return file;
}

TEST(WindowsOnlyProfileApiComparison, GeneratedFilesReadAsWindowsReadsThem) {
  testing::TempDir folder;
  const auto queries = StandardQueries({"S1", "s2", "S3", "\xC5R", "Missing"},
                                       {"k1", "K2", "k3", "k4", "k5", "\xD6K", "noequals", "Missing"});
  std::mt19937 random(20260101);
  int differences = 0;
  int differingFiles = 0;
  constexpr int kFiles = 2000;
  for (int i = 0; i < kFiles && differingFiles < 20; ++i) {
    const int found =
        CompareFile("generated_" + std::to_string(i) + ".ini", GeneratedFile(random), queries, folder);
    differences += found;
    if (found) ++differingFiles;
  }
  EXPECT_EQ(differences, 0);
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
  EXPECT_EQ(ReadIniSection("Tabs", path).lines, std::vector<std::string>{"Common=Gemensamt"});
}

}  // namespace
}  // namespace sw::templates
