#include "simulate/board_port.h"

#include "core/axes.h"
#include "simulate/simulated_machine.h"
#include "simulate/trail.h"
#include "simulate/virtual_clock.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace norvik {

namespace {

struct Board_Port {
  std::unique_ptr<Board_Line> Line;  // null: without power
  int Handle = 0;                    // 0: closed
  std::int64_t Plugs = 0;            // of the line when it was opened
  std::int32_t Last_Count = 0;       // bytes that the last look found
};

struct Board_Ports_State {
  std::array<Board_Port, 2> Ports;
  std::optional<Board_Generation> In_Use;
  int Last_Handle = First_Handle;
  Platform_Operations Below;

  static constexpr int First_Handle = 1 << 20;  // apart from those of real ports
};
Board_Ports_State Board_Ports;

constexpr std::int64_t Longest_Look = 5'000'000, Vain_Look = 20'000;  // ns of the virtual clock

Board_Port& Port_Of(Board_Generation generation) {
  return Board_Ports.Ports[static_cast<std::size_t>(generation)];
}

std::optional<Board_Generation> Generation_Of_Device(std::string_view device) {
  if (device == Simulated_Dravon_Device) return Board_Generation::Dravon_V4;
  if (device == Simulated_Pelmar_Device) return Board_Generation::Pelmar_V5;
  return std::nullopt;
}

// Null for the handle of another back end, or of a port that was closed.
Board_Port* Port_By_Handle(int handle) {
  for (Board_Port& port : Board_Ports.Ports) {
    if (port.Line != nullptr && port.Handle == handle && handle != 0) return &port;
  }
  return nullptr;
}

bool Is_Simulated(int handle) {
  return handle >= Board_Ports_State::First_Handle;
}

// The cable was not pulled since the port was opened.
bool Is_There(const Board_Port& port) {
  return port.Line->Plugged && port.Line->Plugs == port.Plugs;
}

// --- The machine behind the board --------------------------------------------------------------

double Steps_From_Start(const Simulated_Axis& axis, double position) {
  return (position - axis.Start) * axis.Scale;
}

// Settings of the machine in steps of the board, whose carriage 0 is where the axis started.
void Fit_Axis(Simulated_Board& board, int axis) {
  const Simulated_Axis& machine = Simulated_Machine.Axes[axis];
  const Simulated_Axis_Settings& from = machine.Settings;
  Board_Axis_Settings& to = board.Axes[axis].Settings;
  const auto steps = [&](double position) { return Steps_From_Start(machine, position); };
  const auto& [low, high] = Simulated_Machine.Inputs[axis].Zones;
  to.Low_Switch.reset();
  to.High_Switch.reset();
  to.Low_Stop.reset();
  to.High_Stop.reset();
  if (low) to.Low_Switch = steps(low->To);
  if (high) to.High_Switch = steps(high->From);
  to.Home_To = to.Low_Switch;
  to.Hysteresis = Simulated_Machine.Inputs[axis].Hysteresis * machine.Scale;
  to.Max_Rate = from.Top_Rate;
  if (!from.Limited || from.Travel_High < from.Travel_Low) return;
  to.Low_Stop = steps(from.Travel_Low - from.Overtravel);
  to.High_Stop = steps(from.Travel_High + from.Overtravel);
}

// The machine's carriages are where the board's are.
void Mirror(const Simulated_Board& board) {
  if (!Simulated_Machine.Loaded) return;
  constexpr std::uint8_t spindle = 3;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Simulated_Axis& a = Simulated_Machine.Axes[axis];
    a.Carriage = Carriage_Of(board, axis);
    a.Commanded = a.Motor = static_cast<std::int64_t>(a.Carriage);
    a.Enabled = board.Enabled;
  }
  Note_Trail_Point((board.Outputs & spindle) != 0);
}

Board_Port& Powered_Port(Board_Generation generation) {
  Board_Port& port = Port_Of(generation);
  if (port.Line != nullptr) return port;
  port.Line = std::make_unique<Board_Line>();
  port.Line->Board = Make_Board(generation);
  Simulated_Board* board = &port.Line->Board;
  board->Host.Motion = [board](const Board_Motion_Event& event) {
    if (event.Ended) Mirror(*board);
  };
  if (!Simulated_Machine.Loaded) return port;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Fit_Axis(*board, axis);
    board->Axes[axis].Carriage = Simulated_Machine.Axes[axis].Carriage;
  }
  return port;
}

// --- Operations --------------------------------------------------------------------------------

std::int64_t Now() {
  return Platform.Monotonic_Clock();
}

std::vector<Serial_Port_Info> List_Ports() {
  auto ports = Board_Ports.Below.Serial_Ports();
  for (const auto generation : {Board_Generation::Dravon_V4, Board_Generation::Pelmar_V5}) {
    const bool dravon = generation == Board_Generation::Dravon_V4;
    ports.push_back({std::string(dravon ? Simulated_Dravon_Device : Simulated_Pelmar_Device),
                     "Simulated " + Name_Of(generation) + " board: no motion takes place", ""});
  }
  return ports;
}

