#include "ui/tools/speed_chart_view.h"

#include "core/setup.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <QWheelEvent>

namespace norvik {

namespace {

struct Line_Row {
  Speed_Chart::Line Line;
  const char* Name;
  QColor On_Light, On_Dark;
  Qt::PenStyle Style;
};

// They differ in hue, lightness and dashes.
const std::array<Line_Row, 3>& Lines() {
  static const std::array<Line_Row, 3> lines{{
      {Speed_Chart::Line::IPM_R, "IPM_R", QColor(0, 90, 190), QColor(110, 180, 255), Qt::SolidLine},
      {Speed_Chart::Line::IPM_S, "IPM_S", QColor(0, 125, 70), QColor(90, 220, 150), Qt::DashLine},
      {Speed_Chart::Line::IPM_E, "IPM_E", QColor(190, 80, 0), QColor(255, 170, 80), Qt::DotLine},
  }};
  return lines;
}

QColor Color_Of(const Line_Row& line) {
  return Theme_Is_Dark() ? line.On_Dark : line.On_Light;
}

// A round distance of about a fifth of a span.
double Round_Step(double span) {
  const double rough = span / 5, decade = std::pow(10, std::floor(std::log10(rough)));
  for (const double step : {1.0, 2.0, 5.0}) {
    if (rough <= step * decade) return step * decade;
  }
  return 10 * decade;
}

}  // namespace

Speed_Chart_View::Speed_Chart_View(QWidget* parent) : QWidget(parent) {
  setObjectName("Picture_Speeds");
  setToolTip("Speeds over the way. The wheel zooms, a drag moves, a click chooses the row");
  setMinimumSize(Text_Height() * 16, Text_Height() * 8);
  setCursor(Qt::CrossCursor);
}

QSize Speed_Chart_View::sizeHint() const {
  return {Text_Height() * 40, Text_Height() * 14};
}

void Speed_Chart_View::Show_Table(const Record_List<Wire>& wires) {
  Wires = &wires;
  Chart.Take(wires);
  if (Row > static_cast<std::int32_t>(wires.size())) Row = 0;
  update();
}

void Speed_Chart_View::Show_Row(std::int32_t row) {
  Row = row;
  Chart.Follow(row);
  update();
}

void Speed_Chart_View::Show_All() {
  Chart.Show_All();
  update();
}

QRectF Speed_Chart_View::Field() const {
  const double line = Text_Height();
  return {line * 3.5, line * 1.6, std::max(10.0, width() - line * 4.5),
          std::max(10.0, height() - line * 3.4)};
}

double Speed_Chart_View::Way_At(double x) const {
  const QRectF field = Field();
  return Chart.From() + (x - field.left()) / field.width() * (Chart.To() - Chart.From());
}

double Speed_Chart_View::X_Of(double way) const {
  const QRectF field = Field();
  const double span = Chart.To() - Chart.From();
  return field.left() + (span > 0 ? (way - Chart.From()) / span : 0) * field.width();
}

double Speed_Chart_View::Y_Of(double speed) const {
  const QRectF field = Field();
  const double top = Chart.Fastest() * 1.1;
  return field.bottom() - (top > 0 ? speed / top : 0) * field.height();
}

void Speed_Chart_View::Paint_Axes(QPainter& painter) const {
  const QRectF field = Field();
  const double line = Text_Height();
  const QColor grid = palette().color(QPalette::Mid);
  const QColor ink = palette().color(QPalette::Text);
  const double top = Chart.Fastest() * 1.1, speed_step = Round_Step(top);
  for (double speed = 0; speed <= top; speed += speed_step) {
    painter.setPen(QPen(grid, 0.6));
    painter.drawLine(QPointF(field.left(), Y_Of(speed)), QPointF(field.right(), Y_Of(speed)));
    painter.setPen(ink);
    painter.drawText(QRectF(0, Y_Of(speed) - line / 2, field.left() - line / 3, line),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(speed, 'g', 4));
  }
  const double way_step = Round_Step(Chart.To() - Chart.From());
  for (double way = std::ceil(Chart.From() / way_step) * way_step; way <= Chart.To();
       way += way_step) {
    painter.setPen(QPen(grid, 0.6));
    painter.drawLine(QPointF(X_Of(way), field.top()), QPointF(X_Of(way), field.bottom()));
    painter.setPen(ink);
    painter.drawText(QRectF(X_Of(way) - line * 3, field.bottom() + 2, line * 6, line * 1.3),
                     Qt::AlignHCenter | Qt::AlignTop, QString::number(way, 'g', 6));
  }
}

void Speed_Chart_View::Paint_Limits(QPainter& painter) const {
  const QRectF field = Field();
  painter.setPen(QPen(Colors().Stop, 1, Qt::DashDotLine));
  double last_label = field.right();
  for (const Chart_Limit& limit : Chart_Limits()) {
    const double y = Y_Of(limit.Speed);
    if (y < field.top()) continue;
    painter.drawLine(QPointF(field.left(), y), QPointF(field.right(), y));
    const QString name = QString::fromStdString(limit.Name);
    const double wide = painter.fontMetrics().horizontalAdvance(name) + 6.0;
    painter.drawText(QPointF(last_label - wide, y - 3), name);
    last_label -= wide;
    if (last_label < field.left() + wide * 2) last_label = field.right();
  }
}

void Speed_Chart_View::Paint_Lines(QPainter& painter) const {
  for (const Line_Row& row : Lines()) {
    QPolygonF points;
    for (const Chart_Point& point :
         Chart.Points(*Wires, row.Line, static_cast<int>(Field().width()))) {
      points << QPointF(X_Of(point.Way), Y_Of(point.Speed));
    }
    painter.setPen(QPen(Color_Of(row), 1.6, row.Style));
    if (points.size() == 1) {
      painter.drawEllipse(points.front(), 2, 2);
    } else {
      painter.drawPolyline(points);
    }
  }
}

void Speed_Chart_View::Paint_Legend(QPainter& painter) const {
  double x = Field().left();
  const double y = Text_Height() * 0.9;
  for (const Line_Row& row : Lines()) {
    painter.setPen(QPen(Color_Of(row), 2, row.Style));
    painter.drawLine(QPointF(x, y), QPointF(x + Text_Height() * 1.6, y));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QPointF(x + Text_Height() * 1.9, y + Text_Height() * 0.3), row.Name);
    x += Text_Height() * 6.5;
  }
  painter.drawText(
      QRectF(x, 0, width() - x - 4, Text_Height() * 1.6), Qt::AlignRight | Qt::AlignVCenter,
      MachineSetup.UnitsofMeasurement == 1 ? "mm a minute over mm" : "inches a minute over inches");
}

