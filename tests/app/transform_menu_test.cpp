// Transforms and exports as the window asks for them.
#include "app/transform_menu.h"

#include "app/app_fixture.h"
#include "app/gcode_file.h"
#include "compiler/compile/compile.h"
#include "core/operation.h"
#include "plot/nist_plot.h"

#include <filesystem>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Transform_Menu_Test : App_Test {
  Transform_Menu_Test() {
    Restore_Factory_Setup();
    MachineSetup.Axis_Format = "000.000";
    MachineSetup.Plot_Auto_Loading = 0;
    Gcode_Host.Show_Changed_Program = [this] { ++Changes; };
    Gcode_Host.Typed_Text = [this] { return Typed; };
  }
  void Open(const std::string& text) {
    ASSERT_TRUE(Open_GCode(Write_File("part.gc", text)));
    Changes = 0;
    Messages = {};
  }
  static std::string Text() { return GCode_Program.Text->Whole(); }

  int Changes = 0;
  std::string Typed;
};

TEST_F(Transform_Menu_Test, ScaleAsksStoresAndChangesTheTextOnce) {
  Open("X1 Y1\n");
  scripted.Input_Answers = {"2,5", "0"};
  Menu_Functions_Scale();
  ASSERT_EQ(scripted.Inputs.size(), 2U);
  EXPECT_EQ(scripted.Inputs[0].Prompt, "Enter X Scale ");
  EXPECT_EQ(scripted.Inputs[1].Prompt, "Enter Y Scale ");
  EXPECT_EQ(Text(), "X002.500 Y001.000 \r\n");
  EXPECT_EQ(Changes, 1);
  EXPECT_TRUE(GCode_Program.Unsaved);
  EXPECT_EQ(Messages.Panel[1], "GCode has changed and needs to be compiled.");
  EXPECT_EQ(ReadSetup("G_CODE", "GC_ScaleX"), "2.5");
  EXPECT_EQ(ReadSetup("G_CODE", "GC_ScaleY"), "1") << "0 counts as 1";
  EXPECT_THAT(scripted.Boxes, IsEmpty());

  for (const std::optional<std::string>& answer :
       {std::optional<std::string>(), std::optional<std::string>(""),
        std::optional<std::string>("two")}) {
    scripted.Input_Answers = {"3", answer};
    Menu_Functions_Scale();
    EXPECT_EQ(Text(), "X002.500 Y001.000 \r\n");
    EXPECT_EQ(ReadSetup("G_CODE", "GC_ScaleX"), "2.5");
  }
}

TEST_F(Transform_Menu_Test, OffsetStoresItsValuesAndMayAppendACopy) {
  Open("X1\n");
  MachineSetup.Offset_Duplicate = true;
  scripted.Input_Answers = {"1", "2", "3"};
  Menu_Functions_Offset();
  EXPECT_EQ(Text(), "X1\r\nX002.000 \r\n");
  EXPECT_EQ(ReadSetup("General", "Default_Offset_3"), "3");
  Open("X1\nG91\n");
  scripted.Input_Answers = {"1", "2", "3"};
  Menu_Functions_Offset();
  EXPECT_EQ(scripted.Boxes.back().Text,
            "This file is in incremental mode.  Add offset line in gcode");
  EXPECT_EQ(Text(), "X1\nG91\n");
  EXPECT_EQ(Changes, 0);
}

TEST_F(Transform_Menu_Test, TheOperatorDecidesAboutWordsThatGo) {
  Open("X1 Q2\n");
  scripted.Answer_Box(Box_Answer::Cancel);
  Command_Convert_Click();
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Buttons, Box_Buttons::Continue_Cancel);
  EXPECT_THAT(scripted.Boxes[0].Text,
              HasSubstr("This drops 1 word of 1 line: Q (1), first at line 1."));
  EXPECT_EQ(Text(), "X1 Q2\n");
  EXPECT_EQ(Changes, 0);
  scripted.Answer_Box(Box_Answer::Ok);
  Command_Convert_Click();
  EXPECT_EQ(Text(), "X025.400 \r\n");
  Gcode_Form.Combo_Convert.ListIndex = 1;
  Command_Convert_Click();
  EXPECT_EQ(Text(), "X001.000 \r\n");
}

