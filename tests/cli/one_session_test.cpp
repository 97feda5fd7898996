// `generate` without --dump or --template finds them as the window would at start-up and then works
// with what it found in the same session: the dump is read as often as when both are named, and
// nothing the user is told about a failure is told twice.
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "cli_runner.h"
#include "temp_dir.h"

namespace sw::testing {
namespace {


// How often a file is opened while it is watched. Its closes are watched too: the system merges an
// event into the one before it when both are alike, and an open between two closes is not.
class OpenCounter {
 public:
  explicit OpenCounter(const std::filesystem::path& file)
      : fd_(::inotify_init1(IN_NONBLOCK)),
        watch_(::inotify_add_watch(fd_, file.c_str(), IN_OPEN | IN_CLOSE)) {}
  ~OpenCounter() { ::close(fd_); }
  OpenCounter(const OpenCounter&) = delete;
  OpenCounter& operator=(const OpenCounter&) = delete;

  bool Watching() const { return fd_ >= 0 && watch_ >= 0; }
  // The opens since the last call.
  int Take() {
    int opens = 0;
    alignas(inotify_event) char buffer[4096];
    for (;;) {
      const ssize_t got = ::read(fd_, buffer, sizeof buffer);
      if (got <= 0) break;
      for (ssize_t at = 0; at < got;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
        if (event->mask & IN_OPEN) ++opens;
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
    return opens;
  }

 private:
  int fd_;
  int watch_;
};

// The lines of `text` that occur more than once.
std::vector<std::string> RepeatedLines(const std::string& text) {
  std::map<std::string, int> seen;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) ++seen[line];
  std::vector<std::string> repeated;
  for (const auto& [line, count] : seen) {
    if (count > 1) repeated.push_back(line);
  }
  return repeated;
}

// A user whose CAD system last wrote a report "Mall": the window would choose the dump and the
// template that the settings remember.
class OneSessionTest : public ::testing::Test {
 protected:
  OneSessionTest() {
    cli.environment.push_back("windir=" + temp.path().string());
    temp.Write("VOLTARIS.INI", "[CURREPORT]\r\nREPORT_ID=Mall\r\nREPORT_FIRST=1\r\n");
    dump = temp.Write("Rapport/volt_report.txt", *base::ReadWholeFile(kExample));
    workbook = temp.Write("Mallar/Mall.xlsx", *base::ReadWholeFile(DataFile("templates/title_block.xlsx")));
    temp.Write("Mallar/Mall.ini", kIni);
    Remember(dump.string(), (temp.path() / "Mallar").string());
  }

  void Remember(const std::string& lastDump, const std::string& lastTemplateDir) const {
    temp.Write(cli.RegistryFile().filename().string(),
               "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\ZENT\\Sheetwright]\r\n\"LastVoltDmp\"=\"" +
                   lastDump + "\"\r\n\"LastRdsDir\"=\"" + lastTemplateDir + "\"\r\n");
  }

  std::string Target(const std::string& name) const { return (temp.path() / name).string(); }

  TempDir temp;
  CliRunner cli{temp.path()};
  std::filesystem::path dump;
  std::filesystem::path workbook;
};

TEST_F(OneSessionTest, TheDumpIsReadOnceWhetherFoundOrNamed) {
  OpenCounter opens(dump);
  ASSERT_TRUE(opens.Watching());

  auto result = cli.Run(
      {"generate", "--dump", dump.string(), "--template", workbook.string(), "--out", Target("Named.xlsx")});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const int named = opens.Take();
  EXPECT_GT(named, 0);

  result = cli.Run({"generate", "--out", Target("Found.xlsx")});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, std::filesystem::path(Target("Found.xlsx")).string() + "\n");
  EXPECT_EQ(opens.Take(), named);

  // Only the template found, only the dump found.
  result = cli.Run({"generate", "--dump", dump.string(), "--out", Target("Dump.xlsx")});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(opens.Take(), named);
  result = cli.Run({"generate", "--template", workbook.string(), "--out", Target("Template.xlsx")});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(opens.Take(), named);
}

TEST_F(OneSessionTest, EachFailureIsToldOnce) {
  // A dump that cannot be read, a template whose INI file lacks its [Tabs], a common field without
  // its section: each told where it is found, and only there.
  const struct {
    const char* what;
    std::string dumpBytes;
    std::string ini;
    std::string told;
  } cases[] = {
      {"UTF-16 big-endian dump", std::string("\xFE\xFF\0R", 4), kIni, "big-endian"},
      {"INI file without [Tabs]", *base::ReadWholeFile(kExample),
       "[Sheet]\r\nSHEETNO=H2\r\nNEXTSHEET=H3\r\nLOCATION=B5\r\nSTARTROW=10\r\nENDROW=40\r\nCOLUMNS=A,B,"
       "C\r\n",
       ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    temp.Write("Rapport/volt_report.txt", c.dumpBytes);
    temp.Write("Mallar/Mall.ini", c.ini);
    for (const std::vector<std::string>& inputs :
         {std::vector<std::string>{"--dump", dump.string(), "--template", workbook.string()},
          std::vector<std::string>{}}) {
      std::vector<std::string> args = {"generate", "--out", Target("Lista.xlsx")};
      args.insert(args.end(), inputs.begin(), inputs.end());
      const auto result = cli.Run(args);
      EXPECT_NE(result.exitCode, 0);
      EXPECT_NE(result.err, "");
      EXPECT_NE(result.err.find(c.told), std::string::npos) << result.err;
      EXPECT_EQ(RepeatedLines(result.err), std::vector<std::string>{}) << result.err;
    }
  }
}

}  // namespace
}  // namespace sw::testing
