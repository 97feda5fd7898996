#pragma once
// A run-time error with its number, raised by Excel (or the engine that stands in for it) and by the
// program's own routines alike, so one handler tells every failure apart by number and shows it as
// "<number> - <description>".
#include <stdexcept>
#include <string>
#include <utility>

#include "base/error_numbers.h"

namespace sw::base {

class NumberedError : public std::runtime_error {
 public:
  NumberedError(int number, std::string description)
      : std::runtime_error(description), number_(number), description_(std::move(description)) {}
  // With the number's own text (ErrorText).
  explicit NumberedError(int number) : NumberedError(number, ErrorText(number)) {}
  int number() const { return number_; }
  const std::string& description() const { return description_; }

 private:
  int number_;
  std::string description_;
};

}  // namespace sw::base
