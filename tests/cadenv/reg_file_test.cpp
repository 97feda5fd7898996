#include "cadenv/reg_file.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_io.h"
#include "base/strings.h"
#include "base/text_codec.h"
#include "temp_dir.h"

namespace sw::cadenv {
namespace {

using sw::testing::DataFile;

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

std::string ReadData(std::string_view name) {
  auto bytes = base::ReadWholeFile(DataFile(name));
  EXPECT_TRUE(bytes) << name;
  return bytes.value_or("");
}

RegTree ParseOk(std::string_view text) {
  RegTree tree;
  const auto result = ParseRegFile(text, tree);
  EXPECT_TRUE(result) << result.description << " (line " << result.line << ")";
  return tree;
}

const RegistryValue* Value(const RegTree& tree, RootKey root, std::string_view path, std::string_view name) {
  const RegKey* key = tree.FindKey(root, path);
  return key ? key->FindValue(name) : nullptr;
}

std::string Utf16(std::string_view text) {
  return base::EncodeUtf16Le(text);
}

TEST(RegFileSample, RegeditExportReadsAndWritesBackByteForByte) {
  const std::string bytes = ReadData("registry/regedit_export_utf16.reg");
  const RegTree tree = ParseOk(bytes);
  const std::string key = "Software\\ZENT\\Sheetwright";

  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "LastRdsDir")->data, "C:\\VOLTARIS\\RDS\\");
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "Quoted")->data, "säg \"hej\"");
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "PageCount")->data, std::string("\x0c\0\0\0", 4));
  const auto* tempPath = Value(tree, RootKey::kCurrentUser, key, "TempPath");
  EXPECT_EQ(tempPath->type, ValueType::kExpandString);
  EXPECT_EQ(tempPath->data, "%TEMP%\\Sheetwright");
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "Layout")->data.size(), 150u);
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "Dirs")->data, std::string("D:\\Rds\0E:\\Rds", 13));
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "Stamp")->type, ValueType::kQword);
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, key, "")->data, "standard");
  EXPECT_EQ(Value(tree, RootKey::kLocalMachine, "SOFTWARE\\VOLTARIS\\Projekt Ängen", "VOLTID")->data,
            "E:\\Dump\\");

  EXPECT_EQ(SerializeRegFile(tree), bytes);
}

TEST(RegFileSample, Regedit4AnsiFileDecodesWindows1252) {
  const RegTree tree = ParseOk(ReadData("registry/regedit4_ansi.reg"));
  const std::string key = "SOFTWARE\\VOLTARIS\\projekt ängen";  // names match ignoring case
  EXPECT_EQ(Value(tree, RootKey::kLocalMachine, key, "RDS")->data,
            "C:\\Ritningar\\Kopplingsschema för ångpanna\\");
  EXPECT_EQ(Value(tree, RootKey::kLocalMachine, key, "Beskrivning")->data, "Västra ängen – Öst");
  // String-typed hex data in a REGEDIT4 file is ANSI, not UTF-16.
  EXPECT_EQ(Value(tree, RootKey::kLocalMachine, key, "Mall")->data, "%TEMP%\\åäö");
  EXPECT_EQ(Value(tree, RootKey::kCurrentUser, "Software\\ZENT\\Sheetwright", "LastVoltDmp")->data,
            "C:\\Dump\\yttre förbindningar.txt");
}

struct ValueCase {
  const char* line;
  ValueType type;
  std::string data;
};

void PrintTo(const ValueCase& c, std::ostream* os) {
  *os << c.line;
}

class RegFileValueForms : public ::testing::TestWithParam<ValueCase> {};

TEST_P(RegFileValueForms, ReadsAs) {
  const auto& param = GetParam();
  const RegTree tree = ParseOk(std::string(kHeader) + "[HKCU\\K]\r\n" + param.line + "\r\n");
  const auto& values = tree.FindKey(RootKey::kCurrentUser, "K")->Values();
  ASSERT_EQ(values.size(), 1u);
  EXPECT_EQ(values[0].type, param.type);
  EXPECT_EQ(values[0].data, param.data);
}

