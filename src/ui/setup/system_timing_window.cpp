#include "ui/setup/system_timing_window.h"

#include "control/manual/timing_edits.h"
#include "core/operation.h"
#include "core/setup.h"
#include "parallel/system_timing.h"
#include "parallel/timing.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Refresh_Ms = 250;

}  // namespace

System_Timing_Window::System_Timing_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("System_Timing");
  setWindowTitle("System timing");
  auto* rows = new QVBoxLayout(this);
  auto* about = new QLabel(
      "Finds how many microseconds of each half step this computer needs for itself. "
      "No axis moves. It takes up to two minutes.");
  about->setWordWrap(true);
  rows->addWidget(about);
  const QString unit = MachineSetup.UnitsofMeasurement == 1 ? "mm a minute" : "inches a minute";
  auto* grid = new QGridLayout;
  auto* title = new QLabel("&Test feed");
  Feed = new QLineEdit;
  Feed->setObjectName("Text_FeedRate");
  Feed->setFont(Readout_Font(1.15));
  Feed->setAlignment(Qt::AlignRight);
  Feed->setMinimumHeight(Finger_Height());
  Feed->setToolTip("The feed that you cut with most");
  title->setBuddy(Feed);
  grid->addWidget(title, 0, 0);
  grid->addWidget(Feed, 0, 1);
  grid->addWidget(new QLabel(unit), 0, 2);
  Constant = Add_Figure(*grid, "Time constant", "Text_TimeConstant", "microseconds");
  Actual = Add_Figure(*grid, "Measured feed", "Label_Actual_FeedRate", unit);
  Error = Add_Figure(*grid, "Error", "Label_FeedRate_Error", "of the test feed");
  grid->setColumnStretch(1, 1);
  rows->addLayout(grid);
  Result = new QLabel;
  Result->setObjectName("Label_Result");
  Result->setWordWrap(true);
  Result->setMinimumHeight(Text_Height() * 3);
  Result->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  rows->addWidget(Result);
  rows->addStretch(1);
  rows->addWidget(Build_Buttons());

  System_Timing_Form_Load();
  Feed->setText(QString::fromStdString(System_Timing.Text_FeedRate));
  Timer = Platform.Start_Timer(Refresh_Ms, [this] {
    if (!isVisible()) return;
    System_Timing_Timer1();
    Show_Form();
  });
  Show_Form();
}

System_Timing_Window::~System_Timing_Window() {
  Platform.Stop_Timer(Timer);
}

QLabel* System_Timing_Window::Add_Figure(QGridLayout& grid, const QString& title,
                                         const QString& name, const QString& unit) {
  const int row = grid.rowCount();
  grid.addWidget(new QLabel(title), row, 0);
  auto* figure = new QLabel;
  figure->setObjectName(name);
  figure->setFont(Readout_Font(1.15));
  figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  figure->setMinimumHeight(Finger_Height() * 3 / 4);
  figure->setMinimumWidth(QFontMetrics(figure->font()).horizontalAdvance("-99999.000"));
  grid.addWidget(figure, row, 1);
  grid.addWidget(new QLabel(unit), row, 2);
  return figure;
}

QWidget* System_Timing_Window::Build_Buttons() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  const auto button = [&](const char* name, void (System_Timing_Window::*clicked)()) {
    auto* made = new QPushButton;
    made->setObjectName(name);
    made->setMinimumHeight(Finger_Height());
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made, 1);
    return made;
  };
  Start_Button = button("Command_Start", &System_Timing_Window::Start);
  Cancel_Button = button("Command_Cancel", &System_Timing_Window::Cancel);
  return area;
}

// Returns when the calibration has ended; the timer shows the figures meanwhile.
void System_Timing_Window::Start() {
  if (Runs) return;
  Runs = true;
  System_Timing.Text_FeedRate = Feed->text().toStdString();
  Timing_Test_Start_Click();
  Runs = false;
  Feed->setText(QString::fromStdString(System_Timing.Text_FeedRate));
  Show_Form();
}

void System_Timing_Window::Cancel() {
  System_Timing_Cancel_Click();
  if (!System_Timing.Visible && parentWidget() != nullptr) parentWidget()->close();
}

void System_Timing_Window::Show_Form() {
  const auto& form = System_Timing;
  Constant->setText(QString::fromStdString(form.Text_TimeConstant));
  Actual->setText(QString::fromStdString(form.Label_Actual_FeedRate));
  Error->setText(QString::fromStdString(form.Label_FeedRate_Error));
  Result->setText(QString::fromStdString(form.Label_Result));
  Start_Button->setText(QString::fromStdString(form.Command_Start));
  Cancel_Button->setText(QString::fromStdString(form.Command_Cancel));
  Start_Button->setEnabled(!norvik::Runs(Operation::Calibration));
  Feed->setEnabled(!norvik::Runs(Operation::Calibration));
}

void System_Timing_Window::hideEvent(QHideEvent* event) {
  if (Runs && norvik::Runs(Operation::Calibration) && !event->spontaneous())
    System_Timing_Cancel_Click();
  QWidget::hideEvent(event);
}

}  // namespace norvik
