#include "ui/machine/knob_widget.h"

#include "control/manual/knob.h"
#include "control/state/cnc_controls_form.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>

namespace norvik {

Knob_Widget::Knob_Widget(QWidget* parent) : QWidget(parent) {
  setObjectName("Pic_Knob");
  setMinimumSize(sizeHint());
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setToolTip("Feed override: drag up or down. It acts on the serial boards.");
}

QSize Knob_Widget::sizeHint() const {
  const int side = Finger_Height() * 2;
  return {side, side};
}

void Knob_Widget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = std::min(width(), height()) / 2.0 - 3;
  painter.translate(width() / 2.0, height() / 2.0);
  painter.setPen(QPen(palette().color(QPalette::Mid), 2));
  painter.setBrush(palette().color(QPalette::Button));
  painter.drawEllipse(QPointF(0, 0), radius, radius);
  painter.setPen(
      QPen(palette().color(QPalette::Highlight), radius / 9, Qt::SolidLine, Qt::RoundCap));
  const auto& pointer = CNC_Controls.Pic_Knob_Pointer;
  const QPointF tip(pointer.X * radius * 0.82, -pointer.Y * radius * 0.82);
  painter.drawLine(tip * 0.35, tip);
}

void Knob_Widget::mousePressEvent(QMouseEvent* event) {
  Pic_Knob_MouseDown(event->button() == Qt::LeftButton ? 1 : 2, event->position().y());
  update();
}

void Knob_Widget::mouseMoveEvent(QMouseEvent* event) {
  Pic_Knob_MouseMove(event->position().y());
  update();
}

void Knob_Widget::mouseReleaseEvent(QMouseEvent*) {
  Pic_Knob_MouseUp();
  update();
}

}  // namespace norvik
