// The start, the two timers and the end of the program.
#include "app/app_fixture.h"
#include "app/shutdown.h"
#include "app/timers.h"
#include "control/run/cnc_controller.h"

#include <cstdlib>
#include <filesystem>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Startup_Test : App_Test {};

TEST_F(Startup_Test, First_Start_Leaves_A_Full_Machine_File) {
  Load_Main();
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_EQ(scripted.Boxes[0].Title, "Warning");
  EXPECT_EQ(Application.MachineFile, Folder.File("work/Default_Machine.ini"));
  EXPECT_THAT(Read_Whole_File(Application.MachineFile), HasSubstr("\r\nINI_Save_Test=123\r\n"));
  EXPECT_TRUE(std::filesystem::is_directory(Folder.File("work/Tools")));
  EXPECT_EQ(MachineSetup.Tool_Directory, Folder.File("work/Tools"));
  EXPECT_EQ(Messages.LastMessage, "Starting Norvik");
  EXPECT_EQ(Messages.Panel[4], "Default_Machine");
  EXPECT_EQ(scripted.Running_Timers(), 3);  // two of the window, and the watch of the machine
  EXPECT_THAT(Trace, ElementsAre("place Main", "show CNC_Controls", "show Plot", "show GCode"));

  Activate_Main();
  ASSERT_EQ(scripted.Boxes.size(), 2U);
  EXPECT_EQ(
      scripted.Boxes[1].Text,
      "Norvik.ini could not be found.  Use the Setup menus to initialize all parameters before "
      "using Norvik 4");
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("New Norvik.ini Created"));
  EXPECT_EQ(Trace.back(), "show Plot");
  Activate_Main();
  EXPECT_EQ(scripted.Boxes.size(), 2U);  // the first activation only
}

TEST_F(Startup_Test, Later_Start_Takes_Over_The_Run_Before) {
  Replace_File(Folder.File("work/mill.ini"),
               "[General]\nINI_Save_Test=123\nErrorFile_AutoClear=True\nApplication_Priority=1\n"
               "[Axis]\nAxis_Feed_Rate_Travel=30\nAxis_Feed_Rate_Cut=12,5\n"
               "[Tools]\nTool_File_Name=" +
                   Folder.File("t.tol") +
                   "\n"
                   "[Axis Position]\nAxis_Cur_Pos_1=1.5\nAxis_Mach_Pos_1=9\n"
                   "[Form Position]\nPlot_Open=True\nGCode_Open=-1\nCNC_Controls_Open=False\n");
  Write_File("t.tol", "0.25,1\n");
  Write_File("config/Norvik.Ini",
             "[machine]\nNAME=" + Folder.File("work/mill.ini") +
                 "\n"
                 "[FileList]\nRecentFile_1=/a/b.gc\n[General]\nGCode_File_Source_Directory=/a/\n");
  Replace_File(Application.ErrorFile, "old entries");
  Load_Main();
  Activate_Main();
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Error File Cleared on Startup"));
  EXPECT_EQ(Tools.Diameter[1], 0.25);
  EXPECT_EQ(Machine.Position[1], 1.5);
  EXPECT_EQ(Recent.RecentFiles[1], "/a/b.gc");
  EXPECT_EQ(Last_File(File_Kind::GCode).Directory, "/a/");
  EXPECT_EQ(Compiler.TravelFeed, 30);
  EXPECT_EQ(Compiler.CutFeed, 12.5F);
  EXPECT_THAT(scripted.Priorities, ElementsAre(1, 1));  // with the load, and once the drive is open
  EXPECT_THAT(Trace, ElementsAre("place Main", "show Plot", "show GCode", "show Plot"));
}

TEST_F(Startup_Test, Only_The_Parallel_Port_Has_Its_Outputs_Switched_Off) {
  for (const int type : {1, 2, 3}) {
    Application.ShutdownFlag = false;
    Main_Window = {};
    scripted.Ports.clear();
    Trace.clear();
    Replace_File(Application.MachineFile,
                 "[General]\nINI_Save_Test=123\n[Parallel Setup]\nParallel_Output_Bit_13=3\n"
                 "Parallel_Port_Type=" +
                     std::to_string(type) + "\n");
    Load_Main();
    EXPECT_EQ(scripted.Ports.contains(888), type == 1) << type;  // outputs off on the port only
  }
}

