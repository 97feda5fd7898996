#pragma once
// The hourglass and the progress bar of a long operation. Everything runs on the one user-interface
// thread, so the bar is repainted by letting Qt handle its pending paint events at each step; the
// user's input is kept for after the operation, not handled in the middle of it.
#include <QPointer>
#include <QProgressBar>
#include <functional>

#include "session/front_end.h"

namespace sw::gui {

// The hourglass for as long as the guard lives (nested guards stack).
class HourglassGuard {
 public:
  HourglassGuard();
  ~HourglassGuard();
  HourglassGuard(const HourglassGuard&) = delete;
  HourglassGuard& operator=(const HourglassGuard&) = delete;
};

// Repaints what is waiting to be painted without handling the user's input.
void RepaintPending();

// A dump load's progress on the window's progress bar; `busyChanged` tells the command bars.
class ProgressBarLoadProgress final : public report::LoadProgress {
 public:
  ProgressBarLoadProgress(QProgressBar* bar, std::function<void(bool busy)> busyChanged);

  void Begin(int lineCount) override;
  void Step(int linesDone) override;
  void End() override;

 private:
  QPointer<QProgressBar> bar_;
  std::function<void(bool)> busyChanged_;
};

}  // namespace sw::gui
