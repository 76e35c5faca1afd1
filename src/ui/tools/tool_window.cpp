#include "ui/tools/tool_window.h"

#include "core/application.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/setup.h"
#include "tools/tool_list.h"
#include "ui/tools/tool_picture.h"
#include "ui/tools/window_buttons.h"
#include "ui/widgets/theme.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QVBoxLayout>

namespace norvik {

// The table `Tools` for the view, with the marks of the compiled program.
class Tool_Model : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  void Look_Again() {
    Uses = Tools_Used();
    emit dataChanged(index(0, 0), index(rowCount({}) - 1, tool_column::Count - 1));
  }

  int rowCount(const QModelIndex&) const override { return Tools.Diameter.last; }
  int columnCount(const QModelIndex&) const override { return tool_column::Count; }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    constexpr const char* titles[] = {"Tool#", "Diameter", "Offset", "Program"};
    return titles[section];
  }

  QVariant data(const QModelIndex& at, int role) const override {
    const int tool = at.row() + 1;
    if (role == Qt::TextAlignmentRole && Is_Value(at))
      return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ForegroundRole && at.column() == tool_column::Used && Is_Wrong(tool))
      return Colors().Stop;
    if (role != Qt::DisplayRole && role != Qt::EditRole) return {};
    return QString::fromStdString(Text(tool, at.column()));
  }

  Qt::ItemFlags flags(const QModelIndex& at) const override {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(at);
    return Is_Value(at) ? flags | Qt::ItemIsEditable : flags;
  }

  bool setData(const QModelIndex& at, const QVariant& value, int role) override {
    return role == Qt::EditRole &&
           Take_Tool_Value(at.row() + 1, at.column(), value.toString().toStdString());
  }

 private:
  static bool Is_Value(const QModelIndex& at) {
    return at.column() == tool_column::Diameter || at.column() == tool_column::Offset;
  }
  bool Is_Wrong(int tool) const { return Use_Text(Uses, tool).starts_with('G'); }
  std::string Text(int tool, int column) const {
    if (column == tool_column::Number) return Tool_Number_Text(tool);
    if (column == tool_column::Used) return Use_Text(Uses, tool);
    return Tool_Value_Text(Tool_Value(tool, column));
  }

  std::vector<Tool_Use> Uses = Tools_Used();
};

Tool_Window::Tool_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Tool");
  setWindowTitle("Tool list");
  auto* rows = new QVBoxLayout(this);
  Build_Head(*rows);
  auto* middle = new QHBoxLayout;
  Model = new Tool_Model(this);
  List = new QTableView;
  List->setObjectName("List_Tools");
  List->setModel(Model);
  List->setSelectionMode(QAbstractItemView::SingleSelection);
  List->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
  List->setTabKeyNavigation(false);
  List->setAlternatingRowColors(true);
  List->verticalHeader()->hide();
  List->verticalHeader()->setDefaultSectionSize(Text_Height() * 7 / 4);
  List->horizontalHeader()->setStretchLastSection(true);
  List->horizontalHeader()->setHighlightSections(false);
  List->setColumnWidth(tool_column::Number, Text_Height() * 4);
  List->setMinimumSize(Text_Height() * 30, Text_Height() * 12);
  connect(List, &QTableView::doubleClicked, this,
          [](const QModelIndex& at) { List_Tools_DblClick(at.row() + 1, at.column()); });
  connect(List->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& at) { Choose(at.row() + 1); });
  middle->addWidget(List, 1);
  Picture = new Tool_Picture;
  middle->addWidget(Picture);
  rows->addLayout(middle, 1);
  Build_Foot(*rows);
  resize(Text_Height() * 48, Text_Height() * 34);

  Listener.emplace(Tool_Host.Form_Changed, [this] { Show_Form(); });
  Tool_Form_Load();
  List->setCurrentIndex(Model->index(0, tool_column::Diameter));
}

void Tool_Window::Build_Head(QVBoxLayout& rows) {
  auto* head = new QHBoxLayout;
  Name = new QLabel;
  Name->setObjectName("Label_Tool");
  Name->setTextFormat(Qt::PlainText);
  Name->setFont(Bold_Font(1.0));
  head->addWidget(Name, 1);
  auto* label = new QLabel("&Find diameter");
  head->addWidget(label);
  Wanted = new QLineEdit;
  Wanted->setObjectName("Text_Find_Diameter");
  Wanted->setToolTip("Enter goes to the tool whose diameter is nearest");
  Wanted->setMaximumWidth(Text_Height() * 7);
  label->setBuddy(Wanted);
  connect(Wanted, &QLineEdit::returnPressed, this, &Tool_Window::Find_Diameter);
  head->addWidget(Wanted);
  rows.addLayout(head);
}

void Tool_Window::Build_Foot(QVBoxLayout& rows) {
  Note = new QLabel;
  Note->setObjectName("Label_Note");
  Note->setWordWrap(true);
  rows.addWidget(Note);
  auto* foot = new QHBoxLayout;
  Add_Window_Button(*foot, "Command_Load", "Load...", "Take the tools of a tool file",
                    Tool_Command_Load_Click);
  Add_Window_Button(*foot, "Command_Save", "Save as...", "Write the list into a tool file",
                    Tool_Command_Save_Click);
  Add_Window_Button(*foot, "Command_Clear", "Clear", "Every tool to 0", Tool_Command_Clear_Click);
  foot->addStretch(1);
  Add_Window_Button(*foot, "Command_OK", "OK", "Close; asks whether a changed list is saved",
                    [this] {
                      if (Tool_Command_OK_Click()) Close_Frame_Of(*this);
                    });
  rows.addLayout(foot);
}

void Tool_Window::Show_Form() {
  Name->setText(QString::fromStdString(Tool_Form.Label_Tool));
  const QString unit = MachineSetup.UnitsofMeasurement == 1 ? "millimetres" : "inches";
  Note->setText("Lengths in " + unit + ". Type into a cell, or double click for a box." +
                (Tool_Form.Modified ? " The list is modified and not saved." : ""));
  Model->Look_Again();
  Show_Picture();
}

void Tool_Window::Show_Picture() {
  Picture->Show_Tool(Tool_Value(Tool_Form.Selected, tool_column::Diameter),
                     Tool_Value(Tool_Form.Selected, tool_column::Offset));
}

void Tool_Window::Choose(int tool) {
  if (tool < 1) return;
  Tool_Form.Selected = tool;
  Show_Picture();
}

void Tool_Window::Find_Diameter() {
  const auto wanted = Try_Number(Wanted->text().toStdString());
  const auto tool = wanted ? Nearest_Tool(*wanted) : std::nullopt;
  if (!tool) {
    SetStatus(1, wanted ? "No tool has a diameter." : "Type a diameter to look for.", 5);
    return;
  }
  List->setCurrentIndex(Model->index(*tool - 1, tool_column::Diameter));
  List->scrollTo(List->currentIndex(), QAbstractItemView::PositionAtCenter);
}

}  // namespace norvik
