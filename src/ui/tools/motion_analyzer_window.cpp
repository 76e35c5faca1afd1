#include "ui/tools/motion_analyzer_window.h"

#include "core/messages.h"
#include "tools/motion_analyzer.h"
#include "ui/tools/speed_chart_view.h"
#include "ui/tools/window_buttons.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <optional>

#include <QAbstractTableModel>
#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

namespace norvik {

// The rows of the analyzer for the view, which asks for those that it shows.
class Analyzer_Model : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  void Begin_Anew() {
    beginResetModel();
    Shown_Rows = Grid_Rows();
    endResetModel();
  }
  // As many rows as before keep the chosen one and the place of the view.
  void Look_Again() {
    if (Shown_Rows == 0 || Grid_Rows() != Shown_Rows) return Begin_Anew();
    emit dataChanged(index(0, 0), index(Shown_Rows - 1, grid_column::Count - 1));
  }

  int rowCount(const QModelIndex&) const override { return Grid_Rows(); }
  int columnCount(const QModelIndex&) const override { return grid_column::Count; }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    const std::string_view title = Grid_Title(section);
    return QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
  }

  QVariant data(const QModelIndex& at, int role) const override {
    const std::int32_t record = Grid_Record(at.row() + 1);
    if (role == Qt::DisplayRole) return QString::fromStdString(Grid_Cell(record, at.column()));
    if (role == Qt::TextAlignmentRole && at.column() >= grid_column::Dx &&
        at.column() <= grid_column::Hz_Z)
      return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::BackgroundRole && Is_Error(record)) {
      QColor ground = Alarm_Red();
      ground.setAlpha(70);
      return ground;
    }
    return {};
  }

 private:
  std::int32_t Shown_Rows = 0;

  static bool Is_Error(std::int32_t record) {
    const auto index = static_cast<std::size_t>(record - 1);
    return index < frmMotionAnalyzer.Checks.size() && frmMotionAnalyzer.Checks[index].Is_Error();
  }
};

Motion_Analyzer_Window::Motion_Analyzer_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("frmMotionAnalyzer");
  auto* rows = new QVBoxLayout(this);
  auto* halves = new QSplitter(Qt::Vertical);
  halves->setChildrenCollapsible(false);
  Build_Grid();
  halves->addWidget(Grid);
  Chart = new Speed_Chart_View;
  connect(Chart, &Speed_Chart_View::Row_Clicked, this,
          [this](std::int32_t record) { Choose_Record(record); });
  halves->addWidget(Chart);
  halves->setStretchFactor(0, 3);
  halves->setStretchFactor(1, 2);
  rows->addWidget(halves, 1);
  Build_Foot(*rows);
  Add_Keys();
  resize(Text_Height() * 56, Text_Height() * 38);  // the panel stays in sight

  Motion_Analyzer_Host.Data_Changed = [this] { Show_Data(); };
  Motion_Analyzer_Host.Caption_Changed = [this] {
    setWindowTitle(QString::fromStdString(frmMotionAnalyzer.Caption));
  };
  frmMotionAnalyzer_Load();
}

Motion_Analyzer_Window::~Motion_Analyzer_Window() {
  Motion_Analyzer_Host.Data_Changed = [] {};
  Motion_Analyzer_Host.Caption_Changed = [] {};
}

void Motion_Analyzer_Window::Build_Grid() {
  Model = new Analyzer_Model(this);
  Grid = new QTableView;
  Grid->setObjectName("Grid1");
  Grid->setModel(Model);
  Grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  Grid->setSelectionMode(QAbstractItemView::SingleSelection);
  Grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  Grid->setTabKeyNavigation(false);
  Grid->setWordWrap(false);
  Grid->verticalHeader()->hide();
  Grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  Grid->verticalHeader()->setDefaultSectionSize(Text_Height() * 3 / 2);
  Grid->horizontalHeader()->setHighlightSections(false);
  for (int column = 0; column < grid_column::Count; ++column) {
    const int letters = column == grid_column::GCode           ? 16
                        : column >= grid_column::Description_1 ? 30
                        : column >= grid_column::Status_1      ? 8
                                                               : 5;
    Grid->setColumnWidth(column, letters * Text_Height() * 3 / 4);
  }
  Grid->setMinimumSize(Text_Height() * 30, Text_Height() * 8);
  connect(Grid, &QTableView::doubleClicked, this,
          [](const QModelIndex& at) { Grid1_DblClick(Grid_Record(at.row() + 1), at.column()); });
  connect(Grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& at) {
            if (!at.isValid()) return;
            const std::int32_t record = Grid_Record(at.row() + 1);
            Chart->Show_Row(record);
            Grid1_RowChange(record);
          });
}

