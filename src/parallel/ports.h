// ports.h: the two port primitives that everything of the parallel drive goes through, and the
// recorder beside them.
//
//   PPGetPort / PPSetPort  ->  Platform.Port_Read / Port_Write  ->  hardware or simulated machine
//            |
//            +-- Port_Recorder: (time, port, value, real) of every write, when it is on
//
// Addresses are those of the x86 I/O space. Below 600 lie devices of the computer itself, so such
// an address counts as "not configured": nothing is read or written. `MachineSetup.Parallel_IODLL`
// chooses between two ways of access (1 and 2), which the programs' back ends provide; any other
// value switches port access off.
//
// Number and order of the accesses in a step are behaviour: each costs about a microsecond on real
// hardware and is part of the timing of the pulses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// Lowest address that is accessed.
inline constexpr std::int32_t Lowest_Port = 600;
// A write that must cost its time and move nothing goes so many addresses further on.
inline constexpr std::int32_t Dummy_Port_Offset = 12;

// A failing access stops nothing. It is logged under the name of the primitive, told in the message
// list and in status panel 3, once for each cause: a step loop on a dead port fails some ten
// thousand times in a second. `Port_Failures` counts every one.

// The byte at an I/O address; 0 when nothing was read (address below 600 or above 65535, no way of
// access chosen, a failure). Raises nothing.
std::uint8_t PPGetPort(std::int32_t port) noexcept;

// Writes a byte. `real` false sends it to `port + 12`, an address that no device decodes, so that
// the write costs the same and no pin moves. Nothing happens where PPGetPort would not read. False
// when the write failed, so that the pins are as they were. Raises nothing.
bool PPSetPort(std::int32_t port, std::uint8_t value, bool real) noexcept;

// The byte of an output register, to change a bit of it: what the port reads back, or, with the
// setting `Port_Shadow`, what was written to it last. The port is read either way, so that the step
// pulses keep their timing.
std::uint8_t Output_Byte(std::int32_t port) noexcept;
// Absent: nothing was written to it yet.
std::optional<std::uint8_t> Written_Byte(std::int32_t port);
// Forgets what was written: another machine stands behind the ports.
void Forget_Written_Bytes();

struct Port_Failure {
  std::int64_t Count = 0;  // since the program started
  std::string Said;        // the cause told last
};
struct Port_Failure_State {
  Port_Failure Reads, Writes;
};
extern Port_Failure_State Port_Failures;

// One write that was made, as it was asked for: `Port` is the address before the dummy offset.
struct Port_Write_Record {
  std::int64_t Time = 0;  // ns, Platform.Monotonic_Clock
  std::uint16_t Port = 0;
  std::uint8_t Value = 0;
  bool Real = true;
  bool operator==(const Port_Write_Record&) const = default;
};

// Keeps the writes in blocks of fixed size: recording allocates nothing while the machine moves.
// Each full block goes to `Take_Block`, as does the rest at the end.
struct Port_Recorder_State {
  static constexpr std::size_t Block_Size = 4096;
  bool Active = false;
  bool Failed = false;                   // a block could not be kept; the recording has ended there
  std::vector<Port_Write_Record> Block;  // capacity Block_Size while active
  std::function<void(const std::vector<Port_Write_Record>&)> Take_Block;
};
extern Port_Recorder_State Port_Recorder;

// Begins recording into `take_block`. A running recording is ended first.
void Start_Port_Recorder(std::function<void(const std::vector<Port_Write_Record>&)> take_block);
// Hands over what is left and stops. False: the recording is not whole.
bool Stop_Port_Recorder();

// Records every write from here on as lines "microseconds,port,value,real" of a new file until
// Stop_Port_Recorder: time with three decimals from the start of the recording, port and value in
// decimal, real 1 or 0 (0: the byte went to the dummy address). A path that ends in ".vcd" gives a
// value change dump instead (port_dump.h). Raises a file fault that says what is wrong when the
// file cannot be created. A disk that runs full later ends the recording with one line in the error
// log and stops nothing else.
void Record_Ports_To_File(const std::string& path);

}  // namespace norvik
