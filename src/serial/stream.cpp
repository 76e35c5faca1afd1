#include "serial/stream.h"

#include "core/application.h"
#include "core/axes.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "drive/stops.h"
#include "platform/platform.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/stream_queue.h"
#include "serial/stream_trace.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr int Most_Failures = 5;
constexpr std::int32_t Largest_Count = 0x7FFFFF;

// --- Asking what became of an entry --------------------------------------------------------------

enum class Fate { Taken, Not_Taken, Unknown };

// Waits until the board has done what it has, with exchanges of its own: the monitor is locked out.
// False: no answer, or an end was asked for.
bool Drain() {
  for (int failures = 0; failures < Most_Failures;) {
    const auto flags = ReadMemory(board_memory::Flags);
    if (!flags || !Read_Status_Now()) {
      ++failures;
      continue;
    }
    if ((*flags & board_memory::Queue_Runs) == 0 && !Dravon.InMotion) return true;
    Rest();
    if (Ended()) return false;
  }
  return false;
}

bool Outputs_Are_As(const Move_Entry& entry) {
  const unsigned masks = entry.High_Mask + 256U * entry.Low_Mask;
  for (int channel = 0; channel < 5; ++channel) {
    const unsigned code = (masks >> static_cast<unsigned>(2 * channel)) & 3U;
    if (code != 0 && Dravon.Outputs[channel + 1] != (code == 2)) return false;
  }
  return true;
}

bool Has_Steps(const Queued_Entry& queued) {
  return std::ranges::any_of(queued.Way, [](std::int32_t steps) { return steps != 0; });
}

// The reply to an entry was lost or was no reply. Asks for the free places: fewer than at the entry
// before mean that it was taken, since entries that end only free more. Otherwise the board is let
// run out, and then its counters tell.
Fate Ask_For_Fate(const Move_Entry& entry, const Queued_Entry& queued, bool is_dwell,
                  std::int32_t& free) {
  const std::uint32_t finished_before = Dravon.LastCommandIndex;
  for (int tries = 0; tries < Most_Failures; ++tries) {
    const auto told = ReadBuffer();
    if (!told) continue;
    free = *told;
    if (!Dravon_Stream.Queue.empty() && free < Dravon_Stream.Last_Free) return Fate::Taken;
    if (!Drain()) return Fate::Unknown;
    const bool numbered = Serial_Link.ControllerGeneration > 0;
    if (numbered && Dravon.LastCommandIndex == entry.Index && finished_before != entry.Index &&
        Dravon_Stream.Last_Entry.Index != entry.Index)
      return Fate::Taken;
    // Outputs and pauses do no harm when they come again to a machine that stands.
    if (!Has_Steps(queued)) {
      const bool seen = !is_dwell && entry.PWM == Unchanged_PWM && Outputs_Are_As(entry);
      return seen ? Fate::Taken : Fate::Not_Taken;
    }
    const auto counters = Program_Counters();
    const bool without = Counters_Match(counters, {});
    const bool with = Counters_Match(counters, queued.Way);
    if (with == without) return Fate::Unknown;
    return with ? Fate::Taken : Fate::Not_Taken;
  }
  return Fate::Unknown;
}

// --- Sending -------------------------------------------------------------------------------------

bool Prepare_Axes(const Indexed<std::int32_t, 1, 4>& steps) {
  bool good = true;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Dravon_Stream.AxisPrepared[axis] = false;
    if (steps[axis] < 1) continue;
    Dravon_Stream.AxisPrepared[axis] = AxisPrepare(axis);
    good = good && Dravon_Stream.AxisPrepared[axis];
  }
  return good;
}

void Note_Bad_Move() {
  ErrorLogWrite("Move Steps Error: Bad Communication");
  Platform.Beep();
}

struct Order {
  Indexed<std::int32_t, 1, 4> Steps;  // with the take-up of backlash
  Entry_Speeds Speeds;
  Move_Entry Entry;
  Queued_Entry Queued;
};

