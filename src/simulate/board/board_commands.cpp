#include "simulate/board/board_commands.h"

#include "simulate/board/board_axes.h"
#include "simulate/board/board_hands.h"
#include "simulate/board/board_motion.h"
#include "simulate/board/running_entry.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvik {

namespace {

constexpr std::uint8_t Refusal = 21;
constexpr std::size_t First_Payload = 2;  // place in a frame, counted from 0
constexpr unsigned Byte_Bits = 8;

// Writes bytes of the reply by their place, counted from 1 as the format counts them.
class Reply_Writer {
 public:
  explicit Reply_Writer(Board_Reply& reply) : Reply(reply) {}
  void Byte(std::size_t place, std::uint32_t value) {
    Reply.Bytes[place - 1] = static_cast<std::uint8_t>(value & 0xFF);
  }
  void Number_24(std::size_t place, std::int64_t value) { Put_24(&Reply.Bytes[place - 1], value); }
  void High_Byte_First(std::size_t place, std::uint32_t value) {
    Byte(place, value >> Byte_Bits);
    Byte(place + 1, value);
  }

 private:
  Board_Reply& Reply;
};

void Begin_Reply(const Simulated_Board& board, const Board_Command& command, std::uint8_t answer,
                 Board_Reply& reply) {
  reply.Length = command.Reply_Of(board.Generation);
  std::fill_n(reply.Bytes.begin(), reply.Length, std::uint8_t{0});
  reply.Bytes[0] = Board_Frame_Start;
  reply.Bytes[1] = answer;
}

void End_Reply(Board_Reply& reply) {
  const std::uint32_t sum = Sum_Of({reply.Bytes.data(), reply.Length - 2});
  reply.Bytes[reply.Length - 2] = static_cast<std::uint8_t>(sum & 0xFF);
  reply.Bytes[reply.Length - 1] = static_cast<std::uint8_t>(sum >> Byte_Bits & 0xFF);
}

void Note_Value(Simulated_Board& board, const Board_Command& command, std::uint32_t value) {
  Note_Finding(board, Board_Finding_Kind::Bad_Value, 0, [&] {
    return std::string(command.Name) + " with " + std::to_string(value) + ": nothing is done";
  });
}

// --- Moves -------------------------------------------------------------------------------------

Board_Entry Entry_Of(const Simulated_Board& board, std::span<const std::uint8_t> frame) {
  constexpr std::size_t dividers = 5, rate = 21, run_ramp = 23, down_ramp = 26, directions = 29,
                        index = 34, longest = Dwell_Payload + 4;
  Board_Entry entry;
  entry.Major = Big_Endian_24(&frame[First_Payload]);
  for (std::size_t axis = 0; axis < Axis_Count; ++axis) {
    entry.Dividers[axis] = Big_Endian_32(&frame[dividers + axis * sizeof(std::uint32_t)]);
  }
  entry.Start_Rate = static_cast<std::uint16_t>(Big_Endian_16(&frame[rate]));
  entry.Run_Ramp = Big_Endian_24(&frame[run_ramp]);
  entry.Down_Ramp = Big_Endian_24(&frame[down_ramp]);
  entry.Directions = frame[directions];
  entry.High_Mask = frame[directions + 1];
  entry.Low_Mask = frame[directions + 2];
  entry.Pwm = {frame[directions + 3], frame[directions + 4]};
  if (frame.size() == longest) entry.Index = Big_Endian_24(&frame[index]);
  entry.Dwell = Has_Form_Of_Dwell(frame) && entry.Major > 0;
  entry.Prepared = board.Prepared_Axes;
  return entry;
}

bool In_Fault(const Simulated_Board& board) {
  constexpr std::uint8_t stops = 64;
  return std::any_of(board.Axes.begin(), board.Axes.end(), [](const Board_Axis& axis) {
    return axis.Encoder_Fault && (axis.Encoder_Byte & stops) != 0;
  });
}

// Looks for axes that step without having been prepared; true when the move is to be refused.
bool Judge_Preparation(Simulated_Board& board, Board_Entry& entry) {
  bool refused = false;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (!Has_Steps(entry, axis) || (entry.Prepared & Axis_Bit(axis)) != 0) continue;
    Note_Finding(board, Board_Finding_Kind::Unprepared_Axis, axis,
                 [] { return std::string("steps in a move without AxisPrepare before it"); });
    if (board.Settings.Unprepared == Unprepared_Steps::Refuse) refused = true;
    if (board.Settings.Unprepared == Unprepared_Steps::Ignore_Axis) {
      entry.Ignored = static_cast<std::uint8_t>(entry.Ignored | Axis_Bit(axis));
    }
  }
  return refused;
}

