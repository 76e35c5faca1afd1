#include "simulate/board/board_motion.h"

#include "simulate/board/board_axes.h"
#include "simulate/board/board_faults.h"
#include "simulate/board/running_entry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvik {

namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t Stream_Depth = 3;  // entries in the queue: a stream is on

void Empty_Queue(Simulated_Board& board) {
  board.Queue_First = board.Queue_Count = 0;
  board.Stream_On = false;
  board.Ran_Dry.reset();
}

void Anchor_Here(Simulated_Board& board) {
  const double seconds = Entry_Seconds(board);
  board.Running.Anchor_Seconds = seconds;
  board.Running.Anchor_Time = board.Now;
}

void Find_Due(Simulated_Board& board) {
  Running_Entry& run = board.Running;
  const double seconds = run.Event_Count
                             ? Time_Of_Count(run.Profile, static_cast<double>(*run.Event_Count))
                             : run.Profile.Duration;
  run.Due = Time_Of_Seconds(board, seconds);
}

void Tell_Motion(const Simulated_Board& board, bool ended, std::string_view why) {
  if (board.Host.Motion) board.Host.Motion({board.Now, ended, why});
}

// Steps a second of an axis at a rate of the entry, negative with its direction.
double Axis_Rate(const Simulated_Board& board, int axis, double rate) {
  constexpr double divider_unit = 10'000;
  const Board_Entry& entry = board.Running.Entry;
  if (!Has_Steps(entry, axis)) return 0;
  const std::uint32_t divider = entry.Dividers[static_cast<std::size_t>(axis - 1)];
  return divider == 0 ? 0 : Direction_Of(board, axis) * rate * divider_unit / divider;
}

void Look_At_Rates(Simulated_Board& board) {
  const Running_Entry& run = board.Running;
  const auto hertz = [](double rate) { return std::to_string(std::llround(rate)) + " Hz"; };
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Board_Axis& a = board.Axes[axis];
    if (a.Settings.Max_Rate > 0) {
      const double top = std::abs(Axis_Rate(board, axis, run.Profile.Top_Rate)) * board.Throttle;
      if (top > a.Settings.Max_Rate) {
        Note_Finding(board, Board_Finding_Kind::Too_Fast, axis, [&] {
          return "stepped at " + hertz(top) + " (" + hertz(a.Settings.Max_Rate) + " at most)";
        });
      }
    }
    if (a.Settings.Max_Jump <= 0) continue;
    const double begin =
        Axis_Rate(board, axis, std::max<double>(run.Entry.Start_Rate, Slowest_Rate));
    if (std::abs(begin - a.Last_Rate) > a.Settings.Max_Jump) {
      Note_Finding(board, Board_Finding_Kind::Rate_Jump, axis, [&] {
        return "the rate jumped from " + hertz(a.Last_Rate) + " to " + hertz(begin) + " (" +
               hertz(a.Settings.Max_Jump) + " at most)";
      });
    }
  }
}

void Look_At_Form(Simulated_Board& board) {
  const Board_Entry& entry = board.Running.Entry;
  if (entry.Major == 0) return;
  if (entry.Start_Rate < Slowest_Rate) {
    Note_Finding(board, Board_Finding_Kind::Rate_Too_Low, 0, [&] {
      return "a start rate of " + std::to_string(entry.Start_Rate) + " Hz; 77 Hz was taken";
    });
  }
  const std::uint32_t up =
      entry.Run_Ramp > entry.Major ? entry.Major : entry.Major - entry.Run_Ramp;
  if (entry.Run_Ramp > entry.Major || up + std::uint64_t{entry.Down_Ramp} > entry.Major) {
    Note_Finding(board, Board_Finding_Kind::Ramps_Too_Long, 0, [&] {
      return "ramps are longer than the move of " + std::to_string(entry.Major) + " counts";
    });
  }
  constexpr std::uint32_t step_a_count = 10'000;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::uint32_t divider = entry.Dividers[static_cast<std::size_t>(axis - 1)];
    if (divider >= step_a_count) continue;
    Note_Finding(board, Board_Finding_Kind::Divider_Too_Small, axis, [&] {
      return "a divider of " + std::to_string(divider) + ": more than one step a count";
    });
  }
}

