#include "app/startup.h"

#include "app/drive_session.h"
#include "app/folders.h"
#include "app/forms.h"
#include "app/main_form.h"
#include "app/shutdown.h"
#include "app/timers.h"
#include "compiler/compile/table_pair.h"
#include "compiler/state/compiler_state.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/beside_machine.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "core/tool_file.h"
#include "drive/drive.h"
#include "plot/view.h"

#include <filesystem>

namespace norvik {

Main_Window_State Main_Window;

namespace {

constexpr int Timer1_ms = 100, Timer2_ms = 1000;
constexpr int Joystick_Device = 0;
constexpr const char* No_Pointer_Text =
    "Norvik.ini could not be found.  Use the Setup menus to initialize all parameters before using "
    "Norvik 4";

void Read_Pointer_File() {
  Main_Window.Pointer_File_Was_There = FileExists(Pointer_File());
  Read_Remembered_Files();
  Read_Machine_Name();
}

void Read_Tools() {
  const std::string folder = Join_Path(Application.AppDirectory, "Tools");
  std::error_code ignored;
  std::filesystem::create_directory(folder, ignored);
  MachineSetup.Tool_Directory = folder;
  Read_Tool_File(Beside_Machine_File(MachineSetup.Tool_File_Name));
}

// The setup of the desktop, which keeps one error log over all its starts.
void Load_Desktop_Machine() {
  Application.SelfTestValue = GetInt(ReadSetup("General", "INI_Save_Test"), Sentinel::Zero, 999);
  ReadPointer("test", "test1234");  // a touch of the file, without effect
  Load_Machine([] {
    if (MachineSetup.ErrorFile_AutoClear) Reset_Error_Log();
    return !Application.ShutdownFlag;  // asked to end while a box of the load was open
  });
}

void Restore_Positions() {
  Load_Axis_Positions();
  Drive().Set_Position();
}

// What a program that was cut short has left, for whoever reads the tables.
void Tell_Mixed_Tables() {
  if (Standing_Of_Pair(Application.Table_Folder) != Pair_Standing::Mixed) return;
  const std::string words = Words_About_Mixed_Pair(Application.Table_Folder);
  ErrorLogWrite(words);
  AddMessage(words);
}

void Start_Timers() {
  Main_Window.Timer1 = Platform.Start_Timer(Timer1_ms, Main_Timer1);
  Main_Window.Timer2 = Platform.Start_Timer(Timer2_ms, Main_Timer2);
}

// False, after saying why, when the port belongs to another program.
bool Open_Drive() {
  const bool opened = Trap_With(
      [](const Fault& refused) {
        ErrorLogWrite(refused.Description);
        Platform.Message_Box("Norvik 4", refused.Description, Box_Buttons::Ok);
      },
      [] { Main_Host.Open_Port(); });
  if (!opened) return false;
  Begin_Drive_Session();
  return true;
}

}  // namespace

bool Load_Machine(const std::function<bool()>& loaded) {
  const bool readable = LoadMachineSetup();
  if (!loaded()) return readable;
  Read_Tools();
  Compiler.TravelFeed = MachineSetup.Axis_Feed_Rate_Travel;
  Compiler.CutFeed = MachineSetup.Axis_Feed_Rate_Cut;
  return readable;
}

void Load_Main() {
  if (Platform.Other_Instance_Runs()) {
    Platform.Message_Box(
        "Norvik 4",
        "Norvik is already running. Work with the window that is open, or end it "
        "before you start the program again. If no window is open, the folder "
        "norvik-<number> in the temporary folder belongs to somebody else: have it "
        "removed.",
        Box_Buttons::Ok);
    bye();
    return;
  }
  Application.DecimalSeparator = Regional_Decimal_Sign();
  Read_Pointer_File();
  Load_Desktop_Machine();
  if (Application.ShutdownFlag) return;
  Restore_Positions();
  Start_Timers();
  Read_Recent_Files();
  if (!Open_Drive()) return bye();
  Main_Host.Place_Main(Read_Form_Place(Form_Id::Main));
  Show_Open_Forms();
  // The first reading opens the device, which takes its time: here, and not in the first jog.
  Platform.Read_Joystick(Joystick_Device);
  Tell_Mixed_Tables();
  AddMessage("Starting Norvik");
}

void Activate_Main() {
  if (Main_Window.Was_Activated) return;
  Main_Window.Was_Activated = true;
  Main_Host.Show_Form(Form_Id::Plot);
  if (!Main_Window.Pointer_File_Was_There) {
    Platform.Message_Box("Norvik 4", No_Pointer_Text, Box_Buttons::Ok);
    ErrorLogWrite("New Norvik.ini Created");
  }
  Zoom_Table();
  Tell_Session_Start();
}

}  // namespace norvik
