// board_state.h: all that a simulated controller board is and remembers (board.h tells what it is
// for).
//
// Times in ns of the caller's clock, rates in Hz and counts as the frames carry them, positions of
// axes in steps. Axes 1..4 are X, Y, Z, A.
#pragma once

#include "core/axes.h"
#include "core/indexed.h"
#include "simulate/board/board_codes.h"
#include "simulate/board/board_fault.h"
#include "simulate/board/board_findings.h"
#include "simulate/board/frame_receiver.h"
#include "simulate/board/motion_profile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace norvik {

enum class Mask_Semantics { Spec, Raw };  // two bits a channel: 2 on, 1 off; or 0 off, 1 none, 2 on
enum class Unprepared_Steps { Warn, Ignore_Axis, Refuse };

// What the board is like. All of it is invented but the two capacities.
struct Board_Settings {
  std::int32_t Capacity = 39;      // entries that the queue holds besides the running one
  bool Running_Counts = false;     // the running entry takes a place of the queue
  bool Answer_Bad_Frames = false;  // byte 2 = 21 instead of silence
  bool Load_While_Moving = false;  // counters may be loaded while axes move
  bool Limit_Stops_All = true;  // a switch stops all axes and empties the queue, or its axis alone
  bool Exact_Count = false;     // steps as meant, not as the truncated dividers give them
  Mask_Semantics Masks = Mask_Semantics::Spec;
  Unprepared_Steps Unprepared = Unprepared_Steps::Warn;
  std::int64_t Restart_Time = 400'000'000;  // ns of silence
  std::array<std::uint8_t, 3> Revision{4, 12, 3};
  std::array<std::uint8_t, 4> Date{17, 5, 20, 14};  // day, month, century, year
  std::uint8_t Hardware = 1;
};

enum class Input_State { Automatic, On, Off };  // as the machine has it, or stuck

// What an axis's mechanics are like. Positions are the carriage's, in steps.
struct Board_Axis_Settings {
  std::optional<double> Low_Switch, High_Switch;  // on at it and beyond; absent: there is none
  double Hysteresis = 4;                          // steps until it is off again
  std::optional<double> Home_From, Home_To;       // the home input is on between them
  std::optional<double> Low_Stop, High_Stop;  // hard stops: the motor goes on without the carriage
  double Max_Rate = 0;                        // steps a second; 0: no limit
  double Max_Jump = 0;                        // of the rate from one entry to the next; 0: any
  // Encoder counts a step; absent: as the board is configured, so that they agree.
  std::optional<double> Encoder_Ratio;
  double Slip = 0;         // part of the steps that the carriage does not make
  double Lag = 0;          // steps that it is behind while the axis moves
  std::int32_t Noise = 0;  // encoder counts to both sides
};

// An axis at the begin of the running entry, or at rest.
struct Board_Axis {
  Board_Axis_Settings Settings;
  std::int64_t Counter = 0;              // steps; the board reports its low 24 bits
  double Carriage = 0;                   // steps
  double Encoder_Origin = 0;             // encoder count of the carriage's place 0
  bool Low_On = false, High_On = false;  // switches, with their hysteresis
  Input_State Low_Input = Input_State::Automatic, High_Input = Input_State::Automatic,
              Home_Input = Input_State::Automatic;
  double Last_Rate = 0;  // of the entry before, steps a second, negative with its direction
  // Encoder configuration as the host wrote it: mode + 128 enabled + 64 stop on fault.
  std::uint8_t Encoder_Byte = 1;
  std::uint32_t Encoder_Factor = 1'000'000;  // thousandths of steps a count
  std::uint32_t Encoder_Error = 255;         // steps
  bool Encoder_Fault = false;
};

// A motion entry as its frame brings it.
struct Board_Entry {
  std::uint32_t Major = 0;
  std::array<std::uint32_t, Axis_Count> Dividers{};
  std::uint32_t Run_Ramp = 0, Down_Ramp = 0, Index = 0;
  std::uint16_t Start_Rate = 0;
  std::uint8_t Directions = 0, High_Mask = 0, Low_Mask = 0;
  std::array<std::uint8_t, 2> Pwm{};
  std::uint8_t Prepared = 0;  // a bit for each axis
  std::uint8_t Ignored = 0;   // axes whose steps are left out
  bool Dwell = false;
};