void Note_Spindle(Simulated_Board& board) {
  constexpr std::uint8_t both = 3;
  if ((board.Outputs & both) != both) return;
  Note_Finding(board, Board_Finding_Kind::Both_Spindle_Directions, 0, [] {
    return std::string("outputs 1 and 2, both directions of the spindle, are on");
  });
}

void Apply_Channel(Simulated_Board& board, int output, std::uint8_t bits) {
  const bool raw = board.Settings.Masks == Mask_Semantics::Raw;
  const std::uint8_t off = raw ? 0 : 1, none = raw ? 1 : 0;
  if (bits == none) return;
  if (bits > 2) {
    Note_Finding(board, Board_Finding_Kind::Bad_Value, 0, [&] {
      return "output " + std::to_string(output) +
             " is told on and off in one mask; nothing is done";
    });
    return;
  }
  const std::uint8_t bit = static_cast<std::uint8_t>(1U << static_cast<unsigned>(output - 1));
  const std::uint8_t before = board.Outputs;
  board.Outputs =
      static_cast<std::uint8_t>(bits == off ? board.Outputs & ~bit : board.Outputs | bit);
  if (board.Running.Entry.Dwell && board.Outputs != before) {
    Note_Finding(board, Board_Finding_Kind::Dwell_Output, 0,
                 [&] { return "a dwell changed output " + std::to_string(output); });
  }
}

void Apply_Outputs(Simulated_Board& board) {
  const Board_Entry& entry = board.Running.Entry;
  constexpr std::uint8_t two_bits = 3;
  constexpr int in_first_mask = 4;
  const bool nothing =
      board.Settings.Masks == Mask_Semantics::Spec && entry.High_Mask == 0 && entry.Low_Mask == 0;
  if (!nothing) {
    for (int channel = 1; channel <= in_first_mask + 1; ++channel) {
      const std::uint8_t mask = channel <= in_first_mask ? entry.High_Mask : entry.Low_Mask;
      const unsigned place = static_cast<unsigned>((channel - 1) % in_first_mask) * 2;
      Apply_Channel(board, channel, static_cast<std::uint8_t>(mask >> place & two_bits));
    }
    Note_Spindle(board);
  }
  constexpr std::array<std::uint8_t, 2> unchanged{255, 255};
  if (entry.Pwm != unchanged) board.Pwm = entry.Pwm;
}

void Begin_Entry(Simulated_Board& board, const Board_Entry& entry) {
  Running_Entry& run = board.Running;
  run.Entry = entry;
  run.Active = true;
  run.Begin = board.Now;
  run.Anchor_Time = board.Now;
  run.Anchor_Seconds = 0;
  run.Halted = 0;
  run.Event_Count.reset();
  const double up = entry.Run_Ramp >= entry.Major ? 0 : entry.Major - entry.Run_Ramp;
  run.Profile = Plan_Profile(entry.Major, entry.Start_Rate, board.Ramp_Rate, up, entry.Down_Ramp);
  Apply_Outputs(board);
  Look_At_Form(board);
  Look_At_Rates(board);
  Plan_Event(board);
  Find_Due(board);
  Tell_Motion(board, false, "");
}

// Axes stand where the entry has brought them after so many counts, and it is over.
void Leave_Entry(Simulated_Board& board, std::int64_t counts, double rate, std::string_view why) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    board.Axes[axis].Last_Rate = rate == 0 ? 0 : Axis_Rate(board, axis, rate);
    Rebase_Axis(board, axis, counts);
  }
  board.Running.Active = false;
  Tell_Motion(board, true, why);
}

