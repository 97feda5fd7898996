#pragma once
// How a view hears what a Session operation changed, so it redraws exactly that and never polls.
#include <cstdint>

namespace sw::session {

enum class Change : std::uint32_t {
  kTable = 1u << 0,        // the report table's rows or cells (a load, an edit, a clean-up)
  kMarks = 1u << 1,        // the page-break marks were drawn again
  kPickers = 1u << 2,      // the directory, template or dump picker, or the template's error label
  kFields = 1u << 3,       // the field panel's captions, texts or enabled states
  kSheetNumber = 1u << 4,  // cboSheetNo's list or text
  kCommands = 1u << 5,     // a command's checked or enabled state (305, 306, 707)
  kWorkbook = 1u << 6,     // a generation ended: the last workbook's path
};

class Changes {
 public:
  constexpr Changes() = default;
  constexpr Changes(Change change) : bits_(static_cast<std::uint32_t>(change)) {}  // NOLINT: a set of one
  constexpr Changes operator|(Changes other) const { return FromBits(bits_ | other.bits_); }
  constexpr Changes& operator|=(Changes other) {
    bits_ |= other.bits_;
    return *this;
  }
  constexpr bool Has(Change change) const { return (bits_ & static_cast<std::uint32_t>(change)) != 0; }
  constexpr bool Empty() const { return bits_ == 0; }

 private:
  static constexpr Changes FromBits(std::uint32_t bits) {
    Changes changes;
    changes.bits_ = bits;
    return changes;
  }
  std::uint32_t bits_ = 0;
};

constexpr Changes operator|(Change a, Change b) {
  return Changes(a) | Changes(b);
}

class SessionObserver {
 public:
  virtual ~SessionObserver() = default;
  virtual void SessionChanged(Changes what) = 0;
};

}  // namespace sw::session
