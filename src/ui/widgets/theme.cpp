#include "ui/widgets/theme.h"

#include "ui/widgets/reader_names.h"

#include <algorithm>
#include <cmath>

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QProxyStyle>
#include <QPushButton>
#include <QSlider>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>

namespace norvik {

namespace {

struct Theme_State {
  bool Dark = false;
  Theme_Colors Colors;
};

Theme_State Theme;

// How light a colour looks, from 0 to 1: the relative luminance of the guidelines for readable
// text.
double Light_Of(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

// The least contrast of letters on a button of this colour: the style paints a shade of its own,
// lighter above than below.
double Contrast_On_Button(const QColor& ground, const QColor& text) {
  constexpr int side = 48;
  QImage face(side, side, QImage::Format_RGB32);
  face.fill(ground);
  QStyleOptionButton option;
  option.rect = face.rect();
  option.state = QStyle::State_Enabled | QStyle::State_Raised;
  option.palette.setColor(QPalette::Button, ground);
  QPainter painter(&face);
  QApplication::style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter);
  painter.end();
  return std::min(Contrast(face.pixelColor(side / 2, side / 4), text),
                  Contrast(face.pixelColor(side / 2, side * 3 / 4), text));
}

// The colour nearest to the wanted one on which the letters can be read.
QColor Ground_Of_Button(QColor ground, const QColor& text) {
  constexpr int most_tries = 20, change = 108;  // percent
  for (int n = 0; n < most_tries && Contrast_On_Button(ground, text) < Readable_Contrast; ++n)
    ground = Light_Of(text) > Light_Of(ground) ? ground.darker(change) : ground.lighter(change);
  return ground;
}

QPalette Light_Palette() {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(0xF3F4F6));
  palette.setColor(QPalette::WindowText, QColor(0x1C2127));
  palette.setColor(QPalette::Base, QColor(0xFFFFFF));
  palette.setColor(QPalette::AlternateBase, QColor(0xEAECEF));
  palette.setColor(QPalette::Text, QColor(0x1C2127));
  palette.setColor(QPalette::Button, QColor(0xE4E7EB));
  palette.setColor(QPalette::ButtonText, QColor(0x1C2127));
  palette.setColor(QPalette::ToolTipBase, QColor(0x2B3138));
  palette.setColor(QPalette::ToolTipText, QColor(0xF3F4F6));
  palette.setColor(QPalette::Highlight, QColor(0x1F6FB5));
  palette.setColor(QPalette::HighlightedText, QColor(0xFFFFFF));
  palette.setColor(QPalette::Link, QColor(0x1F6FB5));
  palette.setColor(QPalette::Mid, QColor(0x9AA2AC));
  palette.setColor(QPalette::PlaceholderText, QColor(0x6B7480));
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(0x8F98A3));
  }
  return palette;
}

QPalette Dark_Palette() {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(0x24282E));
  palette.setColor(QPalette::WindowText, QColor(0xE6E9ED));
  palette.setColor(QPalette::Base, QColor(0x1A1D22));
  palette.setColor(QPalette::AlternateBase, QColor(0x2B3037));
  palette.setColor(QPalette::Text, QColor(0xE6E9ED));
  palette.setColor(QPalette::Button, QColor(0x363C44));
  palette.setColor(QPalette::ButtonText, QColor(0xE6E9ED));
  palette.setColor(QPalette::ToolTipBase, QColor(0xE6E9ED));
  palette.setColor(QPalette::ToolTipText, QColor(0x1A1D22));
  palette.setColor(QPalette::Highlight, QColor(0x3D8FD6));
  palette.setColor(QPalette::HighlightedText, QColor(0xFFFFFF));
  palette.setColor(QPalette::Link, QColor(0x6CB0EA));
  palette.setColor(QPalette::Mid, QColor(0x6C7682));
  palette.setColor(QPalette::PlaceholderText, QColor(0x97A0AB));
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(0x747D88));
  }
  return palette;
}

Theme_Colors Light_Colors() {
  return {QColor(0x1B7F3B), QColor(0xC62828), QColor(0xB25E00),
          QColor(0x5F6873), QColor(0x10304D), QColor(0xFFFFFF)};
}

Theme_Colors Dark_Colors() {
  return {QColor(0x4CC36F), QColor(0xE5484D), QColor(0xF0A53A),
          QColor(0x9AA4AF), QColor(0x9FD7FF), QColor(0x14171B)};
}

