#include "control/panel/run_program.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/displays/displays.h"
#include "control/motion/machine_move.h"
#include "control/motion/motion.h"
#include "control/motion/waits.h"
#include "control/panel/panel.h"
#include "control/run/cnc_controller.h"
#include "control/safety/safety.h"
#include "control/state/control_texts.h"
#include "control/state/controller_state.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/corrections.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/scope.h"
#include "core/setup.h"
#include "core/waiting.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>

namespace norvik {

namespace {

constexpr int Panel_Interval_ms = 250;

// The panel's timer for as long as the run lasts, and the watch of switches and E-stop: a simulated
// run has no session of the drive that would keep it.
class Panel_Timer {
 public:
  explicit Panel_Timer(const Run_Options& options)
      : Id(Platform.Start_Timer(Panel_Interval_ms, [&options] {
          Watch_Machine();
          CNC_Controls_Timer1();
          options.Progress(Machine.Run_Step, Machine.EndingStep);
        })) {}
  ~Panel_Timer() { Platform.Stop_Timer(Id); }
  Panel_Timer(const Panel_Timer&) = delete;
  Panel_Timer& operator=(const Panel_Timer&) = delete;

 private:
  Timer_Id Id;
};

// Looks for ESC in the yields of a compile. A compile that ESC cut short leaves whole tables of a
// shorter program, which must not be run as if it were the whole.
class Esc_Watch {
 public:
  Esc_Watch() : Before(Platform.Do_Events) {
    Platform.Do_Events = [this] {
      Before();
      Seen = CheckEsc() || Application.EscFlag || Seen;
    };
  }
  ~Esc_Watch() { Platform.Do_Events = Before; }
  Esc_Watch(const Esc_Watch&) = delete;
  Esc_Watch& operator=(const Esc_Watch&) = delete;

  bool Seen = false;

 private:
  std::function<void()> Before;
};

// Compiles into the executing table. The operator's words when that failed, empty otherwise.
std::string Compile_For_Run() {
  const Esc_Watch esc;
  const bool compiled = CompileProgram();
  if (esc.Seen || CheckEsc()) return "Cancelled by ESC while the program was compiled.";
  return compiled ? "" : Messages.LastMessage;
}

// Every wire carries the tool in use; only the word M6, outside comments, asks for another.
bool Is_Tool_Change(std::string_view block) {
  bool comment = false;
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (block[i] == '(') comment = true;
    if (block[i] == ')') comment = false;
    if (comment || (block[i] != 'M' && block[i] != 'm')) continue;
    const auto first = block.find_first_not_of(" 0", i + 1);
    if (first == std::string_view::npos || block[first] != '6') continue;
    const auto behind = block.substr(first + 1, 1);
    if (behind.find_first_of("0123456789.") == std::string_view::npos) return true;
  }
  return false;
}

// What the run waits for.
Run_Pause Present_Pause() {
  Run_Pause pause;
  pause.Step = Controller.Step_Done;
  for (auto k = Program_Wire.Next_Of_Step(pause.Step, 0); k;
       k = Program_Wire.Next_Of_Step(pause.Step, *k + 1)) {
    const Wire& wire = Program_Wire.Rows()[*k];
    if (wire.Dwell != -1) continue;
    pause.Block = wire.Block_Text;
    if (wire.Tool && Is_Tool_Change(pause.Block)) pause.Tool = *wire.Tool;
  }
  return pause;
}

// True when the run goes on. Whatever stopped it meanwhile comes before the answer.
bool Goes_On_After_Pause(const Run_Options& options) {
  const auto why_not = options.At_Pause(Present_Pause());
  if (Machine.CNCMode != CNC_Paused || Interrupted() != Interruption::None) return false;
  if (!why_not) return true;
  Controller.Stop_Text = *why_not;
  return false;
}

Run_Summary Sum_Up() {
  Run_Summary summary;
  summary.Ended_By = End_Reason();
  summary.Finished =
      summary.Ended_By.empty() && Machine.CNCMode == CNC_Stopped && !Application.Closing_Program;
  summary.Steps = Controller.Steps_Executed;
  summary.Last_Step = Machine.EndingStep;
  summary.Wires = static_cast<std::int64_t>(Program_Wire.Count());
  summary.Machine_Run_Time = Controller.Machine_Run_Time;
  for (int axis = 1; axis <= 4; ++axis) summary.Position[axis] = Machine.Position[axis];
  return summary;
}

// A port that fails stops nothing, but a run on it is not a finished one.
Run_Summary Sum_Up_Run(std::int64_t failed_before) {
  Run_Summary summary = Sum_Up();
  const std::int64_t failed = Drive().Failures() - failed_before;
  if (failed == 0) return summary;
  summary.Finished = false;
  summary.Ended_By += (summary.Ended_By.empty() ? "" : " ") +
                      std::string(control_text::Run_Without_Port) + std::to_string(failed) + ".";
  return summary;
}

Run_Summary Failed(std::string_view why) {
  Run_Summary summary = Sum_Up();
  summary.Finished = false;
  summary.Steps = 0;
  summary.Ended_By = why;
  return summary;
}

}  // namespace

