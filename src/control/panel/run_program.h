// run_program.h: a whole program from its text to the last pulse, without a panel.
//
// Compiles `GCode_Program`, runs it from the first line to the last through the run loop and the
// drive, and sums up. It is what `norvik-cli run` does; on a virtual clock over the simulated
// machine it is also the estimate: the same pulses at the same times, in seconds.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace norvik {

// A pause of the run: a program pause or a tool change.
struct Run_Pause {
  std::int32_t Step = 0;       // the step that asked for it
  std::string Block;           // its text
  std::optional<double> Tool;  // the tool to change to, when it is a tool change
};

struct Run_Options {
  // Trace of the moves. Absent: the usual file in the folder of the tables; empty: none.
  std::optional<std::string> Trace_File;
  // Absent goes on. Otherwise the run ends for this reason; empty: what stopped it says itself, or
  // it was the operator. May yield, so that the E-stop input and ESC are heard in the pause.
  std::function<std::optional<std::string>(const Run_Pause&)> At_Pause = [](const Run_Pause&) {
    return std::optional<std::string>();
  };
  // About four times in a second of the clock.
  std::function<void(std::int32_t step, std::int32_t last_step)> Progress = [](std::int32_t,
                                                                               std::int32_t) {};
  // Brings the executing table; answers words when that failed. Empty: the program is compiled.
  std::function<std::string()> Load_Table;
  // The table is there, nothing has moved yet. Words when it must not be run.
  std::function<std::string()> Compiled = [] { return std::string(); };
};

struct Run_Summary {
  bool Finished = false;           // the last step was executed, and no access to the port failed
  std::string Ended_By;            // otherwise: why not, in the operator's words
  std::int32_t Steps = 0;          // program steps executed
  std::int32_t Last_Step = 0;      // of the program
  std::int64_t Wires = 0;          // of the compiled program
  double Machine_Run_Time = 0;     // seconds, pauses left out
  Indexed<double, 1, 4> Position;  // where the machine stands, units
  bool operator==(const Run_Summary&) const = default;
};

// Compiles and runs the loaded program, or runs the table that `Load_Table` brings. One that is too
// long for the machine's tables is run as far as it was taken and is not a finished one. Refused
// while the positions are in doubt. Raises nothing.
Run_Summary Run_Program(const Run_Options& options);

// The same for a program that is compiled and stands in the executing table.
Run_Summary Run_Compiled_Program(const Run_Options& options);

// "Steps", "Run time", "Position" and how it ended, one line each.
std::string Summary_Text(const Run_Summary& summary);

}  // namespace norvik
