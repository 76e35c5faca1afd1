// finding.h: one sentence about a machine file that may surprise who stands beside the machine.
#pragma once

#include <string>

namespace norvik {

struct Machine_Finding {
  std::string Text;
  std::string Key;              // of the machine file; empty: no setting changes it
  std::string Correction = {};  // the key of section Corrections that answers it; empty: none
  bool operator==(const Machine_Finding&) const = default;
};

// Words of findings: a number to thousandths, the letter of axis 1..4, and the key of an axis.
std::string Setup_Number(double value);
std::string Axis_Name(int axis);
std::string Axis_Key(const char* family, int axis);

}  // namespace norvik
