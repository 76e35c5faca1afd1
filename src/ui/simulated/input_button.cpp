#include "ui/simulated/input_button.h"

#include "control/manual/jog_guard.h"
#include "ui/widgets/theme.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>

namespace norvik {

namespace {

constexpr int EStop = 0, Auxiliary = 5;
constexpr const char* Names[] = {"E-stop",   "X switch", "Y switch",
                                 "Z switch", "A switch", "Aux input"};

QString State_Words(int input, const Simulated_Input_View& view) {
  const QString reads = view.Used ? (view.On ? "ON" : "off") : "not wired";
  if (input != EStop) return Input_Name(input) + ": " + reads;
  return QString(view.Pressed ? "E-STOP PRESSED" : "E-stop released") + "\nreads " + reads;
}

void Paint_Button(QPushButton& button, int input, const Simulated_Input_View& view) {
  if (input == EStop) return Set_Face(button, Alarm_Red(), Qt::white);
  const bool lit = view.Used && view.On;
  const QColor color = input == Auxiliary ? Colors().Run : Colors().Stop;
  Set_Face(button, lit ? color : QColor(), lit ? Ink_On_Face(color) : QColor());
}

}  // namespace

QString Input_Name(int input) {
  return Names[input];
}

Input_Button::Input_Button(int input, QWidget* parent) : QWidget(parent), Input(input) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(2);
  Button = new QPushButton;
  Button->setObjectName(QString("Command_Input_%1").arg(input));
  Button->setMinimumHeight(Finger_Height());
  Button->setFocusPolicy(Qt::NoFocus);
  Button->setContextMenuPolicy(Qt::CustomContextMenu);
  if (input == EStop) {
    Button->setFont(Bold_Font(1.1));
    Button->setMinimumHeight(Finger_Height() * 6 / 5);
    Button->setIcon(EStop_Icon());
    Button->setIconSize(QSize(Finger_Height(), Finger_Height()) * 0.85);
    Keep_Room_For(*Button, {"E-STOP PRESSED", "E-stop released", "reads not wired"});
  }
  row->addWidget(Button, 1);
  Faults = new QPushButton("...");
  Faults->setObjectName(QString("Command_Faults_%1").arg(input));
  Faults->setToolTip("Faults of the " + Input_Name(input));
  Faults->setAccessibleName(Faults->toolTip());
  Faults->setFixedWidth(Text_Height() * 3 / 2);
  Faults->setMinimumHeight(Finger_Height());
  Faults->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  Faults->setFocusPolicy(Qt::NoFocus);
  row->addWidget(Faults);
  connect(Button, &QPushButton::clicked, this, &Input_Button::Press);
  connect(Button, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& place) { Offer_Faults(Button->mapToGlobal(place)); });
  connect(Faults, &QPushButton::clicked, this,
          [this] { Offer_Faults(Faults->mapToGlobal(QPoint(0, Faults->height()))); });
}

void Input_Button::Press() {
  const bool pressed = !Simulated_Machine.Inputs[Input].Pressed;
  if (Input == EStop) {
    Press_EStop(pressed);
  } else if (Input == Auxiliary) {
    Press_Auxiliary(pressed);
  } else {
    const bool forced = Simulated_Machine.Inputs[Input].Force == Input_Force::On;
    Force_Input(Input, forced ? Input_Force::Automatic : Input_Force::On);
  }
}

// The menu is shown and not waited for: a program may be running.
void Input_Button::Offer_Faults(const QPoint& place) {
  Jog_Guard_Window_Lost();
  const Simulated_Input& now = Simulated_Machine.Inputs[Input];
  auto* menu = new QMenu(this);
  menu->setObjectName(QString("Menu_Faults_%1").arg(Input));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  auto* kinds = new QActionGroup(menu);
  const auto offer = [&](const QString& words, bool chosen, auto&& act) {
    QAction* action = menu->addAction(words);
    action->setCheckable(true);
    action->setChecked(chosen);
    connect(action, &QAction::triggered, this, act);
    return action;
  };
  const int input = Input;
  struct Kind {
    const char* Words;
    Input_Fault Fault;
  };
  for (const auto& [words, fault] :
       {Kind{"Contact works", Input_Fault::None}, Kind{"Stuck on", Input_Fault::Stuck_On},
        Kind{"Stuck off", Input_Fault::Stuck_Off}, Kind{"Wire broken", Input_Fault::Wire_Broken}}) {
    const Input_Fault chosen = fault;
    kinds->addAction(
        offer(words, now.Fault == fault, [input, chosen] { Set_Input_Fault(input, chosen); }));
  }
  menu->addSeparator();
  offer("Contact bounces", now.Bounce > 0, [input](bool on) { Set_Input_Bounce(input, on); });
  offer("Noise pulses", now.Noise_Period > 0, [input](bool on) { Set_Input_Noise(input, on); });
  menu->popup(place);
}

void Input_Button::Show_View(const Simulated_Input_View& view) {
  Button->setEnabled(view.Used || Input == EStop);
  Faults->setEnabled(view.Used);
  const QString faults = QString::fromStdString(Words_Of_Faults(view)).replace(", ", "\n");
  const QString words = State_Words(Input, view) + (faults.isEmpty() ? "" : "\n" + faults);
  if (words != Button->text()) Button->setText(words);
  Paint_Button(*Button, Input, view);
  Button->setToolTip(view.High ? "The line is high" : "The line is low");
}

}  // namespace norvik
