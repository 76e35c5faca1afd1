#include "ui/plot/plot_view.h"

#include "app/main_form.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace norvik {

namespace {

Mouse_Button Button_Of(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return Mouse_Button::Left;
    case Qt::RightButton:
      return Mouse_Button::Right;
    case Qt::MiddleButton:
      return Mouse_Button::Middle;
    default:
      return Mouse_Button::None;
  }
}

constexpr double Wheel_Notch = 120;

}  // namespace

Plot_View::Plot_View(std::function<void(Picture_Surface&)> draw_over, QWidget* parent)
    : QWidget(parent), Draw_Over(std::move(draw_over)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void Plot_View::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const double ratio = devicePixelRatioF();
  const auto pixels = [ratio](int size) {
    return static_cast<std::int32_t>(std::lround(size * ratio));
  };
  const auto pens = std::max<std::int32_t>(1, static_cast<std::int32_t>(ratio));
  Frame.Resize(pixels(width()), pixels(height()), pens);
  // The surface draws texts as many times larger as its pens are wider.
  const int text = std::min(Text_Height() * 3 / 4, height() / Least_Lines);
  Frame.Set_Text_Height(std::max(1, pixels(text) / pens));
  Resized();
}

void Plot_View::paintEvent(QPaintEvent*) {
  Over.Take_Over(Frame);
  Draw_Over(Over);
  QPainter painter(this);
  painter.drawImage(rect(), Image_Of(Over.Image()));
}

Program_View::Program_View(QWidget* parent)
    : Plot_View([](Picture_Surface& over) { Paint_Shapes(over); }, parent) {
  setObjectName("Picture1");
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
}

namespace {

World_Point World_Of(const QWidget& view, const QPointF& at) {
  return Plot_Pixel_To_World(at.x(), at.y(), view.width(), view.height());
}

}  // namespace

void Program_View::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    Last_Middle = event->position();
    return;
  }
  Tool_Was_Armed = Plot_Form.ZoomInActive || Plot_Form.ZoomWindowActive || Plot_Form.PanActive;
  const World_Point at = World_Of(*this, event->position());
  Picture1_Mouse_Down(Button_Of(event->button()), at.X, at.Y);
}

// The press of the button that opens the menu ends an armed tool instead, where there is one.
void Program_View::contextMenuEvent(QContextMenuEvent* event) {
  const bool ended_a_tool = event->reason() == QContextMenuEvent::Mouse && Tool_Was_Armed;
  if (ended_a_tool) return;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction("Plot &options...", [] { Main_Host.Show_Setting("Plot"); })
      ->setObjectName("Menu_Plot_Options");
  menu->addAction("&Refresh plot", Plot_Refresh)->setObjectName("Menu_Plot_Refresh");
  menu->popup(event->globalPos());
}

void Program_View::mouseMoveEvent(QMouseEvent* event) {
  const World_Point at = World_Of(*this, event->position());
  if (event->buttons() & Qt::MiddleButton) {
    const World_Point before = World_Of(*this, Last_Middle);
    Last_Middle = event->position();
    Picture1_Drag_Picture(at.X - before.X, at.Y - before.Y);
    return;
  }
  Picture1_Mouse_Move(at.X, at.Y);
}

void Program_View::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) return;
  const World_Point at = World_Of(*this, event->position());
  Picture1_Mouse_Up(Button_Of(event->button()), at.X, at.Y);
}

void Program_View::wheelEvent(QWheelEvent* event) {
  const World_Point at = World_Of(*this, event->position());
  Picture1_Mouse_Wheel(event->angleDelta().y() / Wheel_Notch, at.X, at.Y);
}

}  // namespace norvik
