// The guide's rules without its window: scales, trials, layouts, starting points, and the pages on
// a scripted machine.
#include "app/guide/guide.h"

#include "app/guide/motor_scale.h"
#include "app/guide/pin_layouts.h"
#include "app/guide/starting_points.h"
#include "app_fixture.h"
#include "control/safety/machine_check.h"
#include "core/setup_keys.h"
#include "parallel/port_setup.h"
#include "support/fault_of.h"

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Guide_Test : App_Test {
  Guide_Test() {
    Write_File("work/old.ini", "[General]\nINI_Save_Test=123\n");
    Write_File("config/Norvik.Ini", "[machine]\nNAME=" + Folder.File("work/old.ini") + "\n");
    Load_Main();
    Open_Guide();
  }

  void Make(const std::string& name, std::string_view point) {
    Guide_Form.Text_Name = name;
    const auto points = Starting_Points();
    for (std::size_t i = 0; i < points.size(); ++i)
      if (points[i].Name == point) Guide_Form.Combo_Starting_Point = static_cast<int>(i);
    Guide_Next();
  }
};

TEST(Motor_Scale, Comes_From_The_Parts_And_From_What_Was_Measured) {
  EXPECT_DOUBLE_EQ(Steps_Per_Unit({200, 8, 1, 5}), 320);     // 5 mm a turn
  EXPECT_DOUBLE_EQ(Steps_Per_Unit({200, 2, 1, 0.1}), 4000);  // ten turns an inch
  EXPECT_DOUBLE_EQ(Steps_Per_Unit({200, 16, 3, Belt_Travel(20, 2)}), 240);
  EXPECT_EQ(Fault_Of([] { Steps_Per_Unit({200, 8, 1, 0}); }), Fault_Number::Invalid_Call);
  EXPECT_DOUBLE_EQ(Corrected_Scale(4000, 2, 1.983), 4000 * 2 / 1.983);
  EXPECT_EQ(Fault_Of([] { Corrected_Scale(4000, 2, 1); }), Fault_Number::Invalid_Call);
  EXPECT_EQ(Fault_Of([] { Corrected_Scale(4000, 2, -2); }), Fault_Number::Invalid_Call);
}

TEST(Speed_Trial, Keeps_Two_Thirds_Of_The_Last_Good_Speed) {
  Speed_Trial trial = Begin_Speed_Trial(1, 10);
  EXPECT_FALSE(Kept_Speed(trial));
  Went_Well(trial);
  Went_Well(trial);  // 12
  Went_Wrong(trial);
  EXPECT_TRUE(trial.Over);
  EXPECT_DOUBLE_EQ(*Kept_Speed(trial), 8);
  trial = Begin_Speed_Trial(1, 1900);
  Went_Well(trial);
  Went_Well(trial);  // nothing is timed faster than 2000
  EXPECT_TRUE(trial.Over);
}

TEST_F(Guide_Test, A_machine_is_made_beside_the_old_one_which_stays_as_it_is) {
  const std::string old = Read_Whole_File(Folder.File("work/old.ini"));
  for (const char* bad : {"", "a/b", "..", " x", "x\ny", "a:b"}) {
    Guide_Form.Text_Name = bad;
    Guide_Next();
    EXPECT_EQ(Guide_Form.Page, Guide_Page::Name) << bad;
    EXPECT_THAT(Guide_Form.Label_Hint, HasSubstr("Type a name")) << bad;
  }
  Guide_Form.Text_Name = "old";
  Guide_Next();
  EXPECT_THAT(Guide_Form.Label_Hint, HasSubstr("There is a machine of this name"));
  Guide_Go(Guide_Page::Motors);
  EXPECT_EQ(Guide_Form.Page, Guide_Page::Name);

  Make("My mill", "router_mm");
  EXPECT_EQ(Guide_Form.Page, Guide_Page::Drive) << Guide_Form.Label_Hint;
  EXPECT_EQ(Application.MachineFile, Folder.File("work/My mill.ini"));
  EXPECT_EQ(MachineSetup.UnitsofMeasurement, 1);
  // Positions are kept when a machine is let go; nothing else of it changes.
  EXPECT_THAT(Read_Whole_File(Folder.File("work/old.ini")),
              testing::AllOf(testing::StartsWith(old), Not(HasSubstr("Units"))));
}

TEST_F(Guide_Test, Every_starting_point_loads_without_a_lost_value) {
  for (const Starting_Point& point : Starting_Points()) {
    Open_Guide();
    Make("m_" + std::string(point.Name), point.Name);
    ASSERT_TRUE(Guide_Form.Has_Machine) << point.Name << ": " << Guide_Form.Label_Hint;
    EXPECT_THAT(Setup_Store.Findings, IsEmpty()) << point.Name;
  }
}

