// linux_platform.h: time, ports and priority as this operating system gives them.
//
// Each part is installed into `Platform` by itself, so that a program takes the dialogs from one
// back end and the hardware from here. Nothing needs a right until it is used; what the system
// refuses is said in words that name what gives it.
//
// Port access, by the way chosen in `Parallel_IODLL`:
//
//   1  port instructions, allowed address by address with ioperm (x86 only; capability
//      CAP_SYS_RAWIO)
//   2  the device /dev/port: read and write at the offset of the address (its group and
//      CAP_SYS_RAWIO; a system call for each access, on every architecture that has the device)
//
// Priority levels are nice values. A fixed-priority scheduling class would be wrong for a loop that
// never sleeps: the kernel takes the processor away from it for about 50 ms in every second.
//
//   level            nice                        memory
//   0 normal         as the program was started  not locked
//   1 high           -10                         not locked
//   2 real time      -20                         locked
//
// Where the kernel groups the programs of a session (autogroup), the group gets the same value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace norvik {

// --- Time ----------------------------------------------------------------------------------------

// Fills Monotonic_Clock, Delay_Microseconds, Delay_In_Period and `Resting`. Delays spin on
// the time-stamp counter where it runs at one rate in all states of the processor, on the monotonic
// clock elsewhere. Calibrates for about 20 ms.
void Install_Linux_Clock();

// --- Ports ---------------------------------------------------------------------------------------

// Whether this process may access ports in the way 1 or 2. `Words` says how to get the right when
// it may not; empty when it may. Reads and writes no port.
struct Port_Right {
  bool Granted = false;
  std::string Words;
};
Port_Right Direct_Port_Right(int way);

// Fills Port_Read and Port_Write with direct access. `way` is read at every access, so that the
// setting acts at once, and must live as long as the process. An access that is refused, or that
// fails later, raises a std::runtime_error with the words, every time. Addresses that are not
// permitted are never accessed.
struct Port_Permission {
  bool (*Permitted)(std::int32_t address) noexcept = [](std::int32_t) noexcept { return true; };
  std::string (*Refused_Words)(std::int32_t address) = [](std::int32_t) { return std::string(); };
};
void Install_Direct_Ports(const std::int16_t* way, const Port_Permission& permission = {});

// Writes one byte without raising or allocating, for a signal handler; nothing where an access
// before was refused.
void Write_Port_In_Handler(std::uint16_t address, std::uint8_t value) noexcept;

// The device of way 2; another path in tests.
void Set_Port_Device(const std::string& path);

// --- Serial ports --------------------------------------------------------------------------------

// Fills the serial operations. A port is this process's alone while it is open; one that cannot be
// opened is told with what gives it.
void Install_Serial_Ports();

// Writes the bytes to every serial port that is open, for a signal handler.
void Write_Serial_Ports_In_Handler(const std::uint8_t* bytes, std::size_t count) noexcept;

// --- Locks ---------------------------------------------------------------------------------------
//
// Advisory locks on files, held until the process ends, however it ends. The files stay; what they
// hold means nothing.

// A folder that belongs to this user alone: $XDG_RUNTIME_DIR, otherwise "norvik-<user>" in the
// temporary folder, made with mode 700. Empty when neither is ours, as where somebody else has made
// the second one before.
std::string Runtime_Folder();

// Fills Other_Instance_Runs: one desktop for each user, by a lock in that folder. It answers true
// also when the lock cannot be made.
void Install_Instance_Lock();

// Makes this process the only one of this computer that drives motors at its ports, whoever
// started the others. `Words` says what to do when another one does or the lock cannot be made;
// empty when it is held. Asking again is harmless.
Port_Right Lock_Direct_Port();

// The file of that lock; another path in tests. A lock that is held is given back.
void Set_Port_Lock(const std::string& path);

// --- Priority ------------------------------------------------------------------------------------

// Fills Set_Priority.
void Install_Linux_Priority();

}  // namespace norvik
