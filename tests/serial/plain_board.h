// plain_board.h: a board as plain as a test needs it: it answers, queues and counts, and finishes
// an entry when the test or a look at its flags says so.
#pragma once

#include "support/serial_port.h"

#include <array>
#include <deque>
#include <string>

namespace norvik {

struct Plain_Board {
  explicit Plain_Board(int generation) : Generation(generation) {
    Port.Answer = [this](const Bytes& frame) { return Take(frame); };
  }

  struct Entry {
    std::array<std::int32_t, 4> Steps{};
    std::uint32_t Index = 0;
  };

  // Entries that are done.
  void Finish(int count) {
    for (; count > 0 && !Queue.empty(); --count) {
      for (std::size_t i = 0; i < 4; ++i) Counter[i] += Queue.front().Steps[i];
      Last_Index = Queue.front().Index;
      Queue.pop_front();
    }
  }
  // "11 17 17 10": the codes of all frames so far; `Sent` is emptied.
  std::string Codes() {
    std::string text;
    for (const Bytes& frame : Port.Sent)
      text += (text.empty() ? "" : " ") + std::to_string(frame[1]);
    Port.Sent.clear();
    return text;
  }
  int Count_Of(int code) const {
    int count = 0;
    for (const Bytes& frame : Port.Sent) count += frame[1] == code ? 1 : 0;
    return count;
  }
  const Bytes& Last_Of(int code) const {
    static const Bytes none(64);
    for (auto frame = Port.Sent.rbegin(); frame != Port.Sent.rend(); ++frame)
      if ((*frame)[1] == code) return *frame;
    return none;
  }

  int Generation;
  Serial_Port Port;
  std::deque<Entry> Queue;
  std::array<std::int32_t, 4> Counter{};
  std::uint32_t Last_Index = 0;
  std::uint8_t Limits = 0, Encoder_Faults = 0, Aux = 0;
  int Lose_Moves = 0;    // so many motion commands do not arrive
  int Lose_Replies = 0;  // so many replies to motion commands are lost
  int Refuse_Moves = 0;
  bool Dead = false;  // answers nothing
  bool Finishes_When_Asked = true;

 private:
  static std::uint32_t At(const Bytes& frame, std::size_t first, int bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value = (value << 8U) | frame[first + static_cast<std::size_t>(i)];
    return value;
  }
  int Capacity() const { return Generation > 0 ? 3'250 : 39; }
  Bytes With_Room(std::uint8_t second) const {
    const auto used = static_cast<int>(Queue.size());
    if (Generation == 0) return Framed({27, second, static_cast<std::uint8_t>(used)});
    const int free = Capacity() - used;
    return Framed(
        {27, second, static_cast<std::uint8_t>(free % 256), static_cast<std::uint8_t>(free / 256)});
  }
  void Add_Counter(Bytes& reply, std::int32_t value) const {
    for (const unsigned shift : {16U, 8U, 0U})
      reply.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> shift));
  }
  Bytes Status() const {
    Bytes reply{27, 11};
    for (const std::int32_t value : Counter) Add_Counter(reply, value);
    if (Generation > 0)
      for (int i = 0; i < 12; ++i) reply.push_back(0);
    const int motion = Queue.empty() ? 0 : 2;
    for (const int byte : {int{Limits}, motion + Aux, 0, 0, 0, 0, 0})
      reply.push_back(static_cast<std::uint8_t>(byte));
    reply.resize(Generation > 0 ? 33 : 21);
    if (Generation > 0) Add_Counter(reply, static_cast<std::int32_t>(Last_Index));
    return Framed(reply);
  }
  void Enqueue(const Bytes& frame) {
    Entry entry;
    const std::uint64_t major = At(frame, 2, 3);
    for (std::size_t i = 0; i < 4; ++i) {
      const std::uint32_t divider = At(frame, 5 + 4 * i, 4);
      if (divider == 0xFFFFFFFF) continue;
      const auto steps = static_cast<std::int32_t>((major * 10'000 + divider / 2) / divider);
      entry.Steps[i] = (frame[29] >> i & 1) != 0 ? -steps : steps;
    }
    if (Generation > 0) entry.Index = At(frame, 34, 3);
    Queue.push_back(entry);
  }
  Bytes Take_Move(const Bytes& frame) {
    if (Lose_Moves > 0) return --Lose_Moves, Bytes();
    if (Refuse_Moves > 0) return --Refuse_Moves, With_Room(21);
    Enqueue(frame);
    if (Lose_Replies > 0) return --Lose_Replies, Bytes();
    return With_Room(10);
  }
  Bytes Take(const Bytes& frame) {
    if (Dead) return {};
    const std::uint8_t code = frame[1];
    switch (code) {
      case 8:
        return Framed({27, 8, static_cast<std::uint8_t>(Generation + 4), 1, 2, 3, 4, 20, 14});
      case 9:
        return Framed({27, 9, 42, 219, static_cast<std::uint8_t>(Generation + 4)});
      case 10:
        return Take_Move(frame);
      case 11:
        return Status();
      case 12:
        Queue.clear();
        return Framed({27, code});
      case 15:
        return With_Room(code);
      case 18:
        for (std::size_t i = 0; i < 4; ++i) {
          const auto value = static_cast<std::int32_t>(At(frame, 2 + 3 * i, 3));
          Counter[i] = value >= 0x800000 ? value - 0x1000000 : value;
        }
        return Framed({27, code});
      case 19:
        if (Finishes_When_Asked) Finish(static_cast<int>(Queue.size()));
        return Framed({27, code, static_cast<std::uint8_t>(Queue.empty() ? 0 : 2)});
      case 45: {
        Bytes reply(31);
        reply[0] = 27, reply[1] = 45, reply[30] = Encoder_Faults;
        return Framed(reply);
      }
      case 13:
      case 14:
      case 17:
      case 28:
      case 29:
      case 31:
        return Framed({27, code, frame[2]});
      default:
        return Framed({27, code});
    }
  }
};

}  // namespace norvik
