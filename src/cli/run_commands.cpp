// The commands `run` and `estimate`.
#include "cli/companion.h"
#include "control/connect.h"
#include "control/displays.h"
#include "control/machine_move.h"
#include "control/run_program.h"
#include "core/fault.h"
#include "parallel/ports.h"

#include <iostream>
#include <memory>

#include <unistd.h>

namespace norvik {

namespace {

struct Run_Command_Options {
  std::string Program, Trace, Ports;
  std::string Clock = "real";
  bool No_Pause = false;
};

void Print_Progress(std::int32_t step, std::int32_t last_step) {
  if (isatty(STDERR_FILENO) == 0) return;
  Print_Status_Line("Step " + std::to_string(step) + " of " + std::to_string(last_step));
}

// A program pause asks the operator where there is one to ask.
bool Ask_At_Pause(std::int32_t step) {
  if (isatty(STDIN_FILENO) == 0) return true;
  std::cerr << "\nPaused behind step " << step << ". Enter goes on, q ends the run: " << std::flush;
  std::string answer;
  return std::getline(std::cin, answer) && answer != "q";
}

int Run(const Companion& companion, const Run_Command_Options& options) {
  const bool virtual_clock = options.Clock == "virtual";
  if (!Load_Program(options.Program)) return Failed;
  if (virtual_clock) {
    // A virtual clock can only drive the simulated machine: real motors need real time.
    companion.Environment.Use_Simulated_Machine();
    companion.Environment.Use_Virtual_Clock();
  } else {
    std::cerr << companion.Environment.Use_Port() << '\n';
  }
  Connect_Control();
  Run_Options run;
  if (!options.Trace.empty()) run.Trace_File = options.Trace;
  run.Progress = Print_Progress;
  if (!virtual_clock && !options.No_Pause) run.At_Pause = Ask_At_Pause;
  try {
    if (!options.Ports.empty()) Record_Ports_To_File(options.Ports);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Failed;
  }
  const Run_Summary summary = Run_Program(run);
  Stop_Port_Recorder();
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  std::cout << Summary_Text(summary);
  if (!Move_Trace.Failed_Path.empty()) {
    Complain("The move trace " + Move_Trace.Failed_Path +
             " could not be written. Choose a folder that you may write to.");
  }
  for (const std::string& finding : companion.Environment.Findings()) {
    std::cout << "Noticed  " << finding << '\n';
  }
  return summary.Finished ? Done : Failed;
}

int Estimate(const Companion& companion, const std::string& program) {
  if (!Load_Program(program)) return Failed;
  companion.Environment.Use_Simulated_Machine();
  companion.Environment.Use_Virtual_Clock();
  Connect_Control();
  Run_Options run;
  run.Trace_File = "";
  run.Progress = Print_Progress;
  const Run_Summary summary = Run_Program(run);
  if (isatty(STDERR_FILENO) != 0) Print_Status_Line("");
  if (!summary.Finished) {
    Complain(summary.Ended_By);
    return Failed;
  }
  std::cout << Convert_Process_Time(summary.Machine_Run_Time) << '\n';
  return Done;
}

}  // namespace

void Add_Run_Commands(CLI::App& app, Companion& companion) {
  const auto run = std::make_shared<Run_Command_Options>();
  CLI::App* command = app.add_subcommand("run", "Run a program on the machine or its simulation");
  command->add_option("program", run->Program, "G-code file")->required()->type_name("PROGRAM");
  command->add_option("--clock", run->Clock, "real or virtual (simulated machine, no waiting)")
      ->check(CLI::IsMember({"real", "virtual"}));
  command->add_option("--trace", run->Trace, "File for one line a move")->type_name("FILE");
  command
      ->add_option("--ports", run->Ports,
                   "File for every write to a port; *.vcd: the pins for a wave viewer")
      ->type_name("FILE");
  command->add_flag("--no-pause", run->No_Pause, "Go on at program pauses without asking");
  command->callback([&companion, run] {
    companion.Command = [&companion, run] { return Run(companion, *run); };
  });

  const auto program = std::make_shared<std::string>();
  command = app.add_subcommand("estimate", "How long a program takes, by simulation");
  command->add_option("program", *program, "G-code file")->required()->type_name("PROGRAM");
  command->callback([&companion, program] {
    companion.Command = [&companion, program] { return Estimate(companion, *program); };
  });
}

}  // namespace norvik
