#pragma once
// A stand-in for Excel that writes down every call as the line of automation code it stands for
// ("Sheets(2).Copy After:=Sheets(3)", "Sheets(4).Cells(5, 2).Value = \"X\"") and keeps just enough
// state (workbooks, sheet names, cell texts, page breaks) to answer the calls the program makes.
// It can be told to fail a given call with a given error number.
//
// Members that can be failed, as the key of FailCall: "CreateObject", "Visible=", "Quit",
// "CutCopyMode=", "Open", "OpenText", "Count", "Name", "Name=", "Copy", "Select", "Value", "Value=",
// "ClearContents", "PasteSpecial", "Weight=", "AutoFit", "Add", "SaveAs", "Save", "Close", "FullName".
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "excel/automation.h"

namespace sw::excel {

class Recording {
 public:
  struct SheetState {
    SheetId id = 0;
    std::string name;
    std::map<std::pair<int, int>, std::string> cells;  // (row, column) -> text
    std::set<int> pageBreakRows;                       // rows a manual break stands above
  };
  struct WorkbookSnapshot {
    std::vector<SheetState> sheets;
    const SheetState* Find(std::string_view name) const;
  };

  // A workbook file that Workbooks.Open can open, with its sheets in order.
  void AddWorkbookFile(const std::string& path, std::vector<std::string> sheetNames);
  // Makes the `occurrence`-th call (1-based, counted over the whole recording) of `member` throw
  // base::NumberedError(number, description) before it has any effect.
  void FailCall(const std::string& member, int occurrence, int number, std::string description = {});

  const std::vector<std::string>& lines() const { return lines_; }
  // Every workbook file as it was last written by Save/SaveAs, by path.
  const std::map<std::string, WorkbookSnapshot>& files() const { return files_; }
  int applicationsCreated() const { return applicationsCreated_; }

  // Used by the engine.
  void Record(const std::string& member, std::string line);
  std::map<std::string, WorkbookSnapshot>& mutableFiles() { return files_; }
  void CountApplication() { ++applicationsCreated_; }
  SheetId NextSheetId() { return ++lastSheetId_; }

 private:
  struct Failure {
    int occurrence;
    int number;
    std::string description;
  };
  std::vector<std::string> lines_;
  std::map<std::string, WorkbookSnapshot> files_;
  std::multimap<std::string, Failure> failures_;
  std::map<std::string, int> calls_;
  int applicationsCreated_ = 0;
  SheetId lastSheetId_ = 0;
};

// A new application over `recording`, as CreateObject("Excel.Application") would give one; throws
// when the recording was told to fail "CreateObject". `recording` must outlive the application.
std::unique_ptr<Application> CreateRecordingApplication(Recording& recording);

}  // namespace sw::excel