// A host that lost the reply to a move sends it again; the board cannot tell it from a new one.
void Look_For_Double(Simulated_Board& board, std::span<const std::uint8_t> frame) {
  const std::span<const std::uint8_t> last(board.Last_Move.data(), board.Last_Move_Length);
  const bool same = std::equal(frame.begin(), frame.end(), last.begin(), last.end());
  if (same && board.Last_Move_Unanswered) {
    Note_Finding(board, Board_Finding_Kind::Doubled_Move, 0, [] {
      return std::string("a move came again after its reply was lost: it is made twice");
    });
  }
  std::copy(frame.begin(), frame.end(), board.Last_Move.begin());
  board.Last_Move_Length = frame.size();
  board.Last_Move_Unanswered = false;
}

std::string_view Take_Move(Simulated_Board& board, std::span<const std::uint8_t> frame) {
  Board_Entry entry = Entry_Of(board, frame);
  board.Prepared_Axes = 0;
  if (!board.Enabled) return "disabled";
  if (In_Fault(board)) return "fault";
  const std::int32_t room = std::min(board.Faults.True_Capacity.value_or(board.Settings.Capacity),
                                     static_cast<std::int32_t>(board.Queue.size()));
  if (Queue_Used(board) >= room) return "full";
  if (Moves_Into_Switch(board, entry)) return "switch";
  if (Judge_Preparation(board, entry)) return "unprepared";
  const bool moves = entry.Major > 0 && !entry.Dwell;
  if (board.Stopped && moves) {
    Note_Finding(board, Board_Finding_Kind::Move_After_Stop, 0, [] {
      return std::string("a move after StopMotion without MotorEnableOn in between");
    });
  }
  Look_For_Double(board, frame);
  Queue_Entry(board, entry);
  return "done";
}

void Answer_Free(const Simulated_Board& board, Reply_Writer reply) {
  constexpr std::size_t low = 3, high = 4;
  if (board.Generation == Board_Generation::Dravon_V4) {
    return reply.Byte(low, static_cast<std::uint32_t>(Queue_Used(board)));
  }
  const auto free = static_cast<std::uint32_t>(Queue_Free(board));
  reply.Byte(low, free);
  reply.Byte(high, free >> Byte_Bits);
}

std::string_view Answer_Move(Simulated_Board& board, std::span<const std::uint8_t> frame,
                             Board_Reply& reply) {
  const std::string_view verdict = Take_Move(board, frame);
  if (verdict != "done") {
    reply.Bytes[1] = Refusal;
    Note_Finding(board, Board_Finding_Kind::Refused_Move, 0,
                 [&] { return "a move was refused: " + std::string(verdict); });
  }
  Answer_Free(board, Reply_Writer(reply));
  return verdict;
}

// --- What the board tells ----------------------------------------------------------------------

std::uint8_t Status_Flags(const Simulated_Board& board) {
  constexpr std::array<std::uint8_t, Axis_Count> home{4, 8, 16, 64};
  std::uint32_t flags = (board.Aux_Flag ? 1U : 0U) | (In_Motion(board) ? 2U : 0U);
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (Home_Input_On(board, axis)) flags |= home[static_cast<std::size_t>(axis - 1)];
  }
  if (board.Aux == Input_State::On) flags |= 32U;
  return static_cast<std::uint8_t>(flags);
}

