#include "ui/setup/serial_page_view.h"

#include "core/axes.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "platform/platform.h"
#include "serial/serial_link.h"
#include "serial/serial_page.h"
#include "serial/serial_session.h"
#include "ui/widgets/panel_group.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace norvik {

namespace {

QString Words(const std::string& text) {
  return QString::fromStdString(text);
}

template <std::size_t Count>
std::vector<QString> Offered(const char* const (&texts)[Count]) {
  return {std::begin(texts), std::end(texts)};
}

QString Axis_Words(int axis) {
  return QString(QChar(Axis_Letter(axis)));
}

QString Named(const char* family, int number) {
  return QString("%1_%2").arg(family).arg(number);
}

}  // namespace

Serial_Page_View::Serial_Page_View() {
  Board_Page = new QWidget;
  auto* rows = new QVBoxLayout(Board_Page);
  auto* upper = new QHBoxLayout;
  upper->addWidget(Build_Setup(), 1);
  upper->addWidget(Build_Health(), 1);
  rows->addLayout(upper);
  rows->addWidget(Build_Switches());
  rows->addWidget(Build_Hands());
  rows->addStretch(1);

  Encoder_Page = new QWidget;
  auto* encoders = new QVBoxLayout(Encoder_Page);
  auto* grid = new QGridLayout;
  static constexpr const char* heads[] = {"Axis",   "In use", "Stops",   "Mode",  "Error",
                                          "Factor", "Steps",  "Encoder", "Apart", "Fault"};
  int column = 0;
  for (const char* head : heads) {
    auto* label = new QLabel(head);
    label->setForegroundRole(QPalette::PlaceholderText);
    grid->addWidget(label, 0, column++);
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) Build_Encoder_Row(*grid, axis);
  encoders->addLayout(grid);
  auto* words = new QLabel(
      "The board compares each encoder with the steps of its axis. Factor: steps for one count of "
      "the encoder. Error: how far both may be apart before the board reports a fault; with Stops "
      "the board then stops by itself. A Dravon has no encoders.");
  words->setWordWrap(true);
  encoders->addWidget(words);
  auto* set = new QPushButton("Set encoders");
  set->setObjectName("Command_Set_Encoder");
  set->setToolTip("Saves this page and sends it to the board");
  set->setMinimumHeight(Finger_Height());
  QObject::connect(set, &QPushButton::clicked, set, [this] {
    Command_Set_Encoder_Click();
    Show_Form();
    Show_Board();
  });
  encoders->addWidget(set, 0, Qt::AlignLeft);
  encoders->addStretch(1);
}

// What is typed stands in the record at once.
QLineEdit* Serial_Page_View::Field(const QString& name, const QString& tip, std::string& text) {
  auto* field = new QLineEdit;
  field->setObjectName(name);
  field->setToolTip(tip);
  field->setMinimumHeight(Finger_Height() * 3 / 4);
  QObject::connect(field, &QLineEdit::textEdited, field,
                   [&text](const QString& typed) { text = typed.toStdString(); });
  Typed.push_back([field, &text] { field->setText(Words(text)); });
  return field;
}

QComboBox* Serial_Page_View::List(const QString& name, const QString& tip,
                                  const std::vector<QString>& offered, std::string& text) {
  auto* list = new QComboBox;
  list->setObjectName(name);
  list->setToolTip(tip);
  list->setEditable(true);
  list->setMinimumHeight(Finger_Height() * 3 / 4);
  for (const QString& item : offered) list->addItem(item);
  QObject::connect(list, &QComboBox::editTextChanged, list,
                   [&text](const QString& typed) { text = typed.toStdString(); });
  Typed.push_back([list, &text] {
    const QSignalBlocker quiet(list);
    list->setEditText(Words(text));
  });
  return list;
}

