#include "ui/setup/port_setup_window.h"

#include "app/setup_apply.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "parallel/port_setup.h"
#include "serial/serial_page.h"
#include "ui/setup/pin_table.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr const char* Bases[] = {"&H378", "&H278", "&H3BC"};

QComboBox* List(QFormLayout& form, const QString& title, const QString& name, const QString& tip) {
  auto* list = new QComboBox;
  list->setObjectName(name);
  list->setMinimumHeight(Finger_Height() * 3 / 4);
  list->setToolTip(tip);
  form.addRow(title, list);
  return list;
}

// What is typed stands in the record at once.
QLineEdit* Field(QFormLayout& form, const QString& title, const QString& name, const QString& tip,
                 std::string& text) {
  auto* field = new QLineEdit;
  field->setObjectName(name);
  field->setMinimumHeight(Finger_Height() * 3 / 4);
  field->setToolTip(tip);
  QObject::connect(field, &QLineEdit::textEdited, field,
                   [&text](const QString& typed) { text = typed.toStdString(); });
  form.addRow(title, field);
  return field;
}

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// Words that take as many lines as they need.
QLabel* Words(QFormLayout& form, const QString& title, const QString& name) {
  auto* words = new QLabel;
  words->setObjectName(name);
  words->setTextFormat(Qt::PlainText);
  words->setWordWrap(true);
  form.addRow(title, words);
  return words;
}

// A page that is larger than the window.
QScrollArea* Scrolled(QWidget* page) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidget(page);
  return area;
}

}  // namespace

Port_Setup_Window::Port_Setup_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Port_Setup");
  setWindowTitle("Port and pins");
  auto* rows = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  left->addWidget(Build_Pages());
  Pins = new Pin_Table([this] { Show_Form(); });
  left->addWidget(Pins, 1);
  auto* parallel = new QWidget;
  parallel->setLayout(left);
  Tabs = new QTabWidget;
  Tabs->setObjectName("Tab_Port_Setup");
  Tabs->addTab(parallel, "Parallel port");
  Tabs->addTab(Scrolled(Serial.Board()), "Serial board");
  Tabs->addTab(Scrolled(Serial.Encoders()), "Encoders");
  columns->addWidget(Tabs, 1);
  columns->addWidget(Build_Side());
  rows->addLayout(columns, 1);
  Hint = new QLabel;
  Hint->setObjectName("Label_Hint");
  Hint->setTextFormat(Qt::PlainText);
  Hint->setWordWrap(true);
  Hint->setForegroundRole(QPalette::Link);
  rows->addWidget(Hint);
  rows->addWidget(Build_Buttons());
  resize(Text_Height() * 67, Text_Height() * 52);
  Port_Setup_Form_Load();  // after the lists were filled, which choose their first line
  Serial_Page_Form_Load();
  Show_Form();
  Show_Fitting_Page();
  constexpr int interval_ms = 500;
  auto* timer = new QTimer(this);
  timer->setObjectName("DRAVON_Timer1");
  timer->setInterval(interval_ms);
  connect(timer, &QTimer::timeout, this, &Port_Setup_Window::Look_At_Board);
  timer->start();
}

QWidget* Port_Setup_Window::Build_Pages() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  static constexpr const char* titles[] = {"Bit Setup", "Pin Setup"};
  static constexpr const char* tips[] = {"Choose port and bit of each function, for any card",
                                         "Choose pins of the 25-pin connector"};
  for (const std::int16_t page : {Bit_Setup_Page, Pin_Setup_Page}) {
    const auto index = static_cast<std::size_t>(page - Bit_Setup_Page);
    auto* choice = new QRadioButton(titles[index]);
    choice->setObjectName(QString("Option_LPT_Setup_Type_%1").arg(page));
    choice->setMinimumHeight(Finger_Height() * 3 / 4);
    choice->setToolTip(tips[index]);
    connect(choice, &QRadioButton::clicked, this, [this, page] {
      Option_LPT_Setup_Type_Click(page);
      Show_Form();
    });
    Pages[index] = choice;
    row->addWidget(choice);
  }
  row->addStretch(1);
  return area;
}

// Scrolls where the screen is too low for it.
QWidget* Port_Setup_Window::Build_Side() {
  auto* content = new QWidget;
  auto* form = new QFormLayout(content);
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  form->setContentsMargins(0, 0, Text_Height() / 2, 0);
  Build_Port(*form);
  Build_Motors(*form);
  MCode_High = Field(*form, "Output 5 on by M", "Text_MCode_High",
                     "Number of the M code that switches output 5 on; empty: none",
                     Port_Setup.Text_MCode_High);
  MCode_Low = Field(*form, "Output 5 off by M", "Text_MCode_Low",
                    "Number of the M code that switches output 5 off; empty: none",
                    Port_Setup.Text_MCode_Low);
  auto* side = new QScrollArea;
  side->setWidgetResizable(true);
  side->setFrameShape(QFrame::NoFrame);
  side->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  side->setFixedWidth(Text_Height() * 14);
  side->setWidget(content);
  return side;
}

