#include "ui/simulated/simulated_window.h"

#include "core/setup.h"
#include "simulate/board/board.h"
#include "simulate/board_port.h"
#include "simulate/virtual_clock.h"
#include "ui/simulated/axes_panel.h"
#include "ui/simulated/board_panel.h"
#include "ui/simulated/input_button.h"
#include "ui/simulated/place_dialog.h"
#include "ui/simulated/settings_dialog.h"
#include "ui/simulated/view_page.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Refresh_Ms = 100;
QWidget* Column_Of(std::initializer_list<QWidget*> parts) {
  auto* column = new QWidget;
  auto* rows = new QVBoxLayout(column);
  rows->setContentsMargins(0, 0, 0, 0);
  for (QWidget* part : parts) rows->addWidget(part);
  rows->addStretch(1);
  return column;
}

// Real time, or faster on the virtual clock.
QWidget* Speed_Of_Time() {
  auto* factor = new QComboBox;
  factor->setObjectName("Combo_Speed_Factor");
  factor->setToolTip("Faster than real time moves the simulated machine only");
  static constexpr double factors[] = {1, 2, 5, 10, 50};
  for (const double value : factors) factor->addItem(QString("Time x %1").arg(value), value);
  QObject::connect(factor, &QComboBox::activated, factor,
                   [factor] { Set_Time_Factor(factor->currentData().toDouble()); });
  return factor;
}

void Show_Beside(QDialog& dialog) {
  dialog.show();
  dialog.raise();
  dialog.activateWindow();
}

}  // namespace

Simulated_Window::Simulated_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Simulated_Machine");
  setWindowTitle("Simulated machine");
  auto* rows = new QVBoxLayout(this);
  Head = new QLabel("SIMULATED MACHINE - no motion takes place");
  Head->setFont(Bold_Font(1.1));
  Head->setMargin(Text_Height() / 8);
  Head->setAlignment(Qt::AlignCenter);
  Set_Face(*Head, Colors().Warn, Theme_Is_Dark() ? Qt::black : Qt::white);
  rows->addWidget(Head);
  Board = new Board_Panel;
  rows->addWidget(Board);

  auto* content = new QWidget;
  Grid = new QGridLayout(content);
  Grid->setContentsMargins(0, 0, 0, 0);
  Axes = new Axes_Panel;
  Left = Column_Of({Axes, Build_EStop(), Build_Hands()});
  Switches = Column_Of({Build_Inputs(), Build_Outputs()});
  Noticed = Build_Findings();
  Above = new View_Page;
  Tabs = new QTabWidget;
  Tabs->setObjectName("Tabs");
  Tabs->setFocusPolicy(Qt::NoFocus);
  Place_Parts(2);
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

Simulated_Window::~Simulated_Window() {
  Platform.Stop_Timer(Timer);
}

// --- Places --------------------------------------------------------------------------------------

void Simulated_Window::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const int bar = Text_Height() * 2;  // of the scroll area, and the gaps
  const int left = Left->minimumSizeHint().width(), right = Switches->minimumSizeHint().width();
  const int three = left + right + Above->minimumSizeHint().width() + 2 * bar;
  Place_Parts(three <= width() ? 3 : left + right + 2 * bar <= width() ? 2 : 1);
}

// Axes, E-stop and hands are always in sight. What has no room beside them becomes a page:
//
//   3   axes   switches   view        2   axes      pages: switches, view        1   axes
//       noticed                           noticed                                    pages: all
void Simulated_Window::Place_Parts(int columns) {
  if (columns == Columns) return;
  Columns = columns;
  Tabs->clear();
  while (Grid->count() > 0) delete Grid->takeAt(0);
  const auto put = [this](QWidget* part, int row, int column, int rows) {
    Grid->addWidget(part, row, column, rows, 1);
    part->show();  // a page that was out of sight
  };
  put(Left, 0, 0, 1);
  if (columns > 1) put(Noticed, 1, 0, 1);
  if (columns == 3) {
    put(Switches, 0, 1, 2);
    put(Above, 0, 2, 2);
    Tabs->hide();
  } else {
    Tabs->addTab(Switches, "Switches and outputs");
    Tabs->addTab(Above, "From above");
    if (columns == 1) Tabs->addTab(Noticed, "Noticed");
    put(Tabs, columns == 2 ? 0 : 1, columns == 2 ? 1 : 0, columns == 2 ? 2 : 1);
  }
  for (int i = 0; i < 3; ++i) Grid->setColumnStretch(i, i < columns ? 1 : 0);
  Grid->setRowStretch(1, 1);
}

// --- Parts ---------------------------------------------------------------------------------------

QPushButton* Simulated_Window::Hand(const char* words, const char* name, const char* tip) {
  auto* button = new QPushButton(words);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setFocusPolicy(Qt::NoFocus);
  return button;
}

QWidget* Simulated_Window::Build_Hands() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(3);
  auto* believed = Hand("Match program", "Command_Place_Believed",
                        "Puts all carriages where the program believes them to be");
  auto* by_hand = Hand("Put...", "Command_Place_Axis", "Puts the carriage of one axis by hand");
  auto* settings = Hand("Settings...", "Command_Simulation_Settings",
                        "Travel, backlash, switches, motors and drivers of the simulated machine");
  connect(believed, &QPushButton::clicked, this, [this] {
    Place_Where_Believed();
    Fit_Board_To_Machine();
    Show_View();
  });
  connect(by_hand, &QPushButton::clicked, this, [this] {
    if (Place == nullptr) Place = new Place_Dialog(this);
    Show_Beside(*Place);
  });
  connect(settings, &QPushButton::clicked, this, [this] {
    if (Settings == nullptr) Settings = new Simulation_Settings_Dialog(this);
    Show_Beside(*Settings);
  });
  for (QPushButton* button : {believed, by_hand, settings}) row->addWidget(button);
  row->addWidget(Speed_Of_Time());
  return area;
}