QCheckBox* Serial_Page_View::Check(const QString& words, const QString& name, const QString& tip,
                                   bool& value) {
  auto* check = new QCheckBox(words);
  check->setObjectName(name);
  check->setToolTip(tip);
  check->setMinimumHeight(Finger_Height() * 2 / 3);
  QObject::connect(check, &QCheckBox::clicked, check, [&value](bool on) { value = on; });
  Typed.push_back([check, &value] { check->setChecked(value); });
  return check;
}

QLabel* Serial_Page_View::Figure(const QString& name, const std::string& text) {
  auto* figure = new QLabel;
  figure->setObjectName(name);
  figure->setTextFormat(Qt::PlainText);
  Told.push_back([figure, &text] { figure->setText(Words(text)); });
  return figure;
}

// Red when something is wrong, green when something is on.
QPushButton* Serial_Page_View::Lamp(const QString& words, const QString& name, const QString& tip,
                                    const bool& on, bool alarm) {
  auto* lamp = new QPushButton(words);
  lamp->setObjectName(name);
  lamp->setToolTip(tip);
  lamp->setFocusPolicy(Qt::NoFocus);
  lamp->setMinimumHeight(Finger_Height() * 3 / 4);
  Told.push_back([lamp, &on, alarm] {
    const QColor face = alarm ? Colors().Stop : Colors().Run;
    Set_Face(*lamp, on ? face : QColor(), on ? Ink_On_Face(face) : QColor());
  });
  return lamp;
}

QWidget* Serial_Page_View::Build_Setup() {
  Serial_Page_Form& page = Serial_Page;
  auto* form = new QFormLayout;
  Serial_Port = new QComboBox;
  Serial_Port->setObjectName("Combo_Dravon_SerialPort");
  Serial_Port->setToolTip("Ports of this computer by their number; Apply opens the chosen one");
  Serial_Port->setMinimumHeight(Finger_Height() * 3 / 4);
  for (int number = 1; number <= Serial_Port_Count; ++number)
    Serial_Port->addItem(QString::number(number));
  QObject::connect(Serial_Port, &QComboBox::activated, Serial_Port, [this](int index) {
    Serial_Page.Combo_Dravon_SerialPort = std::to_string(index + 1);
    Show_Serial_Port();
  });
  form->addRow("Serial port", Serial_Port);
  Port_Words = new QLabel;
  Port_Words->setObjectName("Label_Serial_Port");
  Port_Words->setTextFormat(Qt::PlainText);
  Port_Words->setWordWrap(true);
  form->addRow(Port_Words);
  form->addRow("Smoothing", Field("Text_Dravon_SASF",
                                  "1 to 20: the lesser axes of a move step so many times finer",
                                  page.Text_Dravon_SASF));
  form->addRow("Spindle at full, rpm",
               Field("Text_Dravon_Spindle_RPM", "Speed that the full output stands for",
                     page.Text_Dravon_Spindle_RPM));
  form->addRow(Check("Invert the spindle output", "Check_Dravon_PWM_Inv",
                     "The fullest output is the slowest speed", page.Check_Dravon_PWM_Inv));
  form->addRow("Shortest arc",
               List("Combo_DravonArcMinimumLength",
                    "Chords of a Dravon are no shorter: a shorter arc becomes one line",
                    Offered(Offered_Arc_Lengths), page.Combo_DravonArcMinimumLength));
  form->addRow("Output 5 on by M",
               Field("Text_Dravon_MCode_High", "Number of the M code; empty: none",
                     page.Text_Dravon_MCode_High));
  form->addRow("Output 5 off by M",
               Field("Text_Dravon_MCode_Low", "Number of the M code; empty: none",
                     page.Text_Dravon_MCode_Low));
  auto* bytes = new QHBoxLayout;
  for (int n = 1; n <= Axis_Count; ++n)
    bytes->addWidget(Field(Named("Text_Dravon_CByte", n),
                           n <= 2 ? "Options of the board, 0 to 255" : "Only kept, not sent",
                           page.Text_Dravon_CByte[n]));
  form->addRow("Control bytes", bytes);
  form->addRow(Check("Limit switches disabled", "Check_LimitSwitchDisable",
                     "The board does not stop at its limit switches",
                     page.Check_LimitSwitchDisable));
  form->addRow(Check("Beep when a frame fails", "Check_BeepOnCommError", "Until Norvik ends",
                     Serial_Link.BeepOnCommError));
  return Panel_Group("Set-up", form);
}

