#pragma once
// The "Avbryt" button of a running generation. The run asks now and then whether the user wants it
// stopped; each time it asks, the window gets to handle its events, so that it paints and the button
// (or Esc) can be used. Any other input is held back while the run goes on: the run works on the
// window's table and must not have it changed or another command started under it.
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

class QPushButton;
class QWidget;

namespace sw::gui {

class GenerationCancel final : public QObject {
 public:
  // `button` is shown only while a run goes on; closing `window` then stops the run instead.
  GenerationCancel(QPushButton* button, QWidget* window);
  ~GenerationCancel() override;

  void Begin();
  void End();
  // Lets the window handle its events (at most every few hundredths of a second) and tells whether
  // the user asked the run to stop since Begin.
  bool Requested();
  // The workbook's save cannot be stopped half-way: while it runs, the button is greyed and a stop
  // asked for is not taken.
  void SetStoppable(bool stoppable);
  void Request();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPointer<QPushButton> button_;
  QWidget* window_;
  bool active_ = false;
  bool requested_ = false;
  bool stoppable_ = true;
  QElapsedTimer sinceEvents_;
};

}  // namespace sw::gui
