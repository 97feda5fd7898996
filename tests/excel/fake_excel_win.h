#pragma once
// Excel's automation objects as IDispatch, answering by member name and named arguments as Excel does
// for the members the program uses, with the package engine behind them doing the work: the workbooks
// are real files, read back by the tests as any workbook. It can fail a chosen call with a chosen
// error, refuse writes to chosen cells as protected cells are refused, and counts the calls that would
// cross into Excel's process.
#include <oaidl.h>

#include <memory>
#include <string>

namespace sw::excel::testing {

struct FakeState;

class FakeExcel {
 public:
  FakeExcel();
  ~FakeExcel();
  FakeExcel(const FakeExcel&) = delete;
  FakeExcel& operator=(const FakeExcel&) = delete;

  // Makes the `occurrence`-th call (1-based) of `member` fail before it has any effect, with
  // EXCEPINFO holding `scode` (Excel's own errors, 0x800A03EC for 1004) or the run-time number
  // `wCode`. A property put is named with "=" ("Name=", "Value=").
  void FailCall(const std::string& member, int occurrence, HRESULT scode, unsigned short wCode = 0,
                const std::string& description = "");
  // Every write reaching (row, column) of any sheet is refused, as a protected cell refuses it.
  void LockCell(int row, int column);

  // A new application object, as CoCreateInstance hands one out (the caller owns the reference).
  HRESULT CreateApplication(IDispatch** application);

  // Calls that crossed the interface: Invoke and GetIDsOfNames.
  int crossings() const;
  int CallsOf(const std::string& member) const;  // Invokes of one member ("Value=" for puts)
  // References handed out and not yet released.
  int ReferencesHeldOutside() const;
  bool visible() const;
  bool userControl() const;

 private:
  std::unique_ptr<FakeState> state_;
};

}  // namespace sw::excel::testing
