// table.h: the artwork of a board between reading and cutting.
//
//   Gerber_Read_Apertures -> Gerber_Read_Data -> Gerber_Isolation_Passes -> Gerber_Write_GCode
//
// Lengths in units of the file, which count as units of the setup; all are singles.
#pragma once

#include <cstdint>
#include <vector>

namespace norvik {

// A stroke with a round aperture.
struct Gerber_Line {
  float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  float Width = 0;
  bool Deleted = false;  // covered by another line: makes no polygon
};

// A flash.
struct Gerber_Pad {
  float X = 0, Y = 0;
  float Size_X = 0, Size_Y = 0;
  char Shape = 0;  // first letter of the aperture's definition
  bool Deleted = false;
};

// A stroke too thin to be outlined: it is cut along its middle.
struct Thin_Line {
  float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};

struct Gerber_Table_State {
  std::vector<Gerber_Line> Lines;
  std::vector<Gerber_Pad> Pads;
  std::vector<Thin_Line> Thin_Lines;
};
extern Gerber_Table_State Gerber_Table;

}  // namespace norvik
