#include "ui/setup/jog_table_window.h"

#include "app/setup_apply.h"
#include "control/manual/jog_key.h"
#include "control/manual/table_setup_keys.h"
#include "core/setup_keys.h"
#include "ui/setup/jog_key_test.h"
#include "ui/widgets/key_names.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Raw_Values_Ms = 100;

// What an entry of a table of the setup does, in the words of the settings.
QString Role(std::string_view key, int entry) {
  const auto row = Find_Setup_Key(std::string(key) + "_" + std::to_string(entry));
  return QString::fromStdString(Setting_Entry(*row->Row, entry));
}

QPushButton* Button(const QString& name, const QString& text, const QString& tip) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setMinimumHeight(Finger_Height() * 3 / 4);
  return button;
}

QLineEdit* Code_Field(int digits) {
  auto* field = new QLineEdit;
  field->setMinimumWidth(QFontMetrics(field->font()).horizontalAdvance('0') * (digits + 3));
  return field;
}

}  // namespace

Jog_Table_Window::Jog_Table_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Table_Setup");
  setWindowTitle("Keys and joystick");
  auto* rows = new QVBoxLayout(this);
  auto* content = new QWidget;
  auto* columns = new QHBoxLayout(content);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->addWidget(Build_Keys(), 3);
  columns->addWidget(Build_Joystick(), 2);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(content);
  rows->addWidget(scroll, 1);
  Hint = new QLabel;
  Hint->setObjectName("Label_Hint");
  Hint->setTextFormat(Qt::PlainText);
  Hint->setWordWrap(true);
  Hint->setForegroundRole(QPalette::Link);
  rows->addWidget(Hint);
  rows->addWidget(Build_Buttons());
  Test = new JogKey_Test_Window(this, [this] { Show_Form(); });
  resize(Text_Height() * 46, Text_Height() * 45);

  Table_Setup_Keys = {};
  Display_Jog_Tables();
  Timer_Joystick = Platform.Start_Timer(Raw_Values_Ms, [this] {
    if (!isVisible()) return;
    Timer_Joy();
    Show_Raw_Values();
  });
  Show_Form();
}

Jog_Table_Window::~Jog_Table_Window() {
  Platform.Stop_Timer(Timer_Joystick);
}

QWidget* Jog_Table_Window::Build_Keys() {
  auto* group = new QGroupBox("Keyboard");
  auto* grid = new QGridLayout(group);
  grid->setVerticalSpacing(Text_Height() / 5);
  for (int entry = 0; entry <= 14; ++entry) {
    grid->addWidget(new QLabel(Role("KeyJog_KeyValue", entry)), entry, 0);
    QLineEdit* code = Code_Field(3);
    code->setToolTip("Code of the key");
    Binding.Text(code, QString("Text_KeyJog_Code_%1").arg(entry),
                 Table_Setup_Keys.Text_KeyJog_Code[entry], [this] { Show_Form(); });
    grid->addWidget(code, entry, 1);
    auto* name = new QLabel;
    name->setObjectName(QString("Label_Key_Name_%1").arg(entry));
    name->setMinimumWidth(QFontMetrics(font()).horizontalAdvance("Page down  "));
    Key_Labels[static_cast<std::size_t>(entry)] = name;
    grid->addWidget(name, entry, 2);
    QPushButton* read =
        Button(QString("Command_JogKey_%1").arg(entry), "Read", "Press the key itself");
    connect(read, &QPushButton::clicked, this, [this, entry] {
      Command_JogKey(entry);
      Test->Open();
    });
    grid->addWidget(read, entry, 3);
  }
  auto* foot = new QHBoxLayout;
  QPushButton* find = Button("Command_Find_Key", "Find a code...", "Shows the code of any key");
  connect(find, &QPushButton::clicked, this, [this] {
    Command_Find_Key();
    Test->Open();
  });
  foot->addWidget(find);
  QPushButton* restore =
      Button("Command_KeyJog_RestoreDefaults", "Defaults", "The keys of the number pad");
  connect(restore, &QPushButton::clicked, this, [this] {
    Command_KeyJog_RestoreDefaults();
    Show_Form();
  });
  foot->addWidget(restore);
  grid->addLayout(foot, 15, 0, 1, 4);
  grid->setColumnStretch(2, 1);
  return group;
}

