#include "ui/machine/jog_pad.h"

#include "control/manual/panel_jog.h"
#include "control/state/cnc_controls_form.h"
#include "core/setup.h"
#include "ui/widgets/theme.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

struct Jog_Button {
  const char* Name;
  int Row, Column;
  Sign Arrow;
  const char* Caption;
  int Axis;  // 0: the diagonals
  int Index;
};

// The corners of `Jog_XY` lie as one looks at the block.
constexpr Jog_Button Jog_Buttons[] = {
    {"Jog_XY_0", 0, 0, Sign::Arrow_Up_Left, "", 0, 0},
    {"Jog_Y_1", 0, 1, Sign::Arrow_Up, "Y+", 2, 1},
    {"Jog_XY_1", 0, 2, Sign::Arrow_Up_Right, "", 0, 1},
    {"Jog_X_0", 1, 0, Sign::Arrow_Left, "X-", 1, 0},
    {"Jog_X_1", 1, 2, Sign::Arrow_Right, "X+", 1, 1},
    {"Jog_XY_2", 2, 0, Sign::Arrow_Down_Left, "", 0, 2},
    {"Jog_Y_0", 2, 1, Sign::Arrow_Down, "Y-", 2, 0},
    {"Jog_XY_3", 2, 2, Sign::Arrow_Down_Right, "", 0, 3},
    {"Jog_Z_1", 0, 4, Sign::Arrow_Up, "Z+", 3, 1},
    {"Jog_Z_0", 2, 4, Sign::Arrow_Down, "Z-", 3, 0},
    {"Jog_A_1", 0, 6, Sign::Turn_Left, "A+", 4, 1},
    {"Jog_A_0", 2, 6, Sign::Turn_Right, "A-", 4, 0},
};

void Press(const Jog_Button& row) {
  if (row.Axis == 0) return Jog_XY_MouseDown(row.Index);
  Jog_MouseDown(row.Axis, row.Index);
}

void Release(const Jog_Button& row) {
  if (row.Axis == 0) return Jog_XY_MouseUp(row.Index);
  Jog_MouseUp(row.Axis, row.Index);
}

// Pressing starts the motion and returns when it has ended; the release arrives in a yield of it.
QPushButton* Build_Button(const Jog_Button& row) {
  auto* button = new QPushButton(row.Caption);
  button->setObjectName(row.Name);
  button->setIcon(Sign_Icon(row.Arrow));
  const int side = Finger_Height() * 5 / 4;
  button->setIconSize({side * 2 / 5, side * 2 / 5});
  button->setMinimumSize(side + Text_Height(), side);
  button->setFont(Bold_Font(1.0));
  button->setFocusPolicy(Qt::NoFocus);
  const Jog_Button* const data = &row;
  QObject::connect(button, &QPushButton::pressed, button, [data] { Press(*data); });
  QObject::connect(button, &QPushButton::released, button, [data] { Release(*data); });
  return button;
}

}  // namespace

QWidget* Build_Jog_Pad(Form_Binding& binding) {
  auto* pad = new QWidget;
  auto* grid = new QGridLayout(pad);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(Text_Height() / 4);
  for (const Jog_Button& row : Jog_Buttons) {
    if (row.Column == 6 && MachineSetup.Hide_CNC_A_Axis) continue;
    grid->addWidget(Build_Button(row), row.Row, row.Column);
  }
  grid->setColumnMinimumWidth(3, Text_Height() / 3);
  grid->setColumnMinimumWidth(5, Text_Height() / 3);

  auto* single = new QCheckBox("Single step");
  single->setMinimumHeight(Finger_Height() * 3 / 4);
  single->setToolTip("One press moves one step distance; Z only where the setup allows it");
  binding.Check(single, "Check_SingleStep", CNC_Controls.Check_SingleStep, Check_SingleStep_Click);
  grid->addWidget(single, 3, 0, 1, 2);

  auto* distance = new QComboBox;
  distance->setEditable(true);
  distance->setMinimumHeight(Finger_Height() * 3 / 4);
  distance->setToolTip("Distance of a single step");
  binding.Combo(distance, "Combo_SStep_Distance", CNC_Controls.Combo_SStep_Distance,
                Combo_SStep_Distance_Click);
  QObject::connect(distance, &QComboBox::editTextChanged, distance, [](const QString& text) {
    CNC_Controls.Combo_SStep_Distance.Text = text.toStdString();
    Combo_SStep_Distance_Change();
  });
  QObject::connect(distance->lineEdit(), &QLineEdit::editingFinished, distance,
                   Combo_SStep_Distance_LostFocus);
  grid->addWidget(distance, 3, 2, 1, 3);

  auto* feed_title = new QLabel("Jog feed");
  grid->addWidget(feed_title, 4, 0, 1, 2, Qt::AlignRight);
  auto* feed = new QLineEdit;
  feed->setObjectName("Text_Jog_IPM");
  feed->setMinimumHeight(Finger_Height() * 3 / 4);
  feed->setToolTip("Jog feed in units per minute; Enter takes it");
  binding.Text(feed, "Text_Jog_IPM", CNC_Controls.Text_Jog_IPM, Text_Jog_IPM_LostFocus);
  QObject::connect(feed, &QLineEdit::returnPressed, feed, [feed] {
    CNC_Controls.Text_Jog_IPM.Text = feed->text().toStdString();
    feed->setModified(false);
    Text_Jog_IPM_KeyUp(Key_Enter);
  });
  grid->addWidget(feed, 4, 2, 1, 3);
  return pad;
}

}  // namespace norvik
