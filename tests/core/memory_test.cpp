// What the program remembers from run to run: recent files, windows, tools, positions.
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/beside_machine.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "core/tool_file.h"
#include "core/window_memory.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::HasSubstr;

struct Memory_Test : testing::Test {
  Memory_Test() {
    Reset_Core();
    Application.Pointer_Folder = Folder.Path;
    Application.MachineFile = Folder.File("Machine.ini");
    Application.ErrorFile = Folder.File("NorvikErr.txt");
  }
  ~Memory_Test() override { Reset_Core(); }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

TEST_F(Memory_Test, Recent_Files_Keep_Each_Name_Once) {
  int menus = 0;
  Recent_Host.List_Changed = [&] { ++menus; };
  for (int i = 1; i <= 25; ++i) Add_Recent_File("/parts/p" + std::to_string(i) + ".gc");
  EXPECT_EQ(Recent.RecentFiles[20], "/parts/p6.gc");
  Add_Recent_File("/parts/p20.gc");
  EXPECT_EQ(Recent.RecentFiles[1], "/parts/p20.gc");
  EXPECT_EQ(Recent.RecentFiles[6], "/parts/p21.gc");
  EXPECT_EQ(Recent.RecentFiles[7], "/parts/p19.gc");
  Recent.RecentFiles[9] = Recent.RecentFiles[10] = "/parts/p20.gc";  // doubled by hand
  Add_Recent_File("/parts/p20.gc");
  EXPECT_EQ(std::count(Recent.RecentFiles.begin(), Recent.RecentFiles.end(), "/parts/p20.gc"), 1);
  EXPECT_EQ(Recent.RecentFiles[20], "");
  EXPECT_EQ(menus, 27);
  const auto before = Recent.RecentFiles;
  Recent = {};
  Read_Recent_Files();
  EXPECT_EQ(Recent.RecentFiles, before);
  EXPECT_EQ(Recent_Menu_Texts().size(), 10U);
  EXPECT_EQ(Recent_Menu_Texts()[0], "p20.gc");
}

TEST_F(Memory_Test, Last_File_Of_Each_Kind) {
  RememberFile(File_Kind::GCode, "C:\\cnc\\part.gc");
  RememberFile(File_Kind::Bitmap_In, "/pictures/a.bmp");
  RememberFile(File_Kind::Motion, "/motion/a.mcd");
  RememberFile(File_Kind::Sound, "/sounds/a.wav");
  EXPECT_EQ(Last_File(File_Kind::Motion).Name, "a.mcd");
  EXPECT_EQ(ReadPointer("General", "GCode_File_Source_Directory"), "C:\\cnc\\");
  EXPECT_EQ(ReadPointer("General", "BMap_Source_File_Name"), "a.bmp");
  EXPECT_EQ(ReadPointer("General", "Sound_File_Source_Directory"), "/sounds/");
  Remembered = {};
  Read_Remembered_Files();
  EXPECT_EQ(Last_File(File_Kind::GCode).Directory + Last_File(File_Kind::GCode).Name,
            "C:\\cnc\\part.gc");
  EXPECT_EQ(Last_File(File_Kind::Bitmap_In).Directory, "/pictures/");
  EXPECT_EQ(Last_File(File_Kind::Bitmap_In).Name, "");    // its name is not read at start,
  EXPECT_EQ(Last_File(File_Kind::Motion).Directory, "");  // of motion files nothing
  // A pointer file out of reach is told, and the run goes on.
  Application.Pointer_Folder = Folder.File("gone");
  RememberFile(File_Kind::GCode, "/x/y.gc");
  EXPECT_EQ(Last_File(File_Kind::GCode).Name, "y.gc");
  EXPECT_THAT(Messages.LastMessage, HasSubstr("Cannot write"));
}

TEST_F(Memory_Test, Windows_Come_Back_Where_They_Stood) {
  scripted.Screen_Size = {0, 0, 1600, 900};
  Window_Area.Tool_Windows = scripted.Screen_Size;
  std::array<Form_View, All_Forms.size()> views{};
  views[0] = {{10, 20, 500, 600, Window_Normal}, true, true};
  views[1] = {{40, 30, 300, 400, Window_Normal}, true, true};
  views[3] = {{1, 2, 300, 400, Window_Normal}, false, true};
  Write_Form_Views(views);
  EXPECT_EQ(ReadSetup("Form Position", "GCode_Left"), "450");  // a fifteenth of a pixel
  EXPECT_EQ(Read_Form_Place(Form_Id::GCode), views[1].Place);
  EXPECT_EQ(Form_Was_Open(Form_Id::GCode), true);
  EXPECT_EQ(Form_Was_Open(Form_Id::Plot), false);
  EXPECT_EQ(Form_Was_Open(Form_Id::JogKey), std::nullopt);  // not loaded in this run
  EXPECT_EQ(ReadSetup("Form Position", "Main_Open"), "");
  // The main window's left edge is never restored from the layout.
  EXPECT_EQ(ReadSetup("Form Position", "Main_Left"), "300");
  EXPECT_EQ(Read_Form_Place(Form_Id::Main), (Window_Place{10, 0, 500, 600, Window_Normal}));
  WriteSetup("Form Position", "Main_Top_Left", "150");
  EXPECT_EQ(Read_Form_Place(Form_Id::Main).Left, 10);
}

TEST_F(Memory_Test, Windows_Are_Brought_Back_On_Screen) {
  scripted.Screen_Size = {0, 0, 1024, 600};
  Window_Area.Tool_Windows = scripted.Screen_Size;
  EXPECT_EQ(Read_Form_Place(Form_Id::Main), (Window_Place{0, 0, 600, 1024, Window_Maximized}));
  struct Row {
    const char *Top, *Left, *Height, *Width, *State;
    Window_Place Place;
  };
  const Window_Place usual = Default_Form_Place(Form_Id::Plot, scripted.Screen_Size);
  for (const Row& row : {
           Row{"-45000", "90000", "1500", "15000", "0", {0, 24, 100, 1000, 0}},
           Row{"1e300", "x", "-15", "0", "9", usual},
           Row{"0", "0", "9999999", "15", "2", {0, 0, 600, 160, 2}},
       }) {
    WriteSetup("Form Position", "Plot_Top", row.Top);
    WriteSetup("Form Position", "Plot_Left", row.Left);
    WriteSetup("Form Position", "Plot_Height", row.Height);
    WriteSetup("Form Position", "Plot_Width", row.Width);
    WriteSetup("Form Position", "Plot_WindowState", row.State);
    EXPECT_EQ(Read_Form_Place(Form_Id::Plot), row.Place) << row.Top;
  }
  Reset_Form_Positions();
  for (const Form_Id form : All_Forms) {
    const Window_Place place = Read_Form_Place(form);
    EXPECT_EQ(place, Default_Form_Place(form, scripted.Screen_Size)) << Form_Name(form);
    EXPECT_EQ(place, Brought_On_Screen(place, scripted.Screen_Size)) << Form_Name(form);
  }
}

TEST_F(Memory_Test, Axis_Positions_Survive_A_Restart) {
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    Machine.Position[1] = 1.0 / 3;
    Machine.Position[4] = -1e-7;
    Machine.Absolute_Pos[1] = 7;
    Save_Axis_Positions();
    Application.DecimalSeparator = '.';
    Machine = {};
    Load_Axis_Positions();
    EXPECT_EQ(Machine.Position[1], 1.0 / 3);
    EXPECT_EQ(Machine.Theoretical_Pos[4], -1e-7);
    EXPECT_EQ(Machine.Absolute_Pos[1], 0);  // written and read under different keys
    EXPECT_NE(ReadSetup("Axis Position", "Axis_Mach_Pos_1"), "");
  }
  WriteSetup("Axis Position", "Axis_Cur_Pos_2", "lost");
  Load_Axis_Positions();
  EXPECT_EQ(Machine.Position[2], 0);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Axis_Cur_Pos_2=lost is no number"));
}

