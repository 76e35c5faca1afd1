#include "ui/plot/plot_window.h"

#include "app/gcode_form.h"
#include "control/state/controller_state.h"
#include "core/messages.h"
#include "core/operation.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/z_strip.h"
#include "ui/plot/plot_view.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <utility>

#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>

namespace norvik {

namespace {

struct Tool_Row {
  const char* Name;
  Sign Picture;
  const char* Tip;
  void (*Clicked)();
  bool Stays_Pressed;
};

constexpr Tool_Row Tools_Of_Zoom[] = {
    {"Command_ZoomIn", Sign::Zoom_In, "Zoom in: click a point (wheel)", Command_ZoomIn_Click, true},
    {"Command_ZoomOut", Sign::Zoom_Out, "Zoom out", Command_ZoomOut_Click, false},
    {"Command_Zoom_Win", Sign::Zoom_Window, "Zoom window: drag a rectangle", Command_Zoom_Win_Click,
     true},
    {"Command_Zoom_Table", Sign::Zoom_Table, "The whole table", Command_Zoom_Table_Click, false},
    {"Command_Zoom_All", Sign::Zoom_All, "The whole program", Command_Zoom_All_Click, false},
    {"Command_Zoom_Pan", Sign::Pan, "Pan: click the new centre (middle button drags)",
     Command_Zoom_Pan_Click, true},
    {"Command_Refresh", Sign::Refresh, "Draw again and end the tools", Command_Refresh_Click,
     false},
};

// In the order of the preset views.
constexpr const char* Preset_Captions[] = {"Top",  "Bottom", "Front", "Rear",
                                           "Left", "Right",  "Iso R", "Iso L"};

// The strip's figures and the room between them.
constexpr int Strip_Lines = 24;

// The box that asks would hold up a move that runs.
void Ask_For_Angle(int angle) {
  if (Anything_Moves()) {
    Tell("Not while the machine moves: type the angle into the box beside the letter.", 5);
    return;
  }
  Label_3D_Viewpoint_Click(angle);
}

// The pad for turning the view freely. Its coordinates run from 0 to 20 and rest in the middle.
class Turn_Pad : public QWidget {
 public:
  Turn_Pad() {
    setObjectName("Picture2");
    setFixedSize(Finger_Height() * 3 / 2, Finger_Height() * 3 / 2);
    setToolTip("Hold and drag to turn the view");
    setCursor(Qt::OpenHandCursor);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1.5));
    painter.setBrush(palette().color(QPalette::Base));
    const QRectF inside = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.drawEllipse(inside);
    painter.drawEllipse(inside.center(), inside.width() / 2, inside.height() / 6);
    painter.drawEllipse(inside.center(), inside.width() / 6, inside.height() / 2);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!(event->buttons() & Qt::LeftButton)) return;
    constexpr double pad_units = 20;
    Picture2_Mouse_Move(Mouse_Button::Left, event->position().x() / width() * pad_units,
                        event->position().y() / height() * pad_units);
  }
};

}  // namespace

Plot_Window::Plot_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Plot");
  setWindowTitle("Plot");
  Picture1 = new Program_View(this);
  Picture_ZAxis = new Plot_View(
      [this](Picture_Surface& over) {
        Paint_Spindle(over, Picture_ZAxis->Surface().Image().Width,
                      Picture_ZAxis->Surface().Image().Height);
      },
      this);
  Picture_ZAxis->setObjectName("Picture_ZAxis");
  Picture_ZAxis->Set_Least_Lines(Strip_Lines);
  Frame_Zoom = Build_Zoom_Frame();
  Frame_3D = Build_Viewpoint_Frame();
  Frame_Turn = Build_Turn_Frame();
  Legend = new QLabel(this);
  Legend->setObjectName("Label_Legend");
  Legend->setTextFormat(Qt::RichText);

  Notice = new QLabel(this);
  Notice->setObjectName("Label_Plot_Notice");
  Notice->setMargin(Text_Height() / 4);
  Notice->setWordWrap(true);
  Set_Face(*Notice, Colors().Warn, Theme_Is_Dark() ? Qt::black : Qt::white);
  Notice->hide();
  Plot_Host.Picture1 = &Picture1->Surface();
  Plot_Host.Picture_ZAxis = &Picture_ZAxis->Surface();
  Plot_Host.Frame_Changed = Plot_Host.Shapes_Changed = [this] {
    Picture1->update();
    Picture_ZAxis->update();
  };
  Plot_Host.Form_Changed = [this] { Show_Form(); };
  Plot.Palette = std::nullopt;
  if (Theme_Is_Dark()) Plot.Palette = Readable_Palette(Current_Palette(), Dark_Background);
  Show_Form();
}

