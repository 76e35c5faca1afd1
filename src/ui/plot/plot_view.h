// plot_view.h: a surface of the plot as a widget.
//
// Keeps the drawn picture and shows it; what moves over the picture (rubber bands, cursor, spindle)
// is drawn over a copy, so that it costs no redraw of the program.
#pragma once

#include "plot/picture/picture_surface.h"

#include <functional>

#include <QWidget>

namespace norvik {

class Plot_View : public QWidget {
 public:
  // `draw_over` paints what moves over the picture.
  explicit Plot_View(std::function<void(Picture_Surface&)> draw_over, QWidget* parent = nullptr);

  Picture_Surface& Surface() { return Frame; }
  // So many lines of text must fit above each other; they are smaller where they would not.
  void Set_Least_Lines(int lines) { Least_Lines = lines; }
  // Handler of a new size; the picture must be drawn again.
  std::function<void()> Resized = [] {};

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  std::function<void(Picture_Surface&)> Draw_Over;
  Picture_Surface Frame, Over;
  int Least_Lines = 1;
};

// The view of the program: its mouse goes to the handlers of `Plot_Form`.
class Program_View : public Plot_View {
 public:
  explicit Program_View(QWidget* parent = nullptr);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  QPointF Last_Middle;
  bool Tool_Was_Armed = false;  // at the last press of a button
};

}  // namespace norvik
