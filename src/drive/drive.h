// drive.h: what moves the machine, as one record of operations.
//
// Run loop, sequences, jogs, displays and both programs know the drive by this record alone. A
// drive fills in what it has; what it leaves out does nothing and reports nothing.
//
//   control, app, ui, cli  --->  Drive()  --->  parallel: pins, a move blocks its caller
//                                          |->  a serial board: a link and a queue of moves
//
// Two kinds of drives stand behind it. One makes a move itself and returns when it has ended. One
// with a queue returns as soon as the move is taken over; `Moves_Queued`, `Wait_Empty`, `Hold` and
// `Stop` are about what it has still to do.
//
// No operation raises a fault. Those that may take long yield to the event queue, so that flags and
// positions may have changed when they return.
#pragma once

#include "core/nullable.h"
#include "drive/finding.h"
#include "drive/move.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

struct Drive_Operations {
  // --- What it is -------------------------------------------------------------------------------
  std::string_view Name = "No drive";
  // Words for the operator when this drive cannot move anything at this moment; empty: it can.
  std::string_view (*Missing)() = [] { return std::string_view(); };
  // This program times every half step, so that time constant and calibration act.
  bool Times_Half_Steps = false;
  // `Set_Override` acts.
  bool Overrides_Feed = false;
  // `Set_Spindle_Level` acts.
  bool Sets_Spindle_Speed = false;
  // Moves and dwells are taken over into a queue: a sequence that needs an end waits for it.
  bool Queues_Moves = false;
  // The drive is a board at the far end of a serial link: of generation 0 or 1. Absent: none is.
  std::optional<int> Board = std::nullopt;

  // --- Session ----------------------------------------------------------------------------------
  // Takes the machine in hand: forgets what was kept of a machine before, brings every output to
  // its idle level, opens a link. Nothing may move before.
  void (*Begin_Session)() = [] {};
  // Outputs and motors off, the link closed. At any moment, within a move too.
  void (*End_Session)() = [] {};
  // Outputs and motors off at once; the session goes on.
  void (*All_Off)() = [] {};
  // Brings motors and step outputs to rest after a change of the setup. Only while nothing moves.
  void (*Idle)() = [] {};
  // Sends changed parameters to the drive, before a run.
  void (*Refresh_Parameters)() = [] {};
  // About ten times a second while a session is open, in a yield of a move too: motor supervision,
  // state of the link.
  void (*Tick)() = [] {};

  // --- Moves ------------------------------------------------------------------------------------
  // Makes one move or takes it over, and keeps `Machine.Position`. Outputs change first, also when
  // there are no steps. `s_word` (spindle speed) and `step` (of the program) are of interest to a
  // drive with a queue only.
  Move_End (*Move)(const Step_Request&, Nullable s_word, std::int32_t step) =
      [](const Step_Request&, Nullable, std::int32_t) { return Move_End::Failed; };
  // Takes a pause of the program over, for a drive that queues moves. `step` of the program.
  Move_End (*Dwell)(double seconds, std::int32_t step) = [](double, std::int32_t) {
    return Move_End::Failed;
  };
  // A move, a calibration or the queue runs.
  bool (*Is_Moving)() = [] { return false; };
  // Moves taken over that are not done.
  std::int32_t (*Moves_Queued)() = [] { return std::int32_t{0}; };
  // Returns when the queue is done and the machine stands, with the way in which its moves ended;
  // `Done` when there was nothing to wait for.
  Move_End (*Wait_Empty)() = [] { return Move_End::Done; };
  // Why the last move or wait failed, in the operator's words; empty: the error log says it.
  std::string (*Why_Failed)() = [] { return std::string(); };
  // Holds the queue between two moves, and lets it go on.
  void (*Hold)(bool held) = [](bool) {};
  // Ends what the queue still holds. A move that blocks its caller ends by the flags that it reads.
  void (*Stop)() = [] {};
  // The E-stop was engaged or cleared; `Machine.EStop_Flag` says which and stands already.
  void (*EStop)(bool engaged) = [](bool) {};
  // The key or button of a held jog was released.
  void (*Release_Jog)() = [] {};
  // `Machine.Position` was given by the operator or from a file: the drive counts on from there.
  void (*Set_Position)() = [] {};

  // --- Switches and outputs ---------------------------------------------------------------------
  // Reads switches and outputs into `Drive_Status`.
  void (*Read_Switches)() = [] {};
  // `Read_Switches` has just run: a switch is on, all of them can really be read, and this drive
  // leaves it to the program to know the way off a switch.
  bool (*Starts_On_A_Switch)() = [] { return false; };
  // A home and limit switch of axis 1..4 is wired.
  bool (*Has_Switch)(int axis) = [](int) { return true; };
  // The drive reports a fault of its own, as of an encoder.
  bool (*In_Fault)() = [] { return false; };
  // State of the E-stop input and of the auxiliary input.
  bool (*EStop_Input_On)() = [] { return false; };
  bool (*Aux_Input_High)() = [] { return false; };
  // Output 1..5 on or off.
  void (*Switch_Output)(int n, bool on) = [](int, bool) {};
  // Spindle speed at once, 0 to 1023 for 0 to full speed. For drives with a speed output.
  void (*Set_Spindle_Level)(std::int32_t of_1023) = [](std::int32_t) {};
  // Speed override, 1024 = 100 percent.
  void (*Set_Override)(std::int32_t of_1024) = [](std::int32_t) {};
  // Axis 1..4 can step; a drive whose axis is not wired makes its steps in silence.
  bool (*Can_Step)(int axis) = [](int) { return true; };

  // --- For the operator -------------------------------------------------------------------------
  // How the drive is, in a sentence.
  std::string (*Health)() = [] { return std::string("no drive is in hand"); };
  // Accesses or replies that failed since the program started.
  std::int64_t (*Failures)() = [] { return std::int64_t{0}; };
  // The numbers of the last move, one to a line.
  std::string (*Diagnostics)() = [] { return std::string("No numbers of a move."); };
  // What the loaded setup asks of this drive that may surprise.
  void (*Check_Setup)(std::vector<Machine_Finding>& findings) = [](std::vector<Machine_Finding>&) {
  };
  // How long a move takes that begins and ends as asked for, in seconds; null: the plan of
  // move_plan.h tells.
  double (*Move_Seconds)(const Step_Request&) = nullptr;
  // What the panel has to say in red at this moment, such as stops that can't be delivered; empty:
  // nothing.
  std::string_view (*Alarm)() = [] { return std::string_view(); };
};

// The drive of a program without a room that knows one: nothing moves.
const Drive_Operations& Without_Drive();

// The room that knows every drive says which one the loaded machine file asks for.
struct Drive_Choice_Operations {
  const Drive_Operations& (*Of_Setup)() = Without_Drive;
};
extern Drive_Choice_Operations Drive_Choice;

// The drive of the loaded machine file.
inline const Drive_Operations& Drive() {
  return Drive_Choice.Of_Setup();
}

}  // namespace norvik