// What is left when the host adds to its stream: the draining at the end of one says nothing.
void Note_Depth(Simulated_Board& board) {
  if (!board.Stream_On) return;
  const auto depth = static_cast<std::int32_t>(board.Queue_Count);
  board.Counts.Smallest_Queue = std::min(board.Counts.Smallest_Queue.value_or(depth), depth);
}

void Finish_Entry(Simulated_Board& board) {
  const Running_Entry& run = board.Running;
  ++board.Counts.Finished;
  board.Finished_Index = run.Entry.Index;
  const bool goes_on = board.Queue_Count > 0;
  const double rate = goes_on ? Rate_At(run.Profile, run.Profile.Duration) : 0;
  Leave_Entry(board, std::llround(run.Profile.End), rate, "done");
  if (goes_on) {
    const std::size_t place = board.Queue_First;
    board.Queue_First = place + 1 == board.Queue.size() ? 0 : place + 1;
    --board.Queue_Count;
    Begin_Entry(board, board.Queue[place]);
  } else if (board.Stream_On) {
    board.Stream_On = false;
    board.Ran_Dry = board.Now;
  }
  if (!board.Faults.List.empty()) State_Meets_Faults(board);
}

void Stop_By_Switch(Simulated_Board& board, int axis, bool low) {
  constexpr unsigned second_switches = 4;
  const auto bit = static_cast<std::uint8_t>(Axis_Bit(axis) << (low ? 0 : second_switches));
  board.Limit_Latches = static_cast<std::uint8_t>(board.Limit_Latches | bit);
  Note_Finding(board, Board_Finding_Kind::Limit, axis, [&] {
    return std::string(low ? "the first" : "the second") + " limit switch was reached";
  });
  if (board.Settings.Limit_Stops_All) return Stop_Board(board, "limit");
  Rebase_Axis(board, axis, Counts_Made(board));
  board.Running.Halted = static_cast<std::uint8_t>(board.Running.Halted | Axis_Bit(axis));
  Plan_Again(board);
}

void Note_Encoder_Fault(Simulated_Board& board, int axis) {
  constexpr std::uint8_t stops = 64;
  Board_Axis& a = board.Axes[axis];
  Note_Finding(board, Board_Finding_Kind::Encoder_Error, axis, [&] {
    return "the encoder is more than " + std::to_string(a.Encoder_Error) +
           " steps away from the counter";
  });
  a.Encoder_Fault = true;
  if ((a.Encoder_Byte & stops) != 0) return Stop_Board(board, "encoder");
  Plan_Again(board);
}

// The running entry has come to its end or to its event.
void Happen(Simulated_Board& board) {
  const Running_Entry& run = board.Running;
  if (!run.Event_Count) return Finish_Entry(board);
  // The count is reached, whatever the rounding of its time says.
  board.Running.Anchor_Seconds = std::max(
      Entry_Seconds(board), Time_Of_Count(run.Profile, static_cast<double>(*run.Event_Count)));
  board.Running.Anchor_Time = board.Now;
  if (run.Event_Kind == Running_Entry::Event::Encoder)
    return Note_Encoder_Fault(board, run.Event_Axis);
  Stop_By_Switch(board, run.Event_Axis, run.Event_Kind == Running_Entry::Event::Low_Switch);
}

}  // namespace

void Follow_Board(Simulated_Board& board, std::int64_t time) {
  if (time <= board.Now) return;
  while (true) {
    const std::int64_t due = board.Running.Active ? board.Running.Due : Never;
    const std::int64_t next = std::min(due, board.Faults.Next_Time);
    if (next > time) break;
    board.Now = std::max(board.Now, next);
    if (due <= board.Faults.Next_Time) {
      Happen(board);
    } else {
      Time_Meets_Faults(board);
    }
  }
  board.Now = time;
}

