// Files too big to hold: a template that cannot be a workbook is refused from its first bytes and its
// size, before it is read whole, and a parser that runs out of memory says so instead of calling good
// XML invalid.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <pugixml.hpp>

#include "excel/application_factory.h"
#include "excel/automation.h"
#include "excel/package/package.h"
#include "excel/package/workbook_document.h"
#include "temp_dir.h"

namespace sw::excel {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// A file of `size` bytes that starts with `head` and takes no room on disk beyond it.
fs::path SparseFile(const testing::TempDir& folder, const char* name, std::string_view head,
                    std::uintmax_t size) {
  const fs::path path = folder.Write(name, head);
  fs::resize_file(path, size);
  return path;
}

std::string OpenMessage(const fs::path& path) {
  auto excel = CreateApplication(EngineKind::kPackage);
  try {
    excel->Workbooks().Open(path.string(), true);
  } catch (const base::NumberedError& error) {
    return error.description();
  }
  return "opened";
}

// More than any allocation can hold: read whole, such a file ends the process or throws bad_alloc.
#ifdef _WIN32
// Windows (and Wine) write a file's length out as zeros unless it is marked sparse; 4 GB is past every
// limit and still quick to make.
constexpr std::uintmax_t kHugeFileSize = 4ull << 30;
#else
constexpr std::uintmax_t kHugeFileSize = 2ull << 40;
#endif

TEST(HugeFiles, ANonZipFileIsNoWorkbookWhateverItsSize) {
  testing::TempDir folder;
  EXPECT_EQ(OpenMessage(SparseFile(folder, "stor.xlsx", "Detta är text", kHugeFileSize)),
            "Filen är inte en Excel-arbetsbok.");
  EXPECT_THAT(
      OpenMessage(SparseFile(folder, "gammal.xlsx", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", kHugeFileSize)),
      HasSubstr("det äldre Excel-formatet"));
}

TEST(HugeFiles, AZipArchiveLargerThanAnyWorkbookIsRefusedBeforeItIsRead) {
  testing::TempDir folder;
  EXPECT_EQ(OpenMessage(SparseFile(folder, "stor.xlsx", "PK\x03\x04", kHugeFileSize)),
            "Filen är för stor för att vara en arbetsbok (" + std::to_string(kHugeFileSize >> 20) +
                " MB; högst 1088 MB).");
  EXPECT_THROW(WorkbookDocument::CheckFileHead("PK\x03\x04", (1088ull << 20) + 1), std::exception);
  EXPECT_NO_THROW(WorkbookDocument::CheckFileHead("PK\x03\x04", 1088ull << 20));
}

TEST(HugeFiles, AParserOutOfMemoryIsToldAsSuchNotAsBadXml) {
  pugi::xml_parse_result exhausted;
  exhausted.status = pugi::status_out_of_memory;
  EXPECT_THROW(CheckParseResult("xl/worksheets/sheet1.xml", exhausted), std::bad_alloc);

  pugi::xml_parse_result broken;
  broken.status = pugi::status_end_element_mismatch;
  broken.offset = 12;
  try {
    CheckParseResult("xl/worksheets/sheet1.xml", broken);
    ADD_FAILURE() << "bad XML was accepted";
  } catch (const PackageError& error) {
    EXPECT_STREQ(error.what(), "Delen xl/worksheets/sheet1.xml är inte giltig XML (fel vid tecken 12).");
  }
  pugi::xml_parse_result good;
  good.status = pugi::status_ok;
  EXPECT_NO_THROW(CheckParseResult("xl/workbook.xml", good));
}

}  // namespace
}  // namespace sw::excel
