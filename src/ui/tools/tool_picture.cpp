#include "ui/tools/tool_picture.h"

#include "core/setup.h"
#include "tools/tool_list.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QPainter>
#include <QPolygonF>

namespace norvik {

double Picture_Scale(double length, double room) {
  if (!(length > 0) || !(room > 0)) return 1;
  const double exact = room / length;
  const double decade = std::pow(10, std::floor(std::log10(exact)));
  for (const double step : {5.0, 2.0}) {
    if (step * decade <= exact) return step * decade;
  }
  return decade;
}

namespace {

QString Scale_Text(double scale) {
  return scale >= 1 ? QString("%1 : 1").arg(scale) : QString("1 : %1").arg(1 / scale);
}

}  // namespace

Tool_Picture::Tool_Picture(QWidget* parent) : QWidget(parent) {
  setObjectName("Picture_Tool");
  setToolTip("The tool true to scale; the number says how many times its size");
  setMinimumSize(Text_Height() * 8, Text_Height() * 10);
}

void Tool_Picture::Show_Tool(double diameter, double offset) {
  Diameter = diameter;
  Offset = offset;
  update();
}

QSize Tool_Picture::sizeHint() const {
  return {Text_Height() * 11, Text_Height() * 16};
}

void Tool_Picture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  const QColor ink = palette().color(QPalette::Text);
  painter.setPen(ink);
  const QRectF foot(0, height() - Text_Height() * 2.6, width(), Text_Height() * 2.6);
  if (!(Diameter > 0)) {
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     "No diameter: drawn with the width of the plot's bit");
    return;
  }
  const double per_unit = logicalDpiX() / (MachineSetup.UnitsofMeasurement == 1 ? 25.4 : 1.0);
  const double scale = Picture_Scale(Diameter * per_unit, width() * 0.7);
  const double across = Diameter * per_unit * scale;
  const double middle = width() / 2.0, top = Text_Height() * 0.6, tip = foot.top() - 4;
  const double shank = std::max(across, width() * 0.12), cut = top + (tip - top) * 0.4;
  painter.setPen(QPen(ink, 1.4));
  painter.setBrush(palette().color(QPalette::Mid));
  painter.drawRect(QRectF(middle - shank / 2, top, shank, cut - top));
  painter.setBrush(palette().color(QPalette::Midlight));
  painter.drawRect(QRectF(middle - across / 2, cut, across, tip - cut));
  // Flutes, so that it looks like what cuts.
  for (double y = cut + across * 0.2; across > 6 && y + across * 0.5 < tip; y += across * 0.7) {
    painter.drawLine(QPointF(middle - across / 2, y + across * 0.5),
                     QPointF(middle + across / 2, y));
  }
  const QString text =
      QString::fromStdString(Tool_Value_Text(Diameter)) +
      (MachineSetup.UnitsofMeasurement == 1 ? " mm\n" : " inch\n") + Scale_Text(scale) +
      (Offset != 0 ? ", offset " + QString::fromStdString(Tool_Value_Text(Offset)) : QString());
  painter.drawText(foot, Qt::AlignCenter, text);
}

}  // namespace norvik
