// Opening, saving and stepping through a program.
#include "app/app_fixture.h"
#include "app/gcode_file.h"
#include "app/openers.h"
#include "app/program_findings.h"
#include "app/timers.h"
#include "compiler/state/compile_host.h"
#include "compiler/tables/program_wire.h"
#include "control/run/cnc_controller.h"
#include "control/run/estimate.h"
#include "control/run/goto.h"
#include "control/state/cnc_controls_form.h"
#include "control/state/control_texts.h"
#include "core/fault.h"
#include "core/operation.h"
#include "plot/plot_host.h"
#include "plot/projection.h"
#include "plot/view.h"

#include <filesystem>
#include <random>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct GCode_Test : App_Test {
  GCode_Test() {
    Restore_Factory_Setup();
    Gcode_Host.Show_Program = [this] { ++Shown; };
    Gcode_Host.Typed_Text = [this] { return Typed; };
  }
  void Type(const std::string& text) {
    Typed = text;
    Text_GCode_Change();
  }

  int Shown = 0;
  std::string Typed;
};

TEST_F(GCode_Test, Open_Takes_Lines_And_Compiles) {
  const std::string path = Write_File("part.gc", "G90\r\n\r\nG1 X1\nG1 X2\r");
  EXPECT_TRUE(Open_GCode(path));
  EXPECT_EQ(GCodeLineCount(), 3);
  EXPECT_EQ(Machine.EndingStep, 3);
  EXPECT_EQ(Shown, 1);
  EXPECT_EQ(Gcode_Form.Label_GC_NOS.Caption, "3");
  EXPECT_TRUE(Compile_Status.CompileDone);
  EXPECT_EQ(Machine.StartingStep, 0);  // as a compile leaves it
  MachineSetup.Plot_Auto_Loading = 0;
  Compile_Status = {};
  EXPECT_TRUE(Open_GCode(path));
  EXPECT_FALSE(Compile_Status.CompileDone);
  EXPECT_EQ(Machine.StartingStep, 1);
  EXPECT_EQ(Compile_Status.CurrentStep, 1);
  EXPECT_EQ(Gcode_Form.Label_CGStep.Caption, "G90");
}

TEST_F(GCode_Test, Open_Is_Refused_While_The_Machine_Runs) {
  const std::string path = Write_File("part.gc", "G1 X1\n");
  Machine.CNCMode = CNC_Running;
  EXPECT_FALSE(Open_GCode(path));
  LoadRecentFile(path);
  LoadRecentFile(Folder.File("none.gc"));
  Menu_File_Open();
  EXPECT_EQ(Messages.Panel[1], "Can't open file while CNC running");
  EXPECT_EQ(Messages.Status_Timeout[1], 5);
  EXPECT_EQ(scripted.Beeps, 4);
  EXPECT_THAT(scripted.Boxes, testing::IsEmpty());  // a box would hold the move
  Print_Data();
  EXPECT_EQ(Messages.Panel[1], "Can't print while CNC running");
  EXPECT_THAT(scripted.Prints, testing::IsEmpty());
  EXPECT_EQ(GCodeLineCount(), 0);
  EXPECT_EQ(Recent.RecentFiles[1], "");
  EXPECT_EQ(Main_Form.Caption, "Norvik 4");
}

TEST_F(GCode_Test, Temporary_File_Goes_Once_It_Is_Loaded) {
  std::filesystem::create_directory(Folder.File("any"));
  const std::string path = Write_File("any/temp_norvik999.gc", "G1 X1\n");
  EXPECT_TRUE(Open_GCode(path));
  EXPECT_FALSE(FileExists(path));
  EXPECT_EQ(GCodeLineCount(), 1);
  EXPECT_FALSE(Open_GCode(path));  // gone: a beep and nothing else
  EXPECT_FALSE(Open_GCode(Folder.Path));
  EXPECT_EQ(scripted.Beeps, 2);
  EXPECT_EQ(GCodeLineCount(), 1);
}