void Queue_Entry(Simulated_Board& board, const Board_Entry& entry) {
  ++board.Counts.Moves;
  constexpr std::int64_t goes_on = 250'000'000;  // ns: the stream had not ended there
  if (board.Ran_Dry && board.Now - *board.Ran_Dry < goes_on) {
    Note_Finding(board, Board_Finding_Kind::Ran_Empty, 0,
                 [] { return std::string("the queue ran empty while a stream was on"); });
    board.Counts.Smallest_Queue = 0;
  }
  board.Ran_Dry.reset();
  Note_Depth(board);
  if (!board.Running.Active) return Begin_Entry(board, entry);
  const std::size_t place = board.Queue_First + board.Queue_Count++;
  board.Queue[place < board.Queue.size() ? place : place - board.Queue.size()] = entry;
  if (board.Queue_Count >= Stream_Depth) board.Stream_On = true;
}

void Stop_Board(Simulated_Board& board, std::string_view why) {
  if (board.Running.Active) Leave_Entry(board, Counts_Made(board), 0, why);
  Empty_Queue(board);
  if (!board.Faults.List.empty()) State_Meets_Faults(board);
}

void Stop_Jog(Simulated_Board& board, double rate) {
  Empty_Queue(board);
  if (!board.Running.Active) return;
  Anchor_Here(board);
  if (board.Running.Entry.Dwell) return Stop_Board(board, "jog stop");
  End_Early(board.Running.Profile, board.Running.Anchor_Seconds, rate, board.Ramp_Rate);
  Plan_Again(board);
}

void Set_Board_Throttle(Simulated_Board& board, std::uint32_t value) {
  constexpr double whole = 1024;
  if (board.Running.Active) Anchor_Here(board);
  board.Throttle = value / whole;
  if (board.Running.Active) Find_Due(board);
}

void Plan_Again(Simulated_Board& board) {
  if (!board.Running.Active) return;
  Plan_Event(board);
  Find_Due(board);
}

void Slip_From_Here(Simulated_Board& board, int axis, double part) {
  Board_Axis& a = board.Axes[axis];
  if (a.Settings.Slip == part) return;
  // With s steps made, carriage + s (1 - old) stays where it is when the base takes the difference.
  const auto made = static_cast<double>(Steps_Made(board, axis, Counts_Made(board)));
  if (made > 0) a.Carriage += Direction_Of(board, axis) * made * (part - a.Settings.Slip);
  a.Settings.Slip = part;
  Plan_Again(board);
}

void Switch_Output(Simulated_Board& board, int output, bool on) {
  const auto bit = static_cast<std::uint8_t>(1U << static_cast<unsigned>(output - 1));
  board.Outputs = static_cast<std::uint8_t>(on ? board.Outputs | bit : board.Outputs & ~bit);
  Note_Spindle(board);
}

// --- Looking -----------------------------------------------------------------------------------

std::int32_t Queue_Used(const Simulated_Board& board) {
  const bool counts = board.Settings.Running_Counts && board.Running.Active;
  return static_cast<std::int32_t>(board.Queue_Count) + (counts ? 1 : 0);
}
std::int32_t Queue_Free(const Simulated_Board& board) {
  return std::max(board.Settings.Capacity - Queue_Used(board), 0);
}

const Board_Entry& Entry_In_Queue(const Simulated_Board& board, std::size_t place) {
  return board.Queue[(board.Queue_First + place) % board.Queue.size()];
}

std::optional<std::int64_t> Next_Board_Event(const Simulated_Board& board) {
  const std::int64_t due = board.Running.Active ? board.Running.Due : Never;
  const std::int64_t next = std::min(due, board.Faults.Next_Time);
  return next == Never ? std::nullopt : std::optional(next);
}

int Pwm_Value(const Simulated_Board& board) {
  constexpr int step = 4;
  return board.Pwm[0] * step + (board.Pwm[1] & (step - 1));
}

}  // namespace norvik