// Up to five attempts. Absent: it did not reach the queue, or nobody knows.
std::optional<std::int32_t> Send(Order& order) {
  for (int failures = 0; failures < Most_Failures; ++failures) {
    if (failures > 0 && Ended()) return std::nullopt;
    if (Prepare_Axes(order.Steps)) {
      const Move_Answer answer = MoveSteps(order.Entry);
      if (answer.Free) return answer.Free;
      Note_Bad_Move();
      if (answer.Refused) continue;
      std::int32_t free = Dravon_Stream.Last_Free;
      const Fate fate = Ask_For_Fate(order.Entry, order.Queued, false, free);
      if (fate == Fate::Taken) return free;
      if (fate == Fate::Unknown) return std::nullopt;
      // The machine stands now.
      order.Speeds.Start = std::min<double>(order.Speeds.Start, MachineSetup.Axis_Ramp_Start);
      Plan_Entry(Rules_Of_Board(), order.Steps, order.Speeds, order.Entry);
      continue;
    }
    Note_Bad_Move();
  }
  return std::nullopt;
}

void Tell_Communication_Failure() {
  if (Ended()) return;
  AddMessage("Dravon Communication Failure!");
  ErrorLogWrite("Dravons motion command failed to get to Dravon.  Check Communication.");
  if (Serial_Link.LinkGood) {
    const std::string limits = Limit_Axes();
    Dravon_Stream.Failure =
        limits.empty()
            ? "The board refuses the move of step " + std::to_string(Dravon_Stream.CommandIndex) +
                  ": its motors are disabled, an axis is in fault, or its queue is full. "
                  "Look at the serial page of the port window."
            : "The board refuses the move: a limit switch of " + limits +
                  " is on. Jog away from it.";
    return;
  }
  Application.EscFlag = true;
  Link_Has_Died("A motion command did not get through (" + Serial_Link.Last_Error + ").");
}

void Warn_Of_Dry_Queue(std::string_view log_text) {
  SetStatus(2, "DravonBuffer Empty", -1);
  AddMessage("DravonBuffer Empty!");
  ErrorLogWrite(log_text);
  if (!Dravon_Stream.Last_Goes_On) return;
  ++Dravon_Stream.Ran_Dry;
  AddMessage("The queue of the board ran dry before step " +
             std::to_string(Dravon_Stream.CommandIndex) + ", within a chain of moves.");
}

// What a free count means for the stream.
void Judge_Free(std::int32_t free, bool is_arc, std::string_view log_text) {
  constexpr std::int32_t filled = 3, full = 5, empty = 2;
  const std::int32_t capacity = Serial_Session.BufferCapacity;
  if (free < capacity - filled) Dravon_Stream.StreamStarted = true;
  if (free < full) Dravon_Stream.BufferFull = true;
  if (free > capacity - empty && Dravon_Stream.StreamStarted && !is_arc)
    Warn_Of_Dry_Queue(log_text);
  else
    SetStatus(2, "DravonBuffer= " + std::to_string(free), -1);
}

