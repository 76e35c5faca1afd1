// board_fixture.h: a host at its simplest: builds frames by hand and sends them to a board.
#pragma once

#include "simulate/board/board.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace norvik {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int64_t Test_Microsecond = 1'000, Test_Millisecond = 1'000'000,
                       Test_Second = 1'000'000'000;

inline Bytes Frame_Of(std::uint8_t code, Bytes payload = {}) {
  Bytes frame{27, code};
  frame.insert(frame.end(), payload.begin(), payload.end());
  unsigned sum = 0;
  for (const std::uint8_t byte : frame) sum += byte;
  frame.push_back(static_cast<std::uint8_t>(sum % 256));
  frame.push_back(static_cast<std::uint8_t>(sum / 256));
  return frame;
}

inline void Append_Number(Bytes& bytes, std::uint64_t value, int size) {
  for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

// A move of one or more axes: steps with their sign, at a constant rate where no ramp is given.
struct Test_Move {
  std::int64_t X = 0, Y = 0, Z = 0, A = 0;
  std::uint32_t Rate = 1000, Up = 0, Down = 0;
  std::uint8_t High = 0, Low = 0, Pwm_High = 255, Pwm_Low = 255;
  std::uint32_t Index = 0;
};

inline Bytes Move_Payload(Board_Generation generation, const Test_Move& move) {
  const std::int64_t steps[] = {move.X, move.Y, move.Z, move.A};
  std::int64_t major = 0;
  for (const std::int64_t axis : steps) major = std::max(major, std::abs(axis));
  Bytes payload;
  Append_Number(payload, static_cast<std::uint64_t>(major), 3);
  std::uint8_t directions = 0;
  for (int i = 0; i < 4; ++i) {
    const std::int64_t count = std::abs(steps[i]);
    Append_Number(payload,
                  count == 0 ? 0xFFFFFFFFU : static_cast<std::uint64_t>(major * 10'000 / count), 4);
    if (steps[i] < 0) directions = static_cast<std::uint8_t>(directions | 1 << i);
  }
  Append_Number(payload, move.Rate, 2);
  Append_Number(payload, static_cast<std::uint64_t>(major) - move.Up, 3);
  Append_Number(payload, move.Down, 3);
  for (const std::uint8_t byte : {directions, move.High, move.Low, move.Pwm_High, move.Pwm_Low}) {
    payload.push_back(byte);
  }
  if (generation == Board_Generation::Pelmar_V5) Append_Number(payload, move.Index, 3);
  return payload;
}

inline Bytes Dwell_Payload_Of(std::uint32_t milliseconds, std::uint8_t high = 0) {
  Bytes payload;
  Append_Number(payload, milliseconds, 3);
  for (int i = 0; i < 4; ++i) Append_Number(payload, 0xFFFFFFFF, 4);
  Append_Number(payload, 1000, 2);
  Append_Number(payload, milliseconds, 3);
  Append_Number(payload, 0, 3);
  for (const std::uint8_t byte :
       {std::uint8_t{0}, high, std::uint8_t{0}, std::uint8_t{255}, std::uint8_t{255}})
    payload.push_back(byte);
  Append_Number(payload, 77, 3);
  return payload;
}

class Board_Test : public ::testing::Test {
 protected:
  void Power_Up(Board_Generation generation) { Board = Make_Board(generation); }

  // Sends the bytes at the board's present time; the bytes of what it answers.
  Bytes Send(const Bytes& bytes) {
    Bytes answer;
    for (const std::uint8_t byte : bytes) {
      const Board_Reply& reply = Receive_Byte(Board, byte, Board.Now);
      if (reply.Harm.Lost) continue;
      answer.insert(answer.end(), reply.Bytes.begin(),
                    reply.Bytes.begin() + static_cast<std::ptrdiff_t>(reply.Length));
    }
    return answer;
  }
  Bytes Ask(std::uint8_t code, const Bytes& payload = {}) { return Send(Frame_Of(code, payload)); }
  // The second byte of the answer to a move, with its axes prepared.
  int Move(const Test_Move& move) {
    for (std::uint8_t axis = 1; axis <= 4; ++axis) Ask(17, {axis});
    const Bytes answer = Ask(10, Move_Payload(Board.Generation, move));
    return answer.size() < 2 ? -1 : answer[1];
  }
  void Wait(std::int64_t ns) { Follow_Board(Board, Board.Now + ns); }
  void Wait_Until_Idle() { Wait(std::int64_t{10'000} * Test_Second); }
  // A counter or encoder of a status reply, from its first byte counted from 1.
  static std::int32_t Number_24(const Bytes& reply, std::size_t place) {
    return Sign_Extended_24(Big_Endian_24(&reply.at(place - 1)));
  }
  bool Noticed(Board_Finding_Kind kind, int axis = 0) const {
    return Board_Finding_Count(Board.Findings, kind, axis) > 0;
  }

  Simulated_Board Board = Make_Board(Board_Generation::Dravon_V4);
};

// Runs for both generations.
class Both_Boards : public Board_Test, public ::testing::WithParamInterface<Board_Generation> {
 protected:
  void SetUp() override { Power_Up(GetParam()); }
  bool Is_Pelmar() const { return GetParam() == Board_Generation::Pelmar_V5; }
};

}  // namespace norvik