void Answer_Status(const Simulated_Board& board, Reply_Writer reply) {
  constexpr std::size_t counters = 3, encoders = 15, number = 3, index = 34;
  constexpr double tenth = 10, largest = 65'535;
  const bool pelmar = board.Generation == Board_Generation::Pelmar_V5;
  const std::size_t latches = pelmar ? encoders + Axis_Count * number : encoders;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const std::size_t place = static_cast<std::size_t>(axis - 1) * number;
    reply.Number_24(counters + place, Counter_Of(board, axis));
    if (pelmar) reply.Number_24(encoders + place, Encoder_Of(board, axis));
  }
  reply.Byte(latches, board.Limit_Latches);
  reply.Byte(latches + 1, Status_Flags(board));
  reply.Byte(latches + 2, board.Outputs);
  const double rate = Current_Rate(board) / (pelmar ? tenth : 1);
  reply.High_Byte_First(latches + 3,
                        static_cast<std::uint32_t>(std::llround(std::min(rate, largest))));
  if (pelmar) reply.Number_24(index, board.Finished_Index);
}

void Answer_Firmware(const Simulated_Board& board, Reply_Writer reply) {
  std::size_t place = 3;
  for (const std::uint8_t part : board.Settings.Revision) reply.Byte(place++, part);
  for (const std::uint8_t part : board.Settings.Date) reply.Byte(place++, part);
}

void Answer_Presence(const Simulated_Board& board, Reply_Writer reply) {
  constexpr std::uint32_t first = 42, second = 219, dravon = 4;
  reply.Byte(3, first);
  reply.Byte(4, second);
  reply.Byte(5, dravon + static_cast<std::uint32_t>(board.Generation));
}

// Axis bytes at `axes`, factors and errors behind each other at `numbers`.
void Answer_Encoders(const Simulated_Board& board, std::size_t axes, std::size_t numbers,
                     Reply_Writer reply) {
  constexpr std::size_t number = 3;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis - 1);
    const Board_Axis& a = board.Axes[axis];
    reply.Byte(axes + place, a.Encoder_Byte);
    reply.Number_24(numbers + place * number, a.Encoder_Factor);
    reply.Number_24(numbers + (Axis_Count + place) * number, a.Encoder_Error);
  }
}

void Answer_Encoder_Config(const Simulated_Board& board, Reply_Writer reply) {
  constexpr std::size_t axes = 3, numbers = 7, faults = 31;
  constexpr std::uint32_t any = 128;
  Answer_Encoders(board, axes, numbers, reply);
  std::uint32_t bits = 0;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    if (board.Axes[axis].Encoder_Fault) bits |= Axis_Bit(axis) | any;
  }
  reply.Byte(faults, bits);
}

void Answer_Config(const Simulated_Board& board, Reply_Writer reply) {
  constexpr std::size_t axes = 29, numbers = 33;
  const Board_Settings& settings = board.Settings;
  const auto& [day, month, century, year] = settings.Date;
  const std::array<std::uint8_t, 8> head{settings.Hardware,
                                         settings.Revision[0],
                                         settings.Revision[1],
                                         settings.Revision[2],
                                         day,
                                         month,
                                         century,
                                         year};
  std::size_t place = 3;
  for (const std::uint8_t byte : head) reply.Byte(place++, byte);
  reply.High_Byte_First(place, static_cast<std::uint32_t>(settings.Capacity));
  place += 2;
  for (const std::uint32_t byte :
       {board.Limits_On ? 0U : 1U, std::uint32_t{board.Ramp_Rate},
        std::uint32_t{board.Control_Bytes[0]}, std::uint32_t{board.Control_Bytes[1]}}) {
    reply.Byte(place++, byte);
  }
  Answer_Encoders(board, axes, numbers, reply);
  if (board.Faults.Wrong_Config) {
    reply.Byte((*board.Faults.Wrong_Config)[0], (*board.Faults.Wrong_Config)[1]);
  }
}