void Warn_Of_Low_Queue() {
  constexpr double low = 0.15;  // seconds
  Dravon_Stream_State& stream = Dravon_Stream;
  if (!stream.StreamStarted || !stream.Last_Goes_On || stream.Low_Told) return;
  if (stream.Queued_Seconds > low) return;
  stream.Low_Told = true;
  AddMessage("The queue of the board is low at step " + std::to_string(stream.CommandIndex) + " (" +
             Format_Number(stream.Queued_Seconds * 1'000, "0") +
             " ms): chords this short come slower than they are cut. Lower the feed or the arc "
             "resolution.");
}

// Waits for its turn on the link. False: an end was asked for.
bool Await_Turn() {
  DravonPoll();
  while (Dravon.DravonBusy || Compiler_Works() || Serial_Link.TxBusy) {
    if (Ended()) return false;
    Rest();
  }
  return !Ended();
}

// --- Making an order -----------------------------------------------------------------------------

std::int32_t Backlash_Steps(int axis) {
  return static_cast<std::int32_t>(
      std::nearbyint(Dravon.SPI[axis] * double{MachineSetup.Axis_Backlash[axis]}));
}

void Take_Up_Backlash(const Step_Request& request, Order& order) {
  Dravon_Stream_State& stream = Dravon_Stream;
  constexpr auto largest = static_cast<std::int32_t>(Full_24_Bits);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    order.Steps[axis] = std::clamp(request.Steps[axis], 0, largest);
    const bool changed =
        order.Steps[axis] > 0 && request.Negative[axis] != stream.AxisLastDir[axis];
    stream.AxisDirChanged[axis] = changed;
    if (!changed || !MachineSetup.Axis_Backlash_Enable) continue;
    const std::int32_t extra = std::clamp(Backlash_Steps(axis), 0, largest);
    order.Steps[axis] = std::min(order.Steps[axis], largest - extra) + extra;
    const auto steps = static_cast<float>(extra);
    stream.BacklashSteps[axis] += request.Negative[axis] ? -steps : steps;
  }
}

Order Make_Order(const Step_Request& request, Nullable s_word) {
  Order order;
  Take_Up_Backlash(request, order);
  order.Speeds = {request.Start, request.Run, request.End};
  unsigned directions = 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int32_t steps = order.Steps[axis];
    order.Queued.Way[axis] = request.Negative[axis] ? -steps : steps;
    if (request.Negative[axis] != (Board_Sign(axis) < 0))
      directions |= 1U << static_cast<unsigned>(axis - 1);
  }
  Plan_Entry(Rules_Of_Board(), order.Steps, order.Speeds, order.Entry);
  order.Entry.Directions = static_cast<std::uint8_t>(directions);
  const Output_Masks masks = Masks_Of(request.Out);
  order.Entry.High_Mask = masks.High, order.Entry.Low_Mask = masks.Low;
  order.Entry.PWM = PWM_Of(s_word);
  order.Entry.Index = order.Queued.Index = Dravon_Stream.CommandIndex;
  order.Queued.Seconds = Entry_Seconds(order.Entry, Serial_Session.LastRampRate);
  return order;
}

void Keep_Taken(const Step_Request& request, const Order& order, std::int32_t free) {
  Dravon_Stream_State& stream = Dravon_Stream;
  Indexed<std::int32_t, 1, 4> excess;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    excess[axis] = Excess_Steps(order.Entry, axis, order.Steps[axis]);
  Entry_Was_Taken(order.Queued, excess, free);
  for (int axis = 1; axis <= Axis_Count; ++axis)
    if (request.Steps[axis] > 0) stream.AxisLastDir[axis] = request.Negative[axis];
  constexpr double tick = 2e-7, overhead = 17;  // seconds; ticks of the board
  const double ticks = double{1} * order.Entry.DownRamp - overhead;
  if (ticks != 0 && Dravon.ReferenceSPI > 0)
    stream.LastEstimatedIPM = static_cast<float>(60 / (Dravon.ReferenceSPI * tick * ticks));
  stream.Last_Entry = order.Entry;
  stream.Switched_By_Hand = false;
}

// --- Around a move -------------------------------------------------------------------------------

// Why a move cannot be sent, in the operator's words; empty: it can.
std::string Unfit_For_Board(const Step_Request& request) {
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::int64_t way = request.Negative[axis] ? -std::int64_t{request.Steps[axis]}
                                                    : std::int64_t{request.Steps[axis]};
    if (std::abs(Dravon_Stream.Sent_To[axis] + way) <= Largest_Count) continue;
    return std::string("The move would bring ") + Axis_Letter(axis) +
           " beyond what the board can count (8388607 steps from 0). Set its zero nearer to the "
           "work, or lower Axis_SPI_" +
           std::to_string(axis) + ".";
  }
  return {};
}