void Speed_Chart_View::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  if (Wires == nullptr || !(Chart.Length() > 0) || !(Chart.Fastest() > 0)) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rect(), Qt::AlignCenter, "No moves to show");
    return;
  }
  Paint_Axes(painter);
  if (Row > 0) {
    QColor mark = palette().color(QPalette::Highlight);
    mark.setAlpha(90);
    const double from = X_Of(Chart.Start_Of(Row)), to = X_Of(Chart.End_Of(Row));
    painter.fillRect(QRectF(from, Field().top(), std::max(2.0, to - from), Field().height())
                         .intersected(Field()),
                     mark);
  }
  painter.save();
  painter.setClipRect(Field().adjusted(-1, -1, 1, 1));
  Paint_Limits(painter);
  Paint_Lines(painter);
  painter.restore();
  Paint_Legend(painter);
}

void Speed_Chart_View::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / 120.0;
  Chart.Zoom(Way_At(event->position().x()), std::pow(1.25, notches));
  event->accept();
  update();
}

void Speed_Chart_View::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  Pressed = true;
  Dragged = false;
  Pressed_At = Dragged_To = event->position().x();
}

void Speed_Chart_View::mouseMoveEvent(QMouseEvent* event) {
  constexpr double slip = 4;  // pixels that a click may move
  if (!Pressed) return;
  const double x = event->position().x();
  Dragged = Dragged || std::abs(x - Pressed_At) > slip;
  if (!Dragged) return;
  Chart.Move_By((Dragged_To - x) / Field().width() * (Chart.To() - Chart.From()));
  Dragged_To = x;
  update();
}

void Speed_Chart_View::mouseReleaseEvent(QMouseEvent* event) {
  if (!Pressed || event->button() != Qt::LeftButton) return;
  Pressed = false;
  if (Dragged) return;
  if (const std::int32_t row = Chart.Row_At(Way_At(event->position().x())); row > 0) {
    emit Row_Clicked(row);
  }
}

}  // namespace norvik
