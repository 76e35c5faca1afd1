#include "ui/simulated/board_panel.h"

#include "core/axes.h"
#include "simulate/board/board.h"
#include "simulate/board_port.h"
#include "ui/simulated/axes_panel.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace norvik {

namespace {

constexpr int Columns = 8;

QLabel* Named_Label(const QString& name) {
  auto* label = new QLabel;
  label->setObjectName(name);
  return label;
}

QLabel* Figure(const QString& name) {
  QLabel* label = Named_Label(name);
  label->setFont(Readout_Font(1));
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return label;
}

QString Words_Of_Link(const Board_Line& line) {
  const Simulated_Board& board = line.Board;
  const auto& [first, second, third] = board.Settings.Revision;
  const Frame_Receiver& receiver = board.Receiver;
  const auto errors = receiver.Bad_Checksums + receiver.Unknown_Codes + receiver.Dropped_Frames;
  return QString("%1 %2.%3.%4, %5: %6 frames, %7 bad")
      .arg(QString::fromStdString(Name_Of(board.Generation)))
      .arg(first)
      .arg(second)
      .arg(third)
      .arg(line.Plugged ? "plugged in" : "UNPLUGGED")
      .arg(board.Counts.Frames)
      .arg(errors);
}

QString Words_Of_Entry(const Simulated_Board& board) {
  if (!In_Motion(board)) return board.Enabled ? "at rest" : "motors off";
  const Running_Entry& run = board.Running;
  if (run.Entry.Dwell)
    return QString("dwell, %1 of %2 ms").arg(Counts_Made(board)).arg(run.Entry.Major);
  return QString("move %1: %2 of %3 counts, %4 Hz")
      .arg(run.Entry.Index)
      .arg(Counts_Made(board))
      .arg(run.Entry.Major)
      .arg(std::lround(Current_Rate(board)));
}

QString Words_Of_State(const Simulated_Board& board) {
  QString outputs;
  for (int output = 1; output <= 7; ++output) {
    if ((board.Outputs >> (output - 1) & 1) != 0) outputs += QString(" %1").arg(output);
  }
  constexpr double full = 1023, percent = 100;
  return QString("Outputs on:%1   PWM %2 % (%3)   throttle %4 %   latches %5   watchdog %6")
      .arg(outputs.isEmpty() ? " none" : outputs)
      .arg(std::lround(Pwm_Value(board) / full * percent))
      .arg(Pwm_Value(board))
      .arg(std::lround(board.Throttle * percent))
      .arg(board.Limit_Latches == 0 ? "none" : QString::number(board.Limit_Latches, 2))
      .arg(board.Watchdog_Errors);
}

// Acts on the board in use, up to now.
template <class Act>
auto On_Board(Act act) {
  return [act](bool checked) {
    Follow_Simulated_Board();
    if (Board_Line* line = Line_In_Use()) act(*line, checked);
  };
}

}  // namespace

Board_Panel::Board_Panel(QWidget* parent) : QGroupBox("Controller board", parent) {
  setObjectName("Group_Board");
  auto* grid = new QGridLayout(this);
  grid->setVerticalSpacing(2);
  Build_Queue(*grid);
  static constexpr const char* heads[Columns] = {"Axis", "Counter", "Encoder", "Apart",
                                                 "Home", "First",   "Second",  "Carriage"};
  for (int column = 0; column < Columns; ++column) {
    auto* head = new QLabel(heads[column]);
    head->setForegroundRole(QPalette::PlaceholderText);
    grid->addWidget(head, 3, column);
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) Build_Axis(*grid, axis);
  Build_Hands(*grid);
  hide();
}

QPushButton* Board_Panel::Hand(const QString& words, const QString& name, const QString& tip,
                               bool stays) {
  auto* button = new QPushButton(words);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setCheckable(stays);
  button->setFocusPolicy(Qt::NoFocus);
  return button;
}

void Board_Panel::Build_Queue(QGridLayout& grid) {
  Link = Named_Label("Label_Board_Link");
  Queue = new QProgressBar;
  Queue->setObjectName("Bar_Board_Queue");
  Queue->setFormat("queue: %v of %m");
  Entry = Named_Label("Label_Board_Entry");
  State = Named_Label("Label_Board_State");
  grid.addWidget(Link, 0, 0, 1, 4);
  grid.addWidget(Queue, 0, 4, 1, 4);
  grid.addWidget(Entry, 1, 0, 1, Columns);
  grid.addWidget(State, 2, 0, 1, Columns);
}

void Board_Panel::Build_Axis(QGridLayout& grid, int axis) {
  const QString letter(QChar(Axis_Letter(axis)));
  Axis_Row& row = Axes[static_cast<std::size_t>(axis)];
  row.Counter = Figure("Label_Board_Counter_" + letter);
  row.Encoder = Figure("Label_Board_Encoder_" + letter);
  row.Error = Figure("Label_Board_Error_" + letter);
  row.Home = Named_Label("Label_Board_Home_" + letter);
  row.Low = Hand("limit", "Command_Board_Low_" + letter, "Presses the first limit switch", true);
  row.High = Hand("limit", "Command_Board_High_" + letter, "Presses the second limit switch", true);
  row.Slip = Hand("slips", "Command_Board_Slip_" + letter,
                  "The carriage makes a twentieth less than its steps", true);
  connect(row.Low, &QPushButton::clicked, this, On_Board([axis](Board_Line& line, bool on) {
            line.Board.Axes[axis].Low_Input = on ? Input_State::On : Input_State::Automatic;
            Plan_Again(line.Board);
          }));
  connect(row.High, &QPushButton::clicked, this, On_Board([axis](Board_Line& line, bool on) {
            line.Board.Axes[axis].High_Input = on ? Input_State::On : Input_State::Automatic;
            Plan_Again(line.Board);
          }));
  connect(row.Slip, &QPushButton::clicked, this, On_Board([axis](Board_Line& line, bool on) {
            constexpr double twentieth = 0.05;
            Slip_From_Here(line.Board, axis, on ? twentieth : 0);
          }));
  auto* title = new QLabel(letter);
  title->setFont(Bold_Font(1));
  QWidget* const parts[Columns] = {title,    row.Counter, row.Encoder, row.Error,
                                   row.Home, row.Low,     row.High,    row.Slip};
  for (int column = 0; column < Columns; ++column) grid.addWidget(parts[column], axis + 3, column);
}