void Port_Setup_Window::Build_Port(QFormLayout& form) {
  Port_Type = List(form, "Drive", "Option_Port_Type", "What steps the motors");
  connect(Port_Type, &QComboBox::activated, this, [this] {
    Option_Port_Type_Click(static_cast<std::int16_t>(Port_Type->currentData().toInt()));
    Show_Form();
    Show_Fitting_Page();
  });
  Health = Words(form, "Board", "Label_Board_Health");
  Connector = List(form, "Connector at", "Combo_LPT_Pin_Port",
                   "Base address of the connector that Pin Setup means, for instance &&H378");
  Connector->setEditable(true);
  for (const char* base : Bases) Connector->addItem(base);
  const auto base_changed = [this] {
    const std::string typed = Connector->currentText().toStdString();
    if (typed == Port_Setup.Combo_LPT_Pin_Port) return;
    Port_Setup.Combo_LPT_Pin_Port = typed;
    Check_Pin_Port();
    Show_Form();
  };
  connect(Connector, &QComboBox::activated, this, base_changed);
  connect(Connector->lineEdit(), &QLineEdit::editingFinished, this, base_changed);
  Access = List(form, "Port access", "Option_IODLL", "How this computer reaches its ports");
  Access->addItem("Port instructions", 1);
  Access->addItem("Device /dev/port", 2);
  connect(Access, &QComboBox::activated, this, [this] {
    Port_Setup.Option_IODLL = static_cast<std::int16_t>(Access->currentData().toInt());
  });
}

void Port_Setup_Window::Show_Fitting_Page() {
  const bool serial = Port_Setup.Option_Port_Type > 1;
  if (serial != (Tabs->currentIndex() > 0)) Tabs->setCurrentIndex(serial ? 1 : 0);
}

void Port_Setup_Window::Look_At_Board() {
  if (!isVisible()) return;
  const bool serial = Drive().Board.has_value();
  if (serial && Tabs->currentIndex() > 0) DRAVON_Timer1_Tick();
  Health->setText(serial ? Text(Drive().Health()) : QString("no serial board in use"));
  Serial.Show_Board();
}

void Port_Setup_Window::Build_Motors(QFormLayout& form) {
  Motors = List(form, "Motors", "Option_MotorEnable", "When the motors are switched on");
  for (const char* option : {"On with Step", "Always On", "Timed"}) Motors->addItem(option);
  connect(Motors, &QComboBox::activated, this, [this](int option) {
    Port_Setup.Option_MotorEnable = static_cast<std::int16_t>(option);
    Show_Form();
  });
  Off_Time = List(form, "Off after, seconds", "Combo_MotorEnable_Time",
                  "Seconds after the last step at which timed motors go off");
  Off_Time->setEditable(true);
  for (const int seconds : Offered_Enable_Times) Off_Time->addItem(QString::number(seconds));
  connect(Off_Time, &QComboBox::currentTextChanged, this,
          [](const QString& typed) { Port_Setup.Combo_MotorEnable_Time = typed.toStdString(); });
}

QWidget* Port_Setup_Window::Build_Buttons() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  row->addStretch(1);
  auto* apply = new QPushButton("Apply");
  apply->setObjectName("Command_Apply");
  apply->setToolTip("Saves the setup and switches outputs and motors off");
  connect(apply, &QPushButton::clicked, this, &Port_Setup_Window::Apply);
  auto* close = new QPushButton("Close");
  close->setObjectName("Command_Cancel");
  close->setToolTip("What has not been applied is forgotten");
  connect(close, &QPushButton::clicked, this, [this] {
    if (parentWidget() != nullptr) parentWidget()->close();
  });
  for (QPushButton* button : {apply, close}) {
    button->setMinimumHeight(Finger_Height());
    row->addWidget(button);
  }
  return area;
}

void Port_Setup_Window::Show_Form() {
  const auto& form = Port_Setup;
  Pins->Show_Form();
  for (QRadioButton* page : Pages) page->setEnabled(form.LPT_Page_Enabled);
  Pages[form.Pins_Enabled ? 1 : 0]->setChecked(true);
  Connector->setEditText(Text(form.Combo_LPT_Pin_Port));
  Connector->setEnabled(form.LPT_Page_Enabled);
  Port_Type->clear();
  Port_Type->addItem("LPT Parallel Port (dll)", 1);
  Port_Type->addItem("Serial Port (Dravon v4.xx)", 2);
  Port_Type->addItem("Serial Port (Pelmar v5.xx", 3);
  const int type = std::min<int>(form.Option_Port_Type, 3);
  Port_Type->setCurrentIndex(Port_Type->findData(type));
  for (int page = 1; page < Tabs->count(); ++page) Tabs->setTabEnabled(page, type > 1);
  Serial.Show_Form();
  Look_At_Board();
  Access->setCurrentIndex(Access->findData(form.Option_IODLL));
  Motors->setCurrentIndex(form.Option_MotorEnable < Motors->count() ? form.Option_MotorEnable : -1);
  Off_Time->setEnabled(form.Option_MotorEnable == 2);
  Hint->setText(Text(form.Label_Hint));
  Hint->setVisible(!form.Label_Hint.empty());
  Off_Time->setEditText(Text(form.Combo_MotorEnable_Time));
  MCode_High->setText(Text(form.Text_MCode_High));
  MCode_Low->setText(Text(form.Text_MCode_Low));
}

void Port_Setup_Window::Apply() {
  Port_Setup_Apply_Click();
  Show_Form();
}

}  // namespace norvik
