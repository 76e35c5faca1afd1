#include "ui/machine/jog_key_window.h"

#include "control/manual/jog_guard.h"
#include "control/manual/jog_key.h"
#include "control/manual/joystick_jog.h"
#include "control/manual/panel_edits.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "platform/keys/key_codes.h"
#include "ui/widgets/key_names.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QListWidget>
#include <QPainter>
#include <QRadioButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

struct Key_Picture {
  int Entry, Row, Column;
};

// The key map lies as the keypad does.
constexpr Key_Picture Key_Pictures[] = {
    {8, 0, 0}, {3, 0, 1}, {7, 0, 2},  {5, 0, 3},  {0, 1, 0},  {1, 1, 2},  {4, 1, 3},  {6, 2, 0},
    {2, 2, 1}, {9, 2, 2}, {12, 3, 0}, {13, 3, 1}, {10, 3, 2}, {11, 3, 3}, {14, 2, 3},
};

constexpr double Stick_Range = 65535;

class Stick_Picture : public QWidget {
 public:
  Stick_Picture() {
    setObjectName("Picture_Joy");
    setFixedSize(Finger_Height() * 3, Finger_Height() * 3);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(width() / 2, 0, width() / 2, height());
    painter.drawLine(0, height() / 2, width(), height() / 2);
    const auto& spot = JogKey_Form.Picture_Joy_Spot;
    const double half = std::max(4.0, spot.Half_Width / Stick_Range * width());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawEllipse(QPointF(spot.X / Stick_Range * width(), spot.Y / Stick_Range * height()),
                        half, half);
  }
};

}  // namespace

JogKey_Window::JogKey_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("JogKey");
  setWindowTitle("Jog by keys");
  setFocusPolicy(Qt::StrongFocus);
  auto* rows = new QVBoxLayout(this);
  auto* head = new QHBoxLayout;
  static constexpr const char* devices[] = {"Keyboard", "Joystick"};
  for (int device = 0; device <= 1; ++device) {
    auto* choice = new QRadioButton(devices[device]);
    choice->setObjectName(QString("Option_JoyCtrl_%1").arg(device));
    choice->setMinimumHeight(Finger_Height() * 3 / 4);
    choice->setFocusPolicy(Qt::NoFocus);
    connect(choice, &QRadioButton::clicked, this, [device] { Option_JoyCtrl_Click(device); });
    Devices[static_cast<std::size_t>(device)] = choice;
    head->addWidget(choice);
  }
  head->addStretch(1);
  head->addWidget(new QLabel("Jog feed"));
  class Feed_Label : public QLabel {
    void mouseReleaseEvent(QMouseEvent*) override { Label_FeedRate_Jogging_Click(); }
  };
  auto* feed = new Feed_Label;
  feed->setFont(Readout_Font(1.2));
  feed->setFrameShape(QFrame::StyledPanel);
  feed->setToolTip("Click to change the jog feed");
  Binding.Label(feed, "Label_FeedRate_Jogging", JogKey_Form.Label_FeedRate_Jogging);
  head->addWidget(feed);
  auto* divisor = new QLabel;
  divisor->setFont(Readout_Font(1.2));
  divisor->setToolTip("The jog runs at the feed divided by this");
  Binding.Label(divisor, "Label_JogToggle", JogKey_Form.Label_JogToggle);
  head->addWidget(divisor);
  rows->addLayout(head);
  rows->addWidget(Build_Key_Map());
  rows->addWidget(Build_Joystick(), 1);
  auto* hint =
      new QLabel("Keys act while this window has the focus (click here). Num Lock must be on.");
  hint->setWordWrap(true);
  hint->setForegroundRole(QPalette::PlaceholderText);
  rows->addWidget(hint);

  JogKey_Host.Form_Changed = [this] { Show_Form(); };
  JogKey_Host.Has_Focus = [this] { return isVisible() && hasFocus(); };
  JogKey_Form_Load();
  Show_Form();
}

JogKey_Window::~JogKey_Window() {
  Stop_Timers();
  JogKey_Form_Unload();
  JogKey_Host = {};
}

void JogKey_Window::Stop_Timers() {
  for (Timer_Id* timer : {&Joystick_Timer, &Stop_Timer}) {
    if (*timer != 0) Platform.Stop_Timer(*timer);
    *timer = 0;
  }
}

