// commands.h: one thin function for each command of the boards.
//
// Each builds a frame, sends it and reads the reply. False or absent: no valid reply came, which
// does not mean that the board did not act.
#pragma once

#include "core/indexed.h"
#include "serial/move_entry.h"
#include "serial/serial_frame.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

struct Firmware_Reply {
  std::string Revision = "NA", Date = "NA";  // "4.12.3", "05/17/2014"
};
Firmware_Reply ReadFirmware();
std::string ReadPresence();  // what the board is, or "NA"

// What became of a motion command.
struct Move_Answer {
  bool Refused = false;              // the board says that it did not take it
  std::optional<std::int32_t> Free;  // places of the queue; absent: refused or no valid reply
};
Move_Answer MoveSteps(const Move_Entry& entry);
Move_Answer Send_Dwell(const Move_Entry& entry);

std::optional<Status_Reply> ReadStatus();
bool StopMotion();
bool OutputOn(int number);                 // 1 to 7
bool OutputOff(int number);                // 1 to 7
std::optional<std::int32_t> ReadBuffer();  // free places of the queue
bool AxisPrepare(int axis);
bool LoadStepCounters(const Indexed<std::int32_t, 1, 4>& counts);
bool LoadEncoderCounters(const Indexed<std::int32_t, 1, 4>& counts);

// Memory locations of the board.
namespace board_memory {
inline constexpr std::uint16_t Flags = 0x3D, CByte1 = 0x41, CByte2 = 0x42, Watchdog_Errors = 0x88;
inline constexpr std::uint8_t Queue_Runs = 2;  // bit value of the flags
}  // namespace board_memory
std::optional<std::uint8_t> ReadMemory(std::uint16_t address);

bool LimitsDisable();
bool LimitsEnable();
bool ResetController();
bool ClearFaults();
bool MotorEnableOn();
bool MotorEnableOff();
bool SetCByte1(int value);
bool SetCByte2(int value);
bool JogStop(double hz);                 // held to 0 to 65535
bool SetRampRate(int rate);              // also kept as `LastRampRate`
bool SetThrottle(std::int32_t of_1024);  // held to 0 to 32767
bool WriteEncoderConfig(const Encoder_Config& config);
std::optional<Encoder_Reply> ReadEncoderConfig();
std::optional<Config_Reply> ReadConfig();

struct Serial_Session_State {
  std::int32_t BufferCapacity = 39;  // motion commands that the board can hold
  int LastRampRate = 1;              // that the board was given
};
extern Serial_Session_State Serial_Session;

}  // namespace norvik
