#include "ui/setup/color_sample.h"

#include "app/options/options_form.h"
#include "core/numbers.h"
#include "plot/plot_colour.h"
#include "ui/widgets/theme.h"

#include <QPainter>

namespace norvik {

namespace {

Plot_Palette Typed_Palette() {
  Plot_Palette palette;
  for (int role = 0; role <= 6; ++role) {
    const Option_Field* field = Find_Option("Plot_Color_" + std::to_string(role));
    if (field == nullptr) continue;
    const auto number = Try_Number(field->Error.empty() ? field->Text : field->Stored);
    palette[role] = static_cast<std::int32_t>(number.value_or(0));
  }
  return palette;
}

// A pocket with a drilled hole on the grid, and the ways between.
void Paint_Part(QPainter& painter, const QRectF& place, const Plot_Palette& palette) {
  const auto pen = [&](int role, double width) {
    painter.setPen(QPen(QColor::fromRgb(Argb(palette[role])), width));
  };
  const auto at = [&](double x, double y) {
    return QPointF(place.left() + x * place.width(), place.top() + y * place.height());
  };
  painter.fillRect(place, QColor::fromRgb(Argb(palette[plot_role::Background])));
  pen(plot_role::Grid, 1);
  for (const double line : {0.1, 0.3, 0.5, 0.7, 0.9}) {
    painter.drawLine(at(line, 0.05), at(line, 0.95));
    painter.drawLine(at(0.05, line), at(0.95, line));
  }
  pen(plot_role::Travel, 1.5);
  painter.drawLine(at(0.1, 0.9), at(0.25, 0.7));
  painter.drawLine(at(0.55, 0.7), at(0.75, 0.3));
  pen(plot_role::Cut, 2);
  painter.drawPolygon(QPolygonF({at(0.25, 0.3), at(0.55, 0.3), at(0.55, 0.7), at(0.25, 0.7)}));
  pen(plot_role::Deep_Cut, 2);
  painter.drawEllipse(at(0.75, 0.3), place.height() / 9, place.height() / 9);
  pen(plot_role::Cursor_1, 1.5);
  painter.drawLine(at(0.75, 0.62), at(0.75, 0.82));
  pen(plot_role::Cursor_2, 1.5);
  painter.drawLine(at(0.68, 0.72), at(0.82, 0.72));
}

}  // namespace

Color_Sample::Color_Sample(QWidget* parent) : QWidget(parent) {
  setObjectName("Color_Sample");
  setAccessibleName("Sample of the plot's colours on a light and on a dark desktop");
  setMinimumSize(Text_Height() * 18, Text_Height() * 8);
}

void Color_Sample::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double gap = Text_Height() / 2.0, title = Text_Height() * 1.3;
  const double side = (width() - gap) / 2;
  const Plot_Palette light = Typed_Palette();
  const auto half = [&](double left, const QString& words, const Plot_Palette& palette) {
    painter.setPen(this->palette().color(QPalette::WindowText));
    painter.drawText(QRectF(left, 0, side, title), Qt::AlignLeft | Qt::AlignVCenter, words);
    Paint_Part(painter, QRectF(left, title, side, height() - title), palette);
  };
  half(0, "On a light desktop", light);
  half(side + gap, "On a dark desktop", Readable_Palette(light, Dark_Background));
}

}  // namespace norvik
