// stream.h: moves and dwells on their way into the queue of a board.
//
//   Serial_Move --> room in the queue? --> DravonMove: status, AxisPrepare, MoveSteps --> board
//
// What was sent is remembered entry by entry, with its steps and its time, until the board reports
// the place free again. So the stream knows how much motion is queued, and where the board's
// counters may stand: counters elsewhere mean that the board was reset or lost its place, and end
// the run.
//
// A motion command whose reply was lost is never sent again blindly: the board is asked first what
// it has.
#pragma once

#include "core/indexed.h"
#include "core/nullable.h"
#include "drive/move.h"
#include "serial/move_entry.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

struct Queued_Entry {
  double Seconds = 0;
  Indexed<std::int32_t, 1, 4> Way;  // steps, with the program's direction
  std::uint32_t Index = 0;
};

struct Dravon_Stream_State {
  // --- As the protocol has it -------------------------------------------------------------------
  bool StreamStarted = false;  // the queue has filled past 3 places: its running empty is an alarm
  bool BufferFull = false;     // fewer than 5 free places were reported last
  std::uint32_t CommandIndex = 0;                   // of the present motion record, 24 bits
  Indexed<bool, 1, 9> AxisPrepared;                 // in this move
  Indexed<bool, 1, 6> AxisDirChanged, AxisLastDir;  // true: negative
  Indexed<float, 1, 4> BacklashSteps;               // steps that are no way of the carriage
  float LastEstimatedIPM = 0;

  // --- What the board still has to do -----------------------------------------------------------
  std::deque<Queued_Entry> Queue;  // the running entry first
  double Queued_Seconds = 0;
  std::int32_t Last_Free = 0;                 // free places as reported last
  Indexed<std::int64_t, 1, 4> Sent_To;        // counters when all of it is done
  Indexed<std::int64_t, 1, 4> Excess;         // steps that whole dividers may have added on the way
  bool Place_Known = false;                   // the counters are those of the board
  bool Unsettled = false;                     // motion was sent since the machine was seen to rest
  Move_Entry Last_Entry;                      // as sent
  bool Switched_By_Hand = false;              // an output or the spindle, since the last entry
  bool Last_Goes_On = false;                  // the last move was not to end at rest
  std::optional<std::int32_t> Sent_Override;  // that the board has; absent: not known
  // A spindle level that found the link in use: it goes out with the next tick, the last one
  // counts.
  std::optional<std::int32_t> Wanted_Level;

  // --- The present operation --------------------------------------------------------------------
  bool Held = false;  // a pause: nothing more is sent
  bool Jogging = false;
  bool In_Pieces = false;  // a jog that ends with its last piece, without a command
  std::int64_t Stops = 0, Stops_Before = 0;  // calls of `Serial_Stop`: so far, and at its begin
  std::uint8_t Limits_Before = 0;            // latches at its begin, as a mask
  std::string Failure;     // why a move could not be made, or ended; empty: nothing failed
  bool Link_Died = false;  // nothing more is sent until it is back

  // --- For the operator -------------------------------------------------------------------------
  std::optional<std::int32_t> Lowest_Queue;  // entries, of this run, while the stream was on
  std::int32_t Ran_Dry = 0;                  // times in this run, within a chain of moves
  bool Low_Told = false;
};
extern Dravon_Stream_State Dravon_Stream;

// Seconds of motion that are kept in the board beyond the running entry; 0: as much as it holds.
struct Stream_Limit_State {
  double Seconds = 5;
  static constexpr std::size_t Fewest_Entries = 8;
};
extern Stream_Limit_State Stream_Limit;

// --- Moves ---------------------------------------------------------------------------------------

// A move of the program, a sequence or a jog: taken over, or why not.
Move_End Serial_Move(const Step_Request& request, Nullable s_word, std::int32_t step);
Move_End Serial_Dwell(double seconds, std::int32_t step);
// Until the queue has run out and the axes rest; then the position is the board's.
Move_End Serial_Wait_Empty();

// One motion command with all that belongs to it. Absent: it did not reach the queue.
std::optional<std::int32_t> DravonMove(const Step_Request& request, Nullable s_word);
std::optional<std::int32_t> DravonDwell(double seconds, std::uint32_t command_index);
// Returns when the queue has room again, or an end was asked for.
void DravonWaitForBuffer();
// Until the flags of the board say that its queue has run out. False: no answer, or ended.
bool DravonWaitEmpty();
// Spindle speed at once, 0 to 1023, in a move without steps.
bool DravonSetPWM(std::int32_t value);
// Positions in units to the counters. False: they do not fit, or no answer.
bool DravonLoadPosition(const Indexed<double, 1, 4>& position);

// The counters that belong to positions in units. Absent: beyond 24 bits with sign.
std::optional<Indexed<std::int32_t, 1, 4>> Counts_Of(const Indexed<double, 1, 4>& position);
// The PWM value of an S word; absent and 32767 leave the output as it is.
std::int32_t PWM_Of(Nullable s_word);
// The same before an inversion, 0 to 1023.
std::int32_t PWM_Value_Of(double s_word);
Entry_Rules Rules_Of_Board();
// `Path_Scales` of these rules, by the setup.
std::optional<Indexed<double, 1, 4>> Path_Scales_Of_Setup();

// --- Stops ---------------------------------------------------------------------------------------

// Ends what the board has still to do, and takes its position over.
void Serial_Stop();
// The emergency stop, 51 times in a row. True when the board answered.
bool DravonEStop();
void Serial_EStop(bool engaged);
void Serial_Release_Jog();
// What ends the motion of a board and switches its outputs off without listening to it, for a
// process that a signal ends. The stops go first and so often that a frame that was cut off
// swallows only some of them.
std::vector<std::uint8_t> Last_Frames_For_Board();

// --- For monitor and drive -----------------------------------------------------------------------

// A status reply has brought counters.
void Stream_Saw_Counters();
// The counters are where the machine stands, whatever was sent.
void Take_Over_Place();
// Ends the operation: nothing more is sent, and the positions are in doubt.
void Link_Has_Died(const std::string& why);
// Takes the place over when the board has done all that it had, as behind a spindle command. True
// when it rests.
bool Settle_At_Rest();
// Starts counting anew, at the begin of a run.
void Begin_Stream();
// "12 entries, 1.4 s queued; lowest queue of this run 3; ran dry 0 times"
std::string Queue_Text();

}  // namespace norvik