QWidget* Serial_Page_View::Build_Health() {
  const Serial_Page_Form& page = Serial_Page;
  auto* form = new QFormLayout;
  form->addRow("Board", Figure("Label_ComOK", page.Label_ComOK));
  form->addRow("Last send", Figure("Label_DravonErrorMsg", page.Label_DravonErrorMsg));
  auto* firmware = new QHBoxLayout;
  firmware->addWidget(Figure("Label_Firmware_Revision", page.Label_Firmware_Revision));
  firmware->addWidget(Figure("Label_Firmware_Date", page.Label_Firmware_Date));
  form->addRow("Firmware", firmware);
  static constexpr const char* titles[] = {"Comms", "Errors", "CS Er", "Len Er"};
  for (int n = 0; n <= 3; ++n)
    form->addRow(titles[n], Figure(Named("Label_Dravon_Errors", n), page.Label_Dravon_Errors[n]));
  form->addRow("Queue, free", Figure("Label_Dravon_Buffer", page.Label_Dravon_Buffer));
  form->addRow("Smoothing", Figure("Label_SASF", page.Label_SASF));
  form->addRow("Rate, Hz", Figure("Label_DravonCurrentHZ", page.Label_DravonCurrentHZ));
  form->addRow("In motion", Figure("Label_Motion", page.Label_Motion));
  form->addRow("Move done last", Figure("Label_CMD_Index", page.Label_CMD_Index));
  auto* bytes = new QHBoxLayout;
  bytes->addWidget(Figure("Label_Dravon_CByte1", page.Label_Dravon_CByte1));
  bytes->addWidget(Figure("Label_Dravon_CByte2", page.Label_Dravon_CByte2));
  form->addRow("Control bytes", bytes);
  form->addRow("Watchdog errors", Figure("Label_WatchDog_Errors", page.Label_WatchDog_Errors));
  return Panel_Group("What the board tells", form);
}

QWidget* Serial_Page_View::Build_Switches() {
  const Serial_Page_Form& page = Serial_Page;
  auto* grid = new QGridLayout;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const QString name = QString("Command_Limit%1").arg(Axis_Words(axis));
    grid->addWidget(Lamp(Axis_Words(axis) + " first", name + "_0",
                         "Latch of the first limit switch", page.Limit_Low[axis], true),
                    0, axis);
    grid->addWidget(Lamp(Axis_Words(axis) + " second", name + "_1",
                         "Latch of the second limit switch", page.Limit_High[axis], true),
                    1, axis);
  }
  grid->addWidget(new QLabel("Limits"), 0, 0);
  grid->addWidget(Lamp("Aux input", "Command_Dravon_Aux_Input_0", "Level of the auxiliary input",
                       page.Aux_Input, false),
                  0, 5);
  grid->addWidget(Lamp("Aux flag", "Command_Dravon_Aux_Input_1", "The auxiliary input was on",
                       page.Aux_Flag, false),
                  1, 5);
  auto* outputs = new QHBoxLayout;
  for (int n = 0; n <= 6; ++n) {
    QPushButton* output =
        Lamp(QString::number(n + 1), Named("Command_Dravon_Aux_Output", n),
             QString("Switches output %1").arg(n + 1), page.Command_Dravon_Aux_Output[n], false);
    QObject::connect(output, &QPushButton::clicked, output, [this, n] {
      Command_Dravon_Aux_Output_Click(n + 1);
      Show_Board();
    });
    outputs->addWidget(output);
  }
  grid->addWidget(new QLabel("Outputs"), 2, 0);
  grid->addLayout(outputs, 2, 1, 1, 5);
  return Panel_Group("Switches and outputs", grid);
}

