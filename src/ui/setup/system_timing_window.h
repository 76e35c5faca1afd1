// system_timing_window.h: the window `System_Timing`: finds the time constant at a feed of its own.
#pragma once

#include "platform/platform.h"

#include <QWidget>

class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace norvik {

class System_Timing_Window : public QWidget {
 public:
  explicit System_Timing_Window(QWidget* parent = nullptr);
  ~System_Timing_Window() override;

 protected:
  // A search that nobody sees any more is cancelled.
  void hideEvent(QHideEvent* event) override;

 private:
  QLabel* Add_Figure(QGridLayout& grid, const QString& title, const QString& name,
                     const QString& unit);
  QWidget* Build_Buttons();
  void Start();
  void Cancel();
  void Show_Form();

  QLineEdit* Feed;
  QLabel *Constant, *Actual, *Error, *Result;
  QPushButton *Start_Button = nullptr, *Cancel_Button = nullptr;
  Timer_Id Timer = 0;
  bool Runs = false;  // a calibration that this window began
};

}  // namespace norvik
