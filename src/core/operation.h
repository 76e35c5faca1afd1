// operation.h: the ledger of what runs.
//
// One thread works for everybody. Long work keeps it and lets the handlers of the windows run in
// its yields, so that a handler may find any work under way. Whoever begins something that yields
// enters it here for as long as it lasts; whoever wants to begin something asks here first.
//
// Entries nest. The outermost one is what the operator began; the inner ones are its parts:
//
//   Goto                                 Run
//     Compile_Line  (over when it moves)   Run_Loop
//     Move          (in the drive)           Move
//
// `Run_Loop` and `Move` are only ever parts; the drive enters `Move` for any caller. A paused run
// is no entry: nothing works then, and `Machine.CNCMode` keeps that the run can go on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Operation {
  Compile,       // of the whole program
  Compile_Line,  // of a Goto
  Check,         // of the program for what it loses
  Import,        // of a drawing, a drill file, a picture
  Open,          // of a file or a machine setup, printing: whatever changes what could run
  Edit,          // of the program's text, or an export: what a compile must not meet
  Run,           // Play
  Step,          // one step of the program
  Jog,           // by a button of the panel
  Key_Jog,       // by a key or the joystick
  Home,
  ReTool,  // there and back
  Goto,
  Calibration,  // of the time constant; holds the drive without moving anything
  Run_Loop,     // part: the run loop looks at the mode or works
  Move,         // part: the drive makes steps
};

// Who may end an operation before its time.
namespace ended_by {
inline constexpr unsigned Nobody = 0, Esc = 1, EStop = 2, Stop = 4, Pause = 8, Release = 16;
}

struct Operation_Row {
  std::string_view Words;  // what runs, as in "Not now: homing is under way."
  bool Moves;              // the machine moves, or may at any moment
  unsigned Ended_By;       // bits of `ended_by`
};
const Operation_Row& Row_Of(Operation operation);
// How it may be ended, a sentence for the operator; empty when it ends by itself only.
std::string How_To_End(Operation operation);

struct Operation_Entry {
  Operation What;
  std::int64_t Since = 0;  // monotonic clock, nanoseconds
  std::string Detail;      // what it does at this moment ("Z: seek"); empty: nothing to add
};

struct Operations_State {
  std::vector<Operation_Entry> Entries;  // from the outermost one on
};
extern Operations_State Operations;

// What the rooms above add. The defaults suit a room that runs alone.
struct Operation_Host_Operations {
  // Why the drive cannot move anything, in the operator's words; empty: it can.
  std::function<std::string_view()> Drive_Missing = [] { return std::string_view(); };
  // A press of ESC from before belongs to nothing that begins now. The companion replaces it: there
  // an interrupt belongs to the whole command.
  std::function<void()> Forget_Presses;
  // True when the last press of ESC went to an open box, menu or find bar, which it closes.
  std::function<bool()> Escape_Taken = [] { return false; };
  Operation_Host_Operations();
};
extern Operation_Host_Operations Operation_Host;

// Enters an operation until the end of the scope. The outermost one begins by forgetting what was
// pressed before it; parts forget nothing.
class Operation_Scope {
 public:
  explicit Operation_Scope(Operation what);
  ~Operation_Scope();
  Operation_Scope(const Operation_Scope&) = delete;
  Operation_Scope& operator=(const Operation_Scope&) = delete;
};

// --- Questions -----------------------------------------------------------------------------------
bool Runs(Operation operation);
// What the operator began; null when nothing runs.
const Operation_Entry* Present_Operation();
// True while a run, a sequence, a jog, a calibration or a single move is under way.
bool Anything_Moves();
// True while the compiler is at work: its state and its tables are then in use.
bool Compiler_Works();
// True while other compile work has to wait: a compile of the program, or a step of its window.
bool Program_Is_Held();

// What stands against beginning an operation now. Motions look at the E-stop, the compile and the
// drive; other work wants a machine that stands still, with no run that is paused.
enum class Obstacle {
  None,
  Something_Moves,
  Run_Is_Paused,
  EStop,
  Program_Is_Held,
  Import,
  No_Drive
};
Obstacle Obstacle_To(Operation wanted);
// The same in the operator's words; empty: it may begin.
std::string Why_Not_Begin(Operation wanted);

// The outermost operation says what it does at this moment. Nothing while none runs.
void Tell_Detail(std::string detail);

namespace operation_text {
inline constexpr std::string_view Motors_Are_Disabled =
    "Motors are disabled by the E-stop. Press MOTORS DISABLED to enable them, then try again.";
inline constexpr std::string_view Compile_Runs =
    "The program is being compiled. Wait until it is done or press ESC, then try again.";
inline constexpr std::string_view Goto_Needs_Stop =
    "Goto replaces the program of the paused run. Press Stop first.";
inline constexpr std::string_view Run_Is_Paused =
    "Not now: a run is paused. Stop ends it, Play goes on with it.";
}  // namespace operation_text

}  // namespace norvik