TEST_F(Memory_Test, Tool_File_Fills_Both_Tables) {
  const std::string path = Folder.File("Default.tol");
  std::string text = "0.125,-0.5\r\n\r\n 0.25 , 1E-2\r\n0.5\r\nabc,1\r\n";
  for (int i = 6; i <= 250; ++i) text += "2,3\r\n";
  Replace_File(path, text);
  Tools.Diameter[0] = 9;
  EXPECT_TRUE(Read_Tool_File(path));
  EXPECT_EQ(Tools.Diameter[0], 0);
  EXPECT_EQ(Tools.Diameter[1], 0.125);
  EXPECT_EQ(Tools.Length[1], -0.5);
  EXPECT_EQ(Tools.Diameter[2], 0);
  EXPECT_EQ(Tools.Length[3], 0.01);
  EXPECT_EQ(Tools.Diameter[4], 0.5);
  EXPECT_EQ(Tools.Diameter[5], 0);
  EXPECT_EQ(Tools.Length[5], 1);
  EXPECT_EQ(Tools.Diameter[200], 2);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("line 5 is not diameter,offset"));
  EXPECT_FALSE(Read_Tool_File(""));
  EXPECT_EQ(Tools.Diameter[200], 0);
  Tools.Diameter[1] = 1;
  EXPECT_FALSE(Read_Tool_File(Folder.Path));
  EXPECT_EQ(Tools.Diameter[1], 0);
}

TEST_F(Memory_Test, Files_That_The_Machine_File_Names_May_Lie_Beside_It) {
  const Temporary_Folder elsewhere;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(elsewhere.Path);
  Replace_File(Folder.File("Default.tol"), "1,2\n");
  EXPECT_EQ(Beside_Machine_File("Default.tol"), Folder.File("Default.tol"));
  EXPECT_EQ(Beside_Machine_File("gone.gc"), "gone.gc");
  EXPECT_EQ(Beside_Machine_File(Folder.File("gone.gc")), Folder.File("gone.gc"));
  EXPECT_EQ(Beside_Machine_File(""), "");
  Replace_File(elsewhere.File("Default.tol"), "3,4\n");  // the working folder comes first
  EXPECT_EQ(Beside_Machine_File("Default.tol"), "Default.tol");
  std::filesystem::current_path(before);
}

TEST_F(Memory_Test, Sounds_Play_Unless_Disabled) {
  MachineSetup.Sound_Files.Fill("");
  MachineSetup.Sound_Files[sound::Pause] = "/a.wav";
  MachineSetup.Sound_Files[sound::Stopped] = "Disabled";
  for (int slot = 0; slot <= 8; ++slot) Play_Event_Sound(slot);
  EXPECT_THAT(scripted.Sounds, testing::ElementsAre("/a.wav"));
}

}  // namespace
}  // namespace norvik
