#include "app/gcode_form.h"

#include "app/program_findings.h"
#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/motion/motion.h"
#include "control/state/cnc_controls_form.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"
#include "plot/plot_host.h"

#include <algorithm>
#include <vector>

namespace norvik {

Gcode_Form_Record Gcode_Form;
Gcode_Host_Operations Gcode_Host;

namespace {

constexpr std::int32_t Lines_Per_Yield = 500;

std::int32_t& Current_Step() {
  return Compile_Status.CurrentStep;
}

// Percent of `part` in the count of lines.
std::string Line_Percent(std::int32_t part, std::string_view pattern) {
  const std::int32_t all = std::max(GCodeLineCount(), 1);
  return Format_Number(100.0 * part / all, pattern);
}

// A whole number typed by the operator; what is none counts as 0.
std::int32_t Typed_Step(const std::string& text) {
  return GetLong(text, Sentinel::Empty, 0);
}

}  // namespace

void Text_GCode_Change() {
  GCode_Program.Typed_Waits = GCode_Program.Unsaved = true;
  SetStatus(1, "GCode has changed and needs to be compiled.", 5);
  Show_Table_Notice();
}

void Settle_Typed_Text() {
  if (!GCode_Program.Typed_Waits) return;
  Trap("SaveChanges", [] {
    GCode_Program.Typed_Waits =
        !Same_Lines(GCode_Text(Gcode_Host.Typed_Text()), *GCode_Program.Text);
  });
  Show_Table_Notice();
}

void Take_Typed_Text() {
  if (!GCode_Program.Typed_Waits) return;
  const auto before = GCode_Program.Text;
  SaveChanges(Gcode_Host.Typed_Text());
  GCode_Program.Typed_Waits = GCode_Program.Text == before;  // a text that was refused still waits
  Display_Gcode_Steps();
}

void Gcode_Step_Display() {
  Current_Step() = std::min(Current_Step(), GCodeLineCount());
  SetStatus(1, "GCode Step Display: Displaying data...", 5);
  // The opening text stands its time; a share of the way is out of date at the end.
  const Progress_Status progress("GCode Step Display: Displaying data ");
  const auto program = GCode_Program.Text;  // a handler in a yield may replace it
  std::string text;
  text.reserve(program->Whole().size());
  for (std::int32_t line = 1; line <= program->Line_Count(); ++line) {
    text.append(program->Line(line)).append("\r\n");
    if (line % Lines_Per_Yield != 0) continue;
    SetStatus(1,
              "GCode Step Display: Displaying data " + Line_Percent(line, "###.00") + "% completed",
              5);
    DoEvents();
  }
  if (GCode_Program.Text == program) GCode_Program.Text = std::make_shared<const GCode_Text>(text);
  Gcode_Host.Show_Program();
  GCode_Program.Typed_Waits = false;
  Range_To_Whole_Program();
  Display_Gcode_Steps();
}

void Text_GCode_DblClick(std::int32_t text_line) {
  const std::int32_t step = Step_Of_Text_Line(text_line);
  if (step < 1) return;
  // The plot shows what was compiled; a line of a newer text has another step there, or none.
  const Table_Origin& drawn = Program_Wire.Program_Origin();
  if (drawn.Kind == Table_Kind::Motion_File) {
    SetStatus(1, "The plot shows a motion file, not this text.", 5);
    return;
  }
  if (GCode_Program.Typed_Waits || (drawn.Sources && !Is_Of_Present_Text(*drawn.Sources))) {
    Tell("The text is newer than the plot: compile it (Ctrl+B) to mark its lines.", 5);
    return;
  }
  Plot_Highlight_Step(step);
  SetStatus(1, GCode_Line(step), 5);
}

void Print_Data() {
  if (!Stopped_For("Can't print")) return;
  Take_Typed_Text();
  const Progress_Status progress("GCode Printing");
  const auto program = GCode_Program.Text;
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(program->Line_Count()));
  for (std::int32_t line = 1; line <= program->Line_Count(); ++line) {
    lines.emplace_back(program->Line(line));
    if (line % Lines_Per_Yield != 0) continue;
    SetStatus(1, "GCode Printing. " + Line_Percent(line, "##0.00") + "% completed", 5);
    DoEvents();
  }
  if (!Platform.Print_Lines(lines))
    Tell("Nothing was printed: there is no printer, or it was cancelled.", 5);
}

void Command_Update_Click() {
  static bool in_handler = false;
  if (in_handler || Program_Is_Held()) {
    Platform.Beep();
    return;
  }
  if (!Stopped_For("Can't compile")) return;
  const Value_In_Scope inside(in_handler, true);  // a compile that fails too leaves the button free
  Take_Typed_Text();
  Gcode_Host.GCode_HighlightAll();
  GCode_Compile_All();
  Display_Gcode_Steps();
  Check_After_Compile();
}

bool Begin_Check() {
  if (Anything_Moves() && !Stopped_For("Can't check")) return false;
  Take_Typed_Text();
  return true;
}

void Command_GStep_Click() {
  if (Machine.CNCMode != CNC_Stopped || Program_Is_Held()) {
    Platform.Beep();
    return;
  }
  const Operation_Scope edit(Operation::Edit);  // keeps other compile actions out
  Current_Step() = std::max(Current_Step(), Machine.StartingStep);
  Plot_Highlight_Step(Current_Step());
  if (Current_Step() < GCodeLineCount()) ++Current_Step();
  Display_Gcode_Steps();
}