Plot_Window::~Plot_Window() {
  Plot_Host.Picture1 = Plot_Host.Picture_ZAxis = nullptr;
  Plot_Host.Frame_Changed = Plot_Host.Shapes_Changed = Plot_Host.Form_Changed = [] {};
}

QWidget* Plot_Window::Build_Zoom_Frame() {
  auto* frame = new QWidget(this);
  frame->setObjectName("Frame_Zoom");
  auto* row = new QHBoxLayout(frame);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(Text_Height() / 6);
  for (const Tool_Row& tool : Tools_Of_Zoom) {
    auto* button = new QToolButton;
    button->setObjectName(tool.Name);
    button->setIcon(Sign_Icon(tool.Picture));
    button->setIconSize({Text_Height() * 5 / 4, Text_Height() * 5 / 4});
    button->setFixedSize(Finger_Height(), Finger_Height());
    button->setToolTip(tool.Tip);
    button->setCheckable(tool.Stays_Pressed);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, clicked = tool.Clicked] {
      clicked();
      Show_Form();
    });
    if (tool.Clicked == Command_ZoomIn_Click) Zoom_In = button;
    if (tool.Clicked == Command_Zoom_Win_Click) Zoom_Win = button;
    if (tool.Clicked == Command_Zoom_Pan_Click) Pan = button;
    row->addWidget(button);
  }
  return frame;
}

QWidget* Plot_Window::Build_Viewpoint_Frame() {
  auto* frame = new QWidget(this);
  frame->setObjectName("Frame_3D");
  auto* grid = new QGridLayout(frame);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(Text_Height() / 6);
  for (int view = 0; view < 8; ++view) {
    auto* button = new QPushButton(Preset_Captions[view]);
    button->setObjectName(QString("Command_3D_%1").arg(view));
    button->setMinimumHeight(Finger_Height() * 2 / 3);
    button->setFixedWidth(QFontMetrics(button->font()).horizontalAdvance("Bottom") + Text_Height());
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QPushButton::clicked, this, [view] { Command_3D_Click(view); });
    grid->addWidget(button, view % 2, view / 2);
  }
  return frame;
}

QWidget* Plot_Window::Build_Turn_Frame() {
  auto* frame = new QWidget(this);
  auto* grid = new QGridLayout(frame);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(Text_Height() / 6);
  static constexpr const char* turns[] = {"A", "B", "C"};
  for (int angle = 0; angle < 3; ++angle) {
    auto* label = new QPushButton(turns[angle]);
    label->setObjectName(QString("Label_3D_Viewpoint_%1").arg(angle));
    label->setFlat(true);
    label->setFixedWidth(Text_Height() * 3 / 2);
    label->setToolTip("Click to type the angle");
    label->setFocusPolicy(Qt::NoFocus);
    connect(label, &QPushButton::clicked, this, [angle] { Ask_For_Angle(angle); });
    grid->addWidget(label, angle % 2, angle / 2 * 2);
    auto* value = new QSpinBox;
    value->setObjectName(QString("UpDown_3D_Viewpoint_%1").arg(angle));
    value->setRange(0, 360);
    value->setWrapping(true);
    value->setSuffix(QString::fromUtf8("\u00B0"));
    value->setToolTip("Turn of the view in degrees");
    value->setMinimumHeight(Finger_Height() * 2 / 3);
    value->setKeyboardTracking(false);
    connect(value, &QSpinBox::valueChanged, this,
            [angle](int degrees) { UpDown_3D_Viewpoint_Change(angle, degrees); });
    Angles[static_cast<std::size_t>(angle)] = value;
    grid->addWidget(value, angle % 2, angle / 2 * 2 + 1);
  }
  grid->addWidget(new Turn_Pad, 0, 4, 2, 1);
  return frame;
}

