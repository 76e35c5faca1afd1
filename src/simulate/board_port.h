// board_port.h: the two simulated controller boards as serial ports of this program.
//
// The devices "simulated:dravon" and "simulated:pelmar" stand in front of the real ports: bytes
// take their time at 115200 baud by `Platform`'s clock. A board is powered up when it is opened for
// the first time and goes on when the port is closed. Behind it stands the machine of the setup
// (simulated_machine.h) with its travels and switches, once that is loaded; without it, a machine
// without ends. Its carriages and its trail follow the board.
//
// Under the virtual clock a look for bytes that have not come yet moves the clock to their arrival,
// by 5 ms at most, and a look in vain by 20 us: a host that polls without yielding gets on.
#pragma once

#include "platform/platform.h"
#include "simulate/board/board_line.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

inline constexpr std::string_view Simulated_Dravon_Device = "simulated:dravon",
                                  Simulated_Pelmar_Device = "simulated:pelmar";

// Puts the boards in front of the serial operations that `Platform` has now. Once.
void Install_Simulated_Boards();
// Powers both boards off: the next opening starts a new one. Open ports are gone.
void Forget_Simulated_Boards();

// The board of a generation, powered up by this call where it was off.
Board_Line& Simulated_Line(Board_Generation generation);
// The board whose port is open, or was open last; null when none was ever opened.
Board_Line* Line_In_Use();
// The board of the open port up to now, its carriages and the trail with it. Called by panels.
void Follow_Simulated_Board();
// Carriages, travels and switches of the machine as they are now go to the board that is in use.
void Fit_Board_To_Machine();

}  // namespace norvik
