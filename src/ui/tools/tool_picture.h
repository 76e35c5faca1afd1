// tool_picture.h: a tool as it is, at the size that the screen says it has.
#pragma once

#include <QWidget>

namespace norvik {

// How many times the picture is larger than the tool, of 1, 2, 5, 10 and so on and their inverses:
// the largest with which `length` pixels fit into `room`, when one pixel stands for so many at 1.
double Picture_Scale(double length, double room);

class Tool_Picture : public QWidget {
 public:
  explicit Tool_Picture(QWidget* parent = nullptr);
  // In units of the setup.
  void Show_Tool(double diameter, double offset);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double Diameter = 0, Offset = 0;
};

}  // namespace norvik
