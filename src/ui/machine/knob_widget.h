// knob_widget.h: the feed override knob.
#pragma once

#include <QWidget>

namespace norvik {

// Draws the dial with the pointer of `CNC_Controls.Pic_Knob_Pointer`; dragging up and down turns
// it.
class Knob_Widget : public QWidget {
 public:
  explicit Knob_Widget(QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
};

}  // namespace norvik
