// serial_port.h: a serial port that a test answers.
//
//   Serial_Port port;                          // over a Scripted_Platform that stands already
//   port.Answer = [&](const Bytes& frame) { return Framed({27, frame[1], 7}); };
//   ...
//   EXPECT_EQ(port.Sent.back(), ...);
//
// Each write is one frame. What `Answer` gives can be read `Latency_us` later; the empty answer is
// silence.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace norvik {

using Bytes = std::vector<std::uint8_t>;

// The bytes with their checksum behind them.
inline Bytes Framed(Bytes bytes) {
  unsigned sum = 0;
  for (const std::uint8_t byte : bytes) sum += byte;
  bytes.push_back(static_cast<std::uint8_t>(sum & 0xFFU));
  bytes.push_back(static_cast<std::uint8_t>(sum >> 8U));
  return bytes;
}

struct Serial_Port {
  Serial_Port() {
    Platform.Serial_Open = [this](const std::string& device, std::int32_t baud) {
      Opened.push_back(device + " " + std::to_string(baud));
      if (!Problem.empty()) return Serial_Opened{0, Problem};
      return Serial_Opened{1, {}};
    };
    Platform.Serial_Write = [this](int, const Bytes& frame) {
      if (Unplugged) return false;
      Sent.push_back(frame);
      const Bytes reply = Answer ? Answer(frame) : Bytes();
      Waiting.insert(Waiting.end(), reply.begin(), reply.end());
      Ready_At = Platform.Monotonic_Clock() + std::int64_t{Latency_us} * 1'000;
      return true;
    };
    Platform.Serial_Available = [this](int) {
      if (Unplugged) return std::int32_t{-1};
      const bool ready = Platform.Monotonic_Clock() >= Ready_At;
      return ready ? static_cast<std::int32_t>(Waiting.size()) : 0;
    };
    Platform.Serial_Read = [this](int, Bytes& bytes) {
      if (Unplugged) return false;
      bytes.insert(bytes.end(), Waiting.begin(), Waiting.end());
      Waiting.clear();
      return true;
    };
    Platform.Serial_Close = [this](int) { ++Closed; };
  }
  Serial_Port(const Serial_Port&) = delete;
  Serial_Port& operator=(const Serial_Port&) = delete;

  std::function<Bytes(const Bytes& frame)> Answer;
  std::string Problem;  // of the next open
  bool Unplugged = false;
  std::int32_t Latency_us = 1'000;

  std::vector<Bytes> Sent;
  std::vector<std::string> Opened;
  int Closed = 0;
  Bytes Waiting;
  std::int64_t Ready_At = 0;
};

}  // namespace norvik
