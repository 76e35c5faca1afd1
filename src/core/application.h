// application.h: what lives as long as the process: folders, files and the process-wide flags.
//
//   flag             set by                        read by           cleared by
//   ------------------------------------------------------------------------------------------
//   EscFlag          ESC poll, failed serial move  every long loop   whoever consumes it
//   ShutdownFlag     bye                           timers, run loop  never
//   Closing_Program  bye                           run loop, waits   never
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <string>

namespace norvik {

struct Application_State {
  // --- Folders and files, fixed at start -------------------------------------------------------
  std::string AppDirectory;     // working folder; all working files hang under it
  std::string Pointer_Folder;   // where Norvik.Ini lies
  std::string Table_Folder;     // where the compile tables and traces lie
  std::string MachineFile;      // full path of the machine file
  std::string ErrorFile;        // full path of the error log
  std::string Temporary_GCode;  // "TEMP_NORVIK999.GC": written by importers, loaded and deleted
  std::string DXF_Scratch, HPGL_Scratch, Bitmap_Scratch, Gerber_Scratch;

  // The regional decimal sign, "." or ",".
  char DecimalSeparator = '.';

  bool EscFlag = false;
  bool ShutdownFlag = false;
  bool Closing_Program = false;
  std::int16_t SelfTestValue = 0;  // `INI_Save_Test` as last loaded; 123 after a good save
};
extern Application_State Application;

// Run modes.
inline constexpr std::int16_t CNC_Stopped = 0, CNC_Paused = 1, CNC_Stepped = 2, CNC_Running = 3;

// Where the machine is and what it is doing. Lengths in units of the setup, axes 1..4 are X, Y, Z
// and A; 5 and 6 are carried and unused.
struct Machine_State {
  Indexed<double, 1, 6> Position;         // live position
  Indexed<double, 1, 6> Absolute_Pos;     // by the machine's own origin; 0 after each start
  Indexed<double, 1, 6> Theoretical_Pos;  // by counted commands
  std::int16_t CNCMode = CNC_Stopped;
  std::int32_t Run_Step = 0;  // the step to run next
  std::int32_t StartingStep = 1, EndingStep = 0;
  bool EStop_Flag = false;
  // False: a jog has been released and its move must end at the next full step.
  bool Jog_Stop_Request = true;
};
extern Machine_State Machine;

// Tool table of the tool file: diameter and length in units of the setup, 0 where the file has
// none.
struct Tool_Table {
  Indexed<double, 0, 200> Diameter, Length;
};
extern Tool_Table Tools;

}  // namespace norvik
