#include "gui/busy_state.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace sw::gui {

HourglassGuard::HourglassGuard() {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

HourglassGuard::~HourglassGuard() {
  QGuiApplication::restoreOverrideCursor();
}

void RepaintPending() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

namespace {
int stepIntervalMs = 40;
}  // namespace

void SetStepInterval(int milliseconds) {
  stepIntervalMs = milliseconds;
}

bool StepPacer::Due() {
  if (sinceShown_.isValid() && sinceShown_.elapsed() < stepIntervalMs) return false;
  sinceShown_.start();
  return true;
}

ProgressBarLoadProgress::ProgressBarLoadProgress(QProgressBar* bar, std::function<void(bool)> busyChanged)
    : bar_(bar), busyChanged_(std::move(busyChanged)) {}

void ProgressBarLoadProgress::Begin(int lineCount) {
  if (busyChanged_) busyChanged_(true);
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  if (bar_) {
    bar_->setRange(0, std::max(lineCount - 1, 1));
    bar_->setValue(0);
    bar_->setVisible(true);
  }
  RepaintPending();
}

void ProgressBarLoadProgress::Step(int linesDone) {
  if (!pacer_.Due()) return;
  if (bar_) bar_->setValue(linesDone);
  RepaintPending();
}

void ProgressBarLoadProgress::End() {
  if (bar_) bar_->setVisible(false);
  QGuiApplication::restoreOverrideCursor();
  if (busyChanged_) busyChanged_(false);
}

}  // namespace sw::gui