INSTANTIATE_TEST_SUITE_P(
    AllForms, RegFileValueForms,
    ::testing::Values(ValueCase{R"("v"="C:\\Temp\\")", ValueType::kString, "C:\\Temp\\"},
                      ValueCase{R"("v"="say \"hi\"")", ValueType::kString, "say \"hi\""},
                      ValueCase{R"("v"="C:\Temp")", ValueType::kString,
                                "C:\\Temp"},  // unknown escape keeps its backslash
                      ValueCase{R"("v"="")", ValueType::kString, ""},
                      ValueCase{R"("v" = "spaced" ; note)", ValueType::kString, "spaced"},
                      ValueCase{"\"v\"=dword:0000000c", ValueType::kDword, std::string("\x0c\0\0\0", 4)},
                      ValueCase{"\"v\"=DWORD:FFFFFFFF ; all ones", ValueType::kDword, "\xff\xff\xff\xff"},
                      ValueCase{"\"v\"=dword:1", ValueType::kDword, std::string("\x01\0\0\0", 4)},
                      ValueCase{"\"v\"=hex:de,AD,0", ValueType::kBinary, std::string("\xde\xad\0", 3)},
                      ValueCase{"\"v\"=hex:", ValueType::kBinary, ""},
                      ValueCase{"\"v\"=hex:01,02 ; comment after hex data", ValueType::kBinary, "\x01\x02"},
                      ValueCase{"\"v\"=hex(2):41,00,e5,00,00,00", ValueType::kExpandString, "Aå"},
                      ValueCase{"\"v\"=hex(1):41,00,00,00", ValueType::kString, "A"},
                      ValueCase{"\"v\"=hex(7):61,00,00,00,62,00,00,00,00,00", ValueType::kMultiString,
                                std::string("a\0b", 3)},
                      ValueCase{"\"v\"=hex(b):01,00,00,00,00,00,00,00", ValueType::kQword,
                                std::string("\x01\0\0\0\0\0\0\0", 8)},
                      ValueCase{"\"v\"=hex(0):", ValueType::kNone, ""},
                      ValueCase{"\"v\"=hex(4):0c,00,00,00", ValueType::kDword, std::string("\x0c\0\0\0", 4)},
                      ValueCase{"\"v\"=hex(100):ff", static_cast<ValueType>(0x100), "\xff"}));

TEST(RegFileParse, DefaultValueAndQuotedNamesWithEscapes) {
  const RegTree tree =
      ParseOk(std::string(kHeader) + "[HKLM\\K]\r\n@=\"d\"\r\n\"a\\\\b \\\"c\\\"\"=\"x\"\r\n");
  const auto& values = tree.FindKey(RootKey::kLocalMachine, "K")->Values();
  ASSERT_EQ(values.size(), 2u);
  EXPECT_EQ(values[0].name, "");
  EXPECT_EQ(values[1].name, "a\\b \"c\"");
}

TEST(RegFileParse, HexContinuationLinesWithBlanksAndComments) {
  const RegTree tree = ParseOk(std::string(kHeader) +
                               "[HKCU\\K]\r\n"
                               "\"v\"=hex:01,02,\\\r\n"
                               "    03,04,\\\r\n"
                               "; a comment inside the data\r\n"
                               "\t05\r\n"
                               "\"w\"=hex:0a,\\\r\n"
                               "\r\n"
                               "\"x\"=hex:0b,\\");  // the file ends inside the data
  const RegKey* key = tree.FindKey(RootKey::kCurrentUser, "K");
  EXPECT_EQ(key->FindValue("v")->data, "\x01\x02\x03\x04\x05");
  EXPECT_EQ(key->FindValue("w")->data, "\x0a");
  EXPECT_EQ(key->FindValue("x")->data, "\x0b");
}

TEST(RegFileParse, LineEndsOfEveryKind) {
  const RegTree tree = ParseOk("REGEDIT4\n[HKCU\\A]\r\"x\"=\"1\"\r\n\"y\"=\"2\"\n");
  EXPECT_EQ(tree.FindKey(RootKey::kCurrentUser, "A")->Values().size(), 2u);
}