TEST_F(GCode_Test, Any_Bytes_Are_A_Program) {
  std::string bytes;
  for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i * 7 % 256);
  EXPECT_TRUE(Open_GCode(Write_File("garbage.gc", bytes)));
  EXPECT_TRUE(Open_GCode(Write_File("empty.gc", "")));
  EXPECT_EQ(GCodeLineCount(), 0);
}

TEST_F(GCode_Test, Save_Writes_The_Lines_And_Yields) {
  std::string text = "G90\n\n";
  for (int i = 0; i < 1500; ++i) text += "G1 X1\n";
  Type(text);
  const std::string path = Folder.File("out.gc");
  Write_File("out.gc", "old");
  scripted.Yields = 0;
  EXPECT_TRUE(Save_GCode(path));
  EXPECT_EQ(scripted.Yields, 3);
  EXPECT_THAT(Read_Whole_File(path), testing::StartsWith("G90\r\nG1 X1\r\n"));
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_FALSE(GCode_Program.Typed_Waits);
  EXPECT_FALSE(Save_GCode(Folder.File("no/such/folder.gc")));
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("The program is not saved."));
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile),
              HasSubstr("GCode File Load Error # Cannot write"));
  EXPECT_EQ(GCodeLineCount(), 1501);
}

TEST_F(GCode_Test, File_Menu) {
  const std::string path = Write_File("part.ngc", "G1 X1\n");
  scripted.Open_Answers.push_back(path);
  Menu_File_Open();
  EXPECT_EQ(scripted.Open_Dialogs[0].Filter, "All Files (*.*)|*.*|G Code Files (*.gc)|*.gc");
  EXPECT_EQ(Main_Form.Caption, "Norvik 4  part.ngc");
  EXPECT_EQ(Recent.RecentFiles[1], path);
  EXPECT_EQ(ReadPointer("General", "GCode_Source_File_Name"), "part.ngc");

  Menu_File_Save();  // it has a file
  EXPECT_THAT(scripted.Save_Dialogs, testing::IsEmpty());
  EXPECT_EQ(Read_Whole_File(path), "G1 X1\r\n");
  scripted.Save_Answers.push_back(Folder.File("copy"));
  Menu_File_Save_As();
  EXPECT_EQ(scripted.Save_Dialogs[0].File_Name, "part.GC");
  EXPECT_EQ(scripted.Save_Dialogs[0].Directory, Folder.Path + "/");
  EXPECT_EQ(Read_Whole_File(Folder.File("copy.GC")), "G1 X1\r\n");
  EXPECT_EQ(Recent.RecentFiles[1], Folder.File("copy.GC"));

  Type("G1 X1\nG1 X2\n");
  Command_Update_Click();  // a compile saves nothing
  scripted.Answer_Box(Box_Answer::No);
  Menu_File_New();
  EXPECT_EQ(GCodeLineCount(), 2);
  scripted.Answer_Box(Box_Answer::Yes);
  Menu_File_New();
  EXPECT_EQ(scripted.Boxes.back().Title, "New File");
  Menu_File_New();  // nothing to lose: no question
  EXPECT_EQ(scripted.Boxes.size(), 2U);
  EXPECT_EQ(GCodeLineCount(), 0);
  EXPECT_EQ(Main_Form.Caption, "Norvik 4  New_GCode_File.GC");
  EXPECT_EQ(Main_Form.Current_File, Folder.File("New_GCode_File.GC"));
  Menu_File_Open();  // cancelled
  Menu_File_Save();
  EXPECT_EQ(Main_Form.Caption, "Norvik 4  New_GCode_File.GC");
}

