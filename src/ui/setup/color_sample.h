// color_sample.h: what the colours of the plot look like, on a light desktop and on a dark one.
#pragma once

#include <QWidget>

namespace norvik {

// Draws a small part by the colours as they stand in the window `Options`, applied or not.
class Color_Sample : public QWidget {
 public:
  explicit Color_Sample(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace norvik
