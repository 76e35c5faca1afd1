// speed_chart_view.h: the planned speeds over the way: wheel zooms, drag moves, a click chooses.
#pragma once

#include "compiler/state/tables.h"
#include "tools/speed_chart.h"

#include <cstdint>

#include <QWidget>

class QPainter;

namespace norvik {

class Speed_Chart_View : public QWidget {
  Q_OBJECT

 public:
  explicit Speed_Chart_View(QWidget* parent = nullptr);

  void Show_Table(const Record_List<Wire>& wires);
  // Marks a row, from 1; 0: none.
  void Show_Row(std::int32_t row);
  void Hold(bool held) { Chart.Held = held; }
  void Show_All();
  const Speed_Chart& Shown() const { return Chart; }
  QSize sizeHint() const override;

 signals:
  // The row that lies under a click.
  void Row_Clicked(std::int32_t row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QRectF Field() const;  // where the lines lie
  double Way_At(double x) const;
  double X_Of(double way) const;
  double Y_Of(double speed) const;
  void Paint_Axes(QPainter& painter) const;
  void Paint_Limits(QPainter& painter) const;
  void Paint_Lines(QPainter& painter) const;
  void Paint_Legend(QPainter& painter) const;

  Speed_Chart Chart;
  const Record_List<Wire>* Wires = nullptr;
  std::int32_t Row = 0;
  double Pressed_At = 0, Dragged_To = 0;
  bool Pressed = false, Dragged = false;
};

}  // namespace norvik
