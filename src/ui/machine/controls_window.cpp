#include "ui/machine/controls_window.h"

#include "app/gcode_form.h"
#include "control/displays/displays.h"
#include "control/manual/home.h"
#include "control/manual/jog_guard.h"
#include "control/panel/panel.h"
#include "control/run/cnc_controller.h"
#include "control/run/estimate.h"
#include "control/run/goto.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "core/application.h"
#include "core/messages.h"
#include "drive/drive.h"
#include "ui/machine/axis_rows.h"
#include "ui/machine/jog_pad.h"
#include "ui/machine/knob_widget.h"
#include "ui/machine/panel_values.h"
#include "ui/widgets/form_binding.h"
#include "ui/widgets/panel_group.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <iterator>

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace norvik {

namespace {

struct Button_Row {
  const char* Name;
  Button_Control CNC_Controls_Form::*Control;
  void (*Clicked)();
  Sign Picture;
  const char* Tip;
};

constexpr Button_Row Run_Buttons[] = {
    {"Command_CNC_Play", &CNC_Controls_Form::Command_CNC_Play, Command_CNC_Play_Click, Sign::Play,
     "Run the program from the step shown (Ctrl+F9)"},
    {"Command_CNC_Pause", &CNC_Controls_Form::Command_CNC_Pause, Command_CNC_Pause_Click,
     Sign::Pause, "Stop after the running step (F9)"},
    {"Command_CNC_Step", &CNC_Controls_Form::Command_CNC_Step, Command_CNC_Step_Click, Sign::Step,
     "Run one step (Ctrl+F10)"},
    {"Command_CNC_Stop", &CNC_Controls_Form::Command_CNC_Stop, Command_CNC_Stop_Click, Sign::Stop,
     "End the run with the running move; the next run begins at the first step (F8 or ESC)"},
};

QPushButton* Big_Button(const Button_Row& row) {
  auto* button = new QPushButton;
  button->setIcon(Sign_Icon(row.Picture));
  button->setIconSize({Text_Height() * 5 / 4, Text_Height() * 5 / 4});
  button->setMinimumHeight(Finger_Height() * 5 / 4);
  button->setFont(Bold_Font(1.05));
  button->setToolTip(row.Tip);
  button->setFocusPolicy(Qt::NoFocus);
  return button;
}

// What is wrong with the drive, in red; nothing otherwise.
QWidget* Build_Drive_Alarm(Form_Binding& binding) {
  auto* alarm = new QLabel;
  alarm->setObjectName("Label_Dravon_Fault");
  alarm->setTextFormat(Qt::PlainText);
  alarm->setWordWrap(true);
  alarm->setFont(Bold_Font(1.1));
  alarm->setStyleSheet("color: white; background: #c00000; padding: 6px;");
  binding.Also([alarm] {
    const std::string_view words = Drive().Alarm();
    alarm->setText(QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size())));
    alarm->setVisible(!words.empty());
  });
  return alarm;
}

// Queue, link and encoders of a drive with a queue.
QWidget* Build_Board(Form_Binding& binding) {
  auto* layout = new QVBoxLayout;
  auto* words = new QLabel;
  words->setObjectName("Label_Board");
  words->setTextFormat(Qt::PlainText);
  words->setWordWrap(true);
  layout->addWidget(words);
  QWidget* group = Panel_Group("Board", layout);
  binding.Also([words, group] {
    group->setVisible(Drive().Queues_Moves);
    if (Drive().Queues_Moves) words->setText(QString::fromStdString(Drive().Diagnostics()));
  });
  return group;
}

}  // namespace