// A held jog goes as far as the board can count in one move; its release ends it.
Step_Request Within_Counters(const Step_Request& request) {
  if (!request.No_Rate_Check) return request;
  double part = 1;
  const double longest = double{1} * Full_24_Bits / Dravon.SASF;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double steps = request.Steps[axis];
    if (!(steps > 0)) continue;
    const auto place = static_cast<double>(Dravon_Stream.Sent_To[axis]);
    const double room = Largest_Count - (request.Negative[axis] ? -place : place);
    part = std::min({part, std::max(room, 0.0) / steps, longest / steps});
  }
  if (part >= 1) return request;
  Step_Request shorter = request;
  for (auto& steps : shorter.Steps) steps = static_cast<std::int32_t>(std::floor(steps * part));
  return shorter;
}

void Begin_Chain_At_Rest() {
  Dravon_Stream_State& stream = Dravon_Stream;
  stream.Stops_Before = stream.Stops;
  if (stream.Unsettled) return;
  stream.Failure.clear();
  stream.StreamStarted = stream.BufferFull = false;
  stream.Limits_Before = 0;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    if (At_Limit(axis))
      stream.Limits_Before =
          static_cast<std::uint8_t>(stream.Limits_Before | (1U << static_cast<unsigned>(axis)));
}

void Await_Short_Queue() {
  int rounds_so_far = 0;
  while (Stream_Limit.Seconds > 0 &&
         Dravon_Stream.Queue.size() > Stream_Limit_State::Fewest_Entries &&
         Seconds_Behind_Running() > Stream_Limit.Seconds && !Ended()) {
    const double excess = Seconds_Behind_Running() - Stream_Limit.Seconds;
    constexpr double shortest = 0.002, longest = 0.05;  // seconds
    const auto until = Platform.Monotonic_Clock() +
                       static_cast<std::int64_t>(std::clamp(excess, shortest, longest) * 1e9);
    for (int rounds = 0; Platform.Monotonic_Clock() < until && rounds < 100; ++rounds) {
      if (Ended()) return;
      Rest();
    }
    if (const auto free = ReadBuffer()) Free_Was_Told(*free);
    // A board that counts its places otherwise than it reports would keep this wait for ever.
    constexpr int looks = 20;
    if (++rounds_so_far % looks != 0) continue;
    const auto flags = ReadMemory(board_memory::Flags);
    if (flags && (*flags & board_memory::Queue_Runs) == 0) {
      Dravon_Stream.Queue.clear();
      Dravon_Stream.Queued_Seconds = 0;
    }
  }
}

// An operation that does not go on leaves nothing in the board.
Move_End Finish(Move_End end) {
  if (end == Move_End::Limit) Note_Free_Sides();
  if (Dravon_Stream.Unsettled) Serial_Stop();
  return end;
}

void Tell_Pause() {
  if (!Dravon_Stream.Held) return;
  SetStatus(1,
            "Pausing: " + std::to_string(Dravon_Stream.Queue.size()) + " moves, " +
                Format_Number(Dravon_Stream.Queued_Seconds, "0.0") + " seconds",
            -1);
}

}  // namespace

std::optional<Indexed<double, 1, 4>> Path_Scales_Of_Setup() {
  if (!MachineSetup.Serial_Path_Feed) return std::nullopt;
  Indexed<double, 1, 4> scales;
  for (int axis = 1; axis <= Axis_Count; ++axis) scales[axis] = MachineSetup.Axis_SPI[axis];
  return scales;
}

Entry_Rules Rules_Of_Board() {
  return {.ReferenceSPI = std::min(Dravon.SPI[1], Dravon.SPI[2]),
          .SASF = Dravon.SASF,
          .Generation = Serial_Link.ControllerGeneration,
          .Ramp_Rate = Serial_Session.LastRampRate,
          .Path_Scales = Path_Scales_Of_Setup()};
}