QWidget* JogKey_Window::Build_Key_Map() {
  auto* group = new QGroupBox("Key map");
  auto* grid = new QGridLayout(group);
  for (const Key_Picture& key : Key_Pictures) {
    auto* picture = new QLabel;
    picture->setAlignment(Qt::AlignCenter);
    picture->setFrameShape(QFrame::StyledPanel);
    picture->setMinimumSize(Finger_Height() * 2, Finger_Height());
    Binding.Label(picture, QString("Picture1_%1").arg(key.Entry), JogKey_Form.Picture1[key.Entry]);
    Key_Pictures_Shown[static_cast<std::size_t>(key.Entry)] = picture;
    grid->addWidget(picture, key.Row, key.Column);
  }
  return group;
}

QWidget* JogKey_Window::Build_Joystick() {
  auto* group = new QGroupBox("Joystick");
  auto* row = new QHBoxLayout(group);
  Stick = new Stick_Picture;
  row->addWidget(Stick, 0, Qt::AlignTop);
  Raw_Values = new QListWidget;
  Raw_Values->setObjectName("List1");
  Raw_Values->setFocusPolicy(Qt::NoFocus);
  Raw_Values->setMinimumHeight(Finger_Height() * 3);
  row->addWidget(Raw_Values, 1);
  return group;
}

// The key table can be changed while this window is open.
void JogKey_Window::Show_Key_Names() {
  if (Shown_Keys == MachineSetup.KeyJog_KeyValue) return;
  Shown_Keys = MachineSetup.KeyJog_KeyValue;
  const Setup_Row& row = *Find_Setup_Key("KeyJog_KeyValue_0")->Row;
  for (const Key_Picture& key : Key_Pictures) {
    const int code = MachineSetup.KeyJog_KeyValue[key.Entry];
    JogKey_Form.Picture1[key.Entry].Caption =
        Setting_Entry(row, key.Entry) + "\n" + Key_Name(code).toStdString();
    Key_Pictures_Shown[static_cast<std::size_t>(key.Entry)]->setToolTip(
        QString("Key code %1").arg(code));
  }
}

void JogKey_Window::Show_Form() {
  Show_Key_Names();
  Binding.Show();
  for (int device = 0; device <= 1; ++device) {
    Devices[static_cast<std::size_t>(device)]->setChecked(JogKey_Form.Option_JoyCtrl[device]);
  }
  Stick->update();
  const auto& lines = JogKey_Form.List1;
  while (Raw_Values->count() > static_cast<int>(lines.size())) delete Raw_Values->takeItem(0);
  while (Raw_Values->count() < static_cast<int>(lines.size())) Raw_Values->addItem(QString());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    QListWidgetItem* item = Raw_Values->item(static_cast<int>(i));
    const QString text = QString::fromStdString(lines[i]);
    if (item->text() != text) item->setText(text);
  }
}

void JogKey_Window::keyPressEvent(QKeyEvent* event) {
  const int code = Virtual_Key_Code(*event);
  if (code == 0 || event->key() == Qt::Key_Escape) return QWidget::keyPressEvent(event);
  // The press of a direction returns when its jog has ended.
  Form_KeyDown(code, event->isAutoRepeat());
  Form_KeyPress();
}

void JogKey_Window::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat()) return;
  const int code = Virtual_Key_Code(*event);
  if (code == 0) return QWidget::keyReleaseEvent(event);
  Form_KeyUp(code);
}

void JogKey_Window::focusOutEvent(QFocusEvent* event) {
  Jog_Guard_Window_Lost();
  QWidget::focusOutEvent(event);
}

void JogKey_Window::showEvent(QShowEvent* event) {
  if (Joystick_Timer == 0) Joystick_Timer = Platform.Start_Timer(10, JogKey_Timer1);
  if (Stop_Timer == 0) Stop_Timer = Platform.Start_Timer(250, JogKey_Timer2);
  QWidget::showEvent(event);
}

void JogKey_Window::hideEvent(QHideEvent* event) {
  Stop_Timers();
  Jog_Guard_Window_Lost();
  QWidget::hideEvent(event);
}

}  // namespace norvik