TEST(RegFileParse, DeletionsOfValuesAndTrees) {
  RegTree tree = ParseOk(std::string(kHeader) +
                         "[HKCU\\A\\B\\C]\r\n\"c\"=\"1\"\r\n"
                         "[HKCU\\A]\r\n\"keep\"=\"1\"\r\n\"drop\"=\"2\"\r\n");
  const auto result = ParseRegFile(std::string(kHeader) +
                                       "[HKCU\\A]\r\n\"DROP\"=-\r\n\"missing\"=- ; nothing to delete\r\n"
                                       "[-HKCU\\a\\b]\r\n\"ignored\"=hex:01,\\\r\n  02\r\n"
                                       "[-HKCU\\No\\Such\\Key]\r\n",
                                   tree);
  ASSERT_TRUE(result) << result.description;
  const RegKey* a = tree.FindKey(RootKey::kCurrentUser, "A");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->Values().size(), 1u);
  EXPECT_EQ(a->Values()[0].name, "keep");
  EXPECT_TRUE(a->Subkeys().empty());
  EXPECT_EQ(tree.FindKey(RootKey::kCurrentUser, "No"), nullptr);
}

struct ErrorCase {
  std::string text;
  RegParseStatus status;
  std::size_t line;
  std::size_t column;
};

void PrintTo(const ErrorCase& c, std::ostream* os) {
  *os << "status " << static_cast<int>(c.status) << " at " << c.line << ":" << c.column;
}

class RegFileErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(RegFileErrors, StopsWithStatusAndPosition) {
  RegTree tree;
  const auto result = ParseRegFile(GetParam().text, tree);
  EXPECT_EQ(result.status, GetParam().status);
  EXPECT_EQ(result.line, GetParam().line);
  EXPECT_EQ(result.column, GetParam().column);
  EXPECT_FALSE(result.description.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Malformed, RegFileErrors,
    ::testing::Values(
        ErrorCase{"", RegParseStatus::kMissingHeader, 0, 1},
        ErrorCase{"REGEDIT5\r\n", RegParseStatus::kMissingHeader, 1, 1},
        ErrorCase{"\r\nREGEDIT4\r\n", RegParseStatus::kMissingHeader, 1, 1},
        ErrorCase{"REGEDIT4\r\n[HKCU\\A\r\n", RegParseStatus::kBadKeyLine, 2, 8},
        ErrorCase{"REGEDIT4\r\n[HKEY_USERS\\A]\r\n", RegParseStatus::kUnknownRoot, 2, 2},
        ErrorCase{"REGEDIT4\r\n\"a\"=\"b\"\r\n", RegParseStatus::kValueOutsideKey, 2, 1},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a=\"b\"\r\n", RegParseStatus::kBadValueName, 3, 5},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"\xe4\" \"b\"\r\n", RegParseStatus::kBadValueName, 3, 5},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=\"b\r\n", RegParseStatus::kBadValueData, 3, 5},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=\"b\" x\r\n", RegParseStatus::kBadValueData, 3, 8},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=dword:123456789\r\n", RegParseStatus::kBadValueData, 3, 19},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=dword:\r\n", RegParseStatus::kBadValueData, 3, 11},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=hex:123\r\n", RegParseStatus::kBadValueData, 3, 11},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=hex:01,,02\r\n", RegParseStatus::kBadValueData, 3, 12},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=hex:01 02\r\n", RegParseStatus::kBadValueData, 3, 12},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=hex(zz):01\r\n", RegParseStatus::kBadValueData, 3, 9},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=hex:01,\\\r\n  02,xx\r\n", RegParseStatus::kBadValueData, 4,
                  6},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\n\"a\"=text\r\n", RegParseStatus::kBadValueData, 3, 5},
        ErrorCase{"REGEDIT4\r\n[HKCU]\r\nstray text\r\n", RegParseStatus::kUnrecognisedLine, 3, 1}));

