#pragma once
// What a routine below the session found out besides its data: how it ended and what the user is to be
// told, in the order the program tells it. The routine itself never shows anything; the session shows
// the notices (message boxes in the window, "<title>: <text>" lines on the command line), so a test
// asserts the values and the exact texts instead of scripting a dialog.
//
// Read it like a parse result:
//   auto outcome = ReadSomething(...);
//   if (!outcome) ...            // the routine did not get what it was for
//   for (auto& n : outcome.notices) ...
#include <string>
#include <utility>
#include <vector>

#include "base/notice.h"

namespace sw::base {

// `Status` is the routine's own enum; its first enumerator (the value-initialised one) means success.
template <typename Status>
struct Outcome {
  Status status{};
  std::vector<Notice> notices;  // in the order the user is told them

  explicit operator bool() const { return status == Status{}; }

  // Adds a notice; the outcome keeps its status.
  Outcome& Tell(Notice notice) {
    notices.push_back(std::move(notice));
    return *this;
  }
  Outcome& Tell(std::string text, MessageIcon icon = MessageIcon::kNone, std::string title = {}) {
    return Tell(Notice{std::move(text), std::move(title), icon});
  }
  // Ends with `failure`, keeping what was told before.
  Outcome& Fail(Status failure) {
    status = failure;
    return *this;
  }
  // Takes over what a step told, after what was told so far.
  template <typename Other>
  Outcome& Append(const Outcome<Other>& step) {
    notices.insert(notices.end(), step.notices.begin(), step.notices.end());
    return *this;
  }
};

// The status of a routine that either gets through or does not.
enum class Done { kYes, kNo };

}  // namespace sw::base