TEST_F(GCode_Test, Another_Program_Takes_The_Place_Of_An_Unsaved_One_Only_After_A_Question) {
  const std::string other = Write_File("other.gc", "G1 X5\n");
  const auto open = [&](Box_Answer answer) {
    scripted.Answer_Box(answer);
    LoadRecentFile(other);
    scripted.Box_Answers.clear();
    return GCode_Program.Text->Whole() == "G1 X5\n";
  };
  Type("G1 X1\n");
  Command_Update_Click();
  EXPECT_FALSE(May_Lose_Program());
  EXPECT_FALSE(open(Box_Answer::Cancel));
  EXPECT_FALSE(open(Box_Answer::Yes));  // and the dialog of the save is cancelled
  EXPECT_EQ(scripted.Save_Dialogs.size(), 1U);
  EXPECT_TRUE(open(Box_Answer::No));
  EXPECT_TRUE(May_Lose_Program());
  Type("G1 X6\n");
  scripted.Answer_Box(Box_Answer::Yes);
  EXPECT_TRUE(May_Lose_Program());
  EXPECT_EQ(Read_Whole_File(other), "G1 X6\r\n");
  // What an importer made is in no file.
  ASSERT_TRUE(Open_GCode(Write_File("TEMP_NORVIK999.GC", "G1 X7\n")));
  EXPECT_TRUE(GCode_Program.Unsaved);
  EXPECT_FALSE(open(Box_Answer::Cancel));
  scripted.Save_Answers.push_back(Folder.File("imported.gc"));
  Menu_File_Save();
  EXPECT_FALSE(GCode_Program.Unsaved);
}

TEST_F(GCode_Test, Files_Are_Opened_By_Extension) {
  std::vector<std::string> opened;
  for (const Opened_Kind kind :
       {Opened_Kind::Gerber, Opened_Kind::Excellon, Opened_Kind::Picture, Opened_Kind::GCode}) {
    Register_Opener(kind, [&opened, kind](const std::string&) {
      opened.push_back(std::string(Kind_Name(kind)));
    });
  }
  Register_Opener(Opened_Kind::Motion, nullptr);
  for (const char* name :
       {"a.gbl", "a.GB", "a.nc", "a.Jpg", "a.gif", "a.gc", "a.b.tap", "gbr", "a.mcd"}) {
    LoadRecentFile(Write_File(name, "x"));
  }
  EXPECT_THAT(opened, ElementsAre("Gerber", "Gerber", "Excellon", "picture", "picture", "G-code",
                                  "G-code", "G-code"));
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("opens no motion files"));
  EXPECT_EQ(Messages.Panel[3], "Load Time=00:00:00.000");
  EXPECT_EQ(Messages.Status_Timeout[3], -1);
  EXPECT_EQ(PathFileName(Recent.RecentFiles[1]), "gbr");
  LoadRecentFile(Folder.File("none.gc"));
  EXPECT_EQ(scripted.Boxes.back().Text, "File not found : " + Folder.File("none.gc"));
  Menu_File_File_Click(8);
  EXPECT_EQ(PathFileName(Recent.RecentFiles[1]), "a.gbl");
  Register_Opener(Opened_Kind::GCode,
                  [](const std::string&) { throw Fault(Fault_Number::Bad_File_Data, "broken"); });
  Menu_File_File_Click(2);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Load Recent File Error # 62 broken"));
}

TEST_F(GCode_Test, Steps_Are_Held_To_The_Program) {
  Type("G90\nG1 X1\n\nG1 X2\nG1 X3\n");
  EXPECT_EQ(Messages.Panel[1], "GCode has changed and needs to be compiled.");
  Command_Update_Click();
  EXPECT_EQ(Machine.EndingStep, 4);
  struct Row {
    const char *Start, *End;
    int Start_Step, End_Step;
  };
  for (const Row& row : {Row{"2", "3", 2, 3}, Row{"-5", "99", 1, 4}, Row{"", "", 1, 1},
                         Row{"x", "2", 1, 2}, Row{"3", "2", 3, 3}}) {
    Gcode_Form.Text_StartingStep.Text = row.Start;
    Gcode_StartingStep_Change();
    Gcode_Form.Text_EndingStep.Text = row.End;
    Gcode_EndingStep_Change();
    EXPECT_EQ(Machine.StartingStep, row.Start_Step) << row.Start;
    EXPECT_EQ(Machine.EndingStep, row.End_Step) << row.End;
  }
  Command_GCode_Reset_Click();
  EXPECT_EQ(Compile_Status.CurrentStep, 3);
  Compile_Status.CurrentStep = 1;
  Command_GStep_Click();  // raised to the starting step, then on by one
  EXPECT_EQ(Compile_Status.CurrentStep, 4);
  Command_GStep_Click();
  EXPECT_EQ(Compile_Status.CurrentStep, 4);
  EXPECT_EQ(Gcode_Form.Label_CGStep.Caption, "G1 X3");
  EXPECT_FALSE(Program_Is_Held());
  Machine.CNCMode = CNC_Running;
  Command_GStep_Click();
  Command_Update_Click();
  EXPECT_EQ(scripted.Beeps, 2);
}

