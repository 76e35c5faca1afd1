#include "drive/finding.h"

#include "core/axes.h"
#include "core/format.h"

#include <cmath>

namespace norvik {

std::string Setup_Number(double value) {
  return Shortest_Text(std::round(value * 1000) / 1000);
}

std::string Axis_Name(int axis) {
  return std::string(1, Axis_Letter(axis));
}

std::string Axis_Key(const char* family, int axis) {
  return family + std::to_string(axis);
}

}  // namespace norvik