void Board_Panel::Build_Hands(QGridLayout& grid) {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  Cable = Hand("Unplug", "Command_Board_Unplug", "Pulls the cable; again: plugs it in", true);
  Aux = Hand("Aux input", "Command_Board_Aux", "Puts a level to the auxiliary input", true);
  auto* watchdog = Hand("Watchdog", "Command_Board_Watchdog", "Counts a watchdog error", false);
  auto* restart = Hand("Restart", "Command_Board_Restart",
                       "As after power-up: counters 0, outputs off, silent for 400 ms", false);
  connect(Cable, &QPushButton::clicked, this, On_Board([](Board_Line& line, bool out) {
            if (out) {
              Unplug(line);
            } else {
              Plug_In(line);
            }
          }));
  connect(Aux, &QPushButton::clicked, this, On_Board([](Board_Line& line, bool on) {
            Set_Board_Aux(line.Board, on ? Input_State::On : Input_State::Off);
          }));
  connect(watchdog, &QPushButton::clicked, this,
          On_Board([](Board_Line& line, bool) { ++line.Board.Watchdog_Errors; }));
  connect(restart, &QPushButton::clicked, this,
          On_Board([](Board_Line& line, bool) { Restart_Board(line.Board); }));
  for (QPushButton* button : {Cable, Aux, watchdog, restart}) row->addWidget(button);
  auto* invented = new QLabel("Beyond the wire format the board is invented");
  invented->setObjectName("Label_Board_Invented");
  invented->setForegroundRole(QPalette::PlaceholderText);
  invented->setToolTip(
      "How rates and ramps pass in time and at joints, what limits, stops and a full queue do,\n"
      "whether the running entry counts, what faults refuse, how long a restart takes, and the\n"
      "bytes of replies without a stated meaning are this simulation's own ideas. A real board\n"
      "may differ.");
  row->addWidget(invented);
  row->addStretch(1);
  grid.addWidget(area, Axis_Count + 4, 0, 1, Columns);
}

void Board_Panel::Show_Queue(const Board_Line& line) {
  const Simulated_Board& board = line.Board;
  Set_Text(*Link, Words_Of_Link(line));
  Set_Face(*Link, line.Plugged ? QColor() : Alarm_Red(), line.Plugged ? QColor() : Qt::white);
  Queue->setRange(0, board.Settings.Capacity);
  Queue->setValue(Queue_Used(board));
  Set_Text(*Entry, Words_Of_Entry(board));
  Set_Text(*State, Words_Of_State(board));
}

void Board_Panel::Show_Axis(const Board_Line& line, int axis) {
  const Simulated_Board& board = line.Board;
  const Axis_Row& row = Axes[static_cast<std::size_t>(axis)];
  const bool encoders = board.Generation == Board_Generation::Pelmar_V5;
  const bool fault = board.Axes[axis].Encoder_Fault;
  Set_Text(*row.Counter, QString::number(Counter_Of(board, axis)));
  Set_Text(*row.Encoder, encoders ? QString::number(Encoder_Of(board, axis)) : "-");
  Set_Text(*row.Error,
           encoders ? QString::number(std::llround(Encoder_Error_Of(board, axis))) : "-");
  Set_Face(*row.Error, fault ? Alarm_Red() : QColor(), fault ? Qt::white : QColor());
  Set_Text(*row.Home, Home_Input_On(board, axis) ? "home" : "");
  constexpr int second_switches = 4;
  const int bit = axis - 1;
  const auto words = [&](bool on, int place) {
    const bool latched = (board.Limit_Latches >> place & 1) != 0;
    return QString(on ? "ON" : "off") + (latched ? ", latched" : "");
  };
  row.Low->setText(words(Low_Switch_On(board, axis), bit));
  row.High->setText(words(High_Switch_On(board, axis), bit + second_switches));
  row.Low->setChecked(board.Axes[axis].Low_Input == Input_State::On);
  row.High->setChecked(board.Axes[axis].High_Input == Input_State::On);
  row.Slip->setChecked(board.Axes[axis].Settings.Slip > 0);
}

void Board_Panel::Show_Board() {
  Follow_Simulated_Board();
  const Board_Line* line = Line_In_Use();
  setVisible(line != nullptr);
  if (line == nullptr) return;
  Show_Queue(*line);
  for (int axis = 1; axis <= Axis_Count; ++axis) Show_Axis(*line, axis);
  Cable->setChecked(!line->Plugged);
  Aux->setChecked(line->Board.Aux == Input_State::On);
}

}  // namespace norvik
