// port_choice.h: which port the drive talks to: real hardware or the simulated machine.
#pragma once

#include <string>

namespace norvik {

// Puts the simulated machine behind the port, at the positions where the axes stand.
void Use_Simulated_Machine();

// Fills `Port_Ranges.Cards` with the registers of add-on cards: those that the kernel knows, and
// those that this computer's own pointer file names. The machine file has no say in it.
void Find_Cards();

// As `Port_Access` in section `Platform` of the pointer file says:
//
//   Direct      the hardware; without the right to it every access fails, and error log, message
//               list and status panel 3 say so and what gives the right
//   Simulated   the simulated machine
//   Auto        the hardware where this process may use it, the simulated machine otherwise; also
//               taken when the key is missing
//
// The hardware belongs to one program at a time, a desktop or a companion that runs a program,
// until it ends; the simulated machine to anybody. Answers the words for the operator, which also
// stand in status panel 3. Raises a fault, with words that say what to do, when another program has
// the hardware; no port is chosen then.
std::string Choose_Port();

bool Port_Is_Simulated();
// What gives the right to the chosen port; empty when this process may use it.
std::string Port_Refusal();

}  // namespace norvik