Controls_Window::Controls_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("CNC_Controls");
  setWindowTitle("CNC Controls");
  // What stops the machine stands above the part that scrolls: it is never out of sight.
  auto* outer = new QVBoxLayout(this);
  outer->addWidget(Build_Status());
  outer->addWidget(Build_Run_Buttons());
  outer->addWidget(Build_Drive_Alarm(Binding));

  auto* content = new QWidget;
  auto* rows = new QVBoxLayout(content);
  rows->setContentsMargins(0, 0, Text_Height() / 3, 0);
  auto* axes = new QGridLayout;
  To_Go = Build_Axis_Rows(*axes, Binding);
  rows->addLayout(axes);
  Columns = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  left->addWidget(Panel_Group("Jog", new QVBoxLayout));
  left->itemAt(0)->widget()->layout()->addWidget(Build_Jog_Pad(Binding));
  left->addWidget(Build_Sequences());
  QWidget* timing = Build_Timing(Binding);
  Binding.Also([timing] { timing->setVisible(Drive().Times_Half_Steps); });
  left->addWidget(timing);
  left->addWidget(Build_Board(Binding));
  left->addStretch(1);
  auto* right = new QVBoxLayout;
  right->addWidget(Build_Feeds(Binding, Knob));
  right->addWidget(Build_Levels(Binding));
  right->addWidget(Build_Outputs(Binding));
  right->addStretch(1);
  Columns->addLayout(left, 3);
  Columns->addLayout(right, 2);
  rows->addLayout(Columns);
  rows->addWidget(Build_Goto());
  rows->addWidget(Build_Messages(), 1);

  // A screen that is too small for the rest scrolls it; nothing is squeezed.
  Scroll = new QScrollArea;
  Scroll->setObjectName("Scroll_Controls");
  Scroll->setWidgetResizable(true);
  Scroll->setFrameShape(QFrame::NoFrame);
  Scroll->setWidget(content);
  outer->addWidget(Scroll, 1);

  CNC_Controls_Host.Form_Changed = [this] { Show_Form(); };
  CNC_Controls_Host.Set_Timer_Interval = [this](int interval_ms) { Start_Timer(interval_ms); };
  CNC_Controls_Host.Mouse_Button_Down = [] { return QApplication::mouseButtons() != Qt::NoButton; };
  Messages_Host.List_Changed = [this] { Show_Form(); };
  Load_CNC_Controls();
  Show_Form();
  Start_Timer(250);
}

Controls_Window::~Controls_Window() {
  Platform.Stop_Timer(Timer);
  CNC_Controls_Host = {};
  Messages_Host.List_Changed = [] {};
}

// Every move asks for the interval at its end. A timer that ticks at it goes on: begun anew, it
// would never tick in a run of moves that are shorter than its interval.
void Controls_Window::Start_Timer(int interval_ms) {
  if (interval_ms == Timer_Interval) return;
  Timer_Interval = interval_ms;
  if (Timer != 0) Platform.Stop_Timer(Timer);
  Timer = interval_ms > 0 ? Platform.Start_Timer(interval_ms, CNC_Controls_Timer1) : 0;
}

void Controls_Window::Show_Form() {
  Binding.Show();
  Show_Refused();
  Safety->setVisible(!Safety->text().isEmpty());
  Knob->update();
  if (Shown_Status == Messages.Status_Box) return;
  Shown_Status = Messages.Status_Box;
  Status_Box->setPlainText(QString::fromStdString(Shown_Status).trimmed());
  Status_Box->verticalScrollBar()->setValue(0);
}

// Play and Step stay under the hand, so that a press says why nothing runs; they look refused.
void Controls_Window::Show_Refused() {
  const bool refused = Machine.EStop_Flag;
  if (Shown_Refused == refused) return;
  Shown_Refused = refused;
  for (const char* name : {"Command_CNC_Play", "Command_CNC_Step"}) {
    auto* button = findChild<QPushButton*>(name);
    const auto row = std::find_if(std::begin(Run_Buttons), std::end(Run_Buttons),
                                  [name](const Button_Row& r) { return QString(r.Name) == name; });
    const QColor ink =
        palette().color(refused ? QPalette::Disabled : QPalette::Active, QPalette::ButtonText);
    Set_Face(*button, QColor(), ink);
    button->setIcon(Sign_Icon(row->Picture, ink));
    button->setToolTip(refused ? "Refused while the motors are disabled" : row->Tip);
  }
}

// Two columns where both fit beside each other, one below the other in a narrow panel. There the
// distances to go, leave their room to the positions, and
// the E-stop has a row of its own.
void Controls_Window::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  int both = Columns->spacing();
  for (int column = 0; column < Columns->count(); ++column) {
    both += Columns->itemAt(column)->minimumSize().width();
  }
  const int bar = Scroll->verticalScrollBar()->sizeHint().width();
  const int room = Scroll->width() - bar;
  Columns->setDirection(both <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  const bool narrow = width() < Text_Height() * 28;
  for (QWidget* to_go : To_Go) to_go->setVisible(!narrow);
  if (narrow) {
    Status_Grid->addWidget(EStop, 3, 0, 1, 2);
  } else {
    Status_Grid->addWidget(EStop, 0, 1, 3, 1);
  }
}