// The toolkit's style derives its outlines by darkening the ground, which on a dark one leaves
// fields, check boxes and readouts without any. This one draws over them in the colour of `Mid`.
class Outlined_Style : public QProxyStyle {
 public:
  Outlined_Style() : QProxyStyle(QStyleFactory::create("Fusion")) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    switch (element) {
      case PE_FrameLineEdit:
      case PE_PanelLineEdit:
        // A field inside another control has that control's frame.
        if (qstyleoption_cast<const QStyleOptionFrame*>(option) == nullptr ||
            static_cast<const QStyleOptionFrame*>(option)->lineWidth <= 0)
          return;
        [[fallthrough]];
      case PE_Frame:
      case PE_IndicatorCheckBox:
      case PE_PanelButtonCommand:
        return Outline(option->rect, *option, *painter);
      case PE_IndicatorRadioButton:
        return Outline(option->rect, *option, *painter, option->rect.width() / 2.0);
      case PE_FrameGroupBox:  // its title stands above the frame
        return Outline(option->rect.adjusted(0, option->fontMetrics.height() + 3, 0, 0), *option,
                       *painter);
      default:
        return;
    }
  }
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox || control == CC_ComboBox) Outline(option->rect, *option, *painter);
  }
  // A maximised tool window keeps its title bar. Its buttons would otherwise take the corner of the
  // menu bar, where Stop and E-stop stand.
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    if (hint == SH_Workspace_FillSpaceOnMaximize) return 1;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }
  // A check box that a glove hits.
  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
        return Text_Height();
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }

 private:
  static void Outline(const QRect& place, const QStyleOption& option, QPainter& painter,
                      double corner = 2) {
    if (option.state & State_HasFocus) return;  // the style marks it more strongly
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.palette.color(QPalette::Mid));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
    painter.restore();
  }
};

// What the wheel turns over a box without the focus is the panel behind it. And the toolkit's own
// menus of boxes and scroll bars wait in a loop until they are closed, which would hold the pulses
// of a move: a line of text gets a menu that does not wait, the others none.
class Calm_Mouse : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ContextMenu)
      return Takes_Menu(watched, *static_cast<QContextMenuEvent*>(event));
    if (event->type() != QEvent::Wheel && event->type() != QEvent::Polish) return false;
    QWidget* box = qobject_cast<QComboBox*>(watched);
    if (box == nullptr) box = qobject_cast<QAbstractSpinBox*>(watched);
    if (box == nullptr) box = qobject_cast<QSlider*>(watched);
    if (box == nullptr) return false;
    if (event->type() == QEvent::Polish) {
      // The wheel would give it the focus first.
      if (box->focusPolicy() == Qt::WheelFocus) box->setFocusPolicy(Qt::StrongFocus);
      return false;
    }
    if (box->hasFocus()) return false;
    event->ignore();
    return true;
  }

 private:
  static bool Takes_Menu(QObject* watched, const QContextMenuEvent& event) {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || widget->contextMenuPolicy() != Qt::DefaultContextMenu) return false;
    if (auto* line = qobject_cast<QLineEdit*>(watched)) {
      QMenu* menu = line->createStandardContextMenu();
      menu->setAttribute(Qt::WA_DeleteOnClose);
      menu->popup(event.globalPos());
      return true;
    }
    return qobject_cast<QAbstractSpinBox*>(watched) != nullptr ||
           qobject_cast<QAbstractSlider*>(watched) != nullptr;
  }
};

// --- Signs -------------------------------------------------------------------------------------
// Every sign is drawn in a square of 24 by 24.

QPainterPath Polygon(std::initializer_list<QPointF> points) {
  QPainterPath path;
  path.addPolygon(QPolygonF(QList<QPointF>(points)));
  path.closeSubpath();
  return path;
}

// An arrow that points up, turned by `degrees` clockwise.
QPainterPath Arrow(double degrees) {
  const QPainterPath up =
      Polygon({{12, 3}, {20.5, 12.5}, {15, 12.5}, {15, 21}, {9, 21}, {9, 12.5}, {3.5, 12.5}});
  QTransform turn;
  turn.translate(12, 12);
  turn.rotate(degrees);
  turn.translate(-12, -12);
  return turn.map(up);
}

void Draw_Turn(QPainter& painter, bool left) {
  if (left) {
    painter.translate(24, 0);
    painter.scale(-1, 1);
  }
  painter.drawArc(QRectF(4, 4, 16, 16), 60 * 16, 270 * 16);
  painter.fillPath(Polygon({{14.5, 1.5}, {21.5, 5.5}, {14.5, 10}}), painter.pen().color());
}

