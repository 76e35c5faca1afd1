#include "ui/main/safety_bar.h"

#include "control/displays/displays.h"
#include "control/run/cnc_controller.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/operation.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QHBoxLayout>

namespace norvik {

namespace {

constexpr int Refresh_Ms = 200;

QPushButton* Bar_Button(const QString& name, const QString& caption, const QString& tip,
                        void (*clicked)()) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setFont(Bold_Font(1.0));
  button->setFocusPolicy(Qt::NoFocus);
  button->setMinimumHeight(Finger_Height() * 3 / 4);
  QObject::connect(button, &QPushButton::clicked, button, clicked);
  return button;
}

}  // namespace

Safety_Bar::Safety_Bar(QWidget* parent)
    : QWidget(parent),
      State(new QLabel),
      Activity(new QLabel),
      Stop(Bar_Button("Command_Bar_Stop", "Stop", "End the run with the running move (F8 or ESC)",
                      Command_CNC_Stop_Click)),
      EStop(Bar_Button("Command_Bar_EStop", "E-STOP",
                       "Stop all motion at once and disable the motors (F12)",
                       Command_EStop_Click)) {
  setObjectName("Safety_Bar");
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 2, 4, 2);
  State->setObjectName("Label_Bar_State");
  State->setTextFormat(Qt::PlainText);
  State->setFont(Bold_Font(1.0));
  Activity->setObjectName("Label_Bar_Activity");
  Activity->setTextFormat(Qt::PlainText);
  // The widest of their texts, so that the buttons never move under a hand.
  State->setMinimumWidth(std::max(
      QFontMetrics(State->font()).horizontalAdvance("MOTORS DISABLED "),
      QFontMetrics(Activity->font()).horizontalAdvance("pausing: ends with this move, 99.9 s ")));
  // Room for both from the start: the windows below must not move either.
  setMinimumHeight(QFontMetrics(State->font()).height() + QFontMetrics(Activity->font()).height() +
                   row->contentsMargins().top() + row->contentsMargins().bottom());
  auto* lines = new QVBoxLayout;
  lines->setSpacing(0);
  for (QLabel* line : {State, Activity}) {
    line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lines->addWidget(line);
  }
  Stop->setIcon(Sign_Icon(Sign::Stop));
  EStop->setIcon(EStop_Icon());
  Set_Face(*EStop, Alarm_Red(), Qt::white);
  row->addLayout(lines);
  row->addWidget(Stop);
  row->addWidget(EStop);
  Show_State();
  Timer = Platform.Start_Timer(Refresh_Ms, [this] { Show_State(); });
}

Safety_Bar::~Safety_Bar() {
  Platform.Stop_Timer(Timer);
}

void Safety_Bar::Show_State() {
  const bool moves = Anything_Moves();
  const Button_Control& motors = CNC_Controls.Command_EStop;
  const bool disabled = Machine.EStop_Flag;
  QString text = QString::fromStdString(CNC_Controls.Label_CNC_Status.Caption);
  if (disabled) {
    text = QString::fromStdString(motors.Caption);
  } else if (moves && Machine.CNCMode == CNC_Stopped) {
    text = "Machine moves";  // a jog, a Goto, the way home
  }
  if (State->text() != text) {
    State->setText(text);
    State->setForegroundRole(disabled || moves ? QPalette::Link : QPalette::WindowText);
  }
  const QString activity = QString::fromStdString(Activity_Text());
  if (Activity->text() != activity) Activity->setText(activity);
  if (Activity->isHidden() != activity.isEmpty()) Activity->setHidden(activity.isEmpty());
  // A second press would enable the motors; that is done where the whole panel is in sight.
  if (EStop->isEnabled() == disabled) EStop->setEnabled(!disabled);
  if (Stop->isEnabled() != (moves || Machine.CNCMode != CNC_Stopped)) {
    Stop->setEnabled(moves || Machine.CNCMode != CNC_Stopped);
  }
}

}  // namespace norvik