// What a press of Play comes to: "runs", or what the operator is told.
std::string Played() {
  Controller.Steps_Executed = 0;
  Command_CNC_Play_Click();
  return Controller.Steps_Executed > 0 ? "runs" : Messages.Panel[1];
}

TEST_F(GCode_Test, Play_Runs_Only_What_Was_Compiled_To_Its_End) {
  EXPECT_EQ(Played(), control_text::No_Program);
  std::string text;
  for (int i = 0; i < 300; ++i) text += "G1 X" + std::to_string(i % 2) + "\n";
  Type(text);
  scripted.On_Yield = [this, n = 0]() mutable {
    if (++n == 3) Application.EscFlag = true;
  };
  Command_Update_Click();
  scripted.On_Yield = [] {};
  EXPECT_GT(Program_Wire.Count(), 0U);  // the plot shows what there is
  EXPECT_LT(Program_Wire.Count(), 300U);
  EXPECT_EQ(Played(), control_text::Program_Cut_Short);
  Command_CNC_Step_Click();
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);

  Type("G1 X0.1\nG1 X0.2\n");
  Command_Update_Click();
  EXPECT_EQ(Played(), "runs");
  const std::string tables = std::exchange(Application.Table_Folder, Folder.File("missing"));
  Command_Update_Click();
  EXPECT_EQ(Played(), control_text::Program_Cut_Short);
  Application.Table_Folder = tables;
  Command_Update_Click();
  EXPECT_EQ(Gcode_Form.Label_Table_Notice.Caption, "");
  Type("G1 X0.3\n");
  EXPECT_EQ(Played(), control_text::Program_Not_Compiled);
  EXPECT_THAT(Gcode_Form.Label_Table_Notice.Caption, HasSubstr("newer"));
  Type("G1 X0.1\n\nG1 X0.2\n");  // the lines of before
  EXPECT_EQ(Played(), "runs");
  Type("G1 X0.3\n");
  for (const auto& take :
       std::initializer_list<std::function<void()>>{[&] { Save_GCode(Folder.File("saved.gc")); },
                                                    [] { Print_Data(); }, [] { Begin_Check(); }}) {
    Typed = "G1 X0.3\n" + Typed;
    Text_GCode_Change();
    take();
    EXPECT_FALSE(GCode_Program.Typed_Waits);
    EXPECT_EQ(Played(), control_text::Program_Not_Compiled);
  }
  Command_Update_Click();
  EXPECT_EQ(Played(), "runs");

  MachineSetup.Plot_Auto_Loading = 0;
  EXPECT_TRUE(Open_GCode(Write_File("part.gc", "G1 X0.4\n")));
  EXPECT_THAT(Messages.Panel[1], HasSubstr("needs to be compiled"));
  EXPECT_EQ(Played(), control_text::Program_Not_Compiled);
  Command_Update_Click();
  EXPECT_EQ(Played(), "runs");
  scripted.Answer_Box(Box_Answer::Yes);
  Menu_File_New();
  EXPECT_EQ(Played(), control_text::No_Program);
}

