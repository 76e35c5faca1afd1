// The machine check: each hazard is found by its key, and a harmless setup gives no finding.
#include "control/safety/machine_check.h"

#include "control_fixture.h"
#include "core/corrections.h"
#include "core/setup_keys.h"
#include "parallel/port_ranges.h"

namespace norvik {
namespace {

using ::testing::HasSubstr;

class Machine_Check_Test : public Control_Test {
 protected:
  // A setup that surprises nobody.
  static void Harmless() {
    Set_Up_Machine();
    auto& setup = MachineSetup;
    setup.Axis_SPI.Fill(3000);
    setup.Axis_Max_Feed_Rate.Fill(100);
    setup.Axis_Ramping = true;
    Port_Ranges.Cards = {{Output_Port_Address, Aux_Port}};
    setup.Axis_Ramp_Rate = 2;
    setup.Parallel_Time_Constant = 12;
    setup.E_Stop_Output_Disable = true;
    setup.LimitDisableinRunMode = 1;
    setup.Parallel_MotorEnable_Option = 2;
    setup.Parallel_Input_Bit_Invert[EStop_Input] = true;
    setup.Axis_Backlash_Enable = false;
    setup.Home_Needs_Switch = true;
  }
  static std::vector<std::string> Keys() {
    std::vector<std::string> keys;
    for (const auto& finding : Machine_Check()) keys.push_back(finding.Key);
    return keys;
  }
};

struct Hazard_Row {
  const char* Key;
  const char* Words;
  std::function<void(Machine_Setup&)> Make;
};
const Hazard_Row Hazards[] = {
    {"Axis_SPI_2", "2 times the speed", [](auto& s) { s.Axis_SPI[2] = 1500; }},
    {"Axis_SPI_3", "cannot move", [](auto& s) { s.Axis_SPI[3] = 0; }},
    {"Axis_Ramp_Rate", "3 times as fast", [](auto& s) { s.Axis_SPI.Fill(9000); }},
    {"Axis_Ramp_Rate", "never changes", [](auto& s) { s.Axis_Ramp_Rate = 0; }},
    {"Axis_Max_Feed_Rate_1", "faster than 2000",
     [](auto& s) {
       s.Axis_SPI.Fill(1500);
       s.Axis_Max_Feed_Rate = {{2500, 100, 100, 100}};
       s.Parallel_Output_Bit[1] = "99";
     }},
    {"Axis_Max_Feed_Rate_2", "does not make it",
     [](auto& s) {
       s.Axis_Max_Feed_Rate = {{100, 1500, 100, 100}};
     }},
    {"Parallel_Time_Constant", "never calibrated", [](auto& s) { s.Parallel_Time_Constant = 50; }},
    {"Parallel_Time_Constant", "Set it to 1", [](auto& s) { s.Parallel_Time_Constant = 0; }},
    {"Axis_Feed_Rate_Cut", "up to 2 seconds", [](auto& s) { s.Axis_Feed_Rate_Cut = 0; }},
    {"Axis_Feed_Rate_Travel", "is 0.05 units", [](auto& s) { s.Axis_Feed_Rate_Travel = 0.05F; }},
    {"Axis_Feed_Rate_Jogging", "0.5 seconds",
     [](auto& s) {
       s.Axis_SPI.Fill(60);
       s.Axis_Ramping = false;
       s.Axis_Feed_Rate_Jogging = 1;
     }},
    {"Axis_Ramp_Start", "up to 2 seconds", [](auto& s) { s.Axis_Ramp_Start = -1; }},
    {"Axis_HomeIPM_1", "second approach",
     [](auto& s) {
       s.Validate_Home_Position = true;
       s.Axis_HomeIPM = {{20, 0}};
     }},
    {"Axis_HomeTarget_1", "does not lie behind the switch",
     [](auto& s) {
       s.Validate_Home_Position = true;
       s.Axis_HomePath[1] = "-900";
       s.Axis_HomeTarget[1] = "-800";  // the tap goes to -300
     }},
    {"UnitsofMeasurement", "0.05 millimetre",
     [](auto& s) {
       s.Validate_Home_Position = true;
       s.UnitsofMeasurement = 1;
     }},
    {"Axis_HomeTarget_4", "no number",
     [](auto& s) {
       s.Validate_Home_Position = true;
       s.Axis_HomePath[4] = "left";
       s.Axis_HomeTarget[4] = "0";
     }},
    {"Home_Needs_Switch", "false position",
     [](auto& s) {
       s.Validate_Home_Position = true;
       s.Axis_HomePath[1] = "-1";
       s.Axis_HomeTarget[1] = "0";
       s.Home_Needs_Switch = false;
     }},
    {"Axis_Polarity_2", "Use Parallel_Output_Bit_Invert_5",
     [](auto& s) { s.Axis_Polarity[2] = true; }},
    {"Axis_Backlash_Enable", "one toggle too many", [](auto& s) { s.Axis_Backlash_Enable = true; }},
    {"LimitDisableinRunMode", "not engaged", [](auto& s) { s.LimitDisableinRunMode = 0; }},
    {"LimitSwitchDisable", "not looked at", [](auto& s) { s.LimitSwitchDisable = 1; }},
    {"E_Stop_Output_Disable", "does not latch", [](auto& s) { s.E_Stop_Output_Disable = false; }},
    {"Parallel_MotorEnable_Option", "after every move",
     [](auto& s) { s.Parallel_MotorEnable_Option = 0; }},
    {"Parallel_MotorEnable_Option", "stay enabled",
     [](auto& s) { s.Parallel_MotorEnable_Option = 1; }},
    {"Parallel_Input_Bit_Invert_0", "broken wire",
     [](auto& s) { s.Parallel_Input_Bit_Invert[0] = false; }},
    {"Parallel_Input_Bit_0", "No E-stop input", [](auto& s) { s.Parallel_Input_Bit[0] = "99"; }},
    {"Parallel_Output_Bit_5", "X direction and Y direction are both on bit 1 of port 888",
     [](auto& s) { s.Parallel_Output_Bit[5] = "1"; }},
    {"Parallel_Input_Bit_2", "X switch and Y switch",
     [](auto& s) { s.Parallel_Input_Bit[2] = s.Parallel_Input_Bit[1]; }},
    {"Input_Port_3", "counts as on for ever", [](auto& s) { s.Input_Port[3] = 5; }},
    {"Output_Port_7", "never written", [](auto& s) { s.Output_Port[7] = 70000; }},
    {"Output_Port_7", "0xCF9", [](auto& s) { s.Output_Port[7] = 0xCF9; }},
    {"Parallel_IODLL", "nothing is read or written", [](auto& s) { s.Parallel_IODLL = 3; }},
};

TEST_F(Machine_Check_Test, Each_hazard_is_found_once_by_its_key) {
  Harmless();
  EXPECT_THAT(Keys(), ::testing::IsEmpty());
  for (const Hazard_Row& row : Hazards) {
    Harmless();
    row.Make(MachineSetup);
    const auto findings = Machine_Check();
    ASSERT_EQ(findings.size(), 1U) << row.Key << ": " << row.Words;
    EXPECT_EQ(findings[0].Key, row.Key);
    EXPECT_THAT(findings[0].Text, HasSubstr(row.Words));
  }
}

// With the correction on, the same setup is no hazard: homing ends without a position.
TEST_F(Machine_Check_Test, Switch_that_is_not_wired_is_named_until_homing_needs_it) {
  Harmless();
  MachineSetup.Validate_Home_Position = true;
  MachineSetup.Axis_HomePath[2] = "-1";
  MachineSetup.Axis_HomeTarget[2] = "0";
  MachineSetup.Parallel_Input_Bit[Limit_Input(2)] = "99";
  EXPECT_THAT(Keys(), ::testing::IsEmpty());
  MachineSetup.Home_Needs_Switch = false;
  EXPECT_THAT(Keys(), ::testing::ElementsAre("Parallel_Input_Bit_2", "Home_Needs_Switch"));
  MachineSetup.Parallel_Port_Type = 2;  // a board's switches are none of the port's
  EXPECT_THAT(Keys(), ::testing::Contains("Home_Needs_Switch"));
  EXPECT_THAT(Keys(), ::testing::Not(::testing::Contains("Parallel_Input_Bit_2")));
}

// A stated hazard that a correction answers carries it, and is none with the correction on.
TEST_F(Machine_Check_Test, Hazards_with_a_correction_carry_it_until_it_is_on) {
  int answered = 0;
  for (const Hazard_Row& row : Hazards) {
    Harmless();
    row.Make(MachineSetup);
    const auto findings = Machine_Check();
    ASSERT_EQ(findings.size(), 1U);
    if (findings[0].Correction.empty()) continue;
    ++answered;
    const Setup_Row* correction = Find_Correction(findings[0].Correction);
    ASSERT_NE(correction, nullptr) << findings[0].Correction;
    Change_Setup_Key({correction, 0}, "True");
    EXPECT_THAT(Keys(), ::testing::IsEmpty()) << correction->Key;
  }
  EXPECT_EQ(answered, 5);
}

TEST_F(Machine_Check_Test, Unwired_axes_and_serial_boards_are_not_blamed) {
  Harmless();
  MachineSetup.Axis_SPI[4] = 100;
  MachineSetup.Parallel_Output_Bit[Step_Slot(4)] = "99";
  EXPECT_THAT(Keys(), ::testing::IsEmpty());
  MachineSetup.Parallel_Port_Type = 2;
  MachineSetup.Parallel_IODLL = 3;
  MachineSetup.Axis_Polarity.Fill(true);
  EXPECT_THAT(Keys(),
              ::testing::Each(::testing::Not(::testing::AnyOf(
                  HasSubstr("Parallel_I"), HasSubstr("Parallel_O"), HasSubstr("Axis_Polarity")))));
}

TEST_F(Machine_Check_Test, A_board_names_what_becomes_of_feeds_and_travels) {
  Harmless();
  MachineSetup.Parallel_Port_Type = 3;
  MachineSetup.Axis_SPI[3] = 6000;
  MachineSetup.Axis_Depth[2] = 3000;  // 9,000,000 steps
  MachineSetup.Dravon_Enc_Enable[1] = 1;
  MachineSetup.Dravon_Enc_CFactor[1] = 1000;
  MachineSetup.Dravon_PWM_Inv = true;
  const auto words = [](std::string_view key) {
    std::string all;
    for (const auto& finding : Machine_Check())
      if (finding.Key == key) all += finding.Text;
    return all;
  };
  EXPECT_THAT(words("Parallel_Port_Type"), HasSubstr("1.41 times as fast"));
  EXPECT_THAT(words("Axis_SPI_3"), HasSubstr("runs at 50 % of its feed"));
  EXPECT_THAT(words("Axis_Depth_2"), HasSubstr("9000000 steps"));
  EXPECT_THAT(words("Dravon_SASF"), HasSubstr("no slower than 77 Hz"));
  EXPECT_THAT(words("Dravon_PWM_Inv"), HasSubstr("at its fastest"));
  EXPECT_THAT(words("Axis_Feed_Rate_Cut"), HasSubstr("faster than they can be sent"));
  EXPECT_THAT(words("Dravon_Enc_CFactor1"), HasSubstr("one count would stand for 1000 steps"));
}

}  // namespace
}  // namespace norvik