TEST_F(Startup_Test, Second_Instance_Says_So_Ends_And_Writes_Nothing) {
  scripted.Other_Instance = true;
  Machine.Position[1] = 5;
  Load_Main();
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_FALSE(FileExists(Application.MachineFile));
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(scripted.Boxes[0].Text, testing::HasSubstr("Norvik is already running"));
  EXPECT_TRUE(scripted.Ports.empty());  // the machine belongs to the first one
  EXPECT_EQ(scripted.Running_Timers(), 0);
}

TEST_F(Startup_Test, Bye_Switches_Off_And_Saves) {
  Replace_File(Application.MachineFile,
               "[General]\nINI_Save_Test=123\n[Parallel Setup]\nParallel_Output_Bit_13=3\n");
  Load_Main();
  Trace.clear();
  Machine.Position[2] = -2.5;
  scripted.Ports[888] = 0xFF;
  scripted.Yields = 0;
  EXPECT_FALSE(Unload_Main());  // the close is refused: bye ends the process
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_EQ(scripted.Ports[888] & 8, 0);
  EXPECT_EQ(ReadSetup("Axis Position", "Axis_Cur_Pos_2"), "-2.5");
  EXPECT_EQ(scripted.Running_Timers(), 0);
  EXPECT_LT(scripted.Yields, 1000);  // nothing runs: no need to wait
  EXPECT_THAT(Trace, ElementsAre("unload CNC_Controls", "unload GCode", "unload Plot",
                                 "unload JogKey", "unload Port_IO", "unload others"));
  bye();
  EXPECT_EQ(Trace.size(), 6U);
}