// What a compile depended on is part of what its table stands for.
TEST_F(GCode_Test, Play_Refuses_What_Was_Compiled_Of_Other_Settings_Tools_Or_Macros) {
  MachineSetup.MacroFile[7] = Write_File("seven.gc", "G1 X0.1 F20\n");
  Tools.Diameter[1] = 0.1;
  Type("G0 X0 Y0 Z0\nM98 7\nG41\nG1 X0.3 F20\nG1 X0.6\nG40\nG0 Y0.2\n");
  const auto compiled = [&] {
    Command_Update_Click();
    scripted.Answer_Box(Box_Answer::Ok);  // whatever the check says of it
    std::string played = Played();
    scripted.Box_Answers.clear();
    return played;
  };
  EXPECT_EQ(compiled(), "runs");
  MachineSetup.Axis_Max_Feed_Rate[3] = 7;
  EXPECT_THAT(Played(), HasSubstr("(Axis_Max_Feed_Rate_3) is not what it was"));
  Main_Timer2();
  EXPECT_THAT(Gcode_Form.Label_Table_Notice.Caption, HasSubstr("Axis_Max_Feed_Rate_3"));
  EXPECT_EQ(compiled(), "runs");
  Tools.Diameter[1] = 0.2;
  EXPECT_THAT(Played(), HasSubstr("A tool of the tool file is not"));
  EXPECT_EQ(compiled(), "runs");
  Write_File("seven.gc", "G1 X0.1 F20\n");  // written again, the same
  EXPECT_EQ(Played(), "runs");
  Write_File("seven.gc", "G1 X0.2 F20\n");
  EXPECT_THAT(Played(), HasSubstr("Macro 7 is not what it was"));
  EXPECT_EQ(compiled(), "runs");
  std::filesystem::remove(MachineSetup.MacroFile[7]);
  EXPECT_THAT(Played(), HasSubstr("Macro 7 is not what it was"));
}

// An ESC in the check that Play starts leaves findings of a part: they let nothing begin.
TEST_F(GCode_Test, A_Check_That_Was_Cut_Short_Stands_For_No_Run) {
  std::string text = "G1 X0.1 F20\n";
  for (int line = 0; line < 500; ++line) text += "(nothing)\n";
  Type(text + "G1X9\n");  // lost
  Command_Update_Click();
  Program_Findings = {};
  const auto yield = scripted.On_Yield;
  scripted.On_Yield = [] {
    if (Runs(Operation::Check)) Application.EscFlag = true;
  };
  EXPECT_NE(Played(), "runs");
  scripted.On_Yield = yield;
  EXPECT_EQ(Program_Findings.Text, nullptr);
  EXPECT_EQ(Machine.Position[1], 0);
  // Whole, it asks.
  scripted.Answer_Box(Box_Answer::Cancel);
  EXPECT_EQ(Played(), control_text::Run_Not_Begun);
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("1X9"));
}

TEST_F(GCode_Test, A_Paused_Run_Goes_On_With_A_Newer_Text_Only_When_The_Operator_Wants_It) {
  Type("G1 X0.1 F20\nM0\nG1 X0.2\n");
  Command_Update_Click();
  Program_Findings.Agreed = GCode_Program.Text;  // whatever the check says of it
  EXPECT_EQ(Played(), "runs");
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  Type("G1 X0.1 F20\nM0\nG1 X0.9\n");
  const std::size_t boxes = scripted.Boxes.size();
  scripted.Answer_Box(Box_Answer::Cancel);
  EXPECT_EQ(Played(), control_text::Run_Not_Continued);
  EXPECT_EQ(Machine.CNCMode, CNC_Paused);
  EXPECT_EQ(scripted.Boxes.size(), boxes + 1);
  scripted.Answer_Box(Box_Answer::Ok);
  EXPECT_EQ(Played(), "runs");
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_EQ(CNC_Controls.Text_Program_Messages.Text, "G1 X0.2");  // as compiled
}

