#pragma once
// The hourglass and the progress bar of a long operation. Everything runs on the one user-interface
// thread, so the bar is repainted by letting Qt handle its pending paint events at each step; the
// user's input is kept for after the operation, not handled in the middle of it.
#include <QElapsedTimer>
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

// A run reports every page and a load every few hundred lines; showing and painting each of thousands
// of steps would cost more than the steps. A step is shown when this much time has passed since the
// last one shown: 40 ms (25 pictures a second) unless set otherwise (the window tests watch them all).
void SetStepInterval(int milliseconds);

// Tells, for one kind of step, whether the next one is to be shown.
class StepPacer {
 public:
  bool Due();

 private:
  QElapsedTimer sinceShown_;
};

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
  StepPacer pacer_;
};

}  // namespace sw::gui