void Command_GCode_Reset_Click() {
  Current_Step() = Machine.StartingStep;
  Display_Gcode_Steps();
  if (MachineSetup.Plot_Show_Grid == 1) NIST_RePlot();
}

void Gcode_StartingStep_Change() {
  if (!Gcode_Form.Text_StartingStep.Enabled) return Display_Gcode_Steps();
  Machine.StartingStep = std::max(Typed_Step(Gcode_Form.Text_StartingStep.Text), 1);
}

void Gcode_EndingStep_Change() {
  if (!Gcode_Form.Text_EndingStep.Enabled) return Display_Gcode_Steps();
  const std::int32_t typed = Typed_Step(Gcode_Form.Text_EndingStep.Text);
  Machine.EndingStep = std::max(Machine.StartingStep, std::min(typed, Last_Program_Step()));
}

void Refresh_Step_Range() {
  const bool enabled = CNC_Controls.Text_StartingStep.Enabled;
  if (Gcode_Form.Text_StartingStep.Enabled == enabled) return;
  Gcode_Form.Text_StartingStep.Enabled = Gcode_Form.Text_EndingStep.Enabled = enabled;
  Display_Gcode_Steps();
}

namespace {

std::string Table_Notice() {
  const Table_Judgement table = Judge_Program_Table();
  const bool of_motion_file = Program_Wire.Program_Origin().Kind == Table_Kind::Motion_File;
  switch (table.Standing) {
    case Table_Standing::Other_Text:
      if (GCodeLineCount() == 0 && !GCode_Program.Typed_Waits && Program_Wire.Count() == 0)
        return {};
      return "The text is newer than what is drawn and runs: compile it (Ctrl+B).";
    case Table_Standing::Cut_Short:
      if (of_motion_file) return "Lines of the motion file are missing: load it again to run it.";
      return "The compile was cut short: this is not the whole program.";
    case Table_Standing::Other_Sources:
      return table.Changed + " has changed since the compile: compile again (Ctrl+B).";
    case Table_Standing::Ready:
    case Table_Standing::Of_Goto:
      break;
  }
  if (of_motion_file && GCodeLineCount() > 0)
    return "A motion file is drawn and runs, not this text: compile (Ctrl+B) to go back to it.";
  return {};
}

}  // namespace

void Show_Table_Notice() {
  std::string notice = Table_Notice();
  if (Gcode_Form.Label_Table_Notice.Caption == notice) return;
  Gcode_Form.Label_Table_Notice.Caption = std::move(notice);
  Gcode_Form.Label_Table_Notice.Color = Control_Color::Red;
  Gcode_Host.Form_Changed();
  CNC_Controls_Host.Form_Changed();
  Plot_Host.Form_Changed();
}

void Display_Gcode_Steps() {
  const std::int32_t step = Current_Step();
  const bool has_line = step >= 1 && step <= GCodeLineCount();
  Gcode_Form.Label_GC_NOS.Caption = std::to_string(GCodeLineCount());
  Gcode_Form.Label_GStep.Caption = std::to_string(step);
  Gcode_Form.Label_CGStep.Caption = has_line ? std::string(GCode_Line(step)) : std::string();
  // 0, as a compile leaves it, runs from the first step too.
  Gcode_Form.Text_StartingStep.Text = std::to_string(std::max(Machine.StartingStep, 1));
  Gcode_Form.Text_EndingStep.Text = std::to_string(Machine.EndingStep);
  Gcode_Host.Form_Changed();
}

namespace {

struct Feed_Box {
  std::string_view Key;
  float Machine_Setup::*Field;
  float Compiler_State::*Working;
};
constexpr Feed_Box Feed_Boxes[] = {
    {"Axis_Feed_Rate_Travel", &Machine_Setup::Axis_Feed_Rate_Travel, &Compiler_State::TravelFeed},
    {"Axis_Feed_Rate_Cut", &Machine_Setup::Axis_Feed_Rate_Cut, &Compiler_State::CutFeed},
};

std::string Feed_Text(float feed) {
  return RegionalFix(Shortest_Text(feed));
}

}  // namespace

void Display_Parameters() {
  Gcode_Form.Label_FRUnits.Caption =
      std::string(MachineSetup.UnitsofMeasurement == 1 ? "mm" : "I") + "PM";
  for (int index = 0; index <= 1; ++index) {
    Gcode_Form.Text_Feed_Rates[index].Text = Feed_Text(MachineSetup.*Feed_Boxes[index].Field);
  }
  Gcode_Host.Form_Changed();
}

void Text_Feed_Rates_Change(int index) {
  const std::string typed = Gcode_Form.Text_Feed_Rates[index].Text;
  const Feed_Box& box = Feed_Boxes[index];
  float& feed = MachineSetup.*box.Field;
  const float wanted = GetFloat(typed, Sentinel::Zero, feed);
  if (wanted > 0 && wanted != feed) {
    feed = Compiler.*box.Working = wanted;
    WriteSetup("Axis", box.Key, Feed_Text(feed));
  }
  Display_Parameters();
}

}  // namespace norvik