TEST_F(GCode_Test, A_Goto_Gives_The_Table_Back) {
  Type("G1 X0.1 Y2 F20\nG1 X0.2\n");
  Command_Update_Click();
  EXPECT_EQ(View.ProgramMax[2], 2);
  std::vector<double> shown;
  const auto show = Program_Wire_Host.Installed;
  Program_Wire_Host.Installed = [&] {
    show();
    shown.push_back(View.ProgramMax[2]);
  };
  CNC_Controls.Text_Goto.Text = "G1 X0.05 Y0.7";
  Command_Goto_Click();
  Program_Wire_Host.Installed = show;
  EXPECT_THAT(shown, ElementsAre(0.7, 2));  // the line, then the program again
  EXPECT_EQ(Program_Wire.Count(), 2U);
  EXPECT_EQ(Compile_Status.CurrentStep, 0);
  CNC_Controls.Text_Goto.Text = "M0";
  Command_Goto_Click();
  EXPECT_EQ(Messages.Panel[1], control_text::Goto_Has_No_Run);
  EXPECT_EQ(Played(), "runs");
  EXPECT_EQ(CNC_Controls.Text_Program_Messages.Text, "G1 X0.2");
}

TEST_F(GCode_Test, A_Program_With_Losses_Is_Run_Once_The_Operator_Wants_It) {
  struct {
    const char *Text, *Says;
  } const rows[] = {{"G0 X0.1\nG0Z0.25\nG0 X0.2\n", "Line 2: "},
                    {"G0 X0.1\nREPEAT 2\nG0 X0.2\nG0 X0.1\nENDREPEAT\n", "(REPEAT)"}};
  for (const auto& row : rows) {
    Type(row.Text);
    Command_Update_Click();
    const std::size_t boxes = scripted.Boxes.size();
    EXPECT_EQ(Played(), control_text::Run_Not_Begun) << row.Text;
    ASSERT_EQ(scripted.Boxes.size(), boxes + 1);
    EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr(row.Says));
    scripted.Answer_Box(Box_Answer::Ok);
    EXPECT_EQ(Played(), "runs");
    Command_Update_Click();  // the same text
    EXPECT_EQ(Played(), "runs");
    EXPECT_EQ(scripted.Boxes.size(), boxes + 2);
  }
}

TEST_F(GCode_Test, The_First_Travel_Of_A_Program_Starts_At_Zero_And_That_Of_A_Run_At_The_Machine) {
  struct Surface : Plot_Surface {
    void Set_Scale(const Plot_Scale&) override {}
    void Clear(std::int32_t) override { Lines.clear(); }
    void Draw_Lines(std::span<const Plot_Line> lines) override {
      Lines.insert(Lines.end(), lines.begin(), lines.end());
    }
    void Draw_Text(double, double, std::string_view, std::int32_t) override {}
    void Draw_Picture(double, double, const Plot_Image&) override {}
    std::vector<Plot_Line> Lines;
  } surface;
  MachineSetup.Plot_Show_Grid = 0;
  Plot_Host.Picture1 = &surface;
  Type("G0 X3 Y2 Z0\n");
  Command_Update_Click();
  Type("G0 X0.2 Y0 Z0\n");
  Command_Update_Click();
  ASSERT_FALSE(surface.Lines.empty());
  EXPECT_NEAR(surface.Lines.front().X1, Current_Projection().Project(0, 0, 0).X, 1e-6);
  surface.Lines.clear();
  Machine.Position[1] = 0.1;
  EXPECT_EQ(Played(), "runs");
  ASSERT_FALSE(surface.Lines.empty());
  EXPECT_NEAR(surface.Lines.back().X1, Current_Projection().Project(0.1, 0, 0).X, 1e-6);
  Plot_Host.Picture1 = nullptr;
}

