// The bar above the editor: when it shows itself, what it says, and what its buttons do.
#include "app/adapt_program.h"

#include "app/adapt_bar.h"
#include "app/app_fixture.h"
#include "app/gcode_file.h"
#include "app/gcode_form.h"
#include "app/main_form.h"
#include "core/setup.h"

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Adapt_Program_Test : App_Test {
  Adapt_Program_Test() {
    Restore_Factory_Setup();
    MachineSetup.Axis_Format = "0.000";
    MachineSetup.Plot_Auto_Loading = 0;
    Gcode_Host.Show_Changed_Program = [this] { ++Changes; };
    Gcode_Host.GCode_HighlightWords = [this](std::int32_t line) { Shown = line; };
  }
  void Open(const std::string& text) { ASSERT_TRUE(Open_GCode(Write_File("part.gc", text))); }
  static const std::string& Bar() { return Gcode_Form.Label_Adapt.Caption; }
  static std::string Text() { return GCode_Program.Text->Whole(); }

  int Changes = 0;
  std::int32_t Shown = 0;
};

TEST_F(Adapt_Program_Test, The_Bar_Counts_What_Would_Be_Lost_And_Names_The_Units) {
  Open("G90\n\nG21\nG0X1Y2\nG1X3Y4F100\nM5\n");
  EXPECT_THAT(Bar(), HasSubstr("2 of 5 lines would be lost"));
  EXPECT_THAT(Bar(), HasSubstr("units are mm"));
  Command_Adapt_Show_Click();
  EXPECT_EQ(Shown, 3) << "the line of the text, empty ones counted";
  Open("G0 X1 Y2\nG1 X3 F10\n");
  EXPECT_THAT(Bar(), IsEmpty());
}

TEST_F(Adapt_Program_Test, Adapt_Is_One_Change_And_Keeps_The_File) {
  Open("g0x1y2\ng1x3f10\n");
  const std::string path = Main_Form.Program_File;
  Command_Adapt_Click();
  EXPECT_EQ(Text(), "G0 X1.000 Y2.000\r\nG1 X3.000 F10\r\n");
  EXPECT_EQ(Changes, 1);
  EXPECT_TRUE(GCode_Program.Unsaved);
  EXPECT_THAT(Main_Form.Program_File, IsEmpty()) << "Save asks for a name";
  EXPECT_EQ(Read_Whole_File(path), "g0x1y2\ng1x3f10\n");
  EXPECT_THAT(Bar(), IsEmpty());
  EXPECT_THAT(scripted.Boxes, IsEmpty());
}

TEST_F(Adapt_Program_Test, What_Is_Left_To_The_Operator_Is_Told) {
  Open("g0x1y2\ng28z0\n");
  Command_Adapt_Click();
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("line 2: where G28 goes to is not known"));
  EXPECT_THAT(Text(), HasSubstr("M0 (not adapted"));
}

TEST_F(Adapt_Program_Test, Leave_Keeps_The_Bar_Away_Until_Another_Program_Comes) {
  Open("g0x1y2\n");
  Command_Adapt_Leave_Click();
  EXPECT_THAT(Bar(), IsEmpty());
  EXPECT_EQ(Text(), "g0x1y2\n");
  Open("g0x3y4\n");
  EXPECT_FALSE(Bar().empty());
}

TEST_F(Adapt_Program_Test, With_The_Setting_An_Opened_Program_Is_Adapted_Where_It_Needs_It) {
  MachineSetup.Adapt_Always = true;
  Open("g0x1y2\n");
  EXPECT_EQ(Text(), "G0 X1.000 Y2.000\r\n");
  Open("G0 X1 Y2\n");
  EXPECT_EQ(Text(), "G0 X1 Y2\n") << "read as meant already";
}

TEST_F(Adapt_Program_Test, Nothing_Changes_While_The_Machine_Moves) {
  Open("g0x1y2\n");
  Machine.CNCMode = CNC_Running;
  Command_Adapt_Click();
  EXPECT_EQ(Text(), "g0x1y2\n");
}

}  // namespace
}  // namespace norvik