void Motion_Analyzer_Window::Build_Foot(QVBoxLayout& rows) {
  auto* foot = new QHBoxLayout;
  Add_Window_Button(*foot, "mnuOpen", "Open...", "Look at another wire file", mnuOpen_Click);
  Add_Window_Button(*foot, "mnuVerify", "Verify",
                    "Write the rows to the wire file, check them and run by them", mnuVerify_Click);
  Add_Window_Button(*foot, "mnuSave", "Save...", "Write the rows of the grid into a text file",
                    mnuSave_Click);
  Only_Errors = new QCheckBox("Errors &only");
  Only_Errors->setObjectName("Check_Only_Errors");
  Only_Errors->setChecked(frmMotionAnalyzer.Only_Errors);
  connect(Only_Errors, &QCheckBox::toggled, this, [this](bool only) {
    const std::int32_t record = Present_Record();
    frmMotionAnalyzer.Only_Errors = only;
    Model->Begin_Anew();
    Choose_Record(record);
  });
  foot->addWidget(Only_Errors);
  Add_Window_Button(*foot, "Command_Next_Error", "Next error", "F7; the one before: Shift+F7",
                    [this] { Go_To_Error(true); });
  foot->addStretch(1);
  Hold = new QCheckBox("&Hold chart");
  Hold->setObjectName("Check_Hold");
  Hold->setToolTip("The section of the chart stays where it is, whichever row is chosen");
  connect(Hold, &QCheckBox::toggled, this, [this](bool held) { Chart->Hold(held); });
  foot->addWidget(Hold);
  Add_Window_Button(*foot, "Command_Show_All", "Whole way", "Show the whole way in the chart",
                    [this] { Chart->Show_All(); });
  Add_Window_Button(*foot, "mnuExit", "Close", "Close", [this] { Close_Frame_Of(*this); });
  rows.addLayout(foot);
}

void Motion_Analyzer_Window::Add_Keys() {
  const auto key = [this](const char* name, QKeySequence keys, bool next) {
    auto* action = new QAction(this);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, [this, next] { Go_To_Error(next); });
    addAction(action);
  };
  key("Action_Next_Error", QKeySequence(Qt::Key_F7), true);
  key("Action_Previous_Error", QKeySequence(Qt::SHIFT | Qt::Key_F7), false);
}

void Motion_Analyzer_Window::Show_Data() {
  Model->Look_Again();
  Chart->Show_Table(frmMotionAnalyzer.Wires.Rows);
}

std::int32_t Motion_Analyzer_Window::Present_Record() const {
  const QModelIndex at = Grid->currentIndex();
  return at.isValid() ? Grid_Record(at.row() + 1) : 0;
}

// Its row in the grid; with the errors alone, the next one that is shown.
void Motion_Analyzer_Window::Choose_Record(std::int32_t record) {
  if (record < 1 || Grid_Rows() == 0) return;
  int row = record - 1;
  if (frmMotionAnalyzer.Only_Errors) {
    const auto& errors = frmMotionAnalyzer.Errors;
    const auto at = std::lower_bound(errors.begin(), errors.end(), record);
    row = static_cast<int>(std::min<std::ptrdiff_t>(at - errors.begin(), Grid_Rows() - 1));
  }
  Grid->setCurrentIndex(Model->index(row, std::max(0, Grid->currentIndex().column())));
  Grid->scrollTo(Grid->currentIndex(), QAbstractItemView::PositionAtCenter);
}

void Motion_Analyzer_Window::Go_To_Error(bool next) {
  const std::int32_t here = Present_Record();
  if (const auto error = next ? Next_Error(here) : Previous_Error(here)) {
    return Choose_Record(*error);
  }
  SetStatus(1, next ? "No error behind this row." : "No error before this row.", 5);
}

}  // namespace norvik
