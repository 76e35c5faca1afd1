#include "ui/machine/axis_rows.h"

#include "app/main_form.h"
#include "control/displays/displays.h"
#include "control/manual/panel_edits.h"
#include "control/state/cnc_controls_form.h"
#include "core/axes.h"
#include "core/setup.h"
#include "drive/finding.h"
#include "ui/widgets/theme.h"

#include <QEvent>
#include <QPushButton>

namespace norvik {

namespace {

// A readout that can be double-clicked to type another position.
class Position_Label : public QLabel {
 public:
  explicit Position_Label(int axis) : Axis(axis) {
    setFont(Readout_Font(1.8));
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setMargin(Text_Height() / 4);
    setMinimumWidth(QFontMetrics(font()).horizontalAdvance("-00.0000000"));
    Set_Face(*this, Colors().Readout_Ground, Colors().Readout);
    setFrameShape(QFrame::StyledPanel);
    setToolTip("Double-click to type another position");
  }

 protected:
  void mouseDoubleClickEvent(QMouseEvent*) override { Label_Axis_Pos_DblClick(Axis); }

 private:
  int Axis;
};

QString Unit_Of(int axis) {
  if (axis == 4 && MachineSetup.Slave_A_Axis_to == "None") return QString::fromUtf8("\u00B0");
  return MachineSetup.UnitsofMeasurement == 1 ? "mm" : "in";
}

QPushButton* Lamp(const QString& tip) {
  auto* lamp = new QPushButton;
  lamp->setFixedWidth(Text_Height() * 3 / 2);
  lamp->setMinimumHeight(Finger_Height() * 3 / 4);
  lamp->setToolTip(tip);
  return lamp;
}

// The label of the distance to go.
QWidget* Build_Row(QGridLayout& grid, Form_Binding& binding, int axis) {
  const QString name = QString(QChar(Axis_Letter(axis)));
  auto* title = new QPushButton(name);
  title->setObjectName("Command_Axis_Setup_" + name);
  title->setFont(Bold_Font(1.9));
  title->setFlat(true);
  title->setFocusPolicy(Qt::NoFocus);
  title->setMinimumWidth(Text_Height());
  title->setMaximumWidth(Text_Height() * 2);
  title->setToolTip("Settings of the axes");
  QObject::connect(title, &QPushButton::clicked, title,
                   [axis] { Main_Host.Show_Setting(Axis_Key("Axis_SPI_", axis)); });
  grid.addWidget(title, axis, 0);

  auto* position = new Position_Label(axis);
  binding.Label(position, "Label_Axis_Pos_" + name, CNC_Controls.Label_Axis_Pos[axis]);
  grid.addWidget(position, axis, 1);

  auto* unit = new QLabel(Unit_Of(axis));
  unit->setObjectName("Label_Axis_Unit_" + name);
  grid.addWidget(unit, axis, 2);

  auto* to_go = new QLabel;
  to_go->setFont(Readout_Font(0.95));
  to_go->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  to_go->setMinimumWidth(QFontMetrics(to_go->font()).horizontalAdvance("-000.000000"));
  to_go->setToolTip("Distance to go");
  binding.Label(to_go, "Label_Axis_DTG_" + name, CNC_Controls.Label_Axis_DTG[axis]);
  grid.addWidget(to_go, axis, 3);

  QPushButton* now = Lamp(name + " switch: red while it is on");
  binding.Button(now, "Command_Limit1_" + name, CNC_Controls.Command_Limit1[axis], [] {});
  now->setFocusPolicy(Qt::NoFocus);
  grid.addWidget(now, axis, 4);
  QPushButton* latch = Lamp(name + " switch has been on; click to clear");
  binding.Button(latch, "Command_Lim_Latch_" + name, CNC_Controls.Command_Lim_Latch[axis],
                 [axis] { Command_Lim_Latch_Click(axis); });
  grid.addWidget(latch, axis, 5);

  auto* zero = new QPushButton("Zero");
  zero->setObjectName("Command_Zero_Pos_" + name);
  zero->setMinimumHeight(Finger_Height() * 3 / 4);
  zero->setToolTip("Make this the zero of " + name);
  QObject::connect(zero, &QPushButton::clicked, zero, [axis] { Command_Zero_Pos_Click(axis); });
  grid.addWidget(zero, axis, 6);
  return to_go;
}

}  // namespace

std::vector<QWidget*> Build_Axis_Rows(QGridLayout& grid, Form_Binding& binding) {
  const auto head = [&grid](int column, const QString& text) {
    auto* label = new QLabel(text);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setAlignment(Qt::AlignRight);
    grid.addWidget(label, 0, column);
    return label;
  };
  head(1, "Position");
  std::vector<QWidget*> to_go{head(3, "To go")};
  auto* lamps = new QLabel("Switch");
  lamps->setForegroundRole(QPalette::PlaceholderText);
  lamps->setToolTip("Left: the switch now. Right: it has been on.");
  grid.addWidget(lamps, 0, 4, 1, 2);
  const int last_axis = MachineSetup.Hide_CNC_A_Axis ? 3 : 4;
  for (int axis = 1; axis <= last_axis; ++axis) to_go.push_back(Build_Row(grid, binding, axis));
  grid.setColumnStretch(1, 1);
  return to_go;
}

}  // namespace norvik
