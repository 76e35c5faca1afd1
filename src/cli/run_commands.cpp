// The commands `run` and `estimate`.
#include "app/drive_session.h"
#include "cli/adapt_command.h"
#include "cli/companion.h"
#include "compiler/state/compile_losses.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/displays/displays.h"
#include "control/motion/machine_move.h"
#include "control/motion/waits.h"
#include "control/panel/connect.h"
#include "control/panel/run_program.h"
#include "control/safety/safety.h"
#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/setup_tail.h"
#include "core/waiting.h"
#include "drive/drive.h"
#include "parallel/ports.h"
#include "parallel/read_back.h"
#include "platform/platform.h"
#include "serial/frame_log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace norvik {

namespace {

struct Run_Command_Options {
  std::string Program, Trace, Ports, Frames;
  std::string Clock = "real";
  bool No_Pause = false;
  bool Save_Positions = false, Confirm_Positions = false, Accept_Losses = false;
  bool Confirm_Setup = false, Adapt = false;
};

void Print_Progress(std::int32_t step, std::int32_t last_step) {
  if (isatty(STDERR_FILENO) == 0) return;
  if (Machine.CNCMode == CNC_Paused) return;  // the question of the pause stands there
  Print_Status_Line("Step " + std::to_string(step) + " of " + std::to_string(last_step));
}

// --- Pauses --------------------------------------------------------------------------------------

constexpr const char* End_Answer = "q";

// "step 5 (T2 M6): change to tool 2"
std::string Pause_Words(const Run_Pause& pause) {
  std::string words = "step " + std::to_string(pause.Step);
  if (!pause.Block.empty()) words += " (" + pause.Block + ")";
  if (pause.Tool) words += ": change to tool " + Shortest_Text(*pause.Tool);
  return words;
}

// The line that the operator typed; absent when none came within `wait_ms`. The end of the input
// answers as who wants to end. A process in the background leaves the terminal to the others.
std::optional<std::string> Typed_Line(int wait_ms) {
  const pid_t in_front = ::tcgetpgrp(STDIN_FILENO);
  const bool may_read = in_front == ::getpgrp() || in_front < 0;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  if (::poll(&input, may_read ? 1 : 0, wait_ms) <= 0) return std::nullopt;
  std::array<char, 256> text{};
  const ssize_t count = ::read(STDIN_FILENO, text.data(), text.size());
  if (count < 0 && errno == EINTR) return std::nullopt;
  if (count <= 0) return End_Answer;
  const std::string_view typed(text.data(), static_cast<std::size_t>(count));
  return Trim(typed.substr(0, typed.find_first_of("\r\n")));
}

// A pause asks the operator. Stops are heard meanwhile, and motors are switched off as their option
// says.
std::optional<std::string> Ask_At_Pause(const Run_Pause& pause) {
  constexpr int look_ms = 20;
  if (isatty(STDIN_FILENO) == 0) {
    return "the program pauses behind " + Pause_Words(pause) +
           ", and standard input is no terminal to ask at. Start the run in a terminal, or with "
           "--no-pause to go on at every pause.";
  }
  ::tcflush(STDIN_FILENO, TCIFLUSH);  // what was typed before is no answer to this
  Print_Status_Line("Paused behind " + Pause_Words(pause) + ". Enter goes on, q ends the run: ");
  std::optional<std::string> answer;
  Yield_Until([&] {
    if (!Look_At_Stops()) return true;
    answer = Typed_Line(look_ms);
    return answer.has_value();
  });
  if (answer && *answer != End_Answer) return std::nullopt;
  return "";
}

// --- The two kinds of a run ----------------------------------------------------------------------

// Positions are kept in the machine file of the working folder; in one that was named for this call
// only when that was asked for, and never those of a simulated machine.
void Choose_What_Is_Kept(const Companion& companion, const Run_Command_Options& options) {
  const bool named = !companion.Options.Machine.empty();
  const bool real = companion.Environment.Machine_Is_Real();
  Setup_Store.Leaves_Files = named && !(options.Save_Positions && real);
  if (options.Save_Positions && named && !real) {
    Complain("--save-positions: the machine is simulated, so its positions are not stored.");
  }
}

// A virtual clock can only drive the simulated machine: real motors need real time. It works on
// what the machine file says and leaves it as it is.
void Use_Simulation(const Companion_Environment& environment) {
  environment.Use_Simulated_Machine();
  environment.Use_Virtual_Clock();
}

// False, after saying why, when the machine cannot be had.
bool Use_Machine(const Companion_Environment& environment, bool setup_confirmed) {
  Load_Axis_Positions();
  std::string refusal;
  Trap_With([&](const Fault& refused) { refusal = refused.Description; },
            [&] {
              std::cerr << environment.Use_Port() << '\n';
              refusal = environment.Port_Refusal();
            });
  if (refusal.empty() && environment.Machine_Is_Real() && !setup_confirmed) {
    refusal = Words_About_Lost_Tail();
    if (!refusal.empty()) refusal += " --confirm-setup runs with the values as they are.";
  }
  if (setup_confirmed) Lost_Tail = {};
  if (!refusal.empty()) Complain(refusal);
  return refusal.empty();
}

// The machine in hand from here to the end of the scope, whatever ends it.
class Machine_In_Hand {
 public:
  explicit Machine_In_Hand(bool positions_confirmed) {
    Begin_Drive_Session();
    if (const std::string words = Words_About_Deaf_Ports(); !words.empty()) Complain(words);
    Tell_Home_Safety();
    if (positions_confirmed) Position_Memory.Doubt.clear();
  }
  ~Machine_In_Hand() {
    Platform.Stop_Timer(Ticks);
    End_Drive_Session();
  }
  Machine_In_Hand(const Machine_In_Hand&) = delete;
  Machine_In_Hand& operator=(const Machine_In_Hand&) = delete;