void Draw_Lens(QPainter& painter) {
  painter.drawEllipse(QRectF(3, 3, 13, 13));
  painter.drawLine(QPointF(14.5, 14.5), QPointF(21, 21));
}

void Draw_Frame_Arrows(QPainter& painter) {
  for (const int quarter : {0, 1, 2, 3}) {
    painter.save();
    painter.translate(12, 12);
    painter.rotate(90.0 * quarter);
    painter.drawPolyline(QPolygonF(QList<QPointF>{{-9, -4}, {-9, -9}, {-4, -9}}));
    painter.drawLine(QPointF(-8, -8), QPointF(-3.5, -3.5));
    painter.restore();
  }
}

void Draw_Sign(QPainter& painter, Sign sign) {
  const QColor color = painter.pen().color();
  const auto fill = [&](const QPainterPath& path) { painter.fillPath(path, color); };
  switch (sign) {
    case Sign::Play:
      return fill(Polygon({{6, 3}, {21, 12}, {6, 21}}));
    case Sign::Pause:
      fill(Polygon({{5, 3}, {10, 3}, {10, 21}, {5, 21}}));
      return fill(Polygon({{14, 3}, {19, 3}, {19, 21}, {14, 21}}));
    case Sign::Step:
      fill(Polygon({{3, 3}, {15, 12}, {3, 21}}));
      return fill(Polygon({{17, 3}, {21, 3}, {21, 21}, {17, 21}}));
    case Sign::Stop:
      return fill(Polygon({{4, 4}, {20, 4}, {20, 20}, {4, 20}}));
    case Sign::Home:
      return fill(Polygon({{12, 2},
                           {22, 11},
                           {19, 11},
                           {19, 21},
                           {14, 21},
                           {14, 14},
                           {10, 14},
                           {10, 21},
                           {5, 21},
                           {5, 11},
                           {2, 11}}));
    case Sign::Tool:
      fill(Polygon({{8, 2}, {16, 2}, {16, 9}, {8, 9}}));
      return fill(Polygon({{10, 10}, {14, 10}, {14, 18}, {12, 22}, {10, 18}}));
    case Sign::Zoom_In:
      Draw_Lens(painter);
      painter.drawLine(QPointF(6.5, 9.5), QPointF(12.5, 9.5));
      return painter.drawLine(QPointF(9.5, 6.5), QPointF(9.5, 12.5));
    case Sign::Zoom_Out:
      Draw_Lens(painter);
      return painter.drawLine(QPointF(6.5, 9.5), QPointF(12.5, 9.5));
    case Sign::Zoom_Window: {
      QPen dashed = painter.pen();
      dashed.setDashPattern({2, 1.5});
      painter.setPen(dashed);
      return painter.drawRect(QRectF(3.5, 5.5, 17, 13));
    }
    case Sign::Zoom_All:
      return Draw_Frame_Arrows(painter);
    case Sign::Zoom_Table:
      painter.drawRect(QRectF(3.5, 3.5, 17, 17));
      for (const double at : {9.2, 14.8}) {
        painter.drawLine(QPointF(at, 3.5), QPointF(at, 20.5));
        painter.drawLine(QPointF(3.5, at), QPointF(20.5, at));
      }
      return;
    case Sign::Pan:
      painter.drawLine(QPointF(12, 4), QPointF(12, 20));
      painter.drawLine(QPointF(4, 12), QPointF(20, 12));
      for (const double angle : {0.0, 90.0, 180.0, 270.0}) {
        QTransform turn;
        turn.translate(12, 12);
        turn.rotate(angle);
        fill(turn.map(Polygon({{0, -11}, {4, -6.5}, {-4, -6.5}})));
      }
      return;
    case Sign::Refresh:
      return Draw_Turn(painter, false);
    case Sign::Turn_Right:
      return Draw_Turn(painter, false);
    case Sign::Turn_Left:
      return Draw_Turn(painter, true);
    case Sign::Arrow_Up:
      return fill(Arrow(0));
    case Sign::Arrow_Up_Right:
      return fill(Arrow(45));
    case Sign::Arrow_Right:
      return fill(Arrow(90));
    case Sign::Arrow_Down_Right:
      return fill(Arrow(135));
    case Sign::Arrow_Down:
      return fill(Arrow(180));
    case Sign::Arrow_Down_Left:
      return fill(Arrow(225));
    case Sign::Arrow_Left:
      return fill(Arrow(270));
    case Sign::Arrow_Up_Left:
      return fill(Arrow(315));
  }
}

