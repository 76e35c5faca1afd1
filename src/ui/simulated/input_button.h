// input_button.h: one input of the simulated machine: a button that presses it and, beside it or by
// a right click, its faults.
#pragma once

#include "simulate/simulated_machine.h"

#include <QWidget>

class QPushButton;

namespace norvik {

// The machine's inputs by number: 0 E-stop, 1 to 4 the switches of the axes, 5 auxiliary.
QString Input_Name(int input);

// What is set is written on the button, a line for each fault: no colour stands alone.
class Input_Button : public QWidget {
 public:
  explicit Input_Button(int input, QWidget* parent = nullptr);
  void Show_View(const Simulated_Input_View& view);

 private:
  void Press();
  void Offer_Faults(const QPoint& place);

  int Input = 0;
  QPushButton* Button = nullptr;
  QPushButton* Faults = nullptr;
};

}  // namespace norvik