QWidget* Simulated_Window::Build_EStop() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  Inputs[0] = new Input_Button(0);
  row->addWidget(Inputs[0], 1);
  Cuts_Power = new QCheckBox("cuts the\nmotors' power");
  Cuts_Power->setObjectName("Check_EStop_Cuts_Power");
  Cuts_Power->setToolTip("As a safety relay would; otherwise the E-stop only tells the program");
  Cuts_Power->setFocusPolicy(Qt::NoFocus);
  connect(Cuts_Power, &QCheckBox::clicked, this, [](bool on) { Set_EStop_Cuts_Power(on); });
  row->addWidget(Cuts_Power);
  return area;
}

QWidget* Simulated_Window::Build_Inputs() {
  auto* group = new QGroupBox("Click to press and let go; ... or a right click: faults");
  auto* grid = new QGridLayout(group);
  grid->setContentsMargins(6, 6, 6, 6);
  for (int input = 1; input <= 5; ++input) {
    Input_Button*& button = Inputs[static_cast<std::size_t>(input)];
    button = new Input_Button(input);
    grid->addWidget(button, (input - 1) / 2, (input - 1) % 2);
  }
  for (int column = 0; column < 2; ++column) grid->setColumnStretch(column, 1);
  return group;
}

QWidget* Simulated_Window::Build_Outputs() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setVerticalSpacing(2);
  for (int output = 1; output <= 5; ++output) {
    auto* label = new QLabel;
    label->setObjectName(QString("Label_Output_%1").arg(output));
    label->setAlignment(Qt::AlignCenter);
    label->setFrameShape(QFrame::StyledPanel);
    label->setMargin(Text_Height() / 8);
    Outputs[static_cast<std::size_t>(output)] = label;
    grid->addWidget(label, (output - 1) / 2, (output - 1) % 2);
  }
  Spindle = new QLabel;
  Spindle->setObjectName("Label_Spindle_Speed");
  grid->addWidget(Spindle, 2, 1);
  return area;
}

QWidget* Simulated_Window::Build_Findings() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  Findings = new QListWidget;
  Findings->setObjectName("List_Noticed");
  Findings->setWordWrap(true);
  Findings->setFocusPolicy(Qt::NoFocus);
  Findings->setMinimumHeight(Text_Height() * 3);
  row->addWidget(Findings, 1);
  auto* clear = Hand("Clear", "Command_Clear_Findings",
                     "Clears what happened; what is wrong with the pin map stays");
  connect(clear, &QPushButton::clicked, this, [this] {
    Clear_Findings();
    if (Board_Line* line = Line_In_Use()) line->Board.Findings = {};
    Show_View();
  });
  row->addWidget(clear, 0, Qt::AlignTop);
  return area;
}

// --- Ten times a second --------------------------------------------------------------------------

void Simulated_Window::Show_Findings(const std::vector<std::string>& texts) {
  if (texts == Shown_Findings && Findings->count() > 0) return;
  Shown_Findings = texts;
  Findings->clear();
  for (const std::string& text : Shown_Findings) Findings->addItem(QString::fromStdString(text));
  if (texts.empty()) Findings->addItem("Nothing has been noticed yet");
}

void Simulated_Window::Show_View() {
  Board->Show_Board();
  const Board_Line* line = Line_In_Use();
  Set_Text(*Head, line == nullptr ? "SIMULATED MACHINE - no motion takes place"
                                  : "SIMULATED BOARD - no motion takes place");
  Simulated_Machine_View view = View_Simulated_Machine();
  if (line != nullptr && In_Motion(line->Board)) {
    // The program knows where the axes were at its last look; a board moves on between two looks.
    for (Simulated_Axis_View& axis : view.Axes) axis.Steps_Apart = 0;
  }
  Axes->Show_View(view);
  for (int input = 0; input <= 5; ++input) {
    Inputs[static_cast<std::size_t>(input)]->Show_View(view.Inputs[input]);
  }
  for (int output = 1; output <= 5; ++output) {
    QLabel* label = Outputs[static_cast<std::size_t>(output)];
    const bool on = view.Outputs[output].On;
    label->setEnabled(view.Outputs[output].Used);
    Set_Text(*label,
             QString::fromStdString(MachineSetup.Output_Names[output]) + (on ? ": on" : ": off"));
    Set_Face(*label, on ? Colors().Run : QColor(),
             on ? QColor(Theme_Is_Dark() ? Qt::black : Qt::white) : QColor());
  }
  Cuts_Power->setChecked(view.EStop_Cuts_Power);
  Set_Text(*Spindle, QString("Spindle %1 %").arg(std::lround(view.Spindle_Speed * 100)));
  Above->Show_View(view);
  std::vector<std::string> findings = view.Findings;
  if (line != nullptr) {
    const auto noticed = Board_Findings_Text(line->Board.Findings);
    findings.insert(findings.begin(), noticed.begin(), noticed.end());
  }
  Show_Findings(findings);
  const int page = Tabs->indexOf(Noticed);
  if (page >= 0) Tabs->setTabText(page, QString("Noticed (%1)").arg(findings.size()));
}

}  // namespace norvik