void Controls_Window::hideEvent(QHideEvent* event) {
  Jog_Guard_Window_Lost();
  QWidget::hideEvent(event);
}

QWidget* Controls_Window::Build_Status() {
  auto* area = new QWidget;
  auto* grid = Status_Grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  auto* status = new QLabel;
  status->setFont(Bold_Font(1.5));
  Binding.Label(status, "Label_CNC_Status", CNC_Controls.Label_CNC_Status);
  grid->addWidget(status, 0, 0);
  auto* activity = new QLabel;
  // Room for the widest text, so that the E-stop beside it stays where it is.
  activity->setMinimumWidth(
      QFontMetrics(activity->font()).horizontalAdvance("pausing: ends with this move, 99.9 s "));
  Binding.Label(activity, "Label_CNC_Activity", CNC_Controls.Label_CNC_Activity);
  auto* step = new QLabel;
  Binding.Label(step, "Label_CNC_Step", CNC_Controls.Label_CNC_Step);
  auto* second_line = new QHBoxLayout;
  second_line->addWidget(step);
  second_line->addWidget(activity, 1);
  grid->addLayout(second_line, 1, 0);
  auto* timer = new QLabel;
  Binding.Label(timer, "Label_Run_Timer", CNC_Controls.Label_Run_Timer);
  grid->addWidget(timer, 2, 0);

  auto* estop = EStop = new QPushButton;
  estop->setFont(Bold_Font(1.25));
  estop->setMinimumHeight(Finger_Height() * 7 / 4);
  estop->setIcon(EStop_Icon());
  estop->setIconSize({Finger_Height(), Finger_Height()});
  estop->setToolTip("Stops all motion at once (F12); press again to enable the motors");
  estop->setFocusPolicy(Qt::NoFocus);
  Keep_Room_For(*estop, {"MOTORS ENABLED", "MOTORS DISABLED"});
  Binding.Button(estop, "Command_EStop", CNC_Controls.Command_EStop, Command_EStop_Click);
  grid->addWidget(estop, 0, 1, 3, 1);
  grid->setColumnStretch(0, 3);
  grid->setColumnStretch(1, 4);

  auto* safety = Safety = new QLabel;
  safety->setWordWrap(true);
  safety->setForegroundRole(QPalette::Link);
  Binding.Label(safety, "Label_Home_Safety", CNC_Controls.Label_Home_Safety);
  grid->addWidget(safety, 4, 0, 1, 2);
  auto* notice = new QLabel;
  notice->setWordWrap(true);
  Binding.Label(notice, "Label_Panel_Notice", Gcode_Form.Label_Table_Notice);
  Binding.Also([notice] { notice->setVisible(!notice->text().isEmpty()); });
  grid->addWidget(notice, 5, 0, 1, 2);
  return area;
}

QWidget* Controls_Window::Build_Run_Buttons() {
  auto* area = new QWidget;
  auto* rows = new QVBoxLayout(area);
  rows->setContentsMargins(0, 0, 0, 0);
  auto* buttons = new QHBoxLayout;
  for (const Button_Row& row : Run_Buttons) {
    QPushButton* button = Big_Button(row);
    Binding.Button(button, row.Name, CNC_Controls.*row.Control, row.Clicked);
    buttons->addWidget(button);
  }
  rows->addLayout(buttons);
  auto* block = new QLineEdit;
  block->setReadOnly(true);
  block->setFont(Readout_Font(1.0));
  block->setPlaceholderText("The block executed last");
  Binding.Text(block, "Text_Program_Messages", CNC_Controls.Text_Program_Messages, [] {});
  auto* last = new QHBoxLayout;
  last->addWidget(block, 1);
  // Typed in the window of the program; here it says what Play will run.
  const auto step = [&](const char* title, const QString& name, Text_Control& control) {
    last->addWidget(new QLabel(title));
    auto* edit = new QLineEdit;
    edit->setReadOnly(true);
    edit->setFocusPolicy(Qt::NoFocus);
    edit->setMaximumWidth(Text_Height() * 4);
    edit->setToolTip("The steps that Play runs; the program's window changes them");
    Binding.Text(edit, name, control, [] {});
    last->addWidget(edit);
  };
  step("Steps", "Panel_StartingStep", CNC_Controls.Text_StartingStep);
  step("to", "Panel_EndingStep", CNC_Controls.Text_EndingStep);
  rows->addLayout(last);
  return area;
}

