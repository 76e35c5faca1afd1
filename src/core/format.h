// format.h: the one number formatter for pattern texts such as "############000.000".
#pragma once

#include <string>
#include <string_view>

namespace norvik {

// A number by a pattern: "0" is a digit that always stands, "#" one that stands only where needed,
// "." the place of the decimal sign. Ties round away from zero on the decimal text of the number
// (its shortest form, at most 15 digits): 1.0005 under "000.000" is "001.001", -1.5 is "-001.500".
// A negative value that rounds to zero has no sign. The decimal sign is the region's
// (`Application.DecimalSeparator`).
std::string Format_Number(double value, std::string_view pattern);
// The same with a point in every region, for files that other programs read.
std::string Format_Number_Point(double value, std::string_view pattern);

// "############" + `MachineSetup.Axis_Format`, regional sign.
std::string Format_Axis_Number(double value);

// Shortest text that reads back equal, with a point and without an exponent.
std::string Shortest_Text(double value);
std::string Shortest_Text(float value);

}  // namespace norvik
