// controls_window.h: the panel `CNC_Controls`.
//
// Lays out the controls, forwards events to the handlers of control/, and copies the record to the
// widgets when told that it changed.
#pragma once

#include "platform/platform.h"
#include "ui/widgets/form_binding.h"

#include <QWidget>

class QBoxLayout;
class QGridLayout;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

namespace norvik {

class Knob_Widget;

class Controls_Window : public QWidget {
 public:
  explicit Controls_Window(QWidget* parent = nullptr);
  ~Controls_Window() override;

  // Copies the record and the message list to the widgets.
  void Show_Form();

 protected:
  void hideEvent(QHideEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Show_Refused();
  QWidget* Build_Status();
  QWidget* Build_Run_Buttons();
  QWidget* Build_Sequences();
  QWidget* Build_Goto();
  QWidget* Build_Messages();
  void Start_Timer(int interval_ms);

  Form_Binding Binding;
  Knob_Widget* Knob = nullptr;
  QBoxLayout* Columns = nullptr;
  QGridLayout* Status_Grid = nullptr;
  QPushButton* EStop = nullptr;
  QLabel* Safety = nullptr;
  std::vector<QWidget*> To_Go;
  QScrollArea* Scroll = nullptr;
  QPlainTextEdit* Status_Box = nullptr;
  std::string Shown_Status;
  bool Shown_Refused = false;
  Timer_Id Timer = 0;      // 0: stands
  int Timer_Interval = 0;  // ms
};

}  // namespace norvik
