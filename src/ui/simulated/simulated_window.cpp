#include "ui/simulated/simulated_window.h"

#include "core/setup.h"
#include "simulate/findings.h"
#include "simulate/virtual_clock.h"
#include "ui/theme.h"

#include <cmath>

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Refresh_Ms = 100;
constexpr const char* Axis_Names[] = {"", "X", "Y", "Z", "A"};
constexpr const char* Input_Names[] = {"E-stop",   "X switch", "Y switch",
                                       "Z switch", "A switch", "Aux input"};
constexpr int EStop = 0, Auxiliary = 5;

QLabel* Figure() {
  auto* label = new QLabel;
  label->setFont(Readout_Font(1.1));
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return label;
}

}  // namespace

Simulated_Window::Simulated_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Simulated_Machine");
  setWindowTitle("Simulated machine");
  auto* rows = new QVBoxLayout(this);
  auto* head = new QLabel("SIMULATED MACHINE - no motion takes place");
  head->setFont(Bold_Font(1.0));
  head->setMargin(Text_Height() / 5);
  head->setAlignment(Qt::AlignCenter);
  Set_Face(*head, Colors().Warn, Theme_Is_Dark() ? Qt::black : Qt::white);
  rows->addWidget(head);

  auto* content = new QWidget;
  Columns = new QHBoxLayout(content);
  Columns->setContentsMargins(0, 0, 0, 0);
  auto* left = new QVBoxLayout;
  left->addWidget(Build_Axes());
  left->addWidget(Build_Speed());
  left->addStretch(1);
  auto* right = new QVBoxLayout;
  right->addWidget(Build_Inputs());
  right->addWidget(Build_Outputs());
  right->addWidget(new QLabel("Noticed"));
  Findings = new QListWidget;
  Findings->setObjectName("List_Noticed");
  Findings->setWordWrap(true);
  Findings->setMinimumHeight(Text_Height() * 3);
  right->addWidget(Findings, 1);
  Columns->addLayout(left, 2);
  Columns->addLayout(right, 3);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(content);
  rows->addWidget(scroll, 1);
  Timer = Platform.Start_Timer(Refresh_Ms, [this] {
    if (isVisible()) Show_View();
  });
  Show_View();
}

// Two columns where both fit beside each other.
void Simulated_Window::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  int both = 0;
  for (int column = 0; column < Columns->count(); ++column) {
    both += Columns->itemAt(column)->minimumSize().width() + Text_Height();
  }
  Columns->setDirection(both <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

Simulated_Window::~Simulated_Window() {
  Platform.Stop_Timer(Timer);
}

QWidget* Simulated_Window::Build_Axes() {
  auto* group = new QGroupBox("Where the carriages are");
  auto* grid = new QGridLayout(group);
  static constexpr const char* heads[] = {"Axis", "True position", "Steps apart", "Rate", "Motor"};
  for (int column = 0; column < 5; ++column) {
    auto* head = new QLabel(heads[column]);
    head->setForegroundRole(QPalette::PlaceholderText);
    head->setAlignment(column == 0 || column == 4 ? Qt::AlignLeft : Qt::AlignRight);
    grid->addWidget(head, 0, column);
  }
  for (int axis = 1; axis <= 4; ++axis) {
    const QString name = Axis_Names[axis];
    auto* title = new QLabel(name);
    title->setFont(Bold_Font(1.2));
    grid->addWidget(title, axis, 0);
    Axis_Row& row = Axes[static_cast<std::size_t>(axis)];
    row = {Figure(), Figure(), Figure(), new QLabel};
    row.Position->setObjectName("Label_True_Position_" + name);
    row.Apart->setObjectName("Label_Steps_Apart_" + name);
    row.Apart->setToolTip("Steps between the carriage and what the program believes");
    grid->addWidget(row.Position, axis, 1);
    grid->addWidget(row.Apart, axis, 2);
    grid->addWidget(row.Rate, axis, 3);
    grid->addWidget(row.State, axis, 4);
  }
  grid->setColumnStretch(1, 1);
  grid->setHorizontalSpacing(Text_Height() / 2);
  grid->setColumnMinimumWidth(3, QFontMetrics(Axes[1].Rate->font()).horizontalAdvance("-000.0"));
  grid->setColumnMinimumWidth(4, QFontMetrics(font()).horizontalAdvance("STALLED"));
  return group;
}

QWidget* Simulated_Window::Build_Inputs() {
  auto* group = new QGroupBox("Switches and buttons: click to press and let go");
  auto* grid = new QGridLayout(group);
  for (int input = 0; input <= 5; ++input) {
    auto* button = new QPushButton(Input_Names[input]);
    button->setObjectName(QString("Command_Input_%1").arg(input));
    button->setMinimumHeight(Finger_Height());
    button->setFocusPolicy(Qt::NoFocus);
    if (input == EStop) button->setFont(Bold_Font(1.1));
    connect(button, &QPushButton::clicked, this, [this, input] {
      const bool pressed = !View_Simulated_Machine().Inputs[input].Pressed;
      if (input == EStop) {
        Press_EStop(pressed);
      } else if (input == Auxiliary) {
        Press_Auxiliary(pressed);
      } else {
        const bool forced = Simulated_Machine.Inputs[input].Force == Input_Force::On;
        Force_Input(input, forced ? Input_Force::Automatic : Input_Force::On);
      }
      Show_View();
    });
    Inputs[static_cast<std::size_t>(input)] = button;
    grid->addWidget(button, input / 3, input % 3);
  }
  return group;
}

QWidget* Simulated_Window::Build_Outputs() {
  auto* group = new QGroupBox("Outputs");
  auto* grid = new QGridLayout(group);
  for (int output = 1; output <= 5; ++output) {
    auto* label = new QLabel(QString::fromStdString(MachineSetup.Output_Names[output]));
    label->setObjectName(QString("Label_Output_%1").arg(output));
    label->setAlignment(Qt::AlignCenter);
    label->setFrameShape(QFrame::StyledPanel);
    label->setMargin(Text_Height() / 5);
    Outputs[static_cast<std::size_t>(output)] = label;
    grid->addWidget(label, (output - 1) / 3, (output - 1) % 3);
  }
  return group;
}

QWidget* Simulated_Window::Build_Speed() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  Spindle = new QLabel;
  row->addWidget(Spindle, 1);
  row->addWidget(new QLabel("Speed of time"));
  auto* factor = new QComboBox;
  factor->setObjectName("Combo_Speed_Factor");
  factor->setToolTip("Faster than real time moves the simulated machine only");
  static constexpr double factors[] = {1, 2, 5, 10, 50};
  for (const double value : factors) factor->addItem(QString("x %1").arg(value), value);
  connect(factor, &QComboBox::activated, this, [factor] {
    const double value = factor->currentData().toDouble();
    if (value == 1) return Remove_Virtual_Clock();
    if (!Virtual_Clock.Installed) Install_Virtual_Clock();
    Virtual_Clock.Speed_Factor = value;
  });
  row->addWidget(factor);
  return area;
}

