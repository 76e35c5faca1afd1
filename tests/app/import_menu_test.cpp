// The menu `Import`: what each entry asks, remembers and runs, when it refuses, and how an import
// that was called off ends.
#include "app/import_menu.h"

#include "app/app_fixture.h"
#include "app/bitmap_form.h"
#include "app/shutdown.h"
#include "core/operation.h"
#include "import/gerber/layers.h"
#include "import/pipeline/report.h"

namespace norvik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

struct Menu_Case {
  void (*Menu)();
  const char *File, *Text, *Filter, *Caption, *Directory_Key, *Name_Key, *Message;
};

const Menu_Case Menu_Cases[] = {
    {Menu_Import_DXF, "part.dxf",
     "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nCUT\n10\n1\n20\n2\n11\n3\n21\n4\n0\nENDSEC\n0\nEOF\n",
     "All Files (*.*)|*.*|DXF Files (*.dxf)|*.dxf", "NORVIK 4  part.dxf",
     "DXF_File_Source_Directory", "DXF_Source_File_Name", "Importing DXF File "},
    {Menu_Import_HPGL, "part.plt", "PU1016,2032;PD3048,4064;",
     "All Files (*.*)|*.*|PLT Files (*.plt)|*.plt", "Norvik 4  part.plt",
     "HPGL_File_Source_Directory", "HPGL_Source_File_Name", "Importing HPGL File "},
    {Menu_Import_Excellon, "part.nc", "M48\nINCH,TZ\nT01C0.03\n%\nT01\nX01000Y02000\nM30\n",
     "All Files (*.*)|*.*|Excellon Files (*.nc)|*.nc", "NORVIK 4  part.nc",
     "Excellon_File_Source_Directory", "Excellon_Source_File_Name", "Importing NC File "},
    {Menu_Import_Gerber, "part.gbr",
     "%FSLAX23Y23*%\n%MOIN*%\n%ADD10C,0.05*%\nD10*\nX01000Y01000D02*\nX02000Y01000D01*\nM02*\n",
     "All Files (*.*)|*.*|Gerber Files (*.gb*)|*.gb*", "NORVIK 4  part.gbr",
     "Gerber_File_Source_Directory", "Gerber_Source_File_Name", "Importing Gerber File "},
};

struct Import_Menu_Test : App_Test {
  Import_Menu_Test() { Restore_Factory_Setup(); }

  std::string Two_Layers() {
    return Write_File("two.gbr",
                      "%FSLAX23Y23*%\n%MOIN*%\n%ADD10C,0.05*%\n%LNTOP*%\nD10*\nX01000Y01000D02*\n"
                      "X02000Y01000D01*\n%LNMARKS*%\nX01000Y02000D02*\nX02000Y02000D01*\nM02*\n");
  }
  std::vector<std::string> Messages_Shown() {
    return {Messages.MessageLog.begin(), Messages.MessageLog.end()};
  }
};

TEST_F(Import_Menu_Test, Each_Entry_Asks_Remembers_And_Opens_The_Program) {
  for (const Menu_Case& menu : Menu_Cases) {
    SCOPED_TRACE(menu.File);
    GCode_Program.Unsaved = false;  // as after a save: nothing is asked
    const std::string path = Write_File(menu.File, menu.Text);
    scripted.Pointers.clear();
    menu.Menu();  // cancelled
    EXPECT_EQ(ReadPointer("General", menu.Name_Key), "");
    EXPECT_NE(Main_Form.Caption, menu.Caption);
    EXPECT_TRUE(scripted.Pointers.empty());

    scripted.Open_Answers.push_back(path);
    menu.Menu();
    EXPECT_EQ(scripted.Open_Dialogs.back().Filter, menu.Filter);
    EXPECT_EQ(scripted.Open_Dialogs.back().Filter_Index, 2);
    EXPECT_EQ(ReadPointer("General", menu.Directory_Key), Folder.Path + "/");
    EXPECT_EQ(ReadPointer("General", menu.Name_Key), menu.File);
    EXPECT_EQ(Recent.RecentFiles[1], path);
    EXPECT_EQ(Main_Form.Caption, menu.Caption);
    EXPECT_EQ(Main_Form.Current_File, path);
    EXPECT_THAT(Messages_Shown(), Contains(menu.Message + path));
    EXPECT_EQ(scripted.Pointers.front(), Mouse_Pointer::Busy);
    EXPECT_EQ(scripted.Pointers.back(), Mouse_Pointer::Normal);
    ASSERT_GT(GCodeLineCount(), 2);
    EXPECT_THAT(std::string(GCode_Line(GCodeLineCount())), HasSubstr("N0"));
    EXPECT_THAT(Messages_Shown(), Contains(HasSubstr("Import report: " + std::string(menu.File))));
    EXPECT_FALSE(FileExists(Application.Temporary_GCode));

    scripted.Open_Answers.push_back(std::nullopt);
    menu.Menu();
    EXPECT_EQ(scripted.Open_Dialogs.back().Directory, Folder.Path + "/");
  }
}

