// setup_compare.h: the present machine setup beside another machine file.
#pragma once

#include <string>
#include <vector>

namespace norvik {

struct Setup_Difference {
  std::string Key;    // "Axis.Axis_SPI_1"
  std::string Label;  // "Steps per unit, X"
  std::string Here, There;
};

// The keys whose values differ once the load's rules have read them, in the order of the load: what
// the other file lacks stands with its factory value. Raises a file fault when it is missing or
// cannot be read. The setup stays as it is.
std::vector<Setup_Difference> Compare_Setup_With(const std::string& path);

}  // namespace norvik