std::uint8_t Memory_At(const Simulated_Board& board, std::uint32_t address) {
  constexpr std::uint32_t flags = 0x3D, control_byte_1 = 0x41, control_byte_2 = 0x42,
                          watchdog = 0x88;
  switch (address) {
    case flags:
      return In_Motion(board) || board.Queue_Count > 0 ? 3 : 1;  // 1: the link is alive
    case control_byte_1:
      return board.Control_Bytes[0];
    case control_byte_2:
      return board.Control_Bytes[1];
    case watchdog:
      return board.Watchdog_Errors;
    default:
      return board.Memory[address % board.Memory.size()];
  }
}

// --- What it is told ---------------------------------------------------------------------------

std::string_view Load_Counters(Simulated_Board& board, std::span<const std::uint8_t> frame,
                               Board_Reply& reply) {
  constexpr std::size_t number = 3;
  if (In_Motion(board)) {
    Note_Finding(board, Board_Finding_Kind::Load_While_Moving, 0,
                 [] { return std::string("counters were loaded while axes moved"); });
    if (!board.Settings.Load_While_Moving) {
      reply.Bytes[1] = Refusal;
      return "moving";
    }
  }
  const bool encoders = frame[1] == board_code::Load_Encoder_Counters;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const auto place = First_Payload + static_cast<std::size_t>(axis - 1) * number;
    const std::int32_t value = Sign_Extended_24(Big_Endian_24(&frame[place]));
    Board_Axis& a = board.Axes[axis];
    if (encoders) {
      a.Encoder_Origin = value - Carriage_Of(board, axis) * Encoder_Ratio(a);
    } else {
      a.Counter += value - Counter_Of(board, axis);
    }
  }
  Plan_Again(board);
  return "done";
}

void Write_Encoder_Config(Simulated_Board& board, std::span<const std::uint8_t> frame) {
  constexpr std::size_t number = 3, factors = First_Payload + Axis_Count,
                        errors = factors + Axis_Count * number;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis - 1);
    Board_Axis& a = board.Axes[axis];
    const double carriage = Carriage_Of(board, axis);
    const double count = a.Encoder_Origin + carriage * Encoder_Ratio(a);
    a.Encoder_Byte = frame[First_Payload + place];
    a.Encoder_Factor = Big_Endian_24(&frame[factors + place * number]);
    a.Encoder_Error = Big_Endian_24(&frame[errors + place * number]);
    a.Encoder_Origin = count - carriage * Encoder_Ratio(a);
  }
  Plan_Again(board);
}

// Latches of switches that are off, and all encoder faults.
void Clear_Faults_Of(Simulated_Board& board) {
  constexpr unsigned second_switches = 4;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const unsigned bit = Axis_Bit(axis);
    unsigned clear = 0;
    if (!Low_Switch_On(board, axis)) clear |= bit;
    if (!High_Switch_On(board, axis)) clear |= bit << second_switches;
    board.Limit_Latches = static_cast<std::uint8_t>(board.Limit_Latches & ~clear);
    board.Axes[axis].Encoder_Fault = false;
  }
  board.Aux_Flag = board.Aux == Input_State::On;
  Plan_Again(board);
}

void Enable_Motors(Simulated_Board& board, bool on) {
  if (!on) Stop_Board(board, "disabled");
  board.Enabled = on;
  if (on) board.Stopped = false;
}

void Switch_Told(Simulated_Board& board, const Board_Command& command, std::uint8_t output,
                 bool on) {
  constexpr std::uint8_t last = 7;
  if (output < 1 || output > last) return Note_Value(board, command, output);
  Switch_Output(board, output, on);
}

void Prepare_Axis(Simulated_Board& board, const Board_Command& command, std::uint8_t axis) {
  if (axis < 1 || axis > Axis_Count) return Note_Value(board, command, axis);
  board.Prepared_Axes = static_cast<std::uint8_t>(board.Prepared_Axes | Axis_Bit(axis));
}