TEST_F(Transform_Menu_Test, TypedTextIsTakenAndTypingMeanwhileWins) {
  Open("X1\n");
  Typed = "X2\n";
  Text_GCode_Change();
  Command_Add_Seq_Click();
  EXPECT_EQ(Text(), "N001 X2\r\n");
  Command_Rem_Seq_Click();
  EXPECT_EQ(Text(), "X2\r\n");
  Open("X1 Q1\n");
  Platform.Message_Box = [this](const std::string&, const std::string&, Box_Buttons) {
    Typed = "X7\n";
    Text_GCode_Change();
    return Box_Answer::Ok;
  };
  Command_Convert_Click();
  EXPECT_EQ(Changes, 0);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("The text was changed meanwhile"));
}

TEST_F(Transform_Menu_Test, EscLeavesTheTextAndAMachineThatMovesRefuses) {
  std::string program;
  for (int i = 0; i < 5000; ++i) program += "X1\n";
  Open(program);
  scripted.On_Yield = [] { Application.EscFlag = true; };
  Command_DecimalFormat_Click();
  EXPECT_EQ(Text(), program);
  EXPECT_EQ(Messages.Panel[1], "Ended by ESC: the text is as it was.");
  scripted.On_Yield = {};
  const Operation_Scope run(Operation::Run);
  Command_DecimalFormat_Click();
  Menu_Functions_Scale();
  EXPECT_EQ(Text(), program);
  EXPECT_THAT(scripted.Inputs, IsEmpty());
}

TEST_F(Transform_Menu_Test, IncrementalIsOpenedAnewAndTheOldPathStaysFaint) {
  MachineSetup.Plot_Auto_Loading = 1;
  Open("G90\nG1 X1 Y1\nG1 X2 Y1\nT1\n");
  const std::size_t lines = Plot.PlotLines.Count();
  ASSERT_GT(lines, 0U);
  EXPECT_EQ(Plot.Path_Before.Count(), 0U);
  scripted.Answer_Box(Box_Answer::Ok);
  Menu_Functions_Conv_Incremental();
  EXPECT_EQ(GCodeLineCount(), 3) << "the line that lost its T is gone";
  EXPECT_TRUE(Compile_Status.CompileDone);
  EXPECT_EQ(Plot.Path_Before.Count(), lines);
  EXPECT_FALSE(Plot.Path_Before_Waits);
  GCode_Compile_All();
  EXPECT_EQ(Plot.Path_Before.Count(), 0U) << "the next compile forgets it";
}

TEST_F(Transform_Menu_Test, AnotherProgramIsNotComparedWithTheOldOne) {
  Open("G1 X1 Y1\n");
  GCode_Compile_All();
  Command_Add_Seq_Click();
  EXPECT_TRUE(Plot.Path_Before_Waits);
  Open("G1 X5\n");
  GCode_Compile_All();
  EXPECT_EQ(Plot.Path_Before.Count(), 0U);
}

TEST_F(Transform_Menu_Test, SortReadsAndSaysThatItChangesNothing) {
  Open("X2\nX1\n");
  Menu_Functions_OptimizeToolPath();
  EXPECT_EQ(Text(), "X2\nX1\n");
  EXPECT_EQ(Changes, 0);
  EXPECT_EQ(Messages.Panel[1], "The file sort orders nothing: the program is as it was.");
}

TEST_F(Transform_Menu_Test, ExportsCompileFirstAndTellWhatIsMissing) {
  Open("G0 X0 Y0 Z0\nM3\nG1 X1 F10\nG1 X2\n");
  const std::string path = Folder.File("part.dxf");
  scripted.Save_Answers = {Folder.File("part"), path};
  Menu_File_Export_DXF();
  EXPECT_EQ(scripted.Save_Dialogs.back().Default_Extension, "dxf");
  ASSERT_TRUE(FileExists(path)) << "the ending is added";
  EXPECT_THAT(Messages.Panel[1], HasSubstr("The drawing lacks 1 move that cut, from line 4 on"));
  EXPECT_EQ(Messages.MessageLog[0], Messages.Panel[1]);
  EXPECT_EQ(Last_File(File_Kind::DXF_Out).Name, "part.dxf");

  MachineSetup.Export_All_Records = true;
  Typed = "G0 X0 Y0 Z0\nG1 X7 F10\n";
  Text_GCode_Change();
  Menu_File_Export_DXF();
  EXPECT_THAT(Read_Whole_File(path), HasSubstr(" 11 \r\n7\r\n"));
  EXPECT_EQ(Messages.Panel[1], "Exported: " + path);

  scripted.Save_Answers = {Folder.File("none/x.plt")};
  Menu_File_Export_HPGL();
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("The drawing is not written."));
}

}  // namespace
}  // namespace norvik
