// travel_bar.h: where the carriage of an axis is between its stops.
#pragma once

#include "simulate/simulated_machine.h"

#include <QWidget>

namespace norvik {

// Hard stops are solid blocks at both ends, switches are hatched, the carriage is a pointer.
class Travel_Bar : public QWidget {
 public:
  explicit Travel_Bar(QWidget* parent = nullptr);
  void Show_View(const Simulated_Axis_View& view);
  // The place of a position on the bar, pixels from the left.
  double Place_Of(double position) const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double Low() const { return Axis.Travel_Low - Axis.Overtravel; }
  double High() const { return Axis.Travel_High + Axis.Overtravel; }
  void Draw_Ends(QPainter& painter) const;
  void Draw_Carriage(QPainter& painter) const;

  Simulated_Axis_View Axis;
};

}  // namespace norvik