std::int32_t PWM_Value_Of(double s_word) {
  constexpr double full = 1'023;
  const double rpm = std::max<double>(MachineSetup.Dravon_Spindle_RPM, 1);
  return static_cast<std::int32_t>(std::clamp(std::floor(s_word / rpm * full), 0.0, full));
}

std::int32_t PWM_Of(Nullable s_word) {
  constexpr std::int32_t full = 1'023;
  if (!s_word || *s_word == Unchanged_PWM) return Unchanged_PWM;
  const std::int32_t value = PWM_Value_Of(*s_word);
  return MachineSetup.Dravon_PWM_Inv ? full - value : value;
}

std::optional<std::int32_t> DravonMove(const Step_Request& request, Nullable s_word) {
  Trace_Dravon_Move(request, s_word, Dravon_Stream.CommandIndex);
  if (!Await_Turn()) return std::nullopt;
  Dravon.DravonBusy = true;
  Dravon.ReferenceSPI = std::min(Dravon.SPI[1], Dravon.SPI[2]);
  const auto backlash = Dravon_Stream.BacklashSteps;
  Order order = Make_Order(request, s_word);
  const std::optional<std::int32_t> free = Send(order);
  if (!free) {
    Dravon_Stream.BacklashSteps = backlash;
    Tell_Communication_Failure();
    Dravon.DravonBusy = false;
    return std::nullopt;
  }
  Keep_Taken(request, order, *free);
  if (s_word && order.Entry.PWM != Unchanged_PWM)
    Drive_Status.Spindle_Level = PWM_Value_Of(*s_word);
  Judge_Free(*free, request.Is_Arc, "Dravons motion buffer ran empty during operation!");
  Dravon_Stream.Last_Goes_On = request.End > MachineSetup.Axis_Ramp_Start;
  Warn_Of_Low_Queue();
  Dravon.DravonBusy = false;
  return free;
}

std::optional<std::int32_t> DravonDwell(double seconds, std::uint32_t command_index) {
  if (!Await_Turn()) return std::nullopt;
  Dravon.DravonBusy = true;
  Order order;
  order.Entry = Dravon_Stream.Last_Entry;
  if (Dravon_Stream.Switched_By_Hand) {
    order.Entry.High_Mask = order.Entry.Low_Mask = 0;
    order.Entry.PWM = Unchanged_PWM;
  }
  Plan_Dwell(seconds, order.Entry);
  order.Entry.Index = order.Queued.Index = command_index & Full_24_Bits;
  order.Queued.Seconds = Entry_Seconds(order.Entry, Serial_Session.LastRampRate);
  std::optional<std::int32_t> free;
  for (int failures = 0; !free && failures < Most_Failures && !Ended(); ++failures) {
    const Move_Answer answer = Send_Dwell(order.Entry);
    free = answer.Free;
    if (free || answer.Refused) continue;
    std::int32_t told = Dravon_Stream.Last_Free;
    const Fate fate = Ask_For_Fate(order.Entry, order.Queued, true, told);
    if (fate == Fate::Taken) free = told;
    if (fate == Fate::Unknown) break;
  }
  if (free) {
    Entry_Was_Taken(order.Queued, {}, *free);
    Judge_Free(*free, false, "Dravons motion buffer Buffer ran empty during operation!");
    Dravon_Stream.Last_Goes_On = false;
  } else {
    Tell_Communication_Failure();
  }
  Dravon.DravonBusy = false;
  return free;
}