Serial_Opened Open_Port(const std::string& device, std::int32_t baud) {
  const auto generation = Generation_Of_Device(device);
  if (!generation) return Board_Ports.Below.Serial_Open(device, baud);
  Board_Port& port = Powered_Port(*generation);
  Follow_Line(*port.Line, Now());
  if (!port.Line->Plugged) {
    return {0, "The simulated board is unplugged. Plug it in on the panel \"Simulated machine\"."};
  }
  if (port.Handle != 0 && Is_There(port)) {
    return {0, "The simulated board is already open: close the port first."};
  }
  port.Handle = ++Board_Ports.Last_Handle;
  port.Plugs = port.Line->Plugs;
  port.Last_Count = 0;
  std::vector<std::uint8_t> stale;
  Take_For_Host(*port.Line, stale);
  Board_Ports.In_Use = generation;
  return {port.Handle, ""};
}

bool Write_Port(int handle, const std::vector<std::uint8_t>& bytes) {
  if (!Is_Simulated(handle)) return Board_Ports.Below.Serial_Write(handle, bytes);
  Board_Port* port = Port_By_Handle(handle);
  if (port == nullptr) return false;
  Follow_Line(*port->Line, Now());
  if (!Is_There(*port)) return false;
  Write_To_Board(*port->Line, bytes, Now());
  port->Last_Count = 0;
  return true;
}

void Move_Clock(Board_Line& line, std::int64_t ns) {
  Virtual_Clock.Delayed = true;  // what waits has let time pass
  Advance_Virtual_Clock(ns);
  Follow_Line(line, Now());
}

// Somebody looks whether bytes have come. When there are no more than at the last look, the clock
// moves to where there are: to the end of the frame that goes out, then to that of its reply.
void Wait_For_More(Board_Port& port) {
  Board_Line& line = *port.Line;
  std::int64_t left = Longest_Look;
  while (const auto arrival = All_Arrived(line)) {
    const std::int64_t step = std::min(*arrival - line.Board.Now, left);
    if (step <= 0) return;
    Move_Clock(line, step);
    left -= step;
  }
  if (left == Longest_Look && static_cast<std::int32_t>(Bytes_For_Host(line)) == port.Last_Count) {
    Move_Clock(line, Vain_Look);
  }
}

std::int32_t Bytes_Available(int handle) {
  if (!Is_Simulated(handle)) return Board_Ports.Below.Serial_Available(handle);
  Board_Port* port = Port_By_Handle(handle);
  if (port == nullptr) return -1;
  Follow_Line(*port->Line, Now());
  if (!Is_There(*port)) return -1;
  if (Virtual_Clock.Installed) Wait_For_More(*port);
  if (!Is_There(*port)) return -1;
  port->Last_Count = static_cast<std::int32_t>(Bytes_For_Host(*port->Line));
  return port->Last_Count;
}

bool Read_Port(int handle, std::vector<std::uint8_t>& bytes) {
  if (!Is_Simulated(handle)) return Board_Ports.Below.Serial_Read(handle, bytes);
  Board_Port* port = Port_By_Handle(handle);
  if (port == nullptr) return false;
  Follow_Line(*port->Line, Now());
  if (!Is_There(*port)) return false;
  Take_For_Host(*port->Line, bytes);
  port->Last_Count = 0;
  return true;
}

void Close_Port(int handle) {
  if (!Is_Simulated(handle)) return Board_Ports.Below.Serial_Close(handle);
  if (Board_Port* port = Port_By_Handle(handle)) port->Handle = 0;
}

}  // namespace

void Install_Simulated_Boards() {
  Board_Ports.Below = Platform;
  Platform.Serial_Ports = List_Ports;
  Platform.Serial_Open = Open_Port;
  Platform.Serial_Write = Write_Port;
  Platform.Serial_Available = Bytes_Available;
  Platform.Serial_Read = Read_Port;
  Platform.Serial_Close = Close_Port;
}

void Forget_Simulated_Boards() {
  for (Board_Port& port : Board_Ports.Ports) port = {};
  Board_Ports.In_Use.reset();
}

Board_Line& Simulated_Line(Board_Generation generation) {
  return *Powered_Port(generation).Line;
}

Board_Line* Line_In_Use() {
  return Board_Ports.In_Use ? Port_Of(*Board_Ports.In_Use).Line.get() : nullptr;
}

void Follow_Simulated_Board() {
  Board_Line* line = Line_In_Use();
  if (line == nullptr) return;
  Follow_Line(*line, Now());
  Mirror(line->Board);
}

void Fit_Board_To_Machine() {
  Board_Line* line = Line_In_Use();
  if (line == nullptr || !Simulated_Machine.Loaded) return;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Fit_Axis(line->Board, axis);
    const double carriage = Simulated_Machine.Axes[axis].Carriage;
    if (Carriage_Of(line->Board, axis) != carriage) {
      Place_Board_Carriage(line->Board, axis, carriage);
    }
  }
}

}  // namespace norvik