TEST_F(GCode_Test, The_Estimate_Is_That_Of_The_Compiled_Program) {
  Command_Estimate_Process_Time_Click();
  EXPECT_EQ(Messages.Panel[1], control_text::Nothing_To_Estimate);
  Type("G1 X1\nG1 X2\n");
  Command_Update_Click();
  Command_Estimate_Process_Time_Click();
  ASSERT_TRUE(Controller.Estimated_Process_Time);
  const double program = *Controller.Estimated_Process_Time;
  CNC_Controls.Text_Goto.Text = "G1 X0.01";
  Command_Goto_Click();
  EXPECT_FALSE(Controller.Estimated_Process_Time);
  Machine.Position = {};
  Command_Estimate_Process_Time_Click();
  EXPECT_EQ(Controller.Estimated_Process_Time, program);
  Command_Update_Click();
  EXPECT_FALSE(Controller.Estimated_Process_Time);
  Command_Estimate_Process_Time_Click();
  MachineSetup.Plot_Auto_Loading = 0;
  EXPECT_TRUE(Open_GCode(Write_File("part.gc", "G1 X0.4\n")));
  EXPECT_FALSE(Controller.Estimated_Process_Time);
  Command_Estimate_Process_Time_Click();
  EXPECT_EQ(Messages.Panel[1], control_text::Nothing_To_Estimate);
}

// The run would go on past its range, or end early as finished.
TEST_F(GCode_Test, A_Text_Taken_In_A_Run_Leaves_The_Range_To_The_Next_Compile) {
  Type("G1 X1\nG1 X2\nG1 X3\n");
  Command_Update_Click();
  Machine.EndingStep = 2;
  for (const std::int16_t mode : {CNC_Running, CNC_Stepped, CNC_Paused}) {
    Machine.CNCMode = mode;
    Type("G1 X1\n");
    ASSERT_TRUE(Save_GCode(Folder.File("saved.gc")));
    EXPECT_EQ(Read_Whole_File(Folder.File("saved.gc")), "G1 X1\r\n");
    Gcode_Step_Display();
    EXPECT_EQ(Machine.EndingStep, 2) << mode;
  }
  Machine.CNCMode = CNC_Stopped;
  Command_Update_Click();
  EXPECT_EQ(Machine.EndingStep, 1);
  Type("G1 X1\nG1 X2\n");
  Take_Typed_Text();
  EXPECT_EQ(Machine.EndingStep, 2);
}

TEST_F(GCode_Test, A_Check_Waits_While_Something_Moves) {
  Type("G1 X1\n");
  {
    const Operation_Scope jog(Operation::Jog);
    EXPECT_FALSE(Begin_Check());
  }
  EXPECT_EQ(Messages.Panel[1], "Can't check while CNC running");
  EXPECT_TRUE(GCode_Program.Typed_Waits);
  Machine.CNCMode = CNC_Paused;
  EXPECT_TRUE(Begin_Check());
  EXPECT_EQ(GCodeLineCount(), 1);
}

TEST_F(GCode_Test, A_Compile_That_Fails_Leaves_The_Button_Free) {
  Type("G1 X1\n");
  const auto show = Program_Wire_Host.Installed;
  Program_Wire_Host.Installed = [] { throw Fault(Fault_Number::Overflow, "too fast"); };
  EXPECT_THROW(Command_Update_Click(), Fault);
  Program_Wire_Host.Installed = show;
  Command_Update_Click();
  EXPECT_EQ(scripted.Beeps, 0);
  EXPECT_EQ(Program_Wire.Count(), 1U);
}

TEST_F(GCode_Test, Lines_Of_The_Text_And_Steps_Belong_Together) {
  std::mt19937 random(11);
  const char* const pieces[] = {"\r\n", "\n", "\r", "G1 X1", "\r\n", "a", "\n"};
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (int i = 0; i < 40; ++i) text += pieces[random() % 7];
    SaveChanges(text);
    // Plainly: cut into lines, count those that are not empty.
    std::vector<std::int32_t> line_of_step{0};
    std::vector<std::int32_t> step_of_line{0};
    const auto lines = Split_Lines(text);
    for (std::size_t line = 0; line < lines.size(); ++line) {
      if (!lines[line].empty()) line_of_step.push_back(static_cast<std::int32_t>(line) + 1);
      step_of_line.push_back(static_cast<std::int32_t>(line_of_step.size()) - 1);
    }
    ASSERT_EQ(GCodeLineCount() + 1, static_cast<std::int32_t>(line_of_step.size()));
    for (std::int32_t step = GCodeLineCount(); step >= 1;
         step -= 1 + static_cast<int>(random() % 3)) {
      ASSERT_EQ(Text_Line_Of_Step(step), line_of_step[static_cast<std::size_t>(step)]);
      ASSERT_EQ(Text_Line_Of_Step(GCodeLineCount()), line_of_step.back());
    }
    for (std::size_t line = 1; line < step_of_line.size(); ++line) {
      ASSERT_EQ(Step_Of_Text_Line(static_cast<std::int32_t>(line)), step_of_line[line]);
    }
  }
}

