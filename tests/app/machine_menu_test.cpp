// Making, loading and resetting a machine setup; the layout of the windows.
#include "app/machine_menu.h"

#include "app/app_fixture.h"

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Machine_Menu_Test : App_Test {
  Machine_Menu_Test() { Restore_Factory_Setup(); }
};

TEST_F(Machine_Menu_Test, Create_Writes_The_Present_Parameters) {
  MachineSetup.Arc_Resolution = 77;
  const std::string path = Folder.File("router.ini");
  scripted.Save_Answers.push_back(path);
  Menu_Machine_Create_New_Machine();
  EXPECT_EQ(scripted.Save_Dialogs[0].Filter, "All Files (*.*)|*.*|INI Files (*.ini)|*.ini");
  EXPECT_EQ(Application.MachineFile, path);
  EXPECT_EQ(ReadSetup("General", "Arc_Resolution"), "77");
  EXPECT_EQ(ReadPointer("General", "INI_Source_File_Name"), "router.ini");
  EXPECT_EQ(Messages.Panel[4], "router");
  scripted.Save_Answers.push_back(Folder.File("no/such/folder.ini"));
  Menu_Machine_Create_New_Machine();
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("not saved"));
  EXPECT_EQ(Application.MachineFile, path);  // the old one stays
  EXPECT_EQ(ReadPointer("Machine", "Name"), path);
}

TEST_F(Machine_Menu_Test, Load_Takes_Over_Setup_And_Layout) {
  const std::string path =
      Write_File("other.ini",
                 "[General]\nINI_Save_Test=123\nArc_Resolution=99\n"
                 "[Form Position]\nGCode_Open=True\nCNC_Controls_Open=False\n");
  for (const Form_Id form : {Form_Id::Plot, Form_Id::CNC_Controls}) Main_Host.Show_Form(form);
  Trace.clear();
  Machine.CNCMode = CNC_Paused;
  Menu_Machine_Load_Machine_Setup();
  EXPECT_TRUE(scripted.Open_Dialogs.empty());  // not while a run is paused
  Machine.CNCMode = CNC_Stopped;
  scripted.Open_Answers.push_back(path);
  Menu_Machine_Load_Machine_Setup();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 99);
  EXPECT_EQ(Application.MachineFile, path);
  EXPECT_THAT(Trace,
              ElementsAre("unload Plot", "unload GCode", "unload CNC_Controls", "unload JogKey",
                          "unload Port_IO", "unload Simulated_Machine", "place Main",
                          "show Plot",  // the file says nothing: as it was
                          "show GCode"));
  EXPECT_EQ(scripted.Pointers.front(), Mouse_Pointer::Busy);
  EXPECT_EQ(scripted.Pointers.back(), Mouse_Pointer::Normal);
}

TEST_F(Machine_Menu_Test, Reset_Asks_First) {
  MachineSetup.Arc_Resolution = 77;
  MachineSetup.Axis_Format = "0.0";
  scripted.Answer_Box(Box_Answer::No);
  Command_Parameter_Reset_Click();
  EXPECT_EQ(MachineSetup.Arc_Resolution, 77);
  scripted.Answer_Box(Box_Answer::Yes);
  Command_Parameter_Reset_Click();
  EXPECT_EQ(scripted.Boxes[0].Title, "Parameter Restore");
  EXPECT_EQ(scripted.Boxes.back().Text,
            "Your parameters have been restored the the factory settings");
  EXPECT_EQ(MachineSetup.Arc_Resolution, 180);
  EXPECT_EQ(ReadSetup("General", "Arc_Resolution"), "180");
  EXPECT_EQ(ReadSetup("Axis", "Axis_Format"), "000.000");
  EXPECT_FALSE(Setup_Store.RestoringDefaults);
}

TEST_F(Machine_Menu_Test, The_Layout_Is_Written) {
  Main_Host.Show_Form(Form_Id::GCode);
  Save_Default_Form_View();
  EXPECT_EQ(ReadSetup("Form Position", "GCode_Open"), "True");
  EXPECT_EQ(ReadSetup("Form Position", "GCode_Left"), "450");
  EXPECT_EQ(ReadSetup("Form Position", "Plot_Open"), "");
}

}  // namespace
}  // namespace norvik
