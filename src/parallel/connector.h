// connector.h: the lines of the 25-pin connector of a parallel port.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace norvik {

// One line: its register (0 data, 1 status, 2 control: the offset to the base address) and bit. An
// inverted line is low at the pin when its bit is set.
struct Connector_Line {
  int Pin, Register, Bit;
  bool Inverted;
  bool Input() const { return Register == 1; }
};

inline constexpr std::array<Connector_Line, 17> Connector_Lines{{
    {2, 0, 0, false},
    {3, 0, 1, false},
    {4, 0, 2, false},
    {5, 0, 3, false},
    {6, 0, 4, false},
    {7, 0, 5, false},
    {8, 0, 6, false},
    {9, 0, 7, false},
    {10, 1, 6, false},
    {11, 1, 7, true},
    {12, 1, 5, false},
    {13, 1, 4, false},
    {15, 1, 3, false},
    {1, 2, 0, true},
    {14, 2, 1, true},
    {16, 2, 2, false},
    {17, 2, 3, true},
}};

}  // namespace norvik
