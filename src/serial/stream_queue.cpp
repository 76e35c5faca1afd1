#include "serial/stream_queue.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "drive/stops.h"
#include "platform/platform.h"
#include "platform/rest.h"
#include "serial/commands.h"
#include "serial/monitor.h"

#include <algorithm>
#include <cstdlib>

namespace norvik {

Dravon_Stream_State Dravon_Stream;
Stream_Limit_State Stream_Limit;

namespace {

unsigned Latches() {
  unsigned mask = 0;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    if (At_Limit(axis)) mask |= 1U << static_cast<unsigned>(axis);
  return mask;
}

bool Limits_Act() {
  return MachineSetup.LimitSwitchDisable != 1;
}

bool Met_A_Switch() {
  return Limits_Act() && (Latches() & ~unsigned{Dravon_Stream.Limits_Before}) != 0;
}

std::string Encoder_Fault_Text() {
  return "Stopped: the encoder of " + Fault_Axes() +
         " differs too far from the steps. Find the cause, clear the fault (Machine, Port and "
         "pins) "
         "and home before the next run.";
}

// Lowest and highest counters that the axis passes until all is done.
bool Inside_Way(int axis, std::int64_t counter) {
  const Dravon_Stream_State& stream = Dravon_Stream;
  std::int64_t place = stream.Sent_To[axis];
  std::int64_t low = place, high = place;
  for (auto entry = stream.Queue.rbegin(); entry != stream.Queue.rend(); ++entry) {
    place -= entry->Way[axis];
    low = std::min(low, place);
    high = std::max(high, place);
  }
  const std::int64_t slack = stream.Excess[axis] + 1;
  return counter >= low - slack && counter <= high + slack;
}

std::string Place_Text(const Indexed<std::int64_t, 1, 4>& counters) {
  std::string text;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int64_t meant = Dravon_Stream.Sent_To[axis];
    if (std::abs(counters[axis] - meant) <= Dravon_Stream.Excess[axis]) continue;
    text += (text.empty() ? "" : ", ") + std::string(1, Axis_Letter(axis)) + " " +
            std::to_string(counters[axis]) + " instead of " + std::to_string(meant);
  }
  return text;
}

void Lose_Place(const std::string& where) {
  const std::string text = "The board does not stand where it was sent (steps: " + where +
                           "): it was reset, or commands were lost.";
  Position_Memory.Doubt = text + " Home the axes, or look at the positions shown.";
  ErrorLogWrite(text);
  AddMessage(text);
  SetStatus(1, text, 10);
  if (Dravon_Stream.Unsettled || Anything_Moves())
    Dravon_Stream.Failure = "Stopped at step " + std::to_string(Dravon_Stream.CommandIndex) + ". " +
                            text + " Home the axes before the next run.";
}

}  // namespace

std::optional<Move_End> Ended() {
  if (Machine.EStop_Flag) return Move_End::EStop;
  if (Dravon_Stream.Link_Died || !Dravon_Stream.Failure.empty()) return Move_End::Failed;
  if (Application.Closing_Program) return Move_End::Stopped;
  if (Dravon_Stream.Stops != Dravon_Stream.Stops_Before) return Move_End::Stopped;
  if (Escape_Met()) return Move_End::Escape;
  if (Met_A_Switch()) return Move_End::Limit;
  if (!Fault_Axes().empty() && Dravon_Stream.Unsettled) {
    Dravon_Stream.Failure = Encoder_Fault_Text();
    return Move_End::Failed;
  }
  return std::nullopt;
}

void Rest() {
  constexpr std::int32_t microseconds = 1'000;
  DoEvents();
  Rest_Microseconds(microseconds);
}

void Entry_Was_Taken(const Queued_Entry& entry, const Indexed<std::int32_t, 1, 4>& excess,
                     std::int32_t free) {
  Dravon_Stream_State& stream = Dravon_Stream;
  stream.Queue.push_back(entry);
  stream.Queued_Seconds += entry.Seconds;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    stream.Sent_To[axis] += entry.Way[axis];
    stream.Excess[axis] += excess[axis];
  }
  stream.Unsettled = true;
  Free_Was_Told(free);
}