void DravonWaitForBuffer() {
  constexpr std::int32_t enough_on_second = 20;
  const std::int32_t enough = Serial_Link.ControllerGeneration > 0 ? enough_on_second : 0;
  int failures = 0;
  while (Dravon_Stream.BufferFull && !Ended()) {
    const auto free = ReadBuffer();
    if (!free && ++failures >= Most_Failures)
      return Link_Has_Died("The board does not tell how full its queue is (" +
                           Serial_Link.Last_Error + ").");
    if (free) {
      failures = 0;
      Free_Was_Told(*free);
      if (*free > enough) Dravon_Stream.BufferFull = false;
    }
    if (Dravon_Stream.BufferFull) Rest();
  }
}

bool DravonWaitEmpty() {
  for (int failures = 0; !Ended();) {
    Tell_Pause();
    const auto flags = ReadMemory(board_memory::Flags);
    if (!flags && ++failures >= Most_Failures) {
      Link_Has_Died("The board does not tell whether it still moves (" + Serial_Link.Last_Error +
                    ").");
      return false;
    }
    if (flags) {
      failures = 0;
      if ((*flags & board_memory::Queue_Runs) == 0) return true;
      if (Dravon_Stream.Held)
        if (const auto free = ReadBuffer()) Free_Was_Told(*free);
    }
    constexpr int rounds = 4;  // milliseconds between two looks
    for (int i = 0; i < rounds && !Ended(); ++i) Rest();
  }
  return false;
}

Move_End Serial_Move(const Step_Request& asked, Nullable s_word, std::int32_t step) {
  const Operation_Scope move(Operation::Move);
  Begin_Watching_Stops();
  Begin_Chain_At_Rest();
  if (const auto end = Ended()) return Finish(*end);
  const Step_Request request = Within_Counters(asked);
  Dravon_Stream.Failure = Unfit_For_Board(request);
  if (!Dravon_Stream.Failure.empty()) return Finish(Move_End::Failed);
  DravonWaitForBuffer();
  Await_Short_Queue();
  if (const auto end = Ended()) return Finish(*end);
  if (request.No_Rate_Check && !Machine.Jog_Stop_Request) return Move_End::Released;
  Dravon_Stream.CommandIndex = static_cast<std::uint32_t>(step) & Full_24_Bits;
  const bool pieces = request.No_Rate_Check && MachineSetup.Serial_Jog_Pieces;
  const bool sent =
      pieces ? Jog_In_Pieces(request, s_word) : DravonMove(request, s_word).has_value();
  if (const auto end = Ended()) return Finish(*end);
  if (!sent) return Finish(Move_End::Failed);
  if (request.No_Rate_Check) Dravon_Stream.Jogging = !pieces;
  // Released while the move was on its way.
  if (request.No_Rate_Check && !Machine.Jog_Stop_Request) Serial_Release_Jog();
  const bool steps = std::ranges::any_of(request.Steps, [](std::int32_t n) { return n > 0; });
  return steps ? Move_End::Done : Move_End::No_Steps;
}

Move_End Serial_Dwell(double seconds, std::int32_t step) {
  Begin_Watching_Stops();
  Begin_Chain_At_Rest();
  DravonWaitForBuffer();
  Await_Short_Queue();
  if (const auto end = Ended()) return Finish(*end);
  Dravon_Stream.CommandIndex = static_cast<std::uint32_t>(step) & Full_24_Bits;
  const auto free = DravonDwell(seconds, Dravon_Stream.CommandIndex);
  if (const auto end = Ended()) return Finish(*end);
  return free ? Move_End::Done : Finish(Move_End::Failed);
}

Move_End Serial_Wait_Empty() {
  if (!Dravon_Stream.Unsettled) return Move_End::Done;
  Begin_Watching_Stops();
  Dravon_Stream.Stops_Before = Dravon_Stream.Stops;
  for (;;) {
    if (!DravonWaitEmpty()) return Finish(Ended().value_or(Move_End::Failed));
    const bool polled = DravonPoll();
    if (const auto end = Ended()) return Finish(*end);
    if (polled && !Dravon.InMotion) return Judge_Place();
    Rest();
  }
}

}  // namespace norvik