TEST_F(Guide_Test, What_a_page_takes_is_in_the_file_and_what_it_refuses_is_kept_as_typed) {
  Make("mill", "empty_inch");
  Guide_Go(Guide_Page::Motors);
  auto& fields = Guide_Form.Axes[1];
  for (const char* bad : {"", "abc", "-5", "0", "nan"}) {
    fields.Text_Turn_Travel = bad;
    Guide_Form.Label_Hint.clear();
    Guide_Take_Steps();
    EXPECT_NE(Guide_Form.Label_Hint, "") << bad;
    EXPECT_EQ(fields.Text_Turn_Travel, bad);
  }
  fields.Text_Turn_Travel = "0.1";
  fields.Text_Microsteps = "2";
  Guide_Take_Steps();
  EXPECT_EQ(Guide_Form.Label_Hint, "");
  EXPECT_THAT(Read_Whole_File(Application.MachineFile), HasSubstr("Axis_SPI_1=4000"));
  fields.Text_Measured = "1.983";
  Guide_Take_Measured();
  EXPECT_FLOAT_EQ(MachineSetup.Axis_SPI[1], 4034.2915F);
  fields.Text_Travel = "24";
  Guide_Take_Travel();
  EXPECT_FLOAT_EQ(MachineSetup.Axis_Depth[1], 24);
}

TEST_F(Guide_Test, A_layout_sets_every_pin_and_direction_can_be_turned_around) {
  Make("mill", "empty_inch");
  Guide_Go(Guide_Page::Wiring);
  Guide_Take_Layout(1);
  EXPECT_EQ(Port_Setup.Output[Step_Slot(1)].Pin, "3");
  EXPECT_EQ(Output_Bit(Direction_Slot(1)), 0);
  EXPECT_EQ(Guide_Input_Words(Limit_Input(4)), "not wired");
  const bool before = MachineSetup.Parallel_Output_Bit_Invert[Direction_Slot(2)];
  Guide_Form.Combo_Axis = 2;
  Guide_Wrong_Way();
  EXPECT_NE(MachineSetup.Parallel_Output_Bit_Invert[Direction_Slot(2)], before);
}

TEST_F(Guide_Test, A_board_has_no_pages_of_pins_and_timing) {
  Make("mill", "router_inch");
  EXPECT_EQ(Guide_Pages_Of_Setup().size(), static_cast<std::size_t>(Guide_Pages));
  Guide_Choose_Drive(3);
  EXPECT_THAT(Guide_Pages_Of_Setup(), Not(testing::Contains(Guide_Page::Wiring)));
  EXPECT_THAT(Guide_Drive_Words(), HasSubstr("no serial port"));
}

TEST_F(Guide_Test, Home_lies_at_the_end_where_the_switch_is) {
  Make("mill", "router_inch");
  Guide_Go(Guide_Page::Switches);
  Guide_Form.Axes[1].Combo_Home_End = 1;
  Guide_Form.Axes[2].Combo_Home_End = 2;
  Guide_Form.Axes[3].Combo_Home_End = 2;
  Guide_Take_Homing();
  EXPECT_EQ(MachineSetup.Axis_HomePath[1], "-25.2");
  EXPECT_EQ(MachineSetup.Axis_HomeTarget[1], "0");
  EXPECT_EQ(MachineSetup.Axis_HomeTarget[2], "18");
  EXPECT_EQ(MachineSetup.Axis_HomeTarget[3], "0");
  EXPECT_EQ(MachineSetup.Axis_HomePath[4], "");
  EXPECT_TRUE(MachineSetup.Validate_Home_Position);
}

// What the recommended corrections leave, an operator has to know of this machine.
TEST_F(Guide_Test, Starting_points_are_safe_as_they_ship) {
  for (const Starting_Point& point : Starting_Points()) {
    if (point.Name.starts_with("empty")) continue;
    Open_Guide();
    Make("s_" + std::string(point.Name), point.Name);
    Guide_Go(Guide_Page::Corrections);
    Guide_Take_Corrections(true);
    for (const Machine_Finding& finding : Machine_Check()) {
      EXPECT_THAT(finding.Key, testing::Not(testing::AnyOf(
                                   HasSubstr("Parallel_Input"), HasSubstr("Parallel_Output"),
                                   HasSubstr("E_Stop"), HasSubstr("Limit"), HasSubstr("Ramp"),
                                   HasSubstr("Axis_Max"), HasSubstr("Axis_SPI_1"))))
          << point.Name << ": " << finding.Text;
    }
  }
}

TEST_F(Guide_Test, The_end_wants_an_answer_to_every_finding) {
  Make("mill", "empty_inch");
  Guide_Go(Guide_Page::Finish);
  ASSERT_FALSE(Guide_Form.List_Findings.empty());
  EXPECT_FALSE(Guide_Finish());
  for (std::size_t i = 0; i < Guide_Form.List_Findings.size(); ++i) Guide_Accept_Finding(i, true);
  EXPECT_TRUE(Guide_Finish()) << Guide_Form.Label_Hint;
}

}  // namespace
}  // namespace norvik
