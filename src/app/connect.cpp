#include "app/connect.h"

#include "app/gcode_file.h"
#include "app/gcode_form.h"
#include "app/import_menu.h"
#include "app/openers.h"
#include "app/yield_watch.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/connect.h"
#include "control/controller_state.h"
#include "control/run_plot_host.h"
#include "core/application.h"
#include "core/event_sounds.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/priority.h"
#include "plot/cursor.h"
#include "plot/nist_plot.h"
#include "plot/plot_host.h"

#include <utility>

namespace norvik {

namespace {

// The compiler names lines of macros too; only a line of the program can be marked.
void Highlight_Program_Line(std::int32_t line_number, std::string_view text) {
  if (line_number < 1 || line_number > GCodeLineCount()) return;
  if (GCode_Line(line_number) == text) {
    Gcode_Host.GCode_HighlightWords(Text_Line_Of_Step(line_number));
  }
}

void Draw_Machine_Position() {
  Draw_Spindle_Position(Machine.Position[1], Machine.Position[2], Machine.Position[3]);
  Draw_Spindle();
}

// The compile hands its wires over: the plot draws and the run loop executes one and the same
// table.
void Show_Compiled_Program(bool whole) {
  Controller.Estimated_Process_Time.reset();
  Program_Wire.Standing = Wire_Standing::Cut_Short;  // stays where the table cannot be taken
  Take_Program_Wire(std::move(Compile_Tables.Program_Wire));
  if (whole) Program_Wire.Standing = Wire_Standing::Whole;
  Plot_New_Program();
}

void Show_Goto_Line() {
  Controller.Estimated_Process_Time.reset();
  Program_Wire.Of_Goto = true;
  Plot_New_Program();
}

}  // namespace

void Connect_App() {
  Connect_Control();
  Watch_Yields();
  Setup_Host.Apply_Priority = [](std::int16_t level) { Set_Application_Priority(level); };
  Compile_Host.Highlight_Line = Highlight_Program_Line;
  Compile_Host.Play_Sound_Slot = Play_Event_Sound;
  Compile_Host.Refresh_Plot = Show_Compiled_Program;
  Plot_Host.Select_Program_Text = [](const std::string& text) { Gcode_Host.Select_Text(text); };
  Plot_Host.Motion_Active = [] { return Drive().Moves_Queued() > 0; };
  Run_Plot_Host.Draw_Segment = [](std::size_t, const Wire& wire) {
    Plot_Draw_Wire(wire, 0, Line_Mode_Run);
  };
  Run_Plot_Host.Mark_Rate_Error = [] { Plot_Mark_At_Cursor("X"); };
  Run_Plot_Host.Draw_Cursor = Draw_Machine_Position;
  Run_Plot_Host.Refresh = Plot_Refresh;
  Run_Plot_Host.Program_Replaced = Show_Goto_Line;
  Register_Opener(Opened_Kind::GCode, [](const std::string& path) { Open_GCode(path); });
  Connect_Importers();
}

}  // namespace norvik
