// read_back.h: ports that do not read back what is written to them.
//
// Every change of a pin reads its whole port and changes one bit. On a port that answers something
// else than what was written, the other bits of it change as well: a direction is lost with the
// next step, and the axis runs the other way without a word.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvik {

struct Read_Back_State {
  // Output ports that failed the last look, ascending.
  std::vector<std::int32_t> Deaf_Ports;
};
extern Read_Back_State Read_Back;

// What stands against driving motors through the ports found, for the operator; empty: nothing, or
// `Port_Shadow` makes up for it.
std::string Words_About_Deaf_Ports();

// Writes the other level to a direction pin of each output port, reads it, and puts it back; a port
// without one is only read. Moves nothing. What is found is said in the message list, the error log
// and status panel 1, with what to do; with `Port_Shadow` on nothing has to be done. Once the pins
// are at rest.
void Look_For_Deaf_Ports();

}  // namespace norvik
