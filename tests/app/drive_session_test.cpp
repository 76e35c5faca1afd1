// Taking a machine in hand and letting it go: at start, with another setup, at the end.
#include "app/drive_session.h"

#include "app/app_fixture.h"
#include "app/machine_menu.h"
#include "app/shutdown.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "core/fault.h"

namespace norvik {
namespace {

using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Box = Scripted_Platform::Shown_Box;

// X: step on bit 0 of 888, inverted, enable on bit 1; spindle on bit 3, inverted. X switch on bit 4
// of 889, active low.
constexpr const char* Mill =
    "[General]\nINI_Save_Test=123\nCheck_FeedRate_Autotune=1\nParallel_Time_Constant=7\n"
    "[Axis Position]\nAxis_Cur_Pos_1=1.5\n[Parallel Setup]\nParallel_IODLL=1\n"
    "Parallel_Output_Bit_1=0\nParallel_Output_Bit_Invert_1=True\nParallel_Output_Bit_3=1\n"
    "Parallel_Output_Bit_13=3\nParallel_Output_Bit_Invert_13=True\nParallel_Input_Bit_1=4\n";
// Spindle on bit 5 of the same port, no switch.
constexpr const char* Router =
    "[General]\nINI_Save_Test=123\n[Parallel Setup]\nParallel_IODLL=1\n"
    "Parallel_Output_Bit_13=5\n";

struct Drive_Session_Test : App_Test {
  Drive_Session_Test() {
    scripted.Ports = {{888, 0x3A}, {889, 0xFF}};
    Replace_File(Folder.File("work/mill.ini"), Mill);
    Replace_File(Folder.File("work/router.ini"), Router);
    Write_File("config/Norvik.Ini", "[machine]\nNAME=" + Folder.File("work/mill.ini") + "\n");
  }
  void Close_Switch(bool closed) { scripted.Ports[889] = closed ? 0xEF : 0xFF; }
  testing::Matcher<std::vector<Box>> Caution() {
    return Contains(Field(&Box::Title, std::string(control_text::Home_Safety_Title)));
  }
  void Load_Setup(const std::string& name) {
    scripted.Open_Answers.push_back(Folder.File("work/" + name));
    Menu_Machine_Load_Machine_Setup();
  }
};

TEST_F(Drive_Session_Test, A_Start_Brings_Pins_And_Settings_To_The_Machine) {
  Load_Main();
  EXPECT_EQ(scripted.Ports[888], 0x39);  // step high, motor off, spindle high: off
  EXPECT_TRUE(Timing.FeedRate_Autotune);
  Activate_Main();
  EXPECT_THAT(scripted.Boxes, IsEmpty());
  EXPECT_EQ(ReadSetup("Axis Position", "Axis_Cur_Pos_1"), "1.5");
}

// The flag stands before the first window can move anything; the box waits for the main window.
TEST_F(Drive_Session_Test, A_Closed_Switch_Is_Told_Once_The_Windows_Are_There) {
  Close_Switch(true);
  std::string seen;
  Main_Host.Place_Main = [&](const Window_Place&) { seen = Pins.Home_Safety_Off ? "set" : "not"; };
  Load_Main();
  EXPECT_EQ(seen, "set");
  EXPECT_THAT(scripted.Boxes, IsEmpty());
  Activate_Main();
  EXPECT_THAT(scripted.Boxes, Caution());
  EXPECT_TRUE(Pins.Home_Safety_Off);
  // No panel is open; the session itself sees that every switch has been off.
  Close_Switch(false);
  scripted.Run_For(0.3);
  EXPECT_FALSE(Pins.Home_Safety_Off);
}

TEST_F(Drive_Session_Test, A_Port_In_Other_Hands_Ends_The_Start_And_Touches_Nothing) {
  const std::string before = Read_Whole_File(Folder.File("work/mill.ini"));
  Main_Host.Open_Port = [] { throw Fault(Fault_Number::Permission_Denied, "Somebody else"); };
  Load_Main();
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Text, "Somebody else");
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_EQ(scripted.Running_Timers(), 0);
  EXPECT_EQ(scripted.Ports[888], 0x3A);
  EXPECT_THAT(Trace, Not(Contains("place Main")));
  EXPECT_EQ(Read_Whole_File(Folder.File("work/mill.ini")), before);
}

// A request to terminate arrives while a box of the load is open.
TEST_F(Drive_Session_Test, An_End_In_A_Box_Of_The_Start_Is_The_End) {
  Replace_File(Folder.File("work/mill.ini"), "[Parallel Setup]\nParallel_Output_Bit_13=3\n");
  Platform.Message_Box = [](const std::string&, const std::string&, Box_Buttons) {
    bye();
    return Box_Answer::Ok;
  };
  Load_Main();
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_EQ(scripted.Ports[888], 0x3A);
  EXPECT_EQ(scripted.Running_Timers(), 0);
}

TEST_F(Drive_Session_Test, Another_Setup_Forgets_The_Machine_Before) {
  Load_Main();
  Machine.Position[1] = 2.25;
  scripted.Ports[888] = 0x32;  // motor and spindle on
  Step_Engine.Last_Dir.Fill(true);
  Step_Engine.Safe_Dir.Fill(true);
  Step_Engine.Take_Up_Left[2] = 5;
  Step_Engine.Axis_Enabled[1] = false;
  Pins.Motor_Enable_Timer[1] = 30;
  Pins.Limit_State[1] = true;
  Controller.Return_Pos[1] = 9;
  Controller.Estimated_Process_Time = 7;
  CNC_Controls.Command_AutoRetool[1].Enabled = true;
  Load_Setup("router.ini");
  EXPECT_EQ(scripted.Ports[888], 0x19);  // off by the old map; bit 5, the new spindle, off as well
  EXPECT_FALSE(Step_Engine.Last_Dir[1] || Step_Engine.Safe_Dir[1] || Pins.Limit_State[1]);
  EXPECT_FALSE(Step_Engine.Take_Up_Left[2]);
  EXPECT_TRUE(Step_Engine.Axis_Enabled[1]);
  EXPECT_EQ(Pins.Motor_Enable_Timer[1], 0);
  EXPECT_FALSE(Timing.FeedRate_Autotune);
  EXPECT_EQ(Controller.Return_Pos[1], 0);
  EXPECT_FALSE(Controller.Estimated_Process_Time);
  EXPECT_FALSE(CNC_Controls.Command_AutoRetool[1].Enabled);
  EXPECT_EQ(Machine.Position[1], 2.25);
  EXPECT_THAT(Read_Whole_File(Folder.File("work/mill.ini")), HasSubstr("Axis_Cur_Pos_1=2.25"));
  EXPECT_THAT(scripted.Boxes, IsEmpty());

  Close_Switch(true);  // the router has none on that pin, the mill has
  Load_Setup("router.ini");
  EXPECT_FALSE(Pins.Home_Safety_Off);
  Load_Setup("mill.ini");
  EXPECT_TRUE(Pins.Home_Safety_Off);
  EXPECT_THAT(scripted.Boxes, Caution());

  scripted.Answer_Box(Box_Answer::Yes);  // nothing is wired after a reset
  Command_Parameter_Reset_Click();
  EXPECT_FALSE(Pins.Home_Safety_Off);
  EXPECT_EQ(scripted.Ports[888] & 0x09, 0x09);
}

TEST_F(Drive_Session_Test, The_End_Switches_Off_And_Saves_Once) {
  End_Drive_Session();  // nothing in hand
  EXPECT_EQ(scripted.Ports[888], 0x3A);
  Load_Main();
  scripted.Ports[888] = 0x32;
  Machine.Position[1] = -3;
  End_Drive_Session();
  EXPECT_EQ(scripted.Ports[888], 0x39);
  EXPECT_EQ(ReadSetup("Axis Position", "Axis_Cur_Pos_1"), "-3");
  scripted.Ports[888] = 0x32;
  End_Drive_Session();
  EXPECT_EQ(scripted.Ports[888], 0x32);
}

// The operator did not close the windows; they come back all the same.
TEST_F(Drive_Session_Test, Every_End_Keeps_The_Layout) {
  Load_Main();
  Main_Host.Show_Form(Form_Id::GCode);
  bye();
  EXPECT_EQ(ReadSetup("Form Position", "GCode_Open"), "True");
}

}  // namespace
}  // namespace norvik