QPixmap Sign_Picture(Sign sign, const QColor& color, int size) {
  QPixmap picture(size, size);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / 24.0, size / 24.0);
  painter.setPen(QPen(color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  Draw_Sign(painter, sign);
  return picture;
}

}  // namespace

void Apply_Theme(QApplication& application) {
  // Further than any screen reaches: no drag begins.
  QApplication::setStartDragDistance(1'000'000);
  application.installEventFilter(new Calm_Mouse(&application));
  Name_Controls_For_Readers(application);
  const QByteArray wanted = qgetenv("NORVIK_THEME").toLower();
  Theme.Dark = application.palette().color(QPalette::Window).lightness() < 128;
  if (wanted == "dark" || wanted == "light") Theme.Dark = wanted == "dark";
  Theme.Colors = Theme.Dark ? Dark_Colors() : Light_Colors();
  application.setStyle(new Outlined_Style);
  application.setPalette(Theme.Dark ? Dark_Palette() : Light_Palette());
  QFont font = application.font();
  if (font.pointSizeF() > 0 && font.pointSizeF() < 10) font.setPointSizeF(10);
  application.setFont(font);
  application.setWindowIcon(Sign_Icon(Sign::Tool, QColor(0x1F6FB5)));
}

bool Theme_Is_Dark() {
  return Theme.Dark;
}

int Text_Height() {
  return QFontMetrics(QApplication::font()).height();
}

int Finger_Height() {
  return static_cast<int>(std::lround(Text_Height() * 2.4));
}

QFont Readout_Font(double scale) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(QApplication::font().pointSizeF() * scale);
  font.setBold(true);
  return font;
}

QFont Bold_Font(double scale) {
  QFont font = QApplication::font();
  font.setPointSizeF(font.pointSizeF() * scale);
  font.setBold(true);
  return font;
}

void Keep_Room_For(QPushButton& button, std::initializer_list<QString> captions) {
  const QString shown = button.text();
  int widest = 0;
  for (const QString& caption : captions) {
    button.setText(caption);
    widest = std::max(widest, button.sizeHint().width());
  }
  button.setText(shown);
  button.setMinimumWidth(widest);
  button.setSizePolicy(QSizePolicy::Ignored, button.sizePolicy().verticalPolicy());
}

const Theme_Colors& Colors() {
  return Theme.Colors;
}

QColor Alarm_Red() {
  return QColor(0xA81C1C);
}

double Contrast(const QColor& one, const QColor& other) {
  const double a = Light_Of(one), b = Light_Of(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor Ink_On_Face(const QColor& ground) {
  constexpr double even = 0.179;  // as far from black as from white
  return Light_Of(ground) > even ? QColor(Qt::black) : QColor(Qt::white);
}

void Set_Face(QWidget& control, const QColor& wanted, const QColor& text) {
  QPalette palette = QApplication::palette(&control);
  if (wanted.isValid()) {
    const bool button = qobject_cast<QAbstractButton*>(&control) != nullptr;
    const QColor ground = button && text.isValid() ? Ground_Of_Button(wanted, text) : wanted;
    palette.setColor(QPalette::Button, ground);
    palette.setColor(QPalette::Window, ground);
    control.setAutoFillBackground(true);
  } else {
    control.setAutoFillBackground(false);
  }
  if (text.isValid()) {
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
  }
  control.setPalette(palette);
}

QIcon Sign_Icon(Sign sign, const QColor& color) {
  QIcon icon;
  const QColor muted = QApplication::palette().color(QPalette::Disabled, QPalette::ButtonText);
  for (const int size : {16, 24, 32, 48, 64, 96}) {
    icon.addPixmap(Sign_Picture(sign, color, size), QIcon::Normal);
    icon.addPixmap(Sign_Picture(sign, muted, size), QIcon::Disabled);
  }
  return icon;
}

QIcon EStop_Icon() {
  QPixmap picture(96, 96);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0x8A6D00), 3));
  painter.setBrush(QColor(0xFFD21F));
  painter.drawRoundedRect(QRectF(3, 3, 90, 90), 14, 14);
  painter.setPen(QPen(QColor(0x7E1010), 3));
  painter.setBrush(QColor(0xD32020));
  painter.drawEllipse(QRectF(16, 16, 64, 64));
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xEE5A5A));
  painter.drawEllipse(QRectF(28, 24, 26, 18));
  return QIcon(picture);
}

QIcon Sign_Icon(Sign sign) {
  return Sign_Icon(sign, QApplication::palette().color(QPalette::ButtonText));
}

}  // namespace norvik
