// board_fault.h: faults that a test or an operator puts between host and board, and into the
// machine behind it.
//
// A fault is one line of two or three words: when, what, and how often (once where nothing is
// said). Bytes are counted from 1, as are frames from the moment when the fault is added.
//
//   frame=N          the n-th frame            lose=BYTE[:COUNT]   bytes on the way in
//   code=NAME[:N]    the n-th of a command     flip=BYTE:BIT       a bit on the way in, 0 to 7
//   time=SECONDS     so long after this        no-reply            although it was carried out
//   chance=P[:SEED]  each frame, 0 to 1        cut=BYTES           the reply ends after so many
//   depth=N          the queue falls to N      checksum=low|high   wrong byte in the reply
//   axis=X:STEPS     a counter passes there    delay=MS            of the reply
//   now              at once                   twice               the reply comes twice
//                                              noise=HEX           bytes before the reply
//                                              bursts=BYTES:MS     the reply in pieces
//                                              silence=MS          no reply at all for a while
//                                              disconnect=MS       the cable is out for a while
//                                              restart             of the board
//                                              jump=X:STEPS        of a counter
//                                              input=NAME:on|off|auto   aux, home-x, low-x, high-x
//                                              slip=X:PERCENT      the carriage makes fewer steps
//                                              capacity=N          smaller than is reported
//                                              config=BYTE:VALUE   a wrong byte in ReadConfig
//                                              watchdog=N          errors counted
//   times=N          third word; 0: always
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

enum class Fault_Trigger { Frame, Code, Time, Chance, Depth, Axis, Now };
enum class Fault_Action {
  Lose,
  Flip,
  No_Reply,
  Cut,
  Checksum,
  Delay,
  Twice,
  Noise,
  Bursts,
  Silence,
  Disconnect,
  Restart,
  Jump,
  Input,
  Slip,
  Capacity,
  Config,
  Watchdog
};

struct Board_Fault {
  Fault_Trigger Trigger = Fault_Trigger::Frame;
  std::int64_t Number = 1;  // frames; entries; steps; ns
  int Trigger_Axis = 0;
  std::uint8_t Code = 0;
  double Chance = 0;

  Fault_Action Action = Fault_Action::No_Reply;
  double First = 0, Second = 0;  // its numbers, in the order of the text
  std::string Word;              // "low", "home-x:on", the hex digits
  std::int64_t Times = 1;        // 0: always

  // Frames so far; depth: 1 while the queue is deeper; axis: 1 while the counter is there or
  // beyond.
  std::int64_t Seen = 0;
  std::int64_t Fired = 0;
  std::uint32_t Random = 1;
  bool Armed = false;  // its moment has come, and it waits for a frame
  std::string Text;    // as it was added
};

// What happens to one reply on its way.
struct Reply_Harm {
  bool Any = false;
  bool Lost = false, Twice = false, Low_Wrong = false, High_Wrong = false;
  std::optional<std::size_t> Cut_To;
  std::int64_t Delay = 0, Burst_Gap = 0;  // ns
  std::size_t Burst = 0;                  // bytes; 0: in one piece
  std::vector<std::uint8_t> Noise;
};

struct Board_Fault_List {
  std::vector<Board_Fault> List;
  // The next moment at which one happens by the clock alone, ns.
  std::int64_t Next_Time = std::numeric_limits<std::int64_t>::max();
  // What is in force.
  std::int64_t Mute_Until = 0;                // ns: replies are lost
  std::optional<std::int64_t> Unplugged_For;  // ns; for the line, which takes it
  std::optional<std::int32_t> True_Capacity;
  std::optional<std::array<std::uint8_t, 2>> Wrong_Config;  // byte of the reply, its value
};

}  // namespace norvik