TEST(RegFileParse, KeyDeeperThanWindowsAllowsIsRefused) {
  std::string path = "HKCU";
  for (std::size_t i = 0; i <= kMaxKeyDepth; ++i) path += "\\k";
  RegTree tree;
  EXPECT_EQ(ParseRegFile("REGEDIT4\r\n[" + path + "]\r\n", tree).status, RegParseStatus::kKeyTooDeep);
}

TEST(RegTreeOrder, SubkeysSortedAsWindowsValuesInCreationOrder) {
  const RegTree tree = ParseOk(std::string(kHeader) +
                               "[HKCU\\K\\beta]\r\n[HKCU\\K\\Alpha]\r\n[HKCU\\K\\A_B]\r\n[HKCU\\K\\AB]\r\n"
                               "[HKCU\\K\\ALPHA\\x]\r\n"
                               "[HKCU\\K]\r\n\"z\"=\"1\"\r\n\"a\"=\"2\"\r\n\"M\"=\"3\"\r\n\"Z\"=\"4\"\r\n");
  const RegKey* key = tree.FindKey(RootKey::kCurrentUser, "k");
  std::vector<std::string> subkeys;
  for (const auto& subkey : key->Subkeys()) subkeys.push_back(subkey.Name());
  // Windows compares upper-cased names, so '_' sorts after every letter ("ALPHA" < "A_B").
  EXPECT_EQ(subkeys, (std::vector<std::string>{"AB", "Alpha", "A_B", "beta"}));
  std::vector<std::string> values;
  for (const auto& value : key->Values()) values.push_back(value.name + "=" + value.data);
  // Setting "Z" again replaces "z" where it stands and keeps the first spelling.
  EXPECT_EQ(values, (std::vector<std::string>{"z=4", "a=2", "M=3"}));
}

TEST(RegFileWrite, RoundTripKeepsEveryValueAndWrapsHexLikeRegedit) {
  RegTree tree;
  RegKey* key = tree.CreateKey(RootKey::kCurrentUser, "Software\\Odd ] [names\\Å");
  key->SetValue("", ValueType::kString, "default");
  key->SetValue("quote\"back\\slash", ValueType::kString, "text \"with\" \\ escapes");
  key->SetValue("lines", ValueType::kString, "one\r\ntwo");
  key->SetValue("nul", ValueType::kString, std::string("a\0b", 3));
  key->SetValue("trailing nul", ValueType::kExpandString, std::string("x\0", 2));
  key->SetValue("empty list", ValueType::kMultiString, "");
  key->SetValue("list", ValueType::kMultiString, std::string("one\0two", 7));
  key->SetValue("short dword", ValueType::kDword, "\x01\x02");
  key->SetValue("long", ValueType::kBinary, std::string(300, '\x5a'));
  key->SetValue("odd type", static_cast<ValueType>(0xabcd), "\x01");
  tree.CreateKey(RootKey::kLocalMachine, "Empty\\Key");
  tree.Hive(RootKey::kLocalMachine).SetValue("on hive", ValueType::kString, "root value");

  const std::string bytes = SerializeRegFile(tree);
  RegTree again;
  const auto result = ParseRegFile(bytes, again);
  ASSERT_TRUE(result) << result.description << " line " << result.line;
  EXPECT_EQ(again, tree);

  const std::string text = FormatRegText(tree);
  EXPECT_EQ(text.rfind(kHeader, 0), 0u);
  EXPECT_EQ(text.substr(text.size() - 4), "\r\n\r\n");
  for (const auto line : base::Split(text, '\n')) EXPECT_LE(line.size(), 81u) << line;
  EXPECT_NE(text.find("\"nul\"=hex(1):61,00,00,00,62,00,00,00\r\n"), std::string::npos);
  EXPECT_NE(text.find("\"short dword\"=hex(4):01,02\r\n"), std::string::npos);
  EXPECT_NE(text.find("[HKEY_LOCAL_MACHINE]\r\n\"on hive\"=\"root value\"\r\n"), std::string::npos);
  EXPECT_EQ(bytes.substr(0, 2), "\xff\xfe");
  EXPECT_EQ(bytes.substr(2, 16), Utf16("Windows "));
}

}  // namespace
}  // namespace sw::cadenv
