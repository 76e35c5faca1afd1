#include "simulate/board/board_line.h"

#include <algorithm>
#include <utility>

namespace norvik {

namespace {

constexpr std::size_t Packet_Size = 62;

// A byte has arrived at the adapter at `time`; when the host sees it.
void Add_For_Host(Board_Line& line, std::uint8_t byte, std::int64_t time) {
  if (line.Usb_Latency <= 0) return line.To_Host.Add({time, byte});
  if (line.Packet_Count == 0 || time > line.Packet_Release) {
    line.Packet_Count = 0;
    line.Packet_Release = time + line.Usb_Latency;
  }
  line.To_Host.Add({line.Packet_Release, byte});
  if (++line.Packet_Count < Packet_Size) return;
  // Full: nothing of it is held any longer.
  const std::size_t waiting = std::min(Packet_Size, line.To_Host.Size());
  for (std::size_t i = 0; i < waiting; ++i) {
    auto& item = line.To_Host.From_Back(i);
    item.Time = std::min(item.Time, time);
  }
  line.Packet_Count = 0;
}

void Send(Board_Line& line, std::span<const std::uint8_t> bytes, std::int64_t from,
          const Reply_Harm& harm) {
  std::int64_t time = std::max(from, line.Host_Side_Free);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (harm.Burst > 0 && i > 0 && i % harm.Burst == 0) time += harm.Burst_Gap;
    time += line.Byte_Time;
    Add_For_Host(line, bytes[i], time);
  }
  line.Host_Side_Free = time;
}

void Send_Harmed(Board_Line& line, const Board_Reply& reply, std::int64_t from) {
  const Reply_Harm& harm = reply.Harm;
  from += harm.Delay;
  Send(line, harm.Noise, from, {});
  if (harm.Lost) return;
  auto bytes = reply.Bytes;
  if (harm.Low_Wrong) bytes[reply.Length - 2] ^= 1;
  if (harm.High_Wrong) bytes[reply.Length - 1] ^= 1;
  const std::size_t length = std::min(harm.Cut_To.value_or(reply.Length), reply.Length);
  for (int i = 0; i < (harm.Twice ? 2 : 1); ++i) Send(line, {bytes.data(), length}, from, harm);
}

void Look_At_Cable(Board_Line& line) {
  if (const auto pulled_for = std::exchange(line.Board.Faults.Unplugged_For, std::nullopt)) {
    Unplug(line, line.Board.Now + *pulled_for);
  }
}

void Receive_Front(Board_Line& line) {
  const auto item = line.To_Board.Front();
  line.To_Board.Drop_Front();
  const Board_Reply& reply = Receive_Byte(line.Board, item.Byte, item.Time);
  if (reply.Length > 0) {
    if (reply.Harm.Any) {
      Send_Harmed(line, reply, item.Time);
    } else {
      Send(line, {reply.Bytes.data(), reply.Length}, item.Time, reply.Harm);
    }
  }
  Look_At_Cable(line);
}

}  // namespace

void Timed_Bytes::Add(Item item) {
  if (Count == Items.size()) {
    std::vector<Item> larger(Items.size() * 2);
    for (std::size_t i = 0; i < Count; ++i) larger[i] = At(i);
    Items = std::move(larger);
    First = 0;
  }
  Items[(First + Count++) & (Items.size() - 1)] = item;
}

void Follow_Line(Board_Line& line, std::int64_t time) {
  while (!line.To_Board.Is_Empty() && line.To_Board.Front().Time <= time) Receive_Front(line);
  Follow_Board(line.Board, time);
  Look_At_Cable(line);
  if (!line.Plugged && line.Unplugged_Until && time >= *line.Unplugged_Until) Plug_In(line);
}

void Write_To_Board(Board_Line& line, std::span<const std::uint8_t> bytes, std::int64_t time) {
  Follow_Line(line, time);
  if (!line.Plugged) return;
  std::int64_t arrival = std::max(time, line.Board_Side_Free);
  for (const std::uint8_t byte : bytes) {
    arrival += line.Byte_Time;
    line.To_Board.Add({arrival, byte});
  }
  line.Board_Side_Free = arrival;
  if (line.Byte_Time == 0) Follow_Line(line, time);
}

std::size_t Bytes_For_Host(const Board_Line& line) {
  const Timed_Bytes& waiting = line.To_Host;
  if (waiting.Is_Empty() || waiting.Front().Time > line.Board.Now) return 0;
  std::size_t count = waiting.Size();
  while (waiting.At(count - 1).Time > line.Board.Now) --count;
  return count;
}

void Take_For_Host(Board_Line& line, std::vector<std::uint8_t>& bytes) {
  while (!line.To_Host.Is_Empty() && line.To_Host.Front().Time <= line.Board.Now) {
    bytes.push_back(line.To_Host.Front().Byte);
    line.To_Host.Drop_Front();
  }
}

std::optional<std::int64_t> All_Arrived(const Board_Line& line) {
  std::optional<std::int64_t> last;
  for (const Timed_Bytes* way : {&line.To_Board, &line.To_Host}) {
    if (way->Is_Empty()) continue;
    const std::int64_t time = way->At(way->Size() - 1).Time;
    if (time > line.Board.Now) last = std::max(last.value_or(time), time);
  }
  return last;
}

void Unplug(Board_Line& line, std::optional<std::int64_t> until) {
  line.To_Board.Clear();
  line.To_Host.Clear();
  line.Packet_Count = 0;
  if (line.Plugged) ++line.Plugs;
  line.Plugged = false;
  line.Unplugged_Until = until;
  if (line.Board.Host.Event) line.Board.Host.Event(line.Board.Now, "unplugged");
}

void Plug_In(Board_Line& line) {
  line.Plugged = true;
  line.Unplugged_Until.reset();
  line.Board_Side_Free = line.Host_Side_Free = line.Board.Now;
  line.Board.Receiver.Count = line.Board.Receiver.Expected = 0;
  if (line.Board.Host.Event) line.Board.Host.Event(line.Board.Now, "plugged in");
}

}  // namespace norvik