// Over the upper edge of the picture, in as many lines as it needs.
void Plot_Window::Show_Notice() {
  Notice->setText(QString::fromStdString(Gcode_Form.Label_Table_Notice.Caption));
  Notice->setVisible(!Notice->text().isEmpty());
  const int one_line =
      Notice->fontMetrics().horizontalAdvance(Notice->text() + "  ") + 2 * Notice->margin();
  const int width = std::min(one_line, Picture1->width());
  Notice->setGeometry(QRect(Picture1->pos(), QSize(width, Notice->heightForWidth(width))));
}

// Which colour is what.
void Plot_Window::Show_Legend() {
  QString text;
  for (const auto& [role, words] :
       {std::pair(plot_role::Travel, "travel"), std::pair(plot_role::Cut, "cut"),
        std::pair(plot_role::Deep_Cut, "deep cut")}) {
    const QColor color = QColor::fromRgb(Argb(Current_Palette()[role]));
    text += QString("%1<span style=\"color:%2\">&#9632;</span> %3")
                .arg(text.isEmpty() ? "" : "<br>", color.name(), words);
  }
  if (Legend->text() != text) Legend->setText(text);
}

void Plot_Window::Show_Form() {
  Show_Legend();
  Show_Notice();
  Zoom_In->setChecked(Plot_Form.Command_ZoomIn);
  Zoom_Win->setChecked(Plot_Form.Command_Zoom_Win);
  Pan->setChecked(Plot_Form.Command_Zoom_Pan);
  for (int angle = 0; angle < 3; ++angle) {
    QSpinBox* value = Angles[static_cast<std::size_t>(angle)];
    const QSignalBlocker quiet(value);
    value->setValue(Plot_Form.UpDown_3D_Viewpoint[angle]);
  }
  Picture1->setCursor(Plot_Form.Pointer == Surface_Pointer::Zoom_Cross ? Qt::PointingHandCursor
                                                                       : Qt::CrossCursor);
  Picture1->update();
}

// The tools from left to right in as many rows as they need, from `top` on. Where they end.
int Plot_Window::Place_Tools(int top) {
  const int gap = Text_Height() / 3;
  int left = gap, row_height = 0;
  for (QWidget* frame : {Frame_Zoom, Frame_3D, Frame_Turn, static_cast<QWidget*>(Legend)}) {
    const QSize size = frame->sizeHint();
    if (left > gap && left + size.width() + gap > width()) {
      left = gap;
      top += row_height + gap;
      row_height = 0;
    }
    frame->setGeometry(left, top, size.width(), size.height());
    left += size.width() + gap;
    row_height = std::max(row_height, size.height());
  }
  return top + row_height + gap;
}

// The program's surface is square; the strip stands beside it, the tools below both.
void Plot_Window::Place_Surfaces() {
  const int gap = Text_Height() / 3;
  const int strip_width = Text_Height() * 13 / 2;
  const int room = height() - Place_Tools(0) - 2 * gap;
  const int side = std::max(50, std::min(room, width() - strip_width - 3 * gap));
  const int left = std::max(gap, (width() - strip_width - side - gap) / 2);
  Picture_ZAxis->setGeometry(left, gap, strip_width, side);
  Picture1->setGeometry(left + strip_width + gap, gap, side, side);
  Place_Tools(side + 2 * gap);
  Plot_Form_Resize(width() * Units_Per_Pixel, height() * Units_Per_Pixel, isMinimized());
  Plot_Form.Picture1.Width = Plot_Form.Picture1.Height = side * Units_Per_Pixel;
}

void Plot_Window::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Place_Surfaces();
  Plot_Z_Strip();
  Show_Notice();
  NIST_RePlot();
}

void Plot_Window::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Place_Surfaces();
  Plot_Redraw(true);
}

void Plot_Window::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) Plot_Key_Up(27);
  QWidget::keyReleaseEvent(event);
}

}  // namespace norvik
