#include "app/connect.h"

#include "app/gcode_file.h"
#include "app/gcode_form.h"
#include "app/import_menu.h"
#include "app/motion_menu.h"
#include "app/openers.h"
#include "app/program_findings.h"
#include "app/yield_watch.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/panel/connect.h"
#include "control/state/controller_state.h"
#include "control/state/run_consent.h"
#include "control/state/run_plot_host.h"
#include "core/application.h"
#include "core/event_sounds.h"
#include "core/messages.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "drive/priority.h"
#include "plot/cursor.h"
#include "plot/nist_plot.h"
#include "plot/plot_host.h"

#include <string>

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

// The plot draws and the run loop executes one and the same table.
void Show_New_Table() {
  Controller.Estimated_Process_Time.reset();
  Plot_New_Program();
  Show_Table_Notice();
  Show_Marks_Of_Table();
}

// What the Goto has said outlives the drawing of the program.
void Show_Program_Again() {
  const std::string said = Messages.Panel[1];
  const int seconds = Messages.Status_Timeout[1];
  Put_Back_Table();
  SetStatus(1, said, seconds);
}

// The first wires of a run lack the coordinates that nothing has named yet: there the machine stays
// where it is.
void Draw_Run_Segment(Wire wire) {
  for (int axis = 1; axis <= 3; ++axis) {
    if (!wire.Start[axis]) wire.Start[axis] = Machine.Position[axis];
    if (!wire.End[axis]) wire.End[axis] = wire.Start[axis];
  }
  Plot_Draw_Wire(wire, 0, Line_Mode_Run);
}

}  // namespace

void Connect_App() {
  Connect_Control();
  Watch_Yields();
  Setup_Host.Apply_Priority = [](std::int16_t level) { Set_Application_Priority(level); };
  Compile_Host.Highlight_Line = Highlight_Program_Line;
  Compile_Host.Play_Sound_Slot = Play_Event_Sound;
  Compile_Host.Settle_Typed_Text = Settle_Typed_Text;
  Program_Wire_Host.Installed = Show_New_Table;
  Plot_Host.Select_Program_Text = [](const std::string& text) { Gcode_Host.Select_Text(text); };
  Plot_Host.Motion_Active = [] { return Drive().Moves_Queued() > 0; };
  Run_Plot_Host.Draw_Segment = [](std::size_t, const Wire& wire) { Draw_Run_Segment(wire); };
  Run_Plot_Host.Mark_Rate_Error = [] { Plot_Mark_At_Cursor("X"); };
  Run_Plot_Host.Draw_Cursor = Draw_Machine_Position;
  Run_Plot_Host.Refresh = Plot_Refresh;
  Run_Plot_Host.Goto_Ended = Show_Program_Again;
  Run_Consent.May_Begin = May_Begin_Run;
  Register_Opener(Opened_Kind::GCode, [](const std::string& path) { Open_GCode(path); });
  Connect_Importers();
  Connect_Tools();
}

}  // namespace norvik