TEST_F(GCode_Test, Display_Joins_The_Lines_And_Shows_Progress) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "G1 X1\n\n";
  SaveChanges(text);
  Compile_Status.CurrentStep = 5000;
  std::vector<std::string> panels;
  scripted.On_Yield = [&] { panels.push_back(Messages.Panel[1]); };
  Gcode_Step_Display();
  EXPECT_THAT(panels, ElementsAre("GCode Step Display: Displaying data 50.00% completed",
                                  "GCode Step Display: Displaying data 100.00% completed"));
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(GCode_Program.Text->Whole().size(), 7000U);
  EXPECT_EQ(Compile_Status.CurrentStep, 1000);
  EXPECT_EQ(Machine.EndingStep, 1000);
  Text_GCode_DblClick(3);
  EXPECT_EQ(Messages.Panel[1], "G1 X1");
  panels.clear();
  Print_Data();
  EXPECT_THAT(panels,
              ElementsAre("GCode Printing. 50.00% completed", "GCode Printing. 100.00% completed"));
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(scripted.Prints[0].size(), 1000U);
  scripted.Printer_Present = false;
  Print_Data();
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Nothing was printed"));
}

TEST_F(GCode_Test, A_Double_Click_Marks_Only_Lines_Of_The_Text_That_Is_Drawn) {
  ASSERT_TRUE(Open_GCode(Write_File("part.gc", "G90\n\nG1 X1\nG1 X2\n")));
  Text_GCode_DblClick(3);
  EXPECT_EQ(Messages.Panel[1], "G1 X1");
  Type("G90\nG1 X5\nG1 X1\n");
  for (const bool taken : {false, true}) {
    if (taken) Take_Typed_Text();
    Messages.Panel[1].clear();
    Text_GCode_DblClick(3);
    EXPECT_THAT(Messages.Panel[1], HasSubstr("newer than the plot")) << taken;
  }
  Command_Update_Click();
  Text_GCode_DblClick(3);
  EXPECT_EQ(Messages.Panel[1], "G1 X1");
}

TEST_F(GCode_Test, Feeds_Are_Shown_And_Stored) {
  MachineSetup.UnitsofMeasurement = 1;
  Display_Parameters();
  EXPECT_EQ(Gcode_Form.Label_FRUnits.Caption, "mmPM");
  EXPECT_EQ(Gcode_Form.Text_Feed_Rates[1].Text, "5");
  for (const auto& [typed, feed] :
       {std::pair{"7,5", 7.5F}, std::pair{"", 7.5F}, std::pair{"-3", 7.5F}, std::pair{"x", 7.5F},
        std::pair{"0", 7.5F}}) {
    Gcode_Form.Text_Feed_Rates[1].Text = typed;
    Text_Feed_Rates_Change(1);
    EXPECT_EQ(MachineSetup.Axis_Feed_Rate_Cut, feed) << typed;
    EXPECT_EQ(Gcode_Form.Text_Feed_Rates[1].Text, "7.5");
  }
  EXPECT_EQ(ReadSetup("Axis", "Axis_Feed_Rate_Cut"), "7.5");
  EXPECT_EQ(Compiler.CutFeed, 7.5F);
  MachineSetup.UnitsofMeasurement = 0;
  Display_Parameters();
  EXPECT_EQ(Gcode_Form.Label_FRUnits.Caption, "IPM");
}

}  // namespace
}  // namespace norvik
