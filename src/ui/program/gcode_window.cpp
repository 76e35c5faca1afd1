#include "ui/program/gcode_window.h"

#include "app/correction_switch.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "app/program_findings.h"
#include "app/transform_menu.h"
#include "compiler/check/program_check.h"
#include "compiler/state/compiler_state.h"
#include "compiler/text/program_text.h"
#include "core/operation.h"
#include "ui/program/adapt_bar.h"
#include "ui/program/find_bar.h"
#include "ui/program/gcode_editor.h"
#include "ui/widgets/theme.h"

#include <map>

#include <QComboBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>

namespace norvik {

namespace {

// A list of thousands of the same finding helps nobody: so many are shown.
constexpr int Most_Findings = 500;
constexpr int Refresh_Ms = 250;
constexpr int Correction_Role = Qt::UserRole + 1;  // of a finding: the key that answers it
constexpr int Setting_Role = Qt::UserRole + 2;     // and the key behind it

struct Tool_Row {
  const char* Name;
  const char* Caption;
  const char* Tip;
  void (*Clicked)();
};

constexpr Tool_Row Text_Tools[] = {
    {"Command_Update", "Compile", "Take the text and compile it (Ctrl+B)", Command_Update_Click},
    {"Command_GStep", "Step >", "Mark the current step in the plot and go on to the next",
     Command_GStep_Click},
    {"Command_GCode_Reset", "Reset", "Step pointer back to the first step",
     Command_GCode_Reset_Click},
};

constexpr Tool_Row Transform_Tools[] = {
    {"Command_Add_Seq", "Add N", "Number the lines anew", Command_Add_Seq_Click},
    {"Command_Rem_Seq", "Remove N", "Take the line numbers away", Command_Rem_Seq_Click},
    {"Command_DecimalFormat", "Format", "Print the numbers by the numeral format",
     Command_DecimalFormat_Click},
    {"Command_Convert", "Convert", "Convert lengths from one unit to the other",
     Command_Convert_Click},
};

}  // namespace

GCode_Window::GCode_Window(QWidget* parent) : QWidget(parent), Text_GCode(new GCode_Editor) {
  setObjectName("GCode");
  setWindowTitle("G-code");
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(4, 4, 4, 4);
  rows->addWidget(Build_Tools());
  rows->addWidget(Build_Transforms());
  auto* notice = new QLabel;
  notice->setWordWrap(true);
  Binding.Label(notice, "Label_Table_Notice", Gcode_Form.Label_Table_Notice);
  Binding.Also([notice] { notice->setVisible(!notice->text().isEmpty()); });
  rows->addWidget(notice);
  rows->addWidget(Make_Adapt_Bar(Binding));
  auto* split = new QSplitter(Qt::Vertical);
  split->addWidget(Text_GCode);
  split->addWidget(Build_Findings());
  split->setStretchFactor(0, 4);
  split->setStretchFactor(1, 1);
  split->setChildrenCollapsible(false);
  rows->addWidget(split, 1);
  Find = new Find_Bar(Text_GCode);
  rows->addWidget(Find);
  rows->addWidget(Build_Steps());

  connect(Text_GCode, &QPlainTextEdit::textChanged, this, Text_GCode_Change);
  connect(Text_GCode, &GCode_Editor::Line_Double_Clicked, this, Text_GCode_DblClick);
  connect(Text_GCode, &GCode_Editor::File_Dropped, this, &GCode_Window::File_Dropped);
  connect(Findings, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
    Text_GCode->Show_Line(item->data(Qt::UserRole).toInt());
  });
  connect(Findings, &QListWidget::itemClicked, Findings, &QListWidget::itemActivated);

  Gcode_Host.Form_Changed = [this] { Show_Form(); };
  Gcode_Host.Typed_Text = [this] { return Text_GCode->toPlainText().toStdString(); };
  Gcode_Host.Show_Program = [this] {
    const QSignalBlocker quiet(Text_GCode);
    Text_GCode->Set_Program(QString::fromStdString(GCode_Program.Text->Whole()));
  };
  Gcode_Host.Show_Changed_Program = [this] {
    const QSignalBlocker quiet(Text_GCode);
    Text_GCode->Replace_Text(QString::fromStdString(GCode_Program.Text->Whole()));
  };
  Gcode_Host.GCode_HighlightAll = [this] {
    Text_GCode->Set_Marks({});
    Text_GCode->viewport()->update();
  };
  Gcode_Host.GCode_HighlightWords = [this](std::int32_t line) { Text_GCode->Show_Line(line); };
  Gcode_Host.Show_Findings = [this] { Show_Findings(); };
  Gcode_Host.Select_Text = [this](const std::string& text) {
    Text_GCode->Show_First(QString::fromStdString(text));
  };
  Gcode_Host.Show_Program();
  if (Program_Findings.Text == GCode_Program.Text) Show_Findings();
  Display_Gcode_Steps();
  Display_Parameters();
  Show_Form();
  Timer = Platform.Start_Timer(Refresh_Ms, Refresh_Step_Range);
}

