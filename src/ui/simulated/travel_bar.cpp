#include "ui/simulated/travel_bar.h"

#include "ui/widgets/theme.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace norvik {

namespace {

constexpr double Stop_Width = 5;  // pixels

bool Shows_The_Same(const Simulated_Axis_View& a, const Simulated_Axis_View& b) {
  const auto same_zone = [](const auto& one, const auto& other) {
    return one.has_value() == other.has_value() &&
           (!one || (one->From == other->From && one->To == other->To));
  };
  return a.Position == b.Position && a.Limited == b.Limited && a.Travel_Low == b.Travel_Low &&
         a.Travel_High == b.Travel_High && a.Overtravel == b.Overtravel &&
         same_zone(a.Zones[0], b.Zones[0]) && same_zone(a.Zones[1], b.Zones[1]);
}

QString Number(double value) {
  return QString::number(value, 'f', 3);
}

}  // namespace

Travel_Bar::Travel_Bar(QWidget* parent) : QWidget(parent) {
  setMinimumSize(Text_Height() * 3, Text_Height() * 5 / 4);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Travel_Bar::Show_View(const Simulated_Axis_View& view) {
  if (Shows_The_Same(view, Axis)) return;
  Axis = view;
  setToolTip(Axis.Limited ? "Travel " + Number(Axis.Travel_Low) + " to " +
                                Number(Axis.Travel_High) + ", hard stops at " + Number(Low()) +
                                " and " + Number(High()) + ". Hatched: the switches."
                          : QString("This axis has no ends"));
  update();
}

double Travel_Bar::Place_Of(double position) const {
  const double range = std::max(High() - Low(), 1e-9);
  const double part = std::clamp((position - Low()) / range, 0.0, 1.0);
  return Stop_Width + part * (width() - 2 * Stop_Width);
}

void Travel_Bar::Draw_Ends(QPainter& painter) const {
  const double middle = height() * 0.62, thick = height() * 0.5;
  const QColor ink = palette().color(QPalette::WindowText);
  painter.setPen(Qt::NoPen);
  for (const auto& zone : Axis.Zones) {
    if (!zone) continue;
    const double from = Place_Of(zone->From), to = Place_Of(zone->To);
    painter.fillRect(QRectF(from, middle - thick / 2, std::max(to - from, 2.0), thick),
                     QBrush(Colors().Warn, Qt::BDiagPattern));
  }
  painter.setBrush(ink);
  painter.drawRect(QRectF(0, middle - thick / 2, Stop_Width, thick));
  painter.drawRect(QRectF(width() - Stop_Width, middle - thick / 2, Stop_Width, thick));
  painter.setPen(QPen(ink, 1));
  for (const double end : {Axis.Travel_Low, Axis.Travel_High}) {
    const double x = Place_Of(end);
    painter.drawLine(QPointF(x, middle - thick / 2), QPointF(x, middle + thick / 2));
  }
}

void Travel_Bar::Draw_Carriage(QPainter& painter) const {
  const double x = Place_Of(Axis.Position), middle = height() * 0.62, half = height() * 0.22;
  painter.setPen(QPen(palette().color(QPalette::Base), 1));
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawPolygon(QPolygonF({{x, middle + 1}, {x - half, 1}, {x + half, 1}}));
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawLine(QPointF(x, middle), QPointF(x, height() - 1));
}

void Travel_Bar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!Axis.Limited) {
    painter.drawText(rect(), Qt::AlignCenter, "no ends");
    return;
  }
  painter.setPen(QPen(palette().color(QPalette::Mid), 1));
  painter.drawLine(QPointF(0, height() * 0.62), QPointF(width(), height() * 0.62));
  Draw_Ends(painter);
  Draw_Carriage(painter);
}

}  // namespace norvik
