// starting_points.h: machine files of typical machines, to begin from.
//
// They lie as files in the folder `setups` and go into the program at its build. Each holds only
// what differs from the factory setup.
#pragma once

#include <span>
#include <string_view>

namespace norvik {

struct Starting_Point {
  std::string_view Name;   // of the file, without its end
  std::string_view Words;  // what an operator chooses by
  std::string_view Text;   // of the machine file
};

// Two that hold nothing, in inches and in millimetres, stand last.
std::span<const Starting_Point> Starting_Points();

}  // namespace norvik