struct Running_Entry {
  bool Active = false;
  Board_Entry Entry;
  Motion_Profile Profile;
  std::int64_t Begin = 0;  // ns
  // The entry's own seconds at a time of the clock: they pass at the throttle's speed.
  std::int64_t Anchor_Time = 0;
  double Anchor_Seconds = 0;
  std::uint8_t Halted = 0;  // axes that a switch has stopped
  // What happens before its end: the count, and the axis whose switch or encoder it is.
  std::optional<std::int64_t> Event_Count;
  int Event_Axis = 0;
  enum class Event { Low_Switch, High_Switch, Encoder } Event_Kind = Event::Low_Switch;
  std::int64_t Due = 0;  // ns: its end or that event
};

// A frame that came in or went out, for a log.
struct Board_Frame_Event {
  std::int64_t Time = 0;  // ns; of the last byte that came in, of the first that goes out
  bool To_Host = false;
  std::span<const std::uint8_t> Frame;
  std::string_view Verdict;  // "done", "full", "checksum", ...
};
// An entry that began or ended.
struct Board_Motion_Event {
  std::int64_t Time = 0;  // ns
  bool Ended = false;
  std::string_view Why;  // of an end: "done", "stop", "jog stop", "limit", ...
};

struct Board_Host_Operations {
  std::function<void(const Board_Frame_Event&)> Frame;
  std::function<void(const Board_Motion_Event&)> Motion;
  std::function<void(std::int64_t time, const std::string& text)> Event;  // faults, marks, hands
};

struct Board_Counts {
  std::int64_t Frames = 0, Replies = 0, Moves = 0, Finished = 0, Longest_Gap = 0;
  std::optional<std::int32_t> Smallest_Queue;  // while a stream was on
};

// What the board says, before a line makes it late, cuts it or loses it.
struct Board_Reply {
  static constexpr std::size_t Longest = 64;
  std::array<std::uint8_t, Longest> Bytes{};
  std::size_t Length = 0;  // 0: nothing
  Reply_Harm Harm;         // by faults, for the line
};

struct Simulated_Board {
  Board_Generation Generation = Board_Generation::Dravon_V4;
  Board_Settings Settings;
  Indexed<Board_Axis, 1, Axis_Count> Axes;
  std::int64_t Now = 0;  // ns; everything up to here has happened

  // --- Motion ---------------------------------------------------------------------------------
  Running_Entry Running;
  std::vector<Board_Entry> Queue;  // a ring
  std::size_t Queue_First = 0, Queue_Count = 0;
  std::uint32_t Finished_Index = 0;
  std::uint8_t Prepared_Axes = 0;  // for the next move
  double Throttle = 1;
  bool Enabled = true;                  // motors
  bool Stopped = false;                 // by a stop, since then no enable
  bool Stream_On = false;               // the queue has held three entries since it was empty
  std::optional<std::int64_t> Ran_Dry;  // when

  // --- State that the host sets ---------------------------------------------------------------
  bool Limits_On = true;
  std::uint8_t Limit_Latches = 0, Outputs = 0, Ramp_Rate = 1;
  std::array<std::uint8_t, 2> Control_Bytes{255, 255};
  std::array<std::uint8_t, 2> Pwm{};
  std::uint8_t Watchdog_Errors = 0;
  std::array<std::uint8_t, 256> Memory{};
  Input_State Aux = Input_State::Off;
  bool Aux_Flag = false;
  std::int64_t Silent_Until = 0;  // ns: a restart

  // --- Link -----------------------------------------------------------------------------------
  Frame_Receiver Receiver;
  Board_Fault_List Faults;
  std::array<std::uint8_t, Frame_Receiver::Longest_Frame> Last_Move{};  // its bytes
  std::size_t Last_Move_Length = 0;
  bool Last_Move_Unanswered = false;
  std::optional<std::int64_t> Last_Frame;  // ns
  Board_Reply Reply;
  std::uint8_t Answers_To = 0;  // the command that it answers

  Board_Counts Counts;
  Board_Findings Findings;
  Board_Host_Operations Host;
};

// Bit value of an axis.
inline constexpr std::uint8_t Axis_Bit(int axis) {
  return static_cast<std::uint8_t>(1U << static_cast<unsigned>(axis - 1));
}

}  // namespace norvik