Run_Summary Run_Compiled_Program(const Run_Options& options) {
  const Value_In_Scope trace(Move_Trace.Path, options.Trace_File);
  const Panel_Timer timer(options);
  Machine.StartingStep = std::max(Machine.StartingStep, 1);
  Controller.Steps_Executed = 0;
  const std::int64_t failed_before = Drive().Failures();
  if (!Begin_Operation(Operation::Run)) return Failed(Messages.Panel[1]);
  if (const std::string why_not = Unfit_To_Run(); !why_not.empty()) return Failed(why_not);
  do {
    Command_CNC_Play_Click();
  } while (Machine.CNCMode == CNC_Paused && Goes_On_After_Pause(options));
  if (Machine.CNCMode == CNC_Paused) CNC_Stop();
  return Sum_Up_Run(failed_before);
}

Run_Summary Run_Program(const Run_Options& options) {
  if (!Stopped_For("Can't compile")) return Failed(Messages.Panel[1]);
  if (!Position_Memory.Doubt.empty()) return Failed(Position_Memory.Doubt);
  const std::string no_table = options.Load_Table ? options.Load_Table() : Compile_For_Run();
  if (!no_table.empty()) return Failed(no_table);
  if (const std::string why = options.Compiled(); !why.empty()) return Failed(why);
  Machine.StartingStep = 1;
  Machine.EndingStep = Last_Program_Step();
  Run_Summary summary = Run_Compiled_Program(options);
  if (summary.Finished && (Compile_Losses.Records_Cut || Compile_Losses.Wires_Cut)) {
    summary.Finished = false;
    summary.Ended_By = control_text::Run_Of_A_Cut_Program;
  }
  return summary;
}

std::string Summary_Text(const Run_Summary& summary) {
  std::string text = summary.Finished ? "Finished" : "Ended early: " + summary.Ended_By;
  text += "\nSteps: " + std::to_string(summary.Steps) + " of " + std::to_string(summary.Last_Step);
  text += "\nWires: " + std::to_string(summary.Wires);
  text += "\nRun time: " + Convert_Process_Time(summary.Machine_Run_Time);
  text += " (" + Format_Number_Point(summary.Machine_Run_Time, "0.000") + " s)";
  text += "\nPosition:";
  for (int axis = 1; axis <= 4; ++axis)
    text += std::string(" ") + Axis_Letter(axis) +
            Format_Number_Point(summary.Position[axis], "0.000000");
  if (const std::string corrections = Corrections_Line(); !corrections.empty()) {
    text += "\n" + corrections;
  }
  return text + "\n";
}

}  // namespace norvik
