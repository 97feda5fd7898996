#pragma once
// A stand-in for Excel's automation objects, answering IDispatch calls by member name as Excel
// does for the members the program uses: Application, Workbooks, Workbook, Sheets, Worksheet,
// Range, Border and HPageBreaks. It holds its workbooks' sheets, cell values and page breaks, can
// fail a chosen call with a chosen error, and counts the calls that would cross into Excel's process.
#include <oaidl.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace sw::excel::testing {

struct FakeCell {
  std::string text;
  bool number = false;  // Excel took the text it was given for a number
};

struct FakeSheet {
  std::string name;
  std::map<std::pair<int, int>, FakeCell> cells;  // (row, column)
  std::set<int> pageBreakRows;
  std::set<std::pair<int, int>> lockedCells;  // refuse every write, as a protected cell does
};

struct FakeFile {
  std::vector<FakeSheet> sheets;
  std::size_t activeSheet = 0;  // the sheet the file opens on
  const FakeSheet* Find(const std::string& name) const;
};

struct FakeState;

class FakeExcel {
 public:
  FakeExcel();
  ~FakeExcel();
  FakeExcel(const FakeExcel&) = delete;
  FakeExcel& operator=(const FakeExcel&) = delete;

  // A workbook file Workbooks.Open can open; Save and SaveAs write files back here.
  void AddFile(const std::string& path, FakeFile file);
  const std::map<std::string, FakeFile>& files() const;

  // Makes the `occurrence`-th call (1-based) of `member` fail before it has any effect, with
  // EXCEPINFO holding `scode` (Excel's own errors, 0x800A03EC for 1004) or the run-time number
  // `wCode`. A property put is named with "=" ("Name=", "Value=").
  void FailCall(const std::string& member, int occurrence, HRESULT scode, unsigned short wCode = 0,
                const std::string& description = "");

  // A new application object, as CoCreateInstance hands one out (the caller owns the reference).
  HRESULT CreateApplication(IDispatch** application);

  // Calls that crossed the interface: Invoke and GetIDsOfNames.
  int invokes() const;
  int nameLookups() const;
  int CallsOf(const std::string& member) const;  // Invokes of one member ("Value=" for puts)
  // References handed out and not yet released.
  int ReferencesHeldOutside() const;
  bool visible() const;
  bool userControl() const;
  // The named arguments of the last OpenText call, as text ("FieldInfo" as "1:2,2:2,...").
  const std::map<std::string, std::string>& lastOpenText() const;
  // The workbooks still open, with their sheets as they are now.
  std::vector<FakeFile> OpenWorkbooks() const;

 private:
  std::unique_ptr<FakeState> state_;
};

}  // namespace sw::excel::testing
