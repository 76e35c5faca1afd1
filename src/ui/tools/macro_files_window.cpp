#include "ui/tools/macro_files_window.h"

#include "core/setup.h"
#include "tools/macro_list.h"
#include "ui/tools/window_buttons.h"
#include "ui/widgets/theme.h"

#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Number_Column = 0, File_Column = 1, Note_Column = 2, Columns = 3;

QTableWidget* Macro_Table() {
  const int numbers = MachineSetup.MacroFile.last + 1;
  auto* table = new QTableWidget(numbers, Columns);
  table->setObjectName("List_Macros");
  table->setHorizontalHeaderLabels({"Macro", "File", "Note"});
  table->verticalHeader()->hide();
  table->verticalHeader()->setDefaultSectionSize(Text_Height() * 7 / 4);
  table->horizontalHeader()->setHighlightSections(false);
  table->horizontalHeader()->setSectionResizeMode(File_Column, QHeaderView::Stretch);
  table->setColumnWidth(Number_Column, Text_Height() * 4);
  table->setColumnWidth(Note_Column, Text_Height() * 10);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setSelectionMode(QAbstractItemView::SingleSelection);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setTextElideMode(Qt::ElideMiddle);
  table->setAlternatingRowColors(true);
  table->setTabKeyNavigation(false);
  table->setMinimumSize(Text_Height() * 28, Text_Height() * 9);
  for (int number = 0; number < numbers; ++number) {
    for (int column = 0; column < Columns; ++column) {
      table->setItem(number, column, new QTableWidgetItem);
    }
    table->item(number, Number_Column)->setText(QString("%1").arg(number, 3, 10, QChar('0')));
  }
  return table;
}

}  // namespace

Macro_Files_Window::Macro_Files_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("MacroFiles");
  setWindowTitle("Macro list");
  auto* rows = new QVBoxLayout(this);
  List = Macro_Table();
  rows->addWidget(List, 3);
  rows->addWidget(new QLabel("First lines of the chosen file"));
  First = new QPlainTextEdit;
  First->setObjectName("Text_First_Lines");
  First->setReadOnly(true);
  First->setLineWrapMode(QPlainTextEdit::NoWrap);
  First->setFont(Readout_Font(1.0));
  First->setTabChangesFocus(true);
  First->setMinimumHeight(Text_Height() * 5);
  rows->addWidget(First, 1);
  Build_Foot(*rows);
  connect(List, &QTableWidget::currentCellChanged, this, [this](int row) {
    if (Showing || row < 0) return;
    MacroFiles.Selected = row;
    Show_Form();
  });
  connect(List, &QTableWidget::cellDoubleClicked, this, [] { MacroFiles_Command_Add_Click(); });
  resize(Text_Height() * 44, Text_Height() * 34);

  Listener.emplace(Macro_Host.Form_Changed, [this] { Show_Form(); });
  MacroFiles = {};
  Display_Macros();
}

Macro_Files_Window::~Macro_Files_Window() {
  MacroFiles_Command_Close_Click();
}

void Macro_Files_Window::Build_Foot(QVBoxLayout& rows) {
  auto* foot = new QHBoxLayout;
  Add_Window_Button(*foot, "Command_Add", "Add...", "Choose the file of this number",
                    MacroFiles_Command_Add_Click);
  Add_Window_Button(*foot, "Command_Remove", "Remove", "This number calls no file any more",
                    MacroFiles_Command_Remove_Click);
  Add_Window_Button(*foot, "Command_Index", "Number...", "Move the macro to another number",
                    MacroFiles_Command_Index_Click);
  Add_Window_Button(*foot, "Command_Print", "Print...", "Print the list", MacroFiles_Print_Data);
  foot->addStretch(1);
  Add_Window_Button(*foot, "Command_Close", "Close", "Keep the list in the machine file",
                    [this] { Close_Frame_Of(*this); });
  rows.addLayout(foot);
}

void Macro_Files_Window::Show_Form() {
  Showing = true;
  for (int number = 0; number < List->rowCount(); ++number) {
    const QString path = QString::fromStdString(MachineSetup.MacroFile[number]);
    List->item(number, File_Column)->setText(path);
    List->item(number, File_Column)->setToolTip(path);
    const std::string mark = Macro_Mark(number);
    QTableWidgetItem* note = List->item(number, Note_Column);
    note->setText(QString::fromStdString(mark));
    const bool wrong = mark.ends_with("no file") || mark.ends_with("missing");
    note->setForeground(wrong ? QBrush(Colors().Stop) : QBrush());
  }
  if (List->currentRow() != MacroFiles.Selected) {
    List->setCurrentCell(MacroFiles.Selected, File_Column);
  }
  Showing = false;
  First->setPlainText(QString::fromStdString(First_Lines(MacroFiles.Selected)));
}

void Macro_Files_Window::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (!event->spontaneous()) MacroFiles_Command_Close_Click();
}

}  // namespace norvik