void Free_Was_Told(std::int32_t free) {
  Dravon_Stream_State& stream = Dravon_Stream;
  stream.Last_Free = free;
  // The running entry may or may not hold a place.
  const std::int32_t used = std::max(Serial_Session.BufferCapacity - free, 0);
  while (stream.Queue.size() > static_cast<std::size_t>(used) + 1) {
    stream.Queued_Seconds -= stream.Queue.front().Seconds;
    stream.Queue.pop_front();
  }
  if (stream.StreamStarted)
    stream.Lowest_Queue = std::min(stream.Lowest_Queue.value_or(used), used);
}

double Seconds_Behind_Running() {
  if (Dravon_Stream.Queue.empty()) return 0;
  return Dravon_Stream.Queued_Seconds - Dravon_Stream.Queue.front().Seconds;
}

Indexed<std::int64_t, 1, 4> Program_Counters() {
  Indexed<std::int64_t, 1, 4> counters;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    counters[axis] = std::int64_t{Board_Sign(axis)} * Dravon.Step_Count[axis];
  return counters;
}

bool Counters_Match(const Indexed<std::int64_t, 1, 4>& counters,
                    const Indexed<std::int32_t, 1, 4>& further) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int64_t meant = Dravon_Stream.Sent_To[axis] + further[axis];
    if (std::abs(counters[axis] - meant) > Dravon_Stream.Excess[axis]) return false;
  }
  return true;
}

void Note_Free_Sides() {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    auto& free = Drive_Status.Free_Negative[axis];
    free.reset();
    if (!At_Limit(axis)) continue;
    // The first switch lies where the counter falls.
    free = Dravon.LimitHigh[axis] != (Board_Sign(axis) < 0);
  }
}

Move_End Judge_Place() {
  const bool jogged = Dravon_Stream.Jogging;
  const auto counters = Program_Counters();
  const bool arrived = jogged || !Dravon_Stream.Place_Known || Counters_Match(counters, {});
  const bool switched = Limits_Act() && (Met_A_Switch() || (!arrived && Latches() != 0));
  if (switched) {
    Note_Free_Sides();
    Take_Over_Place();
    return Move_End::Limit;
  }
  if (!Fault_Axes().empty() && !arrived) {
    Dravon_Stream.Failure = Encoder_Fault_Text();
  } else if (!arrived) {
    Lose_Place(Place_Text(counters));
  }
  Take_Over_Place();
  return arrived ? Move_End::Done : Move_End::Failed;
}

void Stream_Saw_Counters() {
  if (!Dravon_Stream.Place_Known) return;
  // A switch or an encoder has stopped the board, which has dropped its queue.
  if (Met_A_Switch() || (Dravon_Stream.Unsettled && !Fault_Axes().empty())) return;
  const auto counters = Program_Counters();
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Inside_Way(axis, counters[axis])) continue;
    Lose_Place(std::string(1, Axis_Letter(axis)) + " " + std::to_string(counters[axis]));
    if (!Dravon_Stream.Unsettled) Take_Over_Place();
    return;
  }
}

void Take_Over_Place() {
  Dravon_Stream_State& stream = Dravon_Stream;
  stream.Sent_To = Program_Counters();
  stream.Excess = {};
  stream.Queue.clear();
  stream.Queued_Seconds = 0;
  stream.Last_Free = Serial_Session.BufferCapacity;
  stream.StreamStarted = stream.BufferFull = false;
  stream.Unsettled = stream.Jogging = stream.In_Pieces = stream.Last_Goes_On = false;
  stream.Place_Known = true;
}

void Begin_Stream() {
  Dravon_Stream_State& stream = Dravon_Stream;
  stream.StreamStarted = stream.BufferFull = false;
  stream.Lowest_Queue.reset();
  stream.Ran_Dry = 0;
  stream.Low_Told = false;
  stream.Held = false;
}

std::string Queue_Text() {
  const Dravon_Stream_State& stream = Dravon_Stream;
  std::string text = std::to_string(stream.Queue.size()) + " entries, " +
                     Format_Number(stream.Queued_Seconds, "0.0") + " s queued";
  if (stream.Lowest_Queue)
    text += "; lowest queue of this run " + std::to_string(*stream.Lowest_Queue);
  if (stream.Ran_Dry > 0) text += "; ran dry " + std::to_string(stream.Ran_Dry) + " times";
  return text;
}

}  // namespace norvik
