#include "simulate/board/board.h"

#include "simulate/board/board_commands.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

namespace {

constexpr std::int32_t Pelmar_Capacity = 3250;
constexpr std::size_t Most_Entries = 4096;

void Tell_Frame(const Simulated_Board& board, bool to_host, std::span<const std::uint8_t> frame,
                std::string_view verdict) {
  if (board.Host.Frame) board.Host.Frame({board.Now, to_host, frame, verdict});
}

void Note_Bad_Frame(Simulated_Board& board, const char* words) {
  Note_Finding(board, Board_Finding_Kind::Bad_Frame, 0, [&] { return std::string(words); });
}

void Count_Frame(Simulated_Board& board) {
  ++board.Counts.Frames;
  if (board.Last_Frame) {
    board.Counts.Longest_Gap = std::max(board.Counts.Longest_Gap, board.Now - *board.Last_Frame);
  }
  board.Last_Frame = board.Now;
}

void Take_Frame(Simulated_Board& board, std::span<const std::uint8_t> frame) {
  const std::string_view verdict = Carry_Out(board, frame, board.Reply);
  Tell_Frame(board, false, frame, verdict);
  if (board.Now < board.Faults.Mute_Until) {
    board.Reply.Harm.Any = board.Reply.Harm.Lost = true;
  }
  if (board.Reply.Harm.Lost && frame[1] == board_code::Move_Steps && verdict == "done") {
    board.Last_Move_Unanswered = true;
  }
  ++board.Counts.Replies;
  Tell_Frame(board, true, {board.Reply.Bytes.data(), board.Reply.Length},
             board.Reply.Harm.Any ? "harmed" : "");
}

void Answer_Bad_Frame(Simulated_Board& board) {
  const auto frame = Received_Frame(board.Receiver);
  Note_Bad_Frame(board, "a frame with a wrong checksum");
  Tell_Frame(board, false, frame, "checksum");
  if (!board.Settings.Answer_Bad_Frames) return;
  Refuse(board, *Board_Command_Of(frame[1]), board.Reply);
  Tell_Frame(board, true, {board.Reply.Bytes.data(), board.Reply.Length}, "refused");
}

void Judge(Simulated_Board& board, Received received, bool may_be_harmed);

// The frame as it is after faults on its way, received in place of what was sent.
void Take_Changed_Bytes(Simulated_Board& board, const std::vector<std::uint8_t>& bytes) {
  for (const std::uint8_t byte : bytes) {
    Judge(board, Take_Byte(board.Receiver, byte, board.Now), false);
  }
}

void Judge(Simulated_Board& board, Received received, bool may_be_harmed) {
  switch (received) {
    case Received::Nothing:
      return;
    case Received::Frame: {
      Count_Frame(board);
      const auto frame = Received_Frame(board.Receiver);
      if (may_be_harmed && !board.Faults.List.empty()) {
        if (const auto changed = Frame_Meets_Faults(board, frame)) {
          return Take_Changed_Bytes(board, *changed);
        }
        if (board.Now < board.Silent_Until) return;  // a fault has restarted it
      }
      return Take_Frame(board, frame);
    }
    case Received::Bad_Checksum:
      return Answer_Bad_Frame(board);
    case Received::Unknown_Code:
      Note_Bad_Frame(board, "a command that this board does not know");
      return Tell_Frame(board, false, {board.Receiver.Bytes.data(), 2}, "unknown");
    case Received::Dropped:
      Note_Bad_Frame(board, "a frame that did not go on for 20 ms");
      return Tell_Frame(board, false, {}, "dropped");
  }
}

}  // namespace

Simulated_Board Make_Board(Board_Generation generation) {
  Simulated_Board board;
  board.Generation = generation;
  board.Receiver.Generation = generation;
  if (generation == Board_Generation::Pelmar_V5) {
    board.Settings.Capacity = Pelmar_Capacity;
    board.Settings.Revision = {5, 7, 1};
    board.Settings.Date = {9, 11, 20, 21};
    board.Settings.Hardware = 2;
  }
  board.Queue.resize(Most_Entries);
  return board;
}

const Board_Reply& Receive_Byte(Simulated_Board& board, std::uint8_t byte, std::int64_t time) {
  Follow_Board(board, time);
  board.Reply.Length = 0;
  if (board.Reply.Harm.Any) board.Reply.Harm = {};
  if (board.Now < board.Silent_Until) return board.Reply;
  Judge(board, Take_Byte(board.Receiver, byte, board.Now), true);
  return board.Reply;
}

}  // namespace norvik
