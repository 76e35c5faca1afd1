// axes_panel.h: a row for each axis: true place, steps apart, rate, motor, travel.
#pragma once

#include "simulate/simulated_machine.h"

#include <array>

#include <QGroupBox>

class QLabel;

namespace norvik {

class Travel_Bar;

class Axes_Panel : public QGroupBox {
 public:
  explicit Axes_Panel(QWidget* parent = nullptr);
  void Show_View(const Simulated_Machine_View& view);

 private:
  struct Axis_Row {
    QLabel *Position, *Apart, *Rate, *State;
    Travel_Bar* Travel;
  };
  void Show_Axis(const Axis_Row& row, const Simulated_Axis_View& view);

  std::array<Axis_Row, 5> Axes{};
};

// Sets a text only where it differs: ten times a second most do not.
void Set_Text(QLabel& label, const QString& text);

}  // namespace norvik
