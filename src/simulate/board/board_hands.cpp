#include "simulate/board/board_hands.h"

#include "simulate/board/board_axes.h"
#include "simulate/board/board_motion.h"

#include <string>

namespace norvik {

void Place_Board_Carriage(Simulated_Board& board, int axis, double steps) {
  Stop_Board(board, "carriage moved by hand");
  Board_Axis& a = board.Axes[axis];
  a.Carriage = steps;
  Follow_Switches(a);
}

void Set_Board_Aux(Simulated_Board& board, Input_State state) {
  if (state == Input_State::On && board.Aux != Input_State::On) board.Aux_Flag = true;
  board.Aux = state;
}

void Restart_Board(Simulated_Board& board) {
  Stop_Board(board, "restart");
  Note_Finding(board, Board_Finding_Kind::Restart, 0,
               [] { return std::string("the board restarted"); });
  const Simulated_Board fresh;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    Board_Axis& a = board.Axes[axis];
    a.Counter = 0;
    a.Encoder_Fault = false;
    Set_Encoder_Count(a, 0);
  }
  board.Finished_Index = 0;
  board.Prepared_Axes = 0;
  board.Throttle = fresh.Throttle;
  board.Enabled = fresh.Enabled;
  board.Stopped = false;
  board.Limits_On = fresh.Limits_On;
  board.Limit_Latches = board.Outputs = 0;
  board.Ramp_Rate = fresh.Ramp_Rate;
  board.Control_Bytes = fresh.Control_Bytes;
  board.Pwm = {};
  board.Aux_Flag = false;
  board.Receiver.Count = board.Receiver.Expected = 0;
  board.Silent_Until = board.Now + board.Settings.Restart_Time;
}

}  // namespace norvik