TEST_F(Import_Menu_Test, Any_Extension_Goes_To_The_Chosen_Importer_And_A_Missing_File_Beeps) {
  scripted.Open_Answers.push_back(Write_File("plot.txt", Menu_Cases[1].Text));
  Menu_Import_HPGL();
  const auto lines = GCodeLineCount();
  EXPECT_GT(lines, 5);
  GCode_Program.Unsaved = false;
  scripted.Open_Answers.push_back(Folder.File("gone.dxf"));
  const int beeps = scripted.Beeps;
  Menu_Import_DXF();
  EXPECT_EQ(scripted.Beeps, beeps + 1);
  EXPECT_EQ(GCodeLineCount(), lines);
  EXPECT_EQ(scripted.Pointers.back(), Mouse_Pointer::Normal);
}

TEST_F(Import_Menu_Test, Refused_Unless_The_Machine_Stands) {
  bool shown = false;
  Bitmap_Host.Show = [&] { shown = true; };
  for (const std::int16_t mode : {CNC_Running, CNC_Paused}) {
    Machine.CNCMode = mode;
    for (const auto menu : {Menu_Import_DXF, Menu_Import_HPGL, Menu_Import_Excellon,
                            Menu_Import_Gerber, Menu_Import_Bitmap}) {
      const int beeps = scripted.Beeps;
      menu();
      EXPECT_EQ(scripted.Beeps, beeps + 1);
    }
  }
  EXPECT_TRUE(scripted.Open_Dialogs.empty());
  EXPECT_FALSE(shown);
  Machine.CNCMode = CNC_Running;
  Import_Chosen_File(Import_Kind::DXF, Write_File("part.dxf", Menu_Cases[0].Text));
  EXPECT_EQ(Messages.Panel[1], "Can't open file while CNC running");
  EXPECT_EQ(Recent.RecentFiles[1], "");
}

TEST_F(Import_Menu_Test, A_Program_That_Cannot_Be_Opened_At_The_End_Is_Told) {
  const std::string path = Write_File("part.dxf", Menu_Cases[0].Text);
  MachineSetup.DXF_Sort_Layers = true;
  Import_Host.Show_DXF_Layers = [] { Machine.CNCMode = CNC_Running; };
  Import_File(Import_Kind::DXF, path);
  EXPECT_EQ(GCodeLineCount(), 0);
  EXPECT_THAT(Messages_Shown(), Contains(HasSubstr("The new program was not opened")));
}

TEST_F(Import_Menu_Test, A_Second_Import_Waits_For_The_First) {
  const std::string path = Write_File("part.dxf", Menu_Cases[0].Text);
  MachineSetup.DXF_Sort_Layers = true;
  bool second = true;
  Import_Host.Show_DXF_Layers = [&] {
    const int beeps = scripted.Beeps;
    second = Import_File(Import_Kind::HPGL, Write_File("part.plt", Menu_Cases[1].Text));
    EXPECT_EQ(scripted.Beeps, beeps + 1);
    scripted.Open_Answers.push_back(Folder.File("part.plt"));
    Menu_Import_HPGL();
    EXPECT_EQ(scripted.Open_Answers.size(), 1U);  // not even asked
  };
  EXPECT_TRUE(Import_File(Import_Kind::DXF, path));
  EXPECT_FALSE(second);
  EXPECT_THAT(Messages.MessageLog[0], HasSubstr("part.dxf"));
  EXPECT_FALSE(Runs(Operation::Import));
}

