#include "ui/setup/machine_check_window.h"

#include "app/correction_switch.h"
#include "app/main_form.h"
#include "control/safety/machine_check.h"
#include "ui/widgets/theme.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Text_Column = 0, Key_Column = 1;
constexpr int Correction_Role = Qt::UserRole;  // of a text: the key that answers it

QTableWidgetItem* Read_Only_Item(const std::string& text) {
  auto* item = new QTableWidgetItem(QString::fromStdString(text));
  item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  item->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
  return item;
}

QTableWidget* Findings_Table() {
  auto* table = new QTableWidget(0, 2);
  table->setObjectName("List_Findings");
  table->setHorizontalHeaderLabels({"What may surprise you", "Key to change"});
  table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  table->horizontalHeader()->setSectionResizeMode(Text_Column, QHeaderView::Stretch);
  table->horizontalHeader()->setSectionResizeMode(Key_Column, QHeaderView::ResizeToContents);
  table->horizontalHeader()->setHighlightSections(false);
  table->verticalHeader()->hide();
  // The rows follow when another width breaks the texts elsewhere.
  table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table->setWordWrap(true);
  table->setAlternatingRowColors(true);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  table->setMinimumSize(Text_Height() * 24, Text_Height() * 10);
  return table;
}

}  // namespace

Machine_Check_Window::Machine_Check_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Machine_Check");
  setWindowTitle("Machine check");
  auto* rows = new QVBoxLayout(this);
  Nothing_Found = new QLabel("Nothing in this setup should surprise you.");
  Nothing_Found->setObjectName("Label_Nothing_Found");
  Nothing_Found->setWordWrap(true);
  rows->addWidget(Nothing_Found);
  Findings = Findings_Table();
  rows->addWidget(Findings, 1);
  rows->addWidget(Build_Foot());
  connect(Findings, &QTableWidget::itemSelectionChanged, this, [this] {
    for (QPushButton* button : {Copy, Change}) button->setEnabled(!Chosen_Key().isEmpty());
    Correct->setEnabled(!Chosen_Correction().isEmpty());
  });
  connect(Findings, &QTableWidget::itemDoubleClicked, this, [this] { Change->click(); });
  resize(Text_Height() * 44, Text_Height() * 28);
  Show_Findings();
}

QWidget* Machine_Check_Window::Build_Foot() {
  auto* foot = new QWidget;
  auto* row = new QHBoxLayout(foot);
  row->setContentsMargins(0, 0, 0, 0);
  const auto button = [&](const char* name, const char* text, const char* tip, auto clicked) {
    auto* made = new QPushButton(text);
    made->setObjectName(name);
    made->setMinimumHeight(Finger_Height());
    made->setToolTip(tip);
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made);
    return made;
  };
  Copy = button("Command_Copy_Key", "Copy key", "The key of the chosen line, for a search",
                &Machine_Check_Window::Copy_Key);
  Correct = button("Command_Switch_Correction_On", "Switch correction on",
                   "The machine does otherwise what the chosen line says, as a correction has it",
                   [this] {
                     if (Switch_Correction_On(Chosen_Correction().toStdString())) Show_Findings();
                   });
  Correct->setEnabled(false);
  Change = button("Command_Change_Setting", "Change setting...",
                  "Opens the options at the setting of the chosen line", [this] {
                    if (!Chosen_Key().isEmpty()) Main_Host.Show_Setting(Chosen_Key().toStdString());
                  });
  row->addStretch(1);
  button("Command_Refresh", "Check again", "Look at the setup as it is now",
         &Machine_Check_Window::Show_Findings);
  return foot;
}

QString Machine_Check_Window::Chosen_Correction() const {
  const auto chosen = Findings->selectionModel()->selectedRows(Text_Column);
  return chosen.isEmpty() ? QString() : chosen.front().data(Correction_Role).toString();
}

QString Machine_Check_Window::Chosen_Key() const {
  const auto chosen = Findings->selectionModel()->selectedRows(Key_Column);
  return chosen.isEmpty() ? QString() : chosen.front().data().toString();
}

void Machine_Check_Window::Copy_Key() {
  const QString key = Chosen_Key();
  if (!key.isEmpty()) QGuiApplication::clipboard()->setText(key);
}

void Machine_Check_Window::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return Copy_Key();
  QWidget::keyPressEvent(event);
}

void Machine_Check_Window::Show_Findings() {
  const std::vector<Machine_Finding> findings = Machine_Check();
  Findings->setRowCount(0);
  Findings->setRowCount(static_cast<int>(findings.size()));
  int row = 0;
  for (const Machine_Finding& finding : findings) {
    Findings->setItem(row, Text_Column, Read_Only_Item(finding.Text));
    Findings->item(row, Text_Column)
        ->setData(Correction_Role, QString::fromStdString(finding.Correction));
    Findings->setItem(row++, Key_Column, Read_Only_Item(finding.Key));
  }
  Nothing_Found->setVisible(findings.empty());
  Findings->setVisible(!findings.empty());
  Copy->setEnabled(false);
  Correct->setEnabled(false);
  Change->setEnabled(false);
}

}  // namespace norvik
