// board_text_panel.h: the simulated board on a plain terminal: what it does, and keys for hands.
//
//   1 2 3 4   the first limit switch of X, Y, Z, A       h   home input of all axes
//   a         auxiliary input                            d   the cable: out, in
//   e         the encoder of X slips                     p   time stands, goes on
//   q         ends the program
#pragma once

#include "simulate/board/board_line.h"

#include <string>

namespace norvik {

struct Board_Panel_State {
  bool Time_Stands = false;
  bool Quit = false;
  std::string Port;           // where a program finds the board
  double Steps_Per_Unit = 0;  // for speeds in units per minute; 0: not known
};

// The whole panel, lines parted by CR LF, 24 of them at most and none longer than 80 letters.
std::string Board_Panel_Text(const Board_Line& line, const Board_Panel_State& panel);
// A key was pressed; one without a meaning does nothing.
void Take_Board_Key(Board_Line& line, Board_Panel_State& panel, char key);

}  // namespace norvik
