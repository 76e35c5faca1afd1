// reader.h: the second scan of an artwork file: strokes and flashes into the tables.
//
// A word is tested for each letter in turn; only straight strokes, moves and flashes act:
//
// | letters     | effect                                                                      |
// |-------------|-----------------------------------------------------------------------------|
// | N, M        | none                                                                        |
// | G           | none: all strokes are straight. A word with G04 is a comment                |
// | X, Y        | the new point                                                               |
// | D10 and up  | selects the aperture                                                        |
// | D01         | pen down; with a coordinate in the word: a stroke from the old point        |
// | D02         | pen up, moves to the new point                                              |
// | D03         | pen up, a flash at the new point                                            |
// | no D        | with a coordinate: a stroke while the pen is down, otherwise a move         |
//
// Strokes up to `Gerber_Isolation_Minimum_Poly_Width` wide are thin: kept as thin lines with
// `Gerber_Isolation_SmallLines_Function`, otherwise dropped. Flashes narrower than that are
// dropped. While a layer is switched off the position follows, but nothing is kept.
//
// Parameter words FS, MO, OF, IN, IO, IP and LN are read (the last switches the layer), the others
// pass. What has no effect here but would in the artwork goes to the import report with its count.
#pragma once

#include "import/gerber/words.h"

#include <optional>
#include <string>

namespace norvik {

struct Gerber_Format_State {
  Gerber_Number_Format Zeros;
  bool Absolute = false;
  std::string Format_X = "23", Format_Y = "23";  // digits before and behind the point
  std::optional<bool> Inches;                    // absent: the file names no unit
  double Factor = 1;  // units of the setup in one of the file; of the apertures' scan
  // Held as read; no step uses them.
  std::string Sequence_Digits, G_Digits, M_Digits, D_Digits;
  std::string Image_Name;
  double Offset_A = 0, Offset_B = 0, Image_Offset_A = 0, Image_Offset_B = 0;
  bool Negative = false;
};
extern Gerber_Format_State Gerber_Format;

// Fills `Gerber_Table` by `Gerber_Apertures` and the selected layers, counts the use of the
// apertures and reports. Failures are logged as "Get_Gerber_DataFile_Error", those of numbers as
// "Gerber_Find_Val_Error" and "Gerber_XY_Format_Error". A word of more than 1000 characters ends
// the scan, so does ESC, which is cleared at the start.
void Gerber_Read_Data(const std::string& path);

}  // namespace norvik