GCode_Window::~GCode_Window() {
  Platform.Stop_Timer(Timer);
  // What is typed is not lost with the window.
  Take_Typed_Text();
  Gcode_Host = {};
}

// The list, and under it the button of a chosen finding that a correction answers.
QWidget* GCode_Window::Build_Findings() {
  Findings = new QListWidget;
  Findings->setObjectName("List_Findings");
  Findings->setWordWrap(true);
  Findings->setAlternatingRowColors(true);
  Correct = new QPushButton;
  Correct->setObjectName("Command_Switch_Correction_On");
  Correct->setToolTip("What the correction changes stands under Corrections in the options");
  Correct->hide();
  Finding_Setting = new QPushButton("Change setting...");
  Finding_Setting->setObjectName("Command_Finding_Setting");
  Finding_Setting->setToolTip("Opens the options at the setting behind the chosen finding");
  Finding_Setting->hide();
  Findings_Area = new QWidget;
  auto* rows = new QVBoxLayout(Findings_Area);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(Findings, 1);
  auto* answers = new QHBoxLayout;
  answers->addWidget(Correct);
  answers->addWidget(Finding_Setting);
  answers->addStretch(1);
  rows->addLayout(answers);
  Findings_Area->hide();
  const auto chosen = [this] {
    const QListWidgetItem* item = Findings->currentItem();
    return item == nullptr ? QString() : item->data(Correction_Role).toString();
  };
  connect(Findings, &QListWidget::currentItemChanged, this, [this, chosen] {
    Correct->setText("Switch on the correction " + chosen());
    Correct->setVisible(!chosen().isEmpty());
  });
  connect(Correct, &QPushButton::clicked, this,
          [chosen] { Switch_Correction_On(chosen().toStdString()); });
  connect(Findings, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    Finding_Setting->setVisible(item != nullptr && !item->data(Setting_Role).toString().isEmpty());
  });
  connect(Finding_Setting, &QPushButton::clicked, this, [this] {
    const QListWidgetItem* item = Findings->currentItem();
    if (item != nullptr) {
      Main_Host.Show_Setting(item->data(Setting_Role).toString().toStdString());
    }
  });
  return Findings_Area;
}

QWidget* GCode_Window::Build_Tools() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  const auto add = [row](const QString& name, const QString& caption, const QString& tip) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::NoFocus);
    button->setMinimumHeight(Finger_Height() * 2 / 3);
    row->addWidget(button);
    return button;
  };
  for (const Tool_Row& tool : Text_Tools) {
    connect(add(tool.Name, tool.Caption, tool.Tip), &QPushButton::clicked, this, tool.Clicked);
  }
  connect(add("Command_Check", "Check", "List what the compiler ignores or would misread"),
          &QPushButton::clicked, this, [] {
            if (Begin_Check()) Check_Now();
          });
  connect(add("Command_Find", "Find", "Find a text (Ctrl+F)"), &QPushButton::clicked, this,
          [this] { Find->Show_Find(); });
  row->addStretch(1);
  auto* lines = new QLabel;
  lines->setToolTip("Lines of the program");
  Binding.Label(lines, "Label_GC_NOS", Gcode_Form.Label_GC_NOS);
  row->addWidget(lines);
  return area;
}

QWidget* GCode_Window::Build_Transforms() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  for (const Tool_Row& tool : Transform_Tools) {
    auto* button = new QPushButton(tool.Caption);
    button->setObjectName(tool.Name);
    button->setToolTip(tool.Tip);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QPushButton::clicked, this, tool.Clicked);
    row->addWidget(button);
  }
  auto* unit = new QComboBox;
  unit->setToolTip("What Convert converts to");
  Binding.Combo(unit, "Combo_Convert", Gcode_Form.Combo_Convert, [] {});
  row->addWidget(unit);
  row->addStretch(1);
  return area;
}

