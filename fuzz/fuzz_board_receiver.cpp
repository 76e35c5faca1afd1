// Any bytes with any pauses on the line of a simulated board: it stays whole, and whatever it
// answers is a frame.
#include "simulate/board/board.h"
#include "simulate/board/board_line.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace norvik;
  if (size < 2) return 0;
  Board_Line line;
  line.Board =
      Make_Board((data[0] & 1) != 0 ? Board_Generation::Pelmar_V5 : Board_Generation::Dravon_V4);
  line.Board.Settings.Answer_Bad_Frames = (data[0] & 2) != 0;
  line.Board.Host.Frame = [](const Board_Frame_Event& event) {
    if (event.To_Host && !Checksum_Is_Right(event.Frame)) std::abort();
  };
  const std::span<const std::uint8_t> bytes(data + 1, size - 1);
  // Pieces of a length and a pause that the input itself gives.
  for (std::size_t place = 0; place < bytes.size();) {
    const std::size_t length = std::min<std::size_t>(bytes[place] % 64 + 1, bytes.size() - place);
    Write_To_Board(line, bytes.subspan(place, length), line.Board.Now);
    Follow_Line(line, line.Board.Now + std::int64_t{bytes[place]} * 1'000'000);
    place += length;
  }
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Carriage_Of(line.Board, axis) != Carriage_Of(line.Board, axis)) std::abort();
  }
  if (Queue_Free(line.Board) < 0 || Queue_Used(line.Board) < 0) std::abort();
  return 0;
}