QWidget* Controls_Window::Build_Sequences() {
  auto* grid = new QGridLayout;
  const auto add = [&](int row, int column, const QString& name, Button_Control& control,
                       Sign picture, const QString& tip, Handler clicked) {
    auto* button = new QPushButton;
    button->setIcon(Sign_Icon(picture));
    button->setMinimumHeight(Finger_Height());
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::NoFocus);
    Binding.Button(button, name, control, std::move(clicked));
    grid->addWidget(button, row, column);
  };
  add(0, 0, "Command_Home", CNC_Controls.Command_Home, Sign::Home,
      "Go to the home position (Ctrl+F11)", Command_Home_Click);
  add(0, 1, "Command_ReTool", CNC_Controls.Command_ReTool, Sign::Tool,
      "Go to the position for changing the tool", Command_ReTool_Click);
  add(1, 0, "Command_AutoRetool_0", CNC_Controls.Command_AutoRetool[0], Sign::Tool,
      "Go and change the tool", [] { Command_AutoRetool_Click(0); });
  add(1, 1, "Command_AutoRetool_1", CNC_Controls.Command_AutoRetool[1], Sign::Refresh,
      "Come back from changing the tool", [] { Command_AutoRetool_Click(1); });
  return Panel_Group("Home and tool", grid);
}

QWidget* Controls_Window::Build_Goto() {
  auto* row = new QHBoxLayout;
  auto* memory = new QComboBox;
  memory->setMinimumHeight(Finger_Height() * 3 / 4);
  memory->setToolTip("Ten remembered commands");
  Binding.Combo(memory, "Combo_Goto", CNC_Controls.Combo_Goto, Combo_Goto_Click);
  row->addWidget(memory, 2);
  auto* text = new QLineEdit;
  text->setMinimumHeight(Finger_Height() * 3 / 4);
  text->setFont(Readout_Font(1.0));
  text->setToolTip("One line of G-code; Enter runs it");
  Binding.Text(text, "Text_Goto", CNC_Controls.Text_Goto, [] {});
  QObject::connect(text, &QLineEdit::textEdited, text, [](const QString& typed) {
    CNC_Controls.Text_Goto.Text = typed.toStdString();
    Text_Goto_KeyUp(0);
  });
  QObject::connect(text, &QLineEdit::returnPressed, text, [text] {
    CNC_Controls.Text_Goto.Text = text->text().toStdString();
    Text_Goto_KeyUp(Key_Enter);
  });
  row->addWidget(text, 3);
  auto* go = new QPushButton;
  go->setMinimumHeight(Finger_Height());
  go->setToolTip("Run the line at the left");
  Binding.Button(go, "Command_Goto", CNC_Controls.Command_Goto, Command_Goto_Click);
  row->addWidget(go);
  return Panel_Group("Goto", row);
}

QWidget* Controls_Window::Build_Messages() {
  auto* area = new QWidget;
  auto* rows = new QVBoxLayout(area);
  rows->setContentsMargins(0, 0, 0, 0);
  auto* estimate_row = new QHBoxLayout;
  auto* estimate = new QPushButton;
  estimate->setToolTip("Work out how long the program takes");
  Binding.Button(estimate, "Command_Estimate_Process_Time",
                 CNC_Controls.Command_Estimate_Process_Time, Command_Estimate_Process_Time_Click);
  estimate_row->addWidget(estimate);
  auto* time = new QLabel;
  Binding.Label(time, "Label_MaterialProcess_Time", CNC_Controls.Label_MaterialProcess_Time);
  estimate_row->addWidget(time, 1);
  estimate_row->addWidget(new QLabel("Tool"));
  auto* tool = new QLabel;
  Binding.Label(tool, "Label_Tool", CNC_Controls.Label_Tool);
  estimate_row->addWidget(tool);
  rows->addLayout(estimate_row);
  Status_Box = new QPlainTextEdit;
  Status_Box->setObjectName("Text_Status");
  Status_Box->setReadOnly(true);
  Status_Box->setMinimumHeight(Text_Height() * 5 / 2);
  rows->addWidget(Status_Box, 1);
  return area;
}

}  // namespace norvik