QWidget* GCode_Window::Build_Steps() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  const auto field = [&](int column, const QString& title, const QString& name,
                         Text_Control& control, Handler changed) {
    grid->addWidget(new QLabel(title), 0, column);
    auto* edit = new QLineEdit;
    edit->setMaximumWidth(Text_Height() * 6);
    Binding.Text(edit, name, control, std::move(changed));
    grid->addWidget(edit, 0, column + 1);
    return edit;
  };
  // A step counts as soon as it is typed: Play does not take the focus. Leaving the box shows what
  // became of it.
  const auto step_field = [&](int column, const QString& title, const QString& name,
                              Text_Control& control, Handler changed) {
    const QLineEdit* edit = field(column, title, name, control, [changed] {
      changed();
      Display_Gcode_Steps();
    });
    connect(edit, &QLineEdit::textEdited, edit, [&control, changed](const QString& typed) {
      control.Text = typed.toStdString();
      changed();
    });
  };
  step_field(0, "From step", "Text_StartingStep", Gcode_Form.Text_StartingStep,
             Gcode_StartingStep_Change);
  step_field(2, "to", "Text_EndingStep", Gcode_Form.Text_EndingStep, Gcode_EndingStep_Change);
  field(4, "Travel", "Text_Feed_Rates_0", Gcode_Form.Text_Feed_Rates[0],
        [] { Text_Feed_Rates_Change(0); });
  field(6, "Cut", "Text_Feed_Rates_1", Gcode_Form.Text_Feed_Rates[1],
        [] { Text_Feed_Rates_Change(1); });
  auto* unit = new QLabel;
  Binding.Label(unit, "Label_FRUnits", Gcode_Form.Label_FRUnits);
  grid->addWidget(unit, 0, 8);
  grid->setColumnStretch(9, 1);
  auto* pointer = new QHBoxLayout;
  pointer->addWidget(new QLabel("Step"));
  auto* step = new QLabel;
  step->setToolTip("The step that \"Step >\" marks next");
  Binding.Label(step, "Label_GStep", Gcode_Form.Label_GStep);
  pointer->addWidget(step, 1);
  Step_Line = new QLabel;
  Step_Line->setObjectName("Label_Step_Line");
  Step_Line->setForegroundRole(QPalette::PlaceholderText);
  Step_Line->setToolTip("The line of the text that holds this step");
  pointer->addWidget(Step_Line);
  grid->addLayout(pointer, 1, 0, 1, 2);
  auto* text = new QLabel;
  text->setFont(Text_GCode->font());
  text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  Binding.Label(text, "Label_CGStep", Gcode_Form.Label_CGStep);
  grid->addWidget(text, 1, 2, 1, 8);
  return area;
}

void GCode_Window::Show_Form() {
  Binding.Show();
  // Comments and empty lines are no steps, so that the two numbers differ.
  const std::int32_t line =
      Text_Line_Of_Step(QString::fromStdString(Gcode_Form.Label_GStep.Caption).toInt());
  Step_Line->setText(line > 0 ? QString("line %1:").arg(line) : QString());
  Text_GCode->Set_Current_Line(Text_Line_Of_Step(Compile_Status.CurrentStep));
}

void GCode_Window::Undo() {
  Text_GCode->Step_Back();
}

void GCode_Window::Show_Findings() {
  const std::vector<Check_Finding>& found = Program_Findings.List;
  std::map<int, GCode_Editor::Mark> marks;
  Findings->clear();
  int shown = 0;
  for (const Check_Finding& finding : found) {
    const Check_Grade grade = Info_Of(finding.Kind).Grade;
    const bool serious = grade == Check_Grade::Lost || grade == Check_Grade::Wrong;
    const int line = finding.Macro ? 0 : finding.Text_Line();
    QString text = QString::fromStdString(finding.What);
    if (!finding.Instead.empty()) text += "\nInstead: " + QString::fromStdString(finding.Instead);
    if (line > 0) {
      GCode_Editor::Mark& mark = marks[line];
      mark.Text += (mark.Text.isEmpty() ? "" : "\n") + text;
      mark.Serious = mark.Serious || serious;
    }
    if (++shown > Most_Findings) continue;
    QString place = line > 0 ? QString("Line %1: ").arg(line) : QString();
    if (finding.Macro) place = QString("Macro %1, line %2: ").arg(*finding.Macro).arg(finding.Line);
    auto* item = new QListWidgetItem(place + text, Findings);
    item->setData(Qt::UserRole, line);
    const std::string_view correction = Info_Of(finding.Kind).Correction;
    item->setData(Correction_Role,
                  QString::fromUtf8(correction.data(), static_cast<qsizetype>(correction.size())));
    const std::string_view setting = Setting_Of(finding.Kind);
    item->setData(Setting_Role,
                  QString::fromUtf8(setting.data(), static_cast<qsizetype>(setting.size())));
    item->setForeground(serious ? Colors().Stop : Findings->palette().color(QPalette::WindowText));
  }
  if (shown > Most_Findings) {
    new QListWidgetItem(QString("%1 more").arg(shown - Most_Findings), Findings);
  }
  Text_GCode->Set_Marks(std::move(marks));
  Findings_Area->setVisible(!found.empty());
}

}  // namespace norvik
