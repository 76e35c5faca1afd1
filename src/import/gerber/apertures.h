// apertures.h: the first scan of an artwork file: apertures, their macros and the layers.
//
// | word       | meaning                                                                      |
// |------------|------------------------------------------------------------------------------|
// | LN<name>   | a layer (import/gerber/layers.h) | | AM<name>   | a macro; the word behind it is
// its body                                      | | AD<n><def> | aperture n: a shape letter, ","
// and sizes parted by "X", or a macro's name   |
//
// A definition with a comma takes its first letter as shape, also where it is a macro with
// parameters. A macro without parameters is known only as a regular polygon (primitive 5), by its
// diameter. What that leaves out goes to the import report.
#pragma once

#include "core/indexed.h"

#include <cstdint>
#include <string>

namespace norvik {

struct Gerber_Aperture {
  bool Defined = false;
  char Shape = 0;  // first letter of the definition; 0 for a macro's polygon
  float Size_X = 0, Size_Y = 0;
  float Sides = 4;
  // What was done with it, for the report.
  std::int64_t Draws = 0, Flashes = 0;
};

struct Gerber_Macro {
  std::string Name, Body;
};

struct Gerber_Aperture_State {
  Indexed<Gerber_Aperture, 0, 1000> Aperture;  // by D code
  Indexed<Gerber_Macro, 0, 1000> Macro;        // in the order of the file
  std::int32_t Macro_Count = 0;
};
extern Gerber_Aperture_State Gerber_Apertures;

// Fills `Gerber_Apertures` and `Gerber_Layers`, which must be empty; a file that names no layer
// gets one that is called "Unnamed". Failures are logged as "Get_Gerber_AperatureFile_Error". ESC
// ends the scan.
void Gerber_Read_Apertures(const std::string& path);

}  // namespace norvik
