#include "app/machine_menu.h"

#include "app/drive_session.h"
#include "app/forms.h"
#include "app/main_form.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/view.h"

namespace norvik {

namespace {

constexpr const char* Filter = "All Files (*.*)|*.*|INI Files (*.ini)|*.ini";
constexpr const char* Reset_Question =
    "Proceeding with this function will destroy your current settings.  Are you sure you want to "
    "restore all parameters back to factory defaults?";
constexpr const char* Reset_Done = "Your parameters have been restored the the factory settings";

File_Dialog Setup_Dialog(const char* title) {
  return {title, Filter, Last_File(File_Kind::Setup).Directory, "", "ini"};
}

void Show_Machine_Name() {
  Set_Panel(4, FileNameStem(PathFileName(Application.MachineFile)));
}

// Every key read as empty, then written.
void Restore_All_Parameters() {
  Setup_Store.RestoringDefaults = true;
  LoadMachineSetup();
  Setup_Store.RestoringDefaults = false;
  SaveMachineSetup();
}

}  // namespace

void Menu_Machine_Create_New_Machine() {
  const auto path = Platform.Save_File_Dialog(Setup_Dialog("Create New Machine"));
  if (!path) return;
  const std::string before = Application.MachineFile;
  SetMachineName(*path);
  if (!SaveMachineSetup()) {
    SetMachineName(before);
    return;
  }
  RememberFile(File_Kind::Setup, *path);
  Show_Machine_Name();
}

void Menu_Machine_Load_Machine_Setup() {
  if (!Stopped_For("Can't load a machine setup")) return;
  const auto path = Platform.Open_File_Dialog(Setup_Dialog("Load Machine Setup"));
  if (!path) return;
  if (!Application.ShutdownFlag) Take_Machine_File(*path);
}

void Take_Machine_File(const std::string& path) {
  End_Drive_Session();  // as long as the pins mean what they have been
  SetMachineName(path);
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
  UnLoad_Forms();
  LoadMachineSetup();
  Begin_Drive_Session();
  RememberFile(File_Kind::Setup, path);
  ReLoad_Forms();
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  Zoom_Table();
  Tell_Session_Start();
}

void Command_Parameter_Reset_Click() {
  if (!Stopped_For("Can't restore the parameters")) return;
  const Box_Answer answer =
      Platform.Message_Box("Parameter Restore", Reset_Question, Box_Buttons::Yes_No_Cancel_Careful);
  if (answer != Box_Answer::Yes) return;
  // It shows the machine that stands beside the computer, which no parameter takes away.
  const bool simulated_was_open = Main_Host.View_Of(Form_Id::Simulated_Machine).Visible;
  Main_Host.Unload_Other_Windows();
  for (const Form_Id form : {Form_Id::CNC_Controls, Form_Id::GCode, Form_Id::Plot}) {
    Main_Host.Unload_Form(form);
  }
  DoEvents();
  if (Application.ShutdownFlag) return;
  End_Drive_Session();  // as long as the pins mean what they have been
  Restore_All_Parameters();
  Begin_Drive_Session();
  Show_Open_Forms();
  if (simulated_was_open) Main_Host.Show_Form(Form_Id::Simulated_Machine);
  Platform.Message_Box("Parameter Restore", Reset_Done, Box_Buttons::Ok);
  Tell_Session_Start();
}

}  // namespace norvik