QWidget* Jog_Table_Window::Build_Joystick() {
  auto* group = new QGroupBox("Joystick");
  auto* grid = new QGridLayout(group);
  grid->setVerticalSpacing(Text_Height() / 5);
  for (int entry = 0; entry <= 8; ++entry) {
    grid->addWidget(new QLabel(Role("JoyJog_KeyValue", entry)), entry, 0);
    QLineEdit* button = Code_Field(11);
    button->setMinimumHeight(Finger_Height() * 3 / 4);
    button->setToolTip(entry == 0 || entry == 8 ? "Left Stick, Right Stick or NU (not used)"
                                                : "Number of the button or NU (not used)");
    Binding.Text(button, QString("Text_JoyJog_Code_%1").arg(entry),
                 Table_Setup_Keys.Text_JoyJog_Code[entry], [] {});
    grid->addWidget(button, entry, 1);
  }
  QPushButton* restore =
      Button("Command_JoyJog_RestoreDefaults", "Defaults", "The usual buttons and sticks");
  connect(restore, &QPushButton::clicked, this, [this] {
    Command_JoyJog_RestoreDefaults();
    Show_Form();
  });
  grid->addWidget(restore, 9, 0, 1, 2);
  Raw_Values = new QListWidget;
  Raw_Values->setObjectName("List_Joy");
  Raw_Values->setToolTip("What the joystick sends now");
  Raw_Values->setMinimumHeight(Text_Height() * 6);
  grid->addWidget(Raw_Values, 10, 0, 1, 2);
  grid->setRowStretch(10, 1);
  return group;
}

QWidget* Jog_Table_Window::Build_Buttons() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  row->addStretch(1);
  QPushButton* apply = Button("Command_Apply", "Apply", "Saves the tables; motors go off");
  connect(apply, &QPushButton::clicked, this, [this] {
    Table_Setup_Apply_Click();
    Show_Form();
  });
  QPushButton* close = Button("Command_Cancel", "Close", "What has not been applied is forgotten");
  connect(close, &QPushButton::clicked, this, [this] {
    if (parentWidget() != nullptr) parentWidget()->close();
  });
  for (QPushButton* button : {apply, close}) {
    button->setMinimumHeight(Finger_Height());
    row->addWidget(button);
  }
  return area;
}

void Jog_Table_Window::hideEvent(QHideEvent* event) {
  Test->hide();  // a window of its own would stay
  QWidget::hideEvent(event);
}

void Jog_Table_Window::Show_Form() {
  Binding.Show();
  for (int entry = 0; entry <= 14; ++entry) {
    bool number = false;
    const int code =
        QString::fromStdString(Table_Setup_Keys.Text_KeyJog_Code[entry].Text).toInt(&number);
    Key_Labels[static_cast<std::size_t>(entry)]->setText(number ? Key_Name(code) : QString("?"));
  }
  Hint->setText(QString::fromStdString(Table_Setup_Keys.Label_Hint));
  Hint->setVisible(!Table_Setup_Keys.Label_Hint.empty());
  Show_Raw_Values();
}

void Jog_Table_Window::Show_Raw_Values() {
  const auto& lines = Table_Setup_Keys.List_Joy;
  if (lines.empty() && Raw_Values->count() == 0) Raw_Values->addItem("No joystick");
  if (lines.empty()) return;
  while (Raw_Values->count() > static_cast<int>(lines.size())) delete Raw_Values->takeItem(0);
  while (Raw_Values->count() < static_cast<int>(lines.size())) Raw_Values->addItem(QString());
  for (std::size_t i = 0; i < lines.size(); ++i)
    Raw_Values->item(static_cast<int>(i))->setText(QString::fromStdString(lines[i]));
}

}  // namespace norvik
