#include "ui/machine/panel_values.h"

#include "control/manual/knob.h"
#include "control/manual/panel_edits.h"
#include "control/manual/timing_edits.h"
#include "control/safety/safety.h"
#include "control/safety/spindle_slider.h"
#include "control/state/cnc_controls_form.h"
#include "core/setup.h"
#include "ui/machine/knob_widget.h"
#include "ui/widgets/panel_group.h"
#include "ui/widgets/theme.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>

namespace norvik {

QWidget* Build_Feeds(Form_Binding& binding, Knob_Widget*& knob) {
  auto* grid = new QGridLayout;
  struct Feed_Row {
    const char* Title;
    const char* Name;
    Label_Control CNC_Controls_Form::*Control;
    void (*Clicked)();
  };
  static constexpr Feed_Row rows[] = {
      {"Cut", "Label_FeedRate_Cut", &CNC_Controls_Form::Label_FeedRate_Cut,
       Label_FeedRate_Cut_Click},
      {"Travel", "Label_FeedRate_Travel", &CNC_Controls_Form::Label_FeedRate_Travel,
       Label_FeedRate_Travel_Click},
      {"Jog", "Label_FeedRate_Jogging", &CNC_Controls_Form::Label_FeedRate_Jogging,
       Label_FeedRate_Jogging_Click},
  };
  int line = 0;
  for (const Feed_Row& row : rows) {
    grid->addWidget(new QLabel(row.Title), line, 0);
    auto* value = new Value_Label("Click to change this feed", row.Clicked);
    binding.Label(value, row.Name, CNC_Controls.*row.Control);
    grid->addWidget(value, line++, 1);
  }
  grid->addWidget(new QLabel("Measured"), line, 0);
  auto* actual = new QLabel;
  actual->setFont(Readout_Font(1.15));
  actual->setAlignment(Qt::AlignRight);
  binding.Label(actual, "Label_Actual_IPM", CNC_Controls.Label_Actual_IPM);
  grid->addWidget(actual, line, 1);

  knob = new Knob_Widget;
  grid->addWidget(knob, 0, 2, 3, 1, Qt::AlignCenter);
  class Override_Label : public QLabel {
    void mouseDoubleClickEvent(QMouseEvent*) override { Label_Feed_Overide_DblClick(); }
  };
  auto* override_label = new Override_Label;
  override_label->setAlignment(Qt::AlignCenter);
  override_label->setToolTip("Double-click for 100 %");
  binding.Label(override_label, "Label_Feed_Overide", CNC_Controls.Label_Feed_Overide);
  grid->addWidget(override_label, line, 2);
  grid->setColumnStretch(1, 1);
  return Panel_Group(
      MachineSetup.UnitsofMeasurement == 1 ? "Feeds, mm a minute" : "Feeds, inches a minute", grid);
}

QWidget* Build_Levels(Form_Binding& binding) {
  auto* form = new QGridLayout;
  static constexpr const char* titles[] = {"Travel", "Cut", "Deep cut"};
  for (int level = 0; level <= 2; ++level) {
    form->addWidget(new QLabel(titles[level]), 0, level, Qt::AlignHCenter);
    auto* value =
        new Value_Label("Click to change this level", [level] { Label_Tool_Height_Click(level); });
    binding.Label(value, QString("Label_Tool_Height_%1").arg(level),
                  CNC_Controls.Label_Tool_Height[level]);
    form->addWidget(value, 1, level);
  }
  return Panel_Group("Z levels", form);
}

QWidget* Build_Outputs(Form_Binding& binding) {
  auto* rows = new QGridLayout;
  for (int output = 0; output <= 4; ++output) {
    auto* check = new QCheckBox;
    binding.Also([check, output] {  // the names can be changed while the panel is open
      const auto name = QString::fromStdString(MachineSetup.Output_Names[output + 1]);
      if (check->text() != name) check->setText(name);
    });
    check->setMinimumHeight(Finger_Height() * 2 / 3);
    binding.Check(check, QString("Check_Outputs_%1").arg(output),
                  CNC_Controls.Check_Outputs[output], [output] { Toggle_Outputs(output); });
    rows->addWidget(check, output / 2, output % 2);
  }
  auto* spindle = new QLabel;
  binding.Label(spindle, "Label_Spindle_State", CNC_Controls.Label_Spindle_State);
  auto* estop = new QLabel;
  binding.Label(estop, "Label_EStop_State", CNC_Controls.Label_EStop_State);
  rows->addWidget(spindle, 3, 0);
  rows->addWidget(estop, 3, 1);
  auto* rpm = new QLabel;
  binding.Label(rpm, "Label_RPM", CNC_Controls.Label_RPM);
  binding.Also([rpm] { rpm->setVisible(CNC_Controls.Slider_RPM.Visible); });
  rows->addWidget(rpm, 4, 0, 1, 2);
  auto* slider = new QSlider(Qt::Horizontal);
  slider->setMinimumHeight(Finger_Height() * 2 / 3);
  slider->setFocusPolicy(Qt::NoFocus);
  slider->setToolTip("Speed of the spindle; the board takes it with its next move");
  binding.Slider(slider, "Slider_RPM", CNC_Controls.Slider_RPM, Slider_RPM_Change);
  rows->addWidget(slider, 5, 0, 1, 2);
  return Panel_Group("Outputs", rows);
}

// One row, so that the panel does not grow.
QWidget* Build_Timing(Form_Binding& binding) {
  auto* row = new QHBoxLayout;
  auto* constant =
      new Value_Label("Time constant: microseconds taken off every half step; click to change it",
                      Panel_Time_Constant_Click, "0000");
  binding.Label(constant, "Label_Time_Constant", CNC_Controls.Label_Time_Constant);
  row->addWidget(constant, 1);
  static constexpr Sign arrows[] = {Sign::Arrow_Up, Sign::Arrow_Down};
  static constexpr const char* tips[] = {"One more: the machine steps faster",
                                         "One less: the machine steps slower"};
  const auto add = [&](QAbstractButton* button, const char* tip) {
    button->setMinimumHeight(Finger_Height() * 3 / 4);
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(tip);
    row->addWidget(button);
  };
  for (int index = 0; index <= 1; ++index) {
    auto* adjust = new QPushButton;
    adjust->setIcon(Sign_Icon(arrows[index]));
    adjust->setFixedWidth(Text_Height() * 2);
    binding.Button(adjust, QString("Command_TC_Adjust_%1").arg(index),
                   CNC_Controls.Command_TC_Adjust[index],
                   [index] { Panel_TC_Adjust_Click(index); });
    add(adjust, tips[index]);
  }
  auto* autotune = new QCheckBox("Autotune");
  binding.Check(autotune, "Check_FeedRate_Autotune", CNC_Controls.Check_FeedRate_Autotune,
                Panel_Autotune_Click);
  add(autotune, "Changes the constant in every move until the measured feed is right");
  auto* find = new QPushButton;
  find->setMinimumWidth(QFontMetrics(find->font()).horizontalAdvance("Cancel") + Text_Height());
  binding.Button(find, "Command_Get_Time_Constant", CNC_Controls.Command_Get_Time_Constant,
                 Panel_Get_Time_Constant_Click);
  add(find, "Finds the constant without moving an axis; takes up to two minutes");
  return Panel_Group("Timing, microseconds", row);
}

}  // namespace norvik
