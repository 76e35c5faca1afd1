// The pages that move the machine: motors, speeds, home switches.
#include "app/guide/values.h"
#include "core/axes.h"
#include "core/setup.h"
#include "ui/guide/guide_page.h"
#include "ui/widgets/panel_group.h"
#include "ui/widgets/theme.h"

#include <QGridLayout>
#include <QHBoxLayout>

namespace norvik {

namespace {

Guide_Axis_Fields& Fields() {
  return Guide_Form.Axes[Guide_Form.Combo_Axis];
}

QString Number(double value) {
  return QString::fromStdString(Guide_Number(value));
}

class Motors_Page : public Guide_Page_Widget {
 public:
  Motors_Page() : Guide_Page_Widget(Guide_Page::Motors) {
    auto* first = new QHBoxLayout;
    Add_Axis_Choice(*first);
    first->addStretch(1);
    Rows().addLayout(first);
    Rows().addWidget(Panel_Group("Steps per unit", Parts()));
    Rows().addWidget(Panel_Group("Try it", Trial()));
    Rows().addWidget(Panel_Group("Length of the axis", Travel()));
    Rows().addStretch(1);
  }

 private:
  QLayout* Parts() {
    auto* rows = new QVBoxLayout;
    auto* fields = new QHBoxLayout;
    Add_Field(*fields, "Text_Motor_Steps", "Motor &steps a turn",
              []() -> std::string& { return Fields().Text_Motor_Steps; });
    Add_Field(*fields, "Text_Microsteps", "&Microsteps",
              []() -> std::string& { return Fields().Text_Microsteps; });
    Add_Field(*fields, "Text_Gear", "&Gear", []() -> std::string& {
      return Fields().Text_Gear;
    })->setToolTip("Turns of the motor for one turn of the screw or pulley");
    rows->addLayout(fields);
    auto* last = new QHBoxLayout;
    Add_Field(*last, "Text_Turn_Travel", "One &turn moves the axis by", []() -> std::string& {
      return Fields().Text_Turn_Travel;
    })->setToolTip("Lead of the screw, or teeth of the pulley times pitch of the belt");
    auto* unit = new QLabel;
    Also([unit] { unit->setText(Guide_Units()); });
    last->addWidget(unit);
    Add_Button(*last, "Command_Take_Steps", "&Use", "Sets the steps per unit of this axis",
               Guide_Take_Steps);
    auto* scale = new QLabel;
    scale->setObjectName("Label_Scale");
    Also([scale] {
      scale->setText("now " + Number(MachineSetup.Axis_SPI[Guide_Form.Combo_Axis]) +
                     " steps per unit");
    });
    last->addWidget(scale, 1);
    rows->addLayout(last);
    return rows;
  }

  QLayout* Trial() {
    auto* rows = new QVBoxLayout;
    auto* moves = new QHBoxLayout;
    Add_Field(*moves, "Text_Asked", "Move b&y",
              []() -> std::string& { return Fields().Text_Asked; });
    Add_Button(*moves, "Command_Move_Negative", "Move \u2212", "To the negative side, now",
               [] { Guide_Try_Move(true); });
    Add_Button(*moves, "Command_Move_Positive", "Move +", "To the positive side, now",
               [] { Guide_Try_Move(false); });
    Add_Button(*moves, "Command_Wrong_Way", "It moved the &wrong way",
               "Turns the direction of this axis around", Guide_Wrong_Way);
    rows->addLayout(moves);
    auto* measured = new QHBoxLayout;
    Add_Field(*measured, "Text_Measured", "It really m&oved by",
              []() -> std::string& { return Fields().Text_Measured; });
    Add_Button(*measured, "Command_Take_Measured", "&Correct", "Puts the steps per unit right",
               Guide_Take_Measured);
    measured->addStretch(1);
    rows->addLayout(measured);
    return rows;
  }