TEST_F(Import_Menu_Test, Esc_Leaves_A_Program_With_Its_End_And_Says_So) {
  const std::string path = Write_File("part.dxf", Menu_Cases[0].Text);
  MachineSetup.DXF_Sort_Layers = true;
  Import_Host.Show_DXF_Layers = [] { Application.EscFlag = true; };
  Import_File(Import_Kind::DXF, path);
  EXPECT_THAT(Messages.MessageLog[1], HasSubstr("Cancelled by ESC: the program is incomplete"));
  EXPECT_EQ(Messages.Panel[1], Messages.MessageLog[1]);
  EXPECT_THAT(std::string(GCode_Line(GCodeLineCount())), HasSubstr("M30"));
  EXPECT_FALSE(Application.EscFlag);
}

TEST_F(Import_Menu_Test, Layers_Called_Off_Leave_The_Old_Program) {
  scripted.Open_Answers.push_back(Write_File("part.dxf", Menu_Cases[0].Text));
  Menu_Import_DXF();
  const std::string before = std::string(GCode_Line(2));
  scripted.Open_Answers.push_back(Two_Layers());
  Menu_Import_Gerber();  // what the import made is in no file; the operator thinks better of it
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("not saved"));
  EXPECT_EQ(GCode_Line(2), before);
  GCode_Program.Unsaved = false;
  Import_Host.Select_Gerber_Layers = GerberLayerSelection_Command_Cancel_Click;
  scripted.Open_Answers.push_back(Two_Layers());
  Menu_Import_Gerber();
  EXPECT_EQ(GCode_Line(2), before);
  EXPECT_THAT(Messages.MessageLog[0], HasSubstr("Import report: two.gbr"));
  EXPECT_THAT(Messages.MessageLog[1], HasSubstr("Cancelled: nothing was imported"));
  EXPECT_EQ(Messages.Panel[1], "Gerber Import Canceled");

  Import_Host.Select_Gerber_Layers = [] {
    ASSERT_EQ(GerberLayerSelection.List_Layers.size(), 2U);
    EXPECT_TRUE(GerberLayerSelection.List_Layers[0].Selected);
    GerberLayerSelection.List_Layers[0].Selected = false;
    GerberLayerSelection_Command_OK_Click();
  };
  scripted.Open_Answers.push_back(Two_Layers());
  Menu_Import_Gerber();
  EXPECT_NE(GCode_Line(2), before);
  EXPECT_THAT(Import_Report.Layers, ElementsAre("MARKS"));
}

TEST_F(Import_Menu_Test, The_End_Of_The_Program_Ends_An_Import) {
  Load_Main();
  MachineSetup.DXF_Sort_Layers = true;
  Import_Host.Show_DXF_Layers = [] { bye(); };
  Import_File(Import_Kind::DXF, Write_File("part.dxf", Menu_Cases[0].Text));
  EXPECT_TRUE(scripted.Process_Ended);
  EXPECT_TRUE(Import_Report.Cancelled);
  EXPECT_EQ(GCodeLineCount(), 0);  // the windows are gone
}

TEST_F(Import_Menu_Test, Recent_Files_Of_Every_Kind_Are_Imported) {
  for (const Menu_Case& menu : Menu_Cases) {
    GCode_Program.Unsaved = false;
    LoadRecentFile(Write_File(menu.File, menu.Text));
    EXPECT_THAT(Messages_Shown(), Contains(menu.Message + Folder.File(menu.File)));
    EXPECT_EQ(Main_Form.Caption, "Norvik 4  " + std::string(menu.File));
  }
  for (const char* name : {"a.JPG", "a.bmp", "a.Gif"}) {
    const std::string path = Write_File(name, "x");
    scripted.Pictures[path] = {1, 1, {0, 0, 0}};
    GCode_Program.Unsaved = false;
    LoadRecentFile(path);
    EXPECT_THAT(Messages_Shown(), Contains("Importing Bitmap File " + path));
  }
  EXPECT_TRUE(scripted.Boxes.empty());
}

}  // namespace
}  // namespace norvik