 private:
  static constexpr int Tick_Interval_ms = 100;
  Timer_Id Ticks = Platform.Start_Timer(Tick_Interval_ms, [] { Drive().Tick(); });
};

Run_Summary Run_On_Machine(const Run_Options& options, bool positions_confirmed) {
  Run_Summary summary;
  summary.Ended_By = "The run failed. The error log says why.";
  Trap("Run_Error", [&] {
    const Machine_In_Hand machine(positions_confirmed);
    summary = Run_Program(options);
    if (!Position_Memory.Doubt.empty()) summary.Ended_By += " --confirm-positions does so.";
  });
  return summary;
}

// On the virtual clock. A board needs a session that opens its port and tells it where the axes
// are.
Run_Summary Run_Simulated(const Run_Options& options) {
  if (!Drive().Queues_Moves) return Run_Program(options);
  Setup_Store.Leaves_Files = true;
  return Run_On_Machine(options, true);
}

// --- Commands ------------------------------------------------------------------------------------

// Behind the compile of a run: the tables take their place, and a program that lost something on
// the way does not move real motors unless the operator accepted that. The reason when it must not
// run.
std::string Put_Compiled_Program_In_Place(const Companion& companion, Staged_Tables& tables,
                                          const Run_Command_Options& options) {
  try {
    tables.Put_In_Place();
  } catch (const Fault& fault) {
    return fault.Description;
  }
  const bool refused = Compile_Losses.Any() && !options.Accept_Losses;
  if (!refused || !companion.Environment.Machine_Is_Real()) return {};
  return "the compile left something out (" + Summary_Of(Compile_Losses) +
         "), so nothing has moved. Correct the program, or run it with --accept-losses.";
}

Exit_Status Status_Of_Early_End(const Companion& companion) {
  return companion.Environment.Asked_To_Stop() ? Interrupted_By_Operator : Failed;
}

int Run(const Companion& companion, const Run_Command_Options& options) {
  const bool virtual_clock = options.Clock == "virtual";
  const bool motion = Is_Motion_File(options.Program);
  if (!motion && !Load_Program(options.Program, options.Adapt, options.Accept_Losses))
    return Failed;
  Connect_Control();  // the port that is chosen next depends on the drive
  if (virtual_clock) {
    Use_Simulation(companion.Environment);
  } else if (!Use_Machine(companion.Environment, options.Confirm_Setup)) {
    return Failed;
  } else {
    Choose_What_Is_Kept(companion, options);
  }
  Run_Options run;
  if (!options.Trace.empty()) run.Trace_File = options.Trace;
  run.Progress = Print_Progress;
  if (!virtual_clock && !options.No_Pause) run.At_Pause = Ask_At_Pause;
  std::optional<Staged_Tables> tables;
  if (motion) {
    run.Load_Table = [&] { return Take_Motion_File(options.Program); };
  } else {
    run.Compiled = [&] { return Put_Compiled_Program_In_Place(companion, *tables, options); };
  }
  try {
    if (!motion) tables.emplace();
    if (!options.Ports.empty()) Record_Ports_To_File(options.Ports);
    if (!options.Frames.empty()) Record_Frames_To_File(options.Frames);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  const Run_Summary summary =
      virtual_clock ? Run_Simulated(run) : Run_On_Machine(run, options.Confirm_Positions);
  bool records_whole = true;
  const auto look_at_record = [&](bool whole, std::string_view option) {
    records_whole = records_whole && whole;
    if (!whole) Complain(std::string(option) + ": the file could not be written to its end.");
  };
  look_at_record(Stop_Port_Recorder(), "--ports");
  look_at_record(Stop_Frame_Recorder(), "--frames");
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  std::cout << Summary_Text(summary);
  if (!Move_Trace.Failed_Path.empty()) {
    Complain("The move trace " + Move_Trace.Failed_Path +
             " could not be written. Choose a folder that you may write to.");
  }
  for (const std::string& finding : companion.Environment.Findings()) {
    std::cout << "Noticed  " << finding << '\n';
  }
  Print_Losses();
  if (!summary.Finished) return Status_Of_Early_End(companion);
  if (!records_whole || (!options.Trace.empty() && !Move_Trace.Failed_Path.empty())) return Failed;
  return Compile_Losses.Any() && !options.Accept_Losses ? Failed : Done;
}

std::string Length_Text(double length) {
  constexpr double finest = 1e4;
  return Shortest_Text(std::round(length * finest) / finest);
}

// Where the path of the program leaves an axis: the first line that does, and the farthest point.
std::string Words_About_Axis(int axis, const Axis_Travel& travel) {
  std::optional<std::int32_t> first_line;
  std::int32_t farthest_line = 0;
  double farthest = 0, beyond = 0;
  for (const Wire& wire : Program_Wire.Rows()) {
    if (!wire.End[axis]) continue;
    const double position = *wire.End[axis];
    const double out = std::max(position - travel.High, travel.Low - position);
    if (!(out > 0)) continue;
    if (!first_line) first_line = wire.Step;
    if (out <= beyond) continue;
    beyond = out;
    farthest = position;
    farthest_line = wire.Step;
  }
  if (!first_line) return {};
  const bool metric = MachineSetup.UnitsofMeasurement == 1;
  std::string words = std::string(1, Axis_Letter(axis)) + " leaves the table at line " +
                      std::to_string(Text_Line_Of_Step(*first_line)) + ": ";
  if (farthest_line != *first_line)
    words += "farthest at line " + std::to_string(Text_Line_Of_Step(farthest_line)) + ", ";
  return words + Length_Text(farthest) + " is " + Length_Text(beyond) + (metric ? " mm" : " inch") +
         " beyond its end at " + Length_Text(farthest > travel.High ? travel.High : travel.Low);
}

void Name_What_Leaves_The_Table(const Companion_Environment& environment) {
  for (int axis = 1; axis <= 4; ++axis) {
    const std::string words = Words_About_Axis(axis, environment.Travel_Of(axis));
    if (!words.empty()) Complain(words);
  }
}

int Estimate(const Companion& companion, const std::string& program) {
  const bool motion = Is_Motion_File(program);
  if (!motion && !Load_Program(program)) return Failed;
  Use_Simulation(companion.Environment);
  companion.Environment.Open_Table_Ends();
  Connect_Control();
  Run_Options run;
  run.Trace_File = "";
  run.Progress = Print_Progress;
  std::optional<Staged_Tables> tables;
  if (motion) {
    run.Load_Table = [&] { return Take_Motion_File(program); };
  } else {
    run.Compiled = [&] { return Put_Compiled_Program_In_Place(companion, *tables, {}); };
  }
  try {
    if (!motion) tables.emplace();
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  const Run_Summary summary = Run_Simulated(run);
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  if (Compile_Losses.Any()) Complain("left out: " + Summary_Of(Compile_Losses));
  if (!summary.Finished) {
    Complain(summary.Ended_By);
    return Status_Of_Early_End(companion);
  }
  std::cout << Convert_Process_Time(summary.Machine_Run_Time) << '\n';
  Name_What_Leaves_The_Table(companion.Environment);
  return Done;
}

}  // namespace

void Add_Run_Commands(CLI::App& app, Companion& companion) {
  const auto run = std::make_shared<Run_Command_Options>();
  CLI::App* command = app.add_subcommand("run", "Run a program on the machine or its simulation");
  command->add_option("program", run->Program, "G-code or motion file")
      ->required()
      ->type_name("PROGRAM");
  command->add_option("--clock", run->Clock, "real or virtual (simulated machine, no waiting)")
      ->check(CLI::IsMember({"real", "virtual"}));
  command->add_option("--trace", run->Trace, "File for one line a move")->type_name("FILE");
  command
      ->add_option("--ports", run->Ports,
                   "File for every write to a port; *.vcd: the pins for a wave viewer")
      ->type_name("FILE");
  command
      ->add_option("--frames", run->Frames,
                   "File for every exchange with a serial board: number, bytes sent / received")
      ->type_name("FILE");
  command->add_flag("--no-pause", run->No_Pause, "Go on at program pauses without asking");
  command->add_flag("--save-positions", run->Save_Positions,
                    "Store the positions also in a machine file given by --machine");
  command->add_flag(
      "--confirm-positions", run->Confirm_Positions,
      "The stored positions are those of the machine, although it did not end orderly");
  command->add_flag("--confirm-setup", run->Confirm_Setup,
                    "The values of settings that the machine file has lost are right");
  command->add_flag("--accept-losses", run->Accept_Losses,
                    "Run although the compile left out lines, macros or wires");
  Add_Adapt_Flag(*command, run->Adapt);
  command->callback([&companion, run] {
    companion.Command = [&companion, run] { return Run(companion, *run); };
  });

  const auto program = std::make_shared<std::string>();
  command = app.add_subcommand("estimate", "How long a program takes, by simulation");
  command->add_option("program", *program, "G-code or motion file")
      ->required()
      ->type_name("PROGRAM");
  command->callback([&companion, program] {
    companion.Command = [&companion, program] { return Estimate(companion, *program); };
  });
}

}  // namespace norvik