TEST_F(Startup_Test, Bye_Waits_For_A_Running_Loop) {
  Load_Main();
  Machine.CNCMode = CNC_Running;
  scripted.Yield_Nanoseconds = 10'000;
  scripted.Yields = 0;
  scripted.On_Yield = [this] {
    EXPECT_TRUE(Application.Closing_Program);
    if (scripted.Yields == 5'000) Machine.CNCMode = CNC_Stopped;  // as a timer does that sees ESC
  };
  bye();
  EXPECT_GE(scripted.Yields, 5'000);
  EXPECT_LT(scripted.Yields, 5'500);
  // The loop in whose yield the end was asked for goes on only behind it, and does not keep the
  // program.
  Application.ShutdownFlag = false;
  Machine.CNCMode = CNC_Running;
  scripted.On_Yield = nullptr;
  const std::int64_t begin = Platform.Monotonic_Clock();
  bye();
  EXPECT_GE(Platform.Monotonic_Clock() - begin, 200'000'000);
  EXPECT_LT(Platform.Monotonic_Clock() - begin, 500'000'000);
}

// --- The mark of a session with a real machine ---------------------------------------------------

struct Session_Test : Startup_Test {
  Session_Test() {
    Drive_Session_Host.Machine_Is_Real = [] { return true; };
    Replace_File(Application.MachineFile,
                 "[General]\nINI_Save_Test=123\n[Axis Position]\nAxis_Cur_Pos_1=1.5\n");
  }
  // A start of the program, as a process of its own.
  void Start() {
    Application.ShutdownFlag = Application.Closing_Program = false;
    Main_Window = {};
    Drive_Session = {};
    Session_Mark = {};
    Position_Memory = {};
    scripted.Boxes.clear();
    Load_Main();
    Activate_Main();
  }
  bool Asked() const {
    return !scripted.Boxes.empty() &&
           scripted.Boxes.back().Text.find("Are the positions shown") != std::string::npos;
  }
  // Whether Play gets as far as looking for a program.
  bool Play_Is_Refused() {
    Command_CNC_Play_Click();
    return Messages.Panel[1].starts_with("Play is refused until the positions");
  }
};

TEST_F(Session_Test, An_Orderly_End_Leaves_No_Doubt) {
  Start();
  EXPECT_FALSE(Asked());
  bye();
  Start();
  EXPECT_FALSE(Asked());
  EXPECT_FALSE(Play_Is_Refused());
}

TEST_F(Session_Test, After_A_Crash_Play_Waits_For_The_Operators_Word) {
  WritePointer("Machine", "Name", Application.MachineFile);
  Start();
  bye();
  scripted.Calendar = {2024, 5, 7, 8, 9, 10};
  Start();  // ends here, without `bye`
  scripted.Calendar.Hour = 12;
  Start();
  ASSERT_TRUE(Asked());
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("begun 2024-05-07 08:09:10"));
  EXPECT_THAT(scripted.Boxes.back().Text,
              HasSubstr("positions shown are from 2024-05-06 10:20:30"));
  EXPECT_TRUE(Play_Is_Refused());
  bye();  // an orderly end does not make them true

  scripted.Answer_Box(Box_Answer::Yes);
  Start();
  EXPECT_TRUE(Asked());
  EXPECT_FALSE(Play_Is_Refused());
  bye();
  Start();
  EXPECT_FALSE(Asked());
}

TEST_F(Session_Test, Positions_Given_In_The_Session_Are_Newer) {
  Start();
  scripted.Calendar.Minute = 50;
  Keep_Given_Positions();
  Start();
  ASSERT_TRUE(Asked());
  EXPECT_THAT(scripted.Boxes.back().Text,
              HasSubstr("positions shown are from 2024-05-06 10:50:30"));
}

TEST_F(Session_Test, Positions_That_Were_Not_Stored_Are_Doubted) {
  Start();
  Setup_Store.Leaves_Files = true;
  bye();
  Setup_Store.Leaves_Files = false;
  Start();
  EXPECT_TRUE(Asked());
}

TEST_F(Session_Test, A_Simulated_Machine_Leaves_No_Mark) {
  Drive_Session_Host.Machine_Is_Real = [] { return false; };
  Start();
  Start();
  EXPECT_FALSE(Asked());
  EXPECT_FALSE(FileExists(Folder.File("work/Session.ini")));
}

TEST_F(Startup_Test, Timers_Watch_Keys_And_Panels) {
  Load_Main();
  Trace.clear();
  Machine.CNCMode = CNC_Running;
  scripted.Press(key::Escape);
  scripted.Press(key::F5);
  int highlighted = 0;
  Gcode_Host.GCode_HighlightAll = [&] { ++highlighted; };
  SetStatus(3, "text", 3);
  scripted.Run_For(0.15);
  EXPECT_TRUE(Application.EscFlag);
  EXPECT_EQ(Machine.CNCMode, CNC_Stopped);
  EXPECT_THAT(Trace, ElementsAre("show GCode", "focus GCode"));
  EXPECT_EQ(highlighted, 1);
  scripted.Press(key::F4);
  scripted.Press(key::F6);
  scripted.Run_For(2.7);
  EXPECT_EQ(Trace.size(), 6U);
  EXPECT_EQ(Messages.Panel[3], "text");
  scripted.Run_For(1);
  EXPECT_EQ(Messages.Panel[3], "");
  Application.ShutdownFlag = true;
  scripted.Run_For(1.1);
  EXPECT_EQ(scripted.Running_Timers(), 1);  // the watch ends with the session
  EXPECT_EQ(Main_Window.Timer1, 0);
}

TEST_F(Startup_Test, Folders_Follow_The_Environment) {
  ::setenv("XDG_DATA_HOME", "/data", 1);
  ::setenv("XDG_CONFIG_HOME", "relative", 1);  // does not count
  ::setenv("HOME", "/home/op", 1);
  EXPECT_EQ(Usual_Folders().Working, "/data/norvik");
  EXPECT_EQ(Usual_Folders().Pointer, "/home/op/.config/norvik");
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(Usual_Folders().Working, "/home/op/.local/share/norvik");

  Set_Companion_Folders(Folder.File("home"));
  EXPECT_EQ(Application.Temporary_GCode, Folder.File("home/TEMP_NORVIK999.GC"));
  EXPECT_EQ(Application.Pointer_Folder, Folder.File("home"));
  EXPECT_EQ(Application.Table_Folder, Folder.File("home"));
  WritePointer("Platform", "Table_Directory", "tables");
  Set_Companion_Folders(Folder.File("home"));
  EXPECT_EQ(Application.Table_Folder, Folder.File("home/tables"));
  WritePointer("Platform", "Table_Directory", "/proc/no/tables");  // cannot be: tables are not lost
  Set_Companion_Folders(Folder.File("home"));
  EXPECT_EQ(Application.Table_Folder, Folder.File("home"));
  Write_File("file", "");
  EXPECT_THROW(Set_Companion_Folders(Folder.File("file/under")), Fault);
}

}  // namespace
}  // namespace norvik