QWidget* Serial_Page_View::Build_Hands() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  const auto hand = [&](const QString& words, const QString& name, const QString& tip,
                        void (*clicked)()) {
    auto* button = new QPushButton(words);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setMinimumHeight(Finger_Height());
    QObject::connect(button, &QPushButton::clicked, button, [this, clicked] {
      clicked();
      Show_Board();
    });
    row->addWidget(button);
  };
  hand("Reset errors", "Command_Dravon_ResetErrors", "Counts from 0 again",
       Command_Dravon_ResetErrors_Click);
  hand("Restart board", "Command_DravonReset",
       "As after power-up: its counters begin at 0, the positions are in doubt",
       Command_DravonReset_Click);
  row->addStretch(1);
  return area;
}

void Serial_Page_View::Build_Encoder_Row(QGridLayout& grid, int axis) {
  Serial_Page_Form& page = Serial_Page;
  auto* title = new QLabel(Axis_Words(axis));
  title->setFont(Bold_Font(1));
  QPushButton* fault =
      Lamp("Clear", Named("Command_Enc_Fault_Flag", axis),
           "Red: a fault. Click to clear all faults", page.Command_Enc_Fault_Flag[axis], true);
  QObject::connect(fault, &QPushButton::clicked, fault, [this] {
    Command_Enc_Fault_Flag_Click();
    Show_Board();
  });
  QWidget* const parts[] = {
      title,
      Check("", Named("Check_Dravon_Enc_Enable", axis), "The axis has an encoder",
            page.Check_Dravon_Enc_Enable[axis]),
      Check("", Named("Check_Dravon_Enc_StopOnFault", axis), "A fault of this axis stops the board",
            page.Check_Dravon_Enc_StopOnFault[axis]),
      List(Named("Combo_Dravon_Enc_Mode", axis), "How the edges of the encoder are counted",
           Offered(Offered_Encoder_Modes), page.Combo_Dravon_Enc_Mode[axis]),
      List(Named("Combo_Dravon_Enc_Error", axis), "Steps and encoder may be so far apart",
           Offered(Offered_Encoder_Errors), page.Combo_Dravon_Enc_Error[axis]),
      Field(Named("Text_Dravon_Enc_CFactor", axis), "Steps for one count of the encoder",
            page.Text_Dravon_Enc_CFactor[axis]),
      Figure(Named("Label_Dravon_Step_Count", axis), page.Label_Dravon_Step_Count[axis]),
      Figure(Named("Label_Dravon_Enc_Count", axis), page.Label_Dravon_Enc_Count[axis]),
      Figure(Named("Label_Enc_Error", axis), page.Label_Enc_Error[axis]),
      fault,
  };
  int column = 0;
  for (QWidget* part : parts) grid.addWidget(part, axis, column++);
}

// The port that is chosen: what the system says of it, and why it cannot be opened.
void Serial_Page_View::Show_Serial_Port() {
  const int number = std::max(Serial_Port->currentIndex(), 0) + 1;
  const std::string device = Device_Of_Port(number);
  std::string words = device.empty() ? "no port of this number" : device;
  for (const Serial_Port_Info& port : Platform.Serial_Ports()) {
    if (port.Device != device) continue;
    if (!port.Description.empty()) words += ", " + port.Description;
    if (!port.Problem.empty()) words += ". " + port.Problem;
  }
  Port_Words->setText(Words(words));
}

void Serial_Page_View::Show_Form() {
  for (const auto& copy : Typed) copy();
  const int number = QString::fromStdString(Serial_Page.Combo_Dravon_SerialPort).toInt();
  Serial_Port->setCurrentIndex(std::clamp(number, 1, Serial_Port_Count) - 1);
  Show_Serial_Port();
}

void Serial_Page_View::Show_Board() {
  for (const auto& copy : Told) copy();
}

}  // namespace norvik