  QLayout* Travel() {
    auto* row = new QHBoxLayout;
    Add_Field(*row, "Text_Travel", "&Length",
              []() -> std::string& { return Fields().Text_Travel; });
    auto* unit = new QLabel;
    Also([unit] { unit->setText(Guide_Units()); });
    row->addWidget(unit);
    Add_Button(*row, "Command_Take_Travel", "Us&e", "Sets how far this axis can go",
               Guide_Take_Travel);
    row->addStretch(1);
    return row;
  }
};

class Speeds_Page : public Guide_Page_Widget {
 public:
  Speeds_Page() : Guide_Page_Widget(Guide_Page::Speeds) {
    auto* fields = new QHBoxLayout;
    Add_Axis_Choice(*fields);
    Add_Field(*fields, "Text_Trial_Distance", "&To and fro by",
              []() -> std::string& { return Guide_Form.Text_Trial_Distance; });
    Add_Field(*fields, "Text_First_Speed", "&First speed, a minute",
              []() -> std::string& { return Guide_Form.Text_First_Speed; });
    Rows().addLayout(fields);
    auto* buttons = new QHBoxLayout;
    auto* begin = Add_Button(*buttons, "Command_Begin_Trial", "&Begin", "Makes the first move, now",
                             Guide_Begin_Trial);
    auto* good = Add_Button(*buttons, "Command_Trial_Good", "&Good: faster",
                            "Makes the next move, a fifth faster, now", Guide_Trial_Good);
    auto* bad = Add_Button(*buttons, "Command_Trial_Bad", "That was too &fast",
                           "Keeps two thirds of the last good speed", Guide_Trial_Bad);
    Rows().addLayout(buttons);
    Also([begin, good, bad] {
      begin->setEnabled(!Guide_Form.Trial_Runs);
      good->setEnabled(Guide_Form.Trial_Runs);
      bad->setEnabled(Guide_Form.Trial_Runs);
    });
    Add_Text("Label_Trial", [] {
      const auto& trial = Guide_Form.Trial;
      const QString now =
          "Limit of this axis: " + Number(MachineSetup.Axis_Max_Feed_Rate[Guide_Form.Combo_Axis]) +
          " a minute.";
      if (!Guide_Form.Trial_Runs) return now;
      return "Tried: " + Number(trial.Present) + " a minute; last good: " +
             (trial.Last_Good > 0 ? Number(trial.Last_Good) : QString("none yet")) + ". " + now;
    });
    Rows().addStretch(1);
  }
};

class Switches_Page : public Guide_Page_Widget {
 public:
  Switches_Page() : Guide_Page_Widget(Guide_Page::Switches) {
    auto* grid = new QGridLayout;
    for (int axis = 1; axis <= Axis_Count; ++axis) {
      const QString letter(QChar(Axis_Letter(axis)));
      auto* title = new QLabel("Switch of " + letter);
      auto* end = new QComboBox;
      end->setObjectName("Combo_Home_End_" + QString::number(axis));
      end->setAccessibleName("Home switch of " + letter);
      end->setMinimumHeight(Finger_Height() * 3 / 4);
      end->addItems({"none", "at the negative end", "at the positive end"});
      title->setBuddy(end);
      grid->addWidget(title, axis, 0);
      grid->addWidget(end, axis, 1);
      connect(end, &QComboBox::activated, this,
              [axis](int index) { Guide_Form.Axes[axis].Combo_Home_End = index; });
      Also([end, axis] { end->setCurrentIndex(Guide_Form.Axes[axis].Combo_Home_End); });
    }
    grid->setColumnStretch(2, 1);
    Rows().addLayout(grid);
    auto* buttons = new QHBoxLayout;
    Add_Button(*buttons, "Command_Take_Homing", "&Use", "Sets path, target and place of home",
               Guide_Take_Homing);
    Add_Button(*buttons, "Command_Rehearse", "&Rehearse now", "Homes the machine, now",
               Guide_Rehearse_Homing);
    buttons->addStretch(1);
    Rows().addLayout(buttons);
    Rows().addStretch(1);
  }
};

}  // namespace

Guide_Page_Widget* Make_Motion_Page(Guide_Page page) {
  if (page == Guide_Page::Motors) return new Motors_Page;
  if (page == Guide_Page::Speeds) return new Speeds_Page;
  return new Switches_Page;
}

}  // namespace norvik
