// board_line.h: the cable between a host and a simulated board.
//
// A byte takes its time on the line in both directions, 10 bits of it. A USB adapter may hold what
// it receives until a packet of 62 bytes is full or its latency time is over, so that a reply
// arrives in pieces. Faults of replies happen here; the cable can be pulled.
#pragma once

#include "simulate/board/board.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// Bytes with their times, first in, first out. Grows when it is full.
class Timed_Bytes {
 public:
  struct Item {
    std::int64_t Time = 0;  // ns
    std::uint8_t Byte = 0;
  };
  bool Is_Empty() const { return Count == 0; }
  std::size_t Size() const { return Count; }
  const Item& Front() const { return Items[First]; }
  Item& From_Back(std::size_t place) {
    return Items[(First + Count - 1 - place) & (Items.size() - 1)];
  }
  const Item& At(std::size_t place) const { return Items[(First + place) & (Items.size() - 1)]; }
  void Add(Item item);
  void Drop_Front() {
    First = (First + 1) & (Items.size() - 1);
    --Count;
  }
  void Clear() { First = Count = 0; }

 private:
  static constexpr std::size_t Start_Size = 1024;  // a power of two, as all later sizes
  std::vector<Item> Items{Start_Size};
  std::size_t First = 0, Count = 0;
};

struct Board_Line {
  static constexpr std::int64_t Byte_Time_At_115200 = 86'806;  // ns

  Simulated_Board Board;
  std::int64_t Byte_Time = Byte_Time_At_115200;  // ns; 0: bytes arrive at once
  std::int64_t Usb_Latency = 0;                  // ns; 0: every byte by itself
  bool Plugged = true;
  std::int64_t Plugs = 0;                       // times the cable was pulled
  std::optional<std::int64_t> Unplugged_Until;  // ns; absent: until it is plugged by hand

  // --- Inner ------------------------------------------------------------------------------------
  Timed_Bytes To_Board, To_Host;                         // with the times at which they arrive
  std::int64_t Board_Side_Free = 0, Host_Side_Free = 0;  // ns
  std::int64_t Packet_Release = 0;                       // of the adapter's open packet, ns
  std::size_t Packet_Count = 0;                          // bytes in it
};

// Lets everything happen up to `time`.
void Follow_Line(Board_Line& line, std::int64_t time);
// The host sends; lost when the cable is out.
void Write_To_Board(Board_Line& line, std::span<const std::uint8_t> bytes, std::int64_t time);
// Bytes that have arrived at the host by the time of the last `Follow_Line`.
std::size_t Bytes_For_Host(const Board_Line& line);
// Appends them to `bytes`.
void Take_For_Host(Board_Line& line, std::vector<std::uint8_t>& bytes);
// When all that is on its way now has arrived; absent: nothing is.
std::optional<std::int64_t> All_Arrived(const Board_Line& line);

// Pulls the cable: what is on the line is lost. The board goes on.
void Unplug(Board_Line& line, std::optional<std::int64_t> until = std::nullopt);
void Plug_In(Board_Line& line);

}  // namespace norvik