void Simulated_Window::Show_Axis(int axis, const Simulated_Axis_View& view) {
  const Axis_Row& row = Axes[static_cast<std::size_t>(axis)];
  row.Position->setText(QString::number(view.Position, 'f', 4));
  row.Apart->setText(QString::number(view.Steps_Apart));
  Set_Face(*row.Apart, QColor(), view.Steps_Apart != 0 ? Colors().Stop : QColor());
  row.Rate->setText(QString::number(view.Rate, 'f', 1));
  row.State->setText(view.Stalled ? "STALLED" : view.Enabled ? "on" : "off");
}

void Simulated_Window::Show_Input(int input, const Simulated_Input_View& view) {
  QPushButton* button = Inputs[static_cast<std::size_t>(input)];
  button->setEnabled(view.Used);
  QString text = Input_Names[input];
  text += view.Used ? (view.On ? ": ON" : ": off") : ": not wired";
  button->setText(text);
  const bool lit = view.Used && view.On;
  Set_Face(*button, lit ? (input == Auxiliary ? Colors().Run : Colors().Stop) : QColor(),
           lit ? QColor(Qt::white) : QColor());
  button->setToolTip(view.High ? "The line is high" : "The line is low");
}

void Simulated_Window::Show_View() {
  const Simulated_Machine_View view = View_Simulated_Machine();
  for (int axis = 1; axis <= 4; ++axis) Show_Axis(axis, view.Axes[axis]);
  for (int input = 0; input <= 5; ++input) Show_Input(input, view.Inputs[input]);
  for (int output = 1; output <= 5; ++output) {
    QLabel* label = Outputs[static_cast<std::size_t>(output)];
    const bool on = view.Outputs[output].On;
    label->setEnabled(view.Outputs[output].Used);
    Set_Face(*label, on ? Colors().Run : QColor(),
             on ? QColor(Theme_Is_Dark() ? Qt::black : Qt::white) : QColor());
  }
  Spindle->setText(QString("Spindle %1 %").arg(std::lround(view.Spindle_Speed * 100)));
  if (view.Findings != Shown_Findings) {
    Shown_Findings = view.Findings;
    Findings->clear();
    for (const std::string& text : Shown_Findings) Findings->addItem(QString::fromStdString(text));
  }
}

}  // namespace norvik
