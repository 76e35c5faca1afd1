// serial_link.h: the line to a controller board: one frame out, one reply back.
//
// The board never speaks first. A send waits for its reply without yielding, at most a quarter of a
// second of `Platform`'s clock; it is made once, and whoever sent decides what a failure means.
#pragma once

#include "serial/serial_frame.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

inline constexpr std::int32_t Default_Baud = 115'200;
inline constexpr std::int64_t Reply_Time_ns = 250'000'000;

// Round trips of the last exchanges that were answered, ns.
struct Round_Trips {
  static constexpr std::size_t Kept = 128;
  std::array<std::int32_t, Kept> Last{};
  std::array<std::int64_t, Kept> Ended{};  // when, by the monotonic clock
  std::size_t Count = 0;                   // so far
  std::int32_t Worst = 0;
};

struct Serial_Link_State {
  // --- The port ---------------------------------------------------------------------------------
  int Handle = 0;                         // 0: not open
  std::string Device;                     // that was opened or tried last
  std::string Problem;                    // why it is not open, for the operator
  std::int32_t SerialBaud = 0;            // 0: 115200
  std::int16_t ControllerGeneration = 0;  // 0 Dravon, 1 Pelmar
  bool BeepOnCommError = false;

  // --- The last exchange ------------------------------------------------------------------------
  bool TxBusy = false;  // from the start of a send until its reply was looked at
  std::vector<std::uint8_t> LastTxFrame, LastRxFrame;
  std::string LastTxError;  // "", "Transmit Busy" or "Transmit TX Error"
  std::string TxRetries = "0";
  Reply_Bytes Reply;

  // --- Counters, reset together -----------------------------------------------------------------
  double CommsCount = 0;          // frames sent
  double ErrorCount = 0;          // all bad replies
  double ChecksumErrorCount = 0;  // of these, with a wrong checksum
  double LengthErrorCount = 0;    // of these, too short or too long

  // --- Health -----------------------------------------------------------------------------------
  bool LinkGood = false;       // cleared by each bad reply
  std::int64_t Last_Good = 0;  // ns; the last reply that was right
  Round_Trips Trips;
  std::string Last_Error;      // in words: the command and what was wrong
  std::int64_t Exchanges = 0;  // since the program started, for the log
};
extern Serial_Link_State Serial_Link;

struct Serial_Link_Host_Operations {
  // A frame was sent and this came back; empty: nothing did. Does nothing by default.
  std::function<void(std::span<const std::uint8_t> sent, std::span<const std::uint8_t> received)>
      Exchanged;
};
extern Serial_Link_Host_Operations Serial_Link_Host;

// Opens the device after closing what was open. False: `Problem` says why.
bool OpenSerial(const std::string& device, std::int32_t baud);
void CloseSerial();
bool Serial_Is_Open();

// True when a valid reply of at least `reply_length` bytes stands in `Reply`.
bool Transmit(const Serial_Frame& frame, std::size_t reply_length);
// The same with the reply length of the command's row.
bool Transmit(Serial_Code code, const Payload& payload = {});
// Takes the bytes into `Reply` and counts what is wrong with them.
bool CheckReply(std::span<const std::uint8_t> reply, std::size_t reply_length);

// Sends a frame so often in a row, without waiting for each reply, and listens for at most half a
// second. How many were answered; absent: the port takes nothing.
std::optional<int> Transmit_Repeated(const Serial_Frame& frame, int times);

void Reset_Serial_Counters();
// Round trips in words, exchanges a second, errors by kind.
std::string Link_Health_Text();

}  // namespace norvik