// Commands with a byte that the reply gives back.
void Take_Byte_Command(Simulated_Board& board, const Board_Command& command, std::uint8_t value) {
  switch (command.Code) {
    case board_code::Output_On:
    case board_code::Output_Off:
      return Switch_Told(board, command, value, command.Code == board_code::Output_On);
    case board_code::Axis_Prepare:
      return Prepare_Axis(board, command, value);
    case board_code::Set_CByte1:
      board.Control_Bytes[0] = value;
      return;
    case board_code::Set_CByte2:
      board.Control_Bytes[1] = value;
      return;
    default:
      if (value == 0) Note_Value(board, command, value);
      board.Ramp_Rate = std::max<std::uint8_t>(value, 1);
  }
}

// Commands that are answered by nothing but that they have come.
void Take_Plain_Command(Simulated_Board& board, std::span<const std::uint8_t> frame) {
  const auto low_byte_first = [&] {
    return static_cast<std::uint32_t>(frame[First_Payload] | frame[First_Payload + 1] << Byte_Bits);
  };
  switch (frame[1]) {
    case board_code::Stop_Motion:
      Stop_Board(board, "stop");
      board.Stopped = true;
      return;
    case board_code::Jog_Stop:
      return Stop_Jog(board, low_byte_first());
    case board_code::Set_Throttle:
      return Set_Board_Throttle(board, low_byte_first());
    case board_code::Limits_Disable:
    case board_code::Limits_Enable:
      board.Limits_On = frame[1] == board_code::Limits_Enable;
      return Plan_Again(board);
    case board_code::Clear_Faults:
      return Clear_Faults_Of(board);
    case board_code::Motor_Enable_On:
    case board_code::Motor_Enable_Off:
      return Enable_Motors(board, frame[1] == board_code::Motor_Enable_On);
    case board_code::Write_Encoder_Config:
      return Write_Encoder_Config(board, frame);
    default:
      return Restart_Board(board);
  }
}

}  // namespace

std::string_view Carry_Out(Simulated_Board& board, std::span<const std::uint8_t> frame,
                           Board_Reply& reply) {
  const Board_Command& command = *Board_Command_Of(frame[1]);
  constexpr std::size_t echo = 3;
  board.Answers_To = command.Code;
  Begin_Reply(board, command, command.Code, reply);
  Reply_Writer writer(reply);
  std::string_view verdict = "done";
  switch (command.Code) {
    case board_code::Move_Steps:
      verdict = Answer_Move(board, frame, reply);
      break;
    case board_code::Read_Status:
      Answer_Status(board, writer);
      break;
    case board_code::Read_Buffer:
      Answer_Free(board, writer);
      break;
    case board_code::Read_Firmware:
      Answer_Firmware(board, writer);
      break;
    case board_code::Read_Presence:
      Answer_Presence(board, writer);
      break;
    case board_code::Read_Memory:
      writer.Byte(echo, Memory_At(board, static_cast<std::uint32_t>(frame[First_Payload] |
                                                                    frame[First_Payload + 1]
                                                                        << Byte_Bits)));
      break;
    case board_code::Read_Encoder_Config:
      Answer_Encoder_Config(board, writer);
      break;
    case board_code::Read_Config:
      Answer_Config(board, writer);
      break;
    case board_code::Load_Step_Counters:
    case board_code::Load_Encoder_Counters:
      verdict = Load_Counters(board, frame, reply);
      break;
    default:
      if (reply.Length > echo + 1) {
        Take_Byte_Command(board, command, frame[First_Payload]);
        writer.Byte(echo, frame[First_Payload]);
      } else {
        Take_Plain_Command(board, frame);
      }
  }
  End_Reply(reply);
  return verdict;
}

void Refuse(Simulated_Board& board, const Board_Command& command, Board_Reply& reply) {
  board.Answers_To = command.Code;
  Begin_Reply(board, command, Refusal, reply);
  End_Reply(reply);
}

}  // namespace norvik
